// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/manifestscan.h"

#include "plugin/constants.h"
#include "service/filesystem.h"

namespace Varnel::Internal {

QFileInfoList findManifests(const QString &directory)
{
    QFileInfoList manifests;
    walk(directory, [&manifests](const FileEntry &entry) {
        if (entry.isDirectory || entry.name != QLatin1StringView(Constants::MANIFEST_FILE))
            return true;
        const QFileInfo manifest(entry.path());
        if (manifest.isFile() && manifest.isReadable())
            manifests.append(manifest);
        return true;
    });
    return manifests;
}

} // namespace Varnel::Internal
