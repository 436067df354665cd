// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QSet>
#include <QString>
#include <QStringList>

/** Where the examples of a repository lie on disk, and which unpacked directory belongs to which. */
namespace Varnel::Internal {

/** The directory of a repository with a trailing "/": archives are unpacked into it, side by side. */
[[nodiscard]] QString repositoryDirectory(const QString &repositoryName);

/** The directory named @p name in that of the repository: an example's, if it is the example's path. */
[[nodiscard]] QString exampleDirectory(const QString &repositoryName, const QString &name);

/**
 * Names of the directories that belong to the example with this path: they begin with it, in any letter case, and
 * with no longer path of @p examples. Oldest first, so that the copy unpacked last is the last.
 */
[[nodiscard]] QStringList
findDirNames(const QString &repositoryName, const QString &path, const Repository::Examples &examples);

/**
 * Gives the directory that was just unpacked a name that only a copy of this example can have, and makes it the
 * newest: the unpacker restores the commit's time, by which an installed copy may look newer, and
 * "maps-main-<commit>" of "maps" reads like a copy of "maps-main". A directory that does not begin with the path is
 * left as it is. False if the disk does not let it: then the directory is gone, as its files would get lost to an older
 * copy, which would take over its manifest.
 */
bool markAsNewestCopy(
    const QString &repositoryName,
    const QString &path,
    const QString &directoryName,
    const Repository::Examples &examples);

/** A new name that markAsNewestCopy() could have given to a copy of the example with this path. */
[[nodiscard]] QString newCopyName(const QString &path);

/**
 * Removes what registrations that were cut short have left of the examples with these paths under such names. They
 * are in use only while a registration runs.
 */
void removeLeftOverCopies(const QString &repositoryName, const QSet<QString> &paths);

/** True for a name that begins like one: no other example has a directory of such a name. */
[[nodiscard]] bool isMarkedCopy(const QString &directoryName, const QString &path);

} // namespace Varnel::Internal
