// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/**
 * The few file system operations that have to stand whatever a server sent: they never go through a symbolic
 * link below the directory that they are given, and names that are not UTF-8 do not stop them.
 */
namespace Varnel::Internal {

/** True for one path component that is no "." or "..", has no separator, no NUL and no wildcard. */
[[nodiscard]] bool isPlainName(const QString &name);

/**
 * Removes a file, a link or a directory with all that is in it. True if nothing is left, even if nothing was
 * there. Ends early, with a part of it left, when @p stop is requested.
 */
bool removeTree(const QString &path, const std::stop_token &stop = {});

/** The same for a path in the bytes of the file system, which need not be UTF-8. */
bool removeNativeTree(const QByteArray &path, const std::stop_token &stop = {});

/**
 * Gives a file, a link or a directory another place on its volume; an empty directory or a file there is
 * replaced.
 */
bool move(const QString &from, const QString &to);

/** What a directory holds under one name, as the directory itself tells it: nothing is asked of the file. */
struct FileEntry
{
    QString directory; ///< as it was given
    QString name;
    bool isDirectory = false; ///< false for a link to one
    bool isLink = false;      ///< symbolic, wherever it leads

    [[nodiscard]] QString path() const { return directory + u'/' + name; }
};

/** What is directly in @p directory, in no order; names that are not UTF-8 are left out. */
[[nodiscard]] QList<FileEntry> allEntries(const QString &directory);

/** The same without hidden entries. */
[[nodiscard]] QList<FileEntry> visibleEntries(const QString &directory);

/**
 * Visits what is below @p directory at any depth. A directory comes before what is in it; there is no other
 * order. Hidden entries are left out, links to directories not followed. Ends early when @p visit returns
 * false.
 */
void walk(const QString &directory, const std::function<bool(const FileEntry &)> &visit);

} // namespace Varnel::Internal
