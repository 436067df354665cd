// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/filesystem.h"

#include "service/nativefiles.h"

#include <QFile>
#include <QUuid>

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

// Read to its end before anything is removed, so that deep trees do not use up the file descriptors. Names
// alone: a path of two hundred levels takes ten kilobytes.
std::vector<std::string> namesIn(const fs::path &directory)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string &path = it->path().native();
        names.push_back(path.substr(path.rfind('/') + 1));
    }
    return names;
}

/** Removes one tree, however deep it is. */
class Removal final
{
public:
    Removal(const fs::path &target, const std::stop_token &stop)
        : m_target(target)
        , m_stop(stop)
        , m_pending{target}
    {
    }

    void run()
    {
        while (!m_pending.empty() && !m_stop.stop_requested()) {
            const fs::path path = m_pending.back();
            m_pending.pop_back();
            remove(path);
        }
        std::error_code error;
        fs::remove(m_target, error); // now that what was lifted is gone, too
    }

private:
    void remove(const fs::path &path)
    {
        if (m_stop.stop_requested())
            return;
        std::error_code error;
        const fs::file_status status = fs::symlink_status(path, error);
        if (status.type() == fs::file_type::directory) {
            giveOwnerAccess(path, status.permissions());
            if (path.native().size() - m_target.native().size() > LIFTED_SIZE && lift(path))
                return;
            for (const std::string &name : namesIn(path))
                remove(path / name);
        }
        fs::remove(path, error);
    }

    // Below it paths would become too long for the system, so it goes on from the top.
    bool lift(const fs::path &directory)
    {
        const fs::path top = m_target / QUuid::createUuid().toByteArray(QUuid::Id128).toStdString();
        std::error_code error;
        fs::rename(directory, top, error);
        if (!error)
            m_pending.push_back(top);
        return !error;
    }

    static constexpr size_t LIFTED_SIZE = 1024; // bytes of a path below the target

    const fs::path m_target;
    const std::stop_token m_stop;
    std::vector<fs::path> m_pending;
};

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
    Removal(target, stop).run();
    std::error_code error;
    return fs::symlink_status(target, error).type() == fs::file_type::not_found;
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
    visitEntries(directory, [&](QByteArrayView name, FileKind kind) {
        if (QUtf8StringView(name).isValidUtf8())
            entries.append(
                {directory, QString::fromUtf8(name), kind == FileKind::Directory, kind == FileKind::Link});
    });
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
