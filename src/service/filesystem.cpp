// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/filesystem.h"

#include <QFile>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace Varnel::Internal {

namespace {

namespace fs = std::filesystem;

fs::path nativePath(const QString &path)
{
    return fs::path(QFile::encodeName(path).toStdString());
}

// A directory without these rights would keep what is in it from being removed.
void giveOwnerAccess(const fs::path &directory, fs::perms present)
{
    std::error_code error;
    if ((present & fs::perms::owner_all) != fs::perms::owner_all)
        fs::permissions(
            directory, fs::perms::owner_all, fs::perm_options::add | fs::perm_options::nofollow, error);
}

// Read to its end before anything is removed, so that deep trees do not use up the file descriptors.
std::vector<fs::path> pathsIn(const fs::path &directory)
{
    std::vector<fs::path> paths;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error))
        paths.push_back(it->path());
    return paths;
}

void removeAll(const fs::path &path, const std::stop_token &stop)
{
    if (stop.stop_requested())
        return;
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::directory) {
        giveOwnerAccess(path, status.permissions());
        for (const fs::path &entry : pathsIn(path))
            removeAll(entry, stop);
    }
    fs::remove(path, error);
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

bool removeTree(const QString &path, const std::stop_token &stop)
{
    return removeNativeTree(QFile::encodeName(path), stop);
}

bool removeNativeTree(const QByteArray &path, const std::stop_token &stop)
{
    const fs::path target = fs::path(path.toStdString());
    const auto isGone = [&target] {
        std::error_code error;
        return fs::symlink_status(target, error).type() == fs::file_type::not_found;
    };
    removeAll(target, stop);
    if (isGone())
        return true;
    // Step by step, so paths that are too long for the system are no hindrance.
    std::error_code error;
    if (!stop.stop_requested())
        fs::remove_all(target, error);
    return isGone();
}

bool move(const QString &from, const QString &to)
{
    std::error_code error;
    fs::rename(nativePath(from), nativePath(to), error);
    return !error;
}

QList<FileEntry> allEntries(const QString &directory)
{
    QList<FileEntry> entries;
    std::error_code error;
    for (fs::directory_iterator it(nativePath(directory), error), end; !error && it != end;
         it.increment(error)) {
        const std::string &path = it->path().native();
        const QByteArrayView native(path.data() + path.rfind('/') + 1, path.data() + path.size());
        if (!QUtf8StringView(native).isValidUtf8())
            continue;
        const QString name = QString::fromUtf8(native);
        std::error_code unknown;
        const bool isLink = it->is_symlink(unknown);
        entries.append({directory, name, !isLink && it->is_directory(unknown), isLink});
    }
    return entries;
}

QList<FileEntry> visibleEntries(const QString &directory)
{
    QList<FileEntry> entries = allEntries(directory);
    entries.removeIf([](const FileEntry &entry) { return entry.name.startsWith(u'.'); });
    return entries;
}

void walk(const QString &directory, const std::function<bool(const FileEntry &)> &visit)
{
    QStringList pending{directory};
    while (!pending.isEmpty()) {
        const QList<FileEntry> entries = visibleEntries(pending.takeLast());
        for (const FileEntry &entry : entries) {
            if (!visit(entry))
                return;
            if (entry.isDirectory)
                pending.append(entry.path());
        }
    }
}

} // namespace Varnel::Internal
