// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QFileInfoList>
#include <QString>
#include <QStringList>

#include <functional>

/**
 * The few file system operations that have to stand whatever a server sent: they never go through a symbolic
 * link below the directory that they are given, and names that are not UTF-8 do not stop them.
 */
namespace Varnel::Internal {

/** True for one path component that is no "." or "..", has no separator, no NUL and no wildcard. */
[[nodiscard]] bool isPlainName(const QString &name);

/** Removes a file, a link or a directory with all that is in it. True if nothing is left, also if nothing was. */
bool removeTree(const QString &path);

/** The same for a path in the bytes of the file system, which need not be UTF-8. */
bool removeNativeTree(const QByteArray &path);

/** What is directly in @p directory, in no order, names that are not UTF-8 left out. */
[[nodiscard]] QFileInfoList allEntries(const QString &directory);

/** The same without hidden entries. */
[[nodiscard]] QFileInfoList visibleEntries(const QString &directory);

/**
 * Visits what is below @p directory at any depth, a directory before what is in it, in no other order; hidden
 * entries are left out and links to directories not followed. Ends early when @p visit returns false.
 */
void walk(const QString &directory, const std::function<bool(const QFileInfo &)> &visit);

/**
 * Puts @p source in the place of @p target in one step where the file system can; what was there is then at @p source.
 * Where it cannot, @p aside is used meanwhile; nothing may be there.
 */
bool exchange(const QString &source, const QString &target, const QString &aside);

} // namespace Varnel::Internal
