// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Files and projects for tests; what cannot be made ends the test program.

#pragma once

#include "client/repository.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QSize>
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

/** A picture of one colour. */
[[nodiscard]] QByteArray encodedPicture(const QSize &size, const char *format = "png");

/** A valid project object as a server sends it, with the given path and changes. */
[[nodiscard]] QJsonObject projectObject(const QString &path, const QJsonObject &changes = {});
[[nodiscard]] Internal::Repository::ExamplePtr
makeExample(const QString &path, const QJsonObject &changes = {});
[[nodiscard]] Internal::Repository::Examples makeExamples(const QStringList &paths);

} // namespace Varnel::Test
