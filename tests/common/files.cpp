// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnel::Test {

void writeFile(const QString &path, const QByteArray &content)
{
    makeDirectory(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

void makeDirectory(const QString &path)
{
    if (!QDir().mkpath(path))
        qFatal("cannot make %s", qPrintable(path));
}

void makeLink(const QString &path, const QString &target)
{
    makeDirectory(QFileInfo(path).path());
    if (::symlink(QFile::encodeName(target), QFile::encodeName(path)) != 0)
        qFatal("cannot link %s", qPrintable(path));
}

void setTime(const QString &path, const QDateTime &time)
{
    const timespec stamp{
        time.toSecsSinceEpoch(), (time.toMSecsSinceEpoch() - time.toSecsSinceEpoch() * 1000) * 1'000'000};
    const timespec times[]{stamp, stamp};
    if (::utimensat(AT_FDCWD, QFile::encodeName(path), times, AT_SYMLINK_NOFOLLOW) != 0)
        qFatal("cannot set the time of %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

QStringList entriesOf(const QString &directory)
{
    return QDir(directory).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

bool existsRaw(const QByteArray &path)
{
    struct stat status;
    return ::lstat(path, &status) == 0;
}

} // namespace Varnel::Test
