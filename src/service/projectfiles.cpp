// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/projectfiles.h"

#include "service/filesystem.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace Varnel::Internal {

namespace {

constexpr qint64 BLOCK_SIZE = 1 << 20; // bytes
constexpr int ICON_SIZE = 128;         // pixels

bool isReadableFile(const QFileInfo &info, const QStringList &patterns)
{
    return info.isFile() && info.isReadable() && QDir::match(patterns, info.fileName());
}

QFileInfoList readableFiles(const QString &directory, const QStringList &patterns)
{
    QFileInfoList files = visibleEntries(directory);
    files.removeIf([&patterns](const QFileInfo &info) { return !isReadableFile(info, patterns); });
    return files;
}

bool isRegularFile(int descriptor)
{
    struct stat status;
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Moves over a hole, in which no text is found: a huge sparse file must not take minutes. False at the end of the
// data.
bool skipHole(QFile *file, QByteArray *window)
{
    const off_t data = ::lseek(file->handle(), file->pos(), SEEK_DATA);
    if (data < 0)
        return errno != ENXIO; // not every file system knows its holes
    if (data > file->pos()) {
        window->clear();
        file->seek(data);
    }
    return true;
}

// First file that contains the text, as an absolute path; empty if there is none.
QString findFile(const QString &directory, const QString &pattern, const QString &text)
{
    QString found;
    const QByteArray needle = text.toLatin1();
    walk(directory, [&](const QFileInfo &info) {
        if (isReadableFile(info, {pattern}) && fileContains(info.filePath(), needle))
            found = info.absoluteFilePath();
        return found.isEmpty();
    });
    return found;
}

QString findLargestIcon(const QString &iconsDirectory)
{
    static const QStringList PATTERNS{
        QStringLiteral("*.png"), QStringLiteral("*.jpeg"), QStringLiteral("*.jpg"), QStringLiteral("*.bmp")};
    QFileInfoList icons = readableFiles(iconsDirectory + QStringLiteral("/%1x%1").arg(ICON_SIZE), PATTERNS);
    if (icons.isEmpty())
        return {};
    std::sort(icons.begin(), icons.end(), [](const QFileInfo &left, const QFileInfo &right) {
        return left.size() != right.size() ? left.size() > right.size() : left.fileName() < right.fileName();
    });
    return icons.constFirst().canonicalFilePath();
}

} // namespace

QString findProject(const QString &directory)
{
    QFileInfoList projects
        = readableFiles(directory, {QStringLiteral("*.pro"), QStringLiteral("CMakeLists.txt")});
    if (projects.isEmpty())
        return {};
    std::sort(projects.begin(), projects.end(), [](const QFileInfo &left, const QFileInfo &right) {
        const QDateTime leftTime = left.lastModified(QTimeZone::UTC);
        const QDateTime rightTime = right.lastModified(QTimeZone::UTC);
        return leftTime != rightTime ? leftTime > rightTime : left.fileName() < right.fileName();
    });
    return projects.constFirst().fileName();
}

QString findIcon(const QString &directory)
{
    QString icon;
    walk(directory, [&icon](const QFileInfo &info) {
        if (info.isDir() && info.isReadable() && QDir::match(QStringLiteral("icons"), info.fileName()))
            icon = findLargestIcon(info.filePath());
        return icon.isEmpty();
    });
    return icon;
}

QString findFileToOpen(const QString &directory)
{
    const QString base = QFileInfo(directory).absoluteFilePath();
    QString file = findFile(base, QStringLiteral("*.qml"), QStringLiteral("ApplicationWindow"));
    if (file.isEmpty())
        file = findFile(base, QStringLiteral("*"), QStringLiteral(" main("));
    if (file.isEmpty())
        return findProject(base);
    return file.remove(base);
}

bool fileContains(const QString &path, const QByteArray &needle)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || !isRegularFile(file.handle())) {
        return false;
    }
    QByteArray window; // the end of the text before, so that a needle across two blocks is found
    while (skipHole(&file, &window)) {
        QByteArray block = file.read(BLOCK_SIZE);
        if (block.isEmpty())
            return false;
        window += block.replace('\r', QByteArrayView());
        if (window.contains(needle))
            return true;
        window = window.last(std::min<qsizetype>(window.size(), needle.size() - 1));
    }
    return false;
}

} // namespace Varnel::Internal
