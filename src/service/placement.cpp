// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/placement.h"

#include "service/filesystem.h"
#include "settings/settings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

namespace Varnel::Internal {

namespace {

// Fixed while the library loads, like the location that it is made of.
const QString TARGET = Settings::location() + QStringLiteral("/%2");

constexpr QChar COPY_MARK = u'@'; // in no path that a GitLab server gives

// What newCopyName() makes of a path, and nothing that a user would.
const QRegularExpression COPY_NAME(QStringLiteral("\\A(.+)@[0-9a-f]{32}\\z"));

bool belongsToLongerPath(
    const QString &directoryName, const QString &path, const Repository::Examples &examples)
{
    return std::any_of(examples.cbegin(), examples.cend(), [&](const Repository::ExamplePtr &example) {
        const QString other = example->name();
        return other.size() > path.size() && directoryName.startsWith(other);
    });
}

QDateTime modificationTime(const QFileInfo &info)
{
    return info.lastModified(QTimeZone::UTC);
}

bool setModificationTime(const QString &path, const QDateTime &time)
{
    const timespec access{0, UTIME_OMIT};
    const timespec modification{
        time.toSecsSinceEpoch(), (time.toMSecsSinceEpoch() - time.toSecsSinceEpoch() * 1000) * 1'000'000};
    const timespec times[]{access, modification};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path), times, AT_SYMLINK_NOFOLLOW) == 0;
}

} // namespace

QString repositoryDirectory(const QString &repositoryName)
{
    return exampleDirectory(repositoryName, QString());
}

QString exampleDirectory(const QString &repositoryName, const QString &name)
{
    return TARGET.arg(repositoryName).arg(name);
}

QStringList
findDirNames(const QString &repositoryName, const QString &path, const Repository::Examples &examples)
{
    // As a list: a text would be taken for several patterns where it has blanks or semicolons.
    const QStringList pattern{path + u'*'};
    QFileInfoList copies = visibleEntries(repositoryDirectory(repositoryName));
    copies.removeIf([&](const QFileInfo &info) {
        return !info.isDir() || !QDir::match(pattern, info.fileName())
               || belongsToLongerPath(info.fileName(), path, examples);
    });
    std::sort(copies.begin(), copies.end(), [](const QFileInfo &left, const QFileInfo &right) {
        const QDateTime leftTime = modificationTime(left);
        const QDateTime rightTime = modificationTime(right);
        return leftTime != rightTime ? leftTime < rightTime : left.fileName() > right.fileName();
    });

    QStringList names;
    for (const QFileInfo &info : std::as_const(copies))
        names.append(info.fileName());
    return names;
}

bool markAsNewestCopy(
    const QString &repositoryName,
    const QString &path,
    const QString &directoryName,
    const Repository::Examples &examples)
{
    if (!isPlainName(path) || !directoryName.startsWith(path, Qt::CaseInsensitive))
        return true;
    const QString unpacked = exampleDirectory(repositoryName, directoryName);
    const QString marked = exampleDirectory(repositoryName, newCopyName(path));
    if (!QFile::rename(unpacked, marked)) {
        removeTree(unpacked);
        return false;
    }

    QDateTime time = QDateTime::currentDateTimeUtc();
    const QStringList rivals = findDirNames(repositoryName, path, examples);
    for (const QString &rival : rivals) {
        const QFileInfo info(exampleDirectory(repositoryName, rival));
        if (info.filePath() != marked && modificationTime(info) >= time)
            time = modificationTime(info).addSecs(1);
    }
    if (setModificationTime(marked, time))
        return true;
    removeTree(marked);
    return false;
}

QString newCopyName(const QString &path)
{
    return path + COPY_MARK + QUuid::createUuid().toString(QUuid::Id128);
}

void removeLeftOverCopies(const QString &repositoryName, const QSet<QString> &paths)
{
    const QFileInfoList entries = allEntries(repositoryDirectory(repositoryName));
    for (const QFileInfo &entry : entries) {
        const QRegularExpressionMatch match = COPY_NAME.match(entry.fileName());
        if (match.hasMatch() && paths.contains(match.captured(1)))
            removeTree(entry.filePath());
    }
}

bool isMarkedCopy(const QString &directoryName, const QString &path)
{
    return directoryName.startsWith(path + COPY_MARK);
}

} // namespace Varnel::Internal
