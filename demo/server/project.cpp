// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/project.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

QByteArray Project::commitId() const
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(u"%1 %2 %3"_s.arg(path).arg(commits).arg(commitTime.toSecsSinceEpoch()).toUtf8());
    for (const auto &[entryPath, entry] : tree.entries()) {
        hash.addData(entryPath);
        hash.addData(QByteArray::number(entry.type));
        hash.addData(entry.content);
    }
    return hash.result().toHex();
}

QByteArray Project::topDirectory() const
{
    return path.toUtf8() + '-' + branch.toUtf8().replace('/', '-') + '-' + commitId();
}

QByteArray Project::archiveBytes() const
{
    return archive.isEmpty() ? gzip(tarball(tree, topDirectory(), commitId(), commitTime)) : archive;
}

} // namespace Varnel::Demo
