// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/placement.h"

#include "service/filesystem.h"
#include "service/nativefiles.h"
#include "settings/settings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimeZone>
#include <QUuid>

#include <algorithm>

namespace Varnel::Internal {

namespace {

// Fixed while the library loads, like the location that it is made of.
const QString TARGET = Settings::location() + QStringLiteral("/%2");

// Null in the IDE. Not a text with markers: a user chose the name.
QString &ownDirectory()
{
    static QString directory;
    return directory;
}

constexpr QChar COPY_MARK = u'@'; // in no path that a GitLab server gives

// Matches what newCopyName() makes of a path, and no name that a user would choose.
const QRegularExpression COPY_NAME(QStringLiteral("\\A(.+)@[0-9a-f]{32}\\z"));

const QRegularExpression COMMIT_NAME(QStringLiteral("-([0-9a-f]{40}|[0-9a-f]{64})\\z"));

// Some file systems keep even seconds only.
constexpr int COARSEST_TIME = 2; // seconds

bool belongsToLongerPath(
    const QString &directoryName, const QString &path, const Repository::Examples &examples)
{
    return std::any_of(examples.cbegin(), examples.cend(), [&](const Repository::ExamplePtr &example) {
        const QString other = example->name();
        return other.size() > path.size() && directoryName.startsWith(other);
    });
}

bool isDirectory(const FileEntry &entry)
{
    return entry.isDirectory || (entry.isLink && QFileInfo(entry.path()).isDir());
}

QDateTime modificationTime(const QString &path)
{
    return QFileInfo(path).lastModified(QTimeZone::UTC);
}

bool isOrHolds(const QString &directory, const QString &other)
{
    return !directory.isEmpty() && (other == directory || other.startsWith(directory + u'/'));
}

// Invalid if there are no names.
QDateTime latestTime(const QString &repositoryName, const QStringList &names)
{
    QDateTime latest;
    for (const QString &name : names) {
        const QDateTime time = modificationTime(exampleDirectory(repositoryName, name));
        if (!latest.isValid() || time > latest)
            latest = time;
    }
    return latest;
}

bool makeNewest(const QString &directory, const QDateTime &latestRival)
{
    QDateTime time = QDateTime::currentDateTimeUtc();
    if (latestRival.isValid() && latestRival >= time)
        time = latestRival.addSecs(1);
    if (!setModificationTime(directory, time))
        return false;
    // The time counts as the file system has rounded it, or cut it: some end in 2038.
    return !latestRival.isValid() || modificationTime(directory) > latestRival
           || (setModificationTime(directory, latestRival.addSecs(COARSEST_TIME))
               && modificationTime(directory) > latestRival);
}

} // namespace

void setRepositoryDirectory(const QString &directory)
{
    ownDirectory() = directory;
}

QString repositoryDirectory(const QString &repositoryName)
{
    return exampleDirectory(repositoryName, QString());
}

QString exampleDirectory(const QString &repositoryName, const QString &directoryName)
{
    if (!ownDirectory().isNull())
        return ownDirectory() + u'/' + directoryName;
    return TARGET.arg(repositoryName).arg(directoryName);
}

bool holdsRepository(const QString &directory, const QStringList &repositoryNames)
{
    const QString clean = QDir::cleanPath(directory);
    const QString canonical = QFileInfo(directory).canonicalFilePath();
    return std::any_of(repositoryNames.cbegin(), repositoryNames.cend(), [&](const QString &name) {
        const QString repository = repositoryDirectory(name);
        return isOrHolds(clean, QDir::cleanPath(repository))
               || isOrHolds(canonical, QFileInfo(repository).canonicalFilePath());
    });
}

bool isNamedLikeCopy(const QString &directoryName, const QString &path)
{
    return directoryName.startsWith(path, Qt::CaseInsensitive);
}

QStringList
findDirNames(const QString &repositoryName, const QString &path, const Repository::Examples &examples)
{
    struct Copy
    {
        QString name;
        QDateTime time;
    };
    QList<Copy> copies;
    const QString directory = repositoryDirectory(repositoryName);
    const QList<FileEntry> entries = visibleEntries(directory);
    for (const FileEntry &entry : entries) {
        if (isNamedLikeCopy(entry.name, path) && isDirectory(entry)
            && !belongsToLongerPath(entry.name, path, examples))
            copies.append({entry.name, modificationTime(directory + entry.name)});
    }
    std::sort(copies.begin(), copies.end(), [](const Copy &left, const Copy &right) {
        return left.time != right.time ? left.time < right.time : left.name > right.name;
    });

    QStringList names;
    for (const Copy &copy : std::as_const(copies))
        names.append(copy.name);
    return names;
}

QString markAsNewestCopy(
    const QString &repositoryName,
    const QString &path,
    const QString &directoryName,
    const Repository::Examples &examples)
{
    const QString unpacked = exampleDirectory(repositoryName, directoryName);
    QString name = newCopyName(path);
    const QString marked = exampleDirectory(repositoryName, name);
    if (!move(unpacked, marked)) {
        removeTree(unpacked);
        return {};
    }
    QStringList rivals = findDirNames(repositoryName, path, examples);
    rivals.removeOne(name);
    if (makeNewest(marked, latestTime(repositoryName, rivals)))
        return name;
    removeTree(marked);
    return {};
}

QString newCopyName(const QString &path)
{
    return path + COPY_MARK + QUuid::createUuid().toString(QUuid::Id128);
}

QStringList findMarkedCopies(const QString &repositoryName, const QSet<QString> &paths)
{
    QStringList copies;
    const QString directory = repositoryDirectory(repositoryName);
    const QList<FileEntry> entries = allEntries(directory);
    for (const FileEntry &entry : entries) {
        const QRegularExpressionMatch match = COPY_NAME.match(entry.name);
        if (match.hasMatch() && paths.contains(match.captured(1)))
            copies.append(directory + entry.name);
    }
    return copies;
}

bool isCopyName(const QString &directoryName)
{
    return COPY_NAME.match(directoryName).hasMatch();
}

bool isMarkedCopy(const QString &directoryName, const QString &path)
{
    return directoryName.startsWith(path + COPY_MARK);
}

bool endsInCommit(const QString &directoryName)
{
    return COMMIT_NAME.match(directoryName).hasMatch();
}

} // namespace Varnel::Internal
