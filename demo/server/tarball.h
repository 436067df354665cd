// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// The content of a repository at one commit, and its archive as GitLab makes it.
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>

class QDateTime;

namespace Varnel::Demo {

/** Files, directories and links by path: bytes, relative, separated by "/". */
class Tree final
{
public:
    struct Entry
    {
        enum Type { File, Executable, Directory, Link };
        Type type = File;
        QByteArray content; // of a link: its target
    };
    /** In the order of git's trees, which sorts a directory as if its name ended in "/"; so do the keys. */
    using Entries = std::map<QByteArray, Entry>;

    /** Adds an entry and the directories above it; an entry of the same path is replaced. */
    void add(const QByteArray &path, const Entry &entry);
    void addFile(const QByteArray &path, const QByteArray &content) { add(path, {Entry::File, content}); }
    /** Adds everything below a directory of the disk; the text says what went wrong, if anything did. */
    [[nodiscard]] std::optional<QString> addFrom(const QString &directory);

    [[nodiscard]] const Entries &entries() const { return m_entries; }

private:
    Entries m_entries;
};

/** A tar of @p tree below @p topDirectory, with the commit's time on every entry, as git writes it. */
[[nodiscard]] QByteArray
tarball(const Tree &tree, const QByteArray &topDirectory, const QByteArray &commitId, const QDateTime &time);

/** Compressed without a name or a time in the header. */
[[nodiscard]] QByteArray gzip(const QByteArray &data);

} // namespace Varnel::Demo
