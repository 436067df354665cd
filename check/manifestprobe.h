// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "report.h"

namespace Varnel::Check {

/** What an example's manifest tells the Welcome screen; the example's directory is "." in its paths. */
[[nodiscard]] std::optional<ManifestReport> readManifest(const QString &directory);

} // namespace Varnel::Check
