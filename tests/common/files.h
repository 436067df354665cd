// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Files for tests; what cannot be made ends the test program.

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace Varnel::Test {

/** Writes a file and makes the directories above it. */
void writeFile(const QString &path, const QByteArray &content);
void makeDirectory(const QString &path);
/** A symbolic link at @p path to @p target, which is taken as it is. */
void makeLink(const QString &path, const QString &target);
/** Sets the modification time of a file or directory. */
void setTime(const QString &path, const QDateTime &time);

[[nodiscard]] QByteArray readFile(const QString &path);
/** Names of all entries of a directory, hidden ones and dangling links too, sorted. */
[[nodiscard]] QStringList entriesOf(const QString &directory);
/** A name that is not UTF-8 cannot be told by QFile: whether a file of these bytes is there. */
[[nodiscard]] bool existsRaw(const QByteArray &path);

} // namespace Varnel::Test
