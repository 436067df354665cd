// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFileInfoList>

namespace Varnel::Internal {

/**
 * The readable manifests at any depth below @p directory, in no order. Hidden entries and names that are not
 * UTF-8 are left out, and links to directories not followed. Only directories and manifests cost more than
 * being listed: the main thread waits, and there may be hundreds of files for each manifest.
 */
[[nodiscard]] QFileInfoList findManifests(const QString &directory);

} // namespace Varnel::Internal
