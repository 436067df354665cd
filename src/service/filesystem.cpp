// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/filesystem.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <stdio.h>

namespace Varnel::Internal {

namespace {

namespace fs = std::filesystem;

fs::path nativePath(const QString &path)
{
    return fs::path(QFile::encodeName(path).toStdString());
}

// A directory without these rights would keep what is in it from being removed.
void makeWritable(const fs::path &directory)
{
    std::error_code error;
    fs::permissions(
        directory, fs::perms::owner_all, fs::perm_options::add | fs::perm_options::nofollow, error);
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        if (it->symlink_status(error).type() == fs::file_type::directory)
            makeWritable(it->path());
    }
}

bool rename(const QString &from, const QString &to)
{
    std::error_code error;
    fs::rename(nativePath(from), nativePath(to), error);
    return !error;
}

} // namespace

bool isPlainName(const QString &name)
{
    // The IDE's file paths take a backslash for a separator, too.
    static const QString FORBIDDEN = QStringLiteral("/\\*?[]");
    if (name.isEmpty() || name == u"." || name == u"..")
        return false;
    return std::none_of(name.cbegin(), name.cend(), [](QChar character) {
        return character.isNull() || FORBIDDEN.contains(character);
    });
}

bool removeTree(const QString &path)
{
    return removeNativeTree(QFile::encodeName(path));
}

bool removeNativeTree(const QByteArray &path)
{
    const fs::path target = fs::path(path.toStdString());
    std::error_code error;
    fs::remove_all(target, error);
    if (!error)
        return true;
    if (fs::symlink_status(target, error).type() == fs::file_type::directory)
        makeWritable(target);
    fs::remove_all(target, error);
    return !error;
}

QFileInfoList allEntries(const QString &directory)
{
    QFileInfoList entries;
    std::error_code error;
    for (fs::directory_iterator it(nativePath(directory), error), end; !error && it != end;
         it.increment(error)) {
        const QByteArray native = QByteArray::fromStdString(it->path().filename().string());
        const QString name = QFile::decodeName(native);
        if (QFile::encodeName(name) == native)
            entries.append(QFileInfo(directory + u'/' + name));
    }
    return entries;
}

QFileInfoList visibleEntries(const QString &directory)
{
    QFileInfoList entries = allEntries(directory);
    entries.removeIf([](const QFileInfo &entry) { return entry.fileName().startsWith(u'.'); });
    return entries;
}

void walk(const QString &directory, const std::function<bool(const QFileInfo &)> &visit)
{
    QStringList pending{directory};
    while (!pending.isEmpty()) {
        const QFileInfoList entries = visibleEntries(pending.takeLast());
        for (const QFileInfo &entry : entries) {
            if (!visit(entry))
                return;
            if (entry.isDir() && !entry.isSymLink())
                pending.append(entry.filePath());
        }
    }
}

bool exchange(const QString &source, const QString &target, const QString &aside)
{
    const QByteArray nativeSource = QFile::encodeName(source);
    const QByteArray nativeTarget = QFile::encodeName(target);
    if (::renameat2(AT_FDCWD, nativeSource, AT_FDCWD, nativeTarget, RENAME_EXCHANGE) == 0)
        return true;
    const QFileInfo present(target);
    if (!present.exists() && !present.isSymLink())
        return rename(source, target);

    // Not every file system can exchange. Between these two steps the example is absent, never half there.
    if (!rename(target, aside))
        return false;
    if (!rename(source, target)) {
        rename(aside, target);
        return false;
    }
    return rename(aside, source);
}

} // namespace Varnel::Internal
