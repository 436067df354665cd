// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "report.h"

namespace Varnel::Check {

/** What the manifest in an example's directory tells the Welcome screen; the directory itself as "." in its paths. */
[[nodiscard]] std::optional<ManifestReport> readManifest(const QString &directory);

} // namespace Varnel::Check
