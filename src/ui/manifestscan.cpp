// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/manifestscan.h"

#include "plugin/constants.h"

#include <QFile>

#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace Varnel::Internal {

namespace {

struct CloseDirectory
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};
using DirectoryPtr = std::unique_ptr<DIR, CloseDirectory>;

// Not every file system tells the kind with the name.
bool isDirectory(DIR *parent, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return ::fstatat(::dirfd(parent), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
           && S_ISDIR(status.st_mode);
}

bool isUtf8(const QByteArray &name)
{
    return QFile::encodeName(QFile::decodeName(name)) == name;
}

} // namespace

QFileInfoList findManifests(const QString &directory)
{
    QFileInfoList manifests;
    QByteArrayList pending{QFile::encodeName(directory)};
    while (!pending.isEmpty()) {
        const QByteArray path = pending.takeLast();
        const DirectoryPtr opened(::opendir(path.constData()));
        if (!opened)
            continue;
        while (const dirent *entry = ::readdir(opened.get())) {
            if (entry->d_name[0] == '.')
                continue;
            if (isDirectory(opened.get(), *entry)) {
                if (isUtf8(entry->d_name))
                    pending.append(path + '/' + entry->d_name);
            } else if (qstrcmp(entry->d_name, Constants::MANIFEST_FILE) == 0) {
                const QFileInfo manifest(QFile::decodeName(path) + u'/' + QFile::decodeName(entry->d_name));
                if (manifest.isFile() && manifest.isReadable())
                    manifests.append(manifest);
            }
        }
    }
    return manifests;
}

} // namespace Varnel::Internal
