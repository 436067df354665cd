// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QSet>
#include <QString>
#include <QStringList>

/** Where the examples of a repository lie on disk, and which unpacked directory belongs to which. */
namespace Varnel::Internal {

/**
 * For programs that have no IDE around them: from now on this is the directory of every repository. To be
 * called before anything is unpacked.
 */
void setRepositoryDirectory(const QString &directory);

/** The directory of a repository with a trailing "/": archives are unpacked into it, side by side. */
[[nodiscard]] QString repositoryDirectory(const QString &repositoryName);

/** A directory in that of the repository: an example's, if the name is the example's path. */
[[nodiscard]] QString exampleDirectory(const QString &repositoryName, const QString &directoryName);

/**
 * True if @p directory is, or is above, the directory of one of the repositories: their names may hold "/",
 * so that one can lie where another one has an example. Such a directory is no example and no copy of one.
 */
[[nodiscard]] bool holdsRepository(const QString &directory, const QStringList &repositoryNames);

/**
 * True if a directory of this name may be a copy of the example: it begins with its path, in any letter case.
 */
[[nodiscard]] bool isNamedLikeCopy(const QString &directoryName, const QString &path);

/**
 * Names of the directories that belong to the example with this path: they are named like copies of it, but
 * not like copies of one of @p examples with a longer path. Oldest first: the copy unpacked last is the last.
 */
[[nodiscard]] QStringList
findDirNames(const QString &repositoryName, const QString &path, const Repository::Examples &examples);

/**
 * Gives the directory that was just unpacked, which is named like a copy, a name that only a copy of this
 * example can have, and makes it the newest. The unpacker restores the commit's time, by which an installed
 * copy may look newer; and "maps-main-<commit>" of "maps" reads like a copy of "maps-main". Returns the new
 * name. It is empty if the disk does not allow it. Then the directory is gone: an older copy would have won.
 */
[[nodiscard]] QString markAsNewestCopy(
    const QString &repositoryName,
    const QString &path,
    const QString &directoryName,
    const Repository::Examples &examples);

/** A new name that markAsNewestCopy() could have given to a copy of the example with this path. */
[[nodiscard]] QString newCopyName(const QString &path);

/**
 * Full paths of the directories with such names of the examples with these paths. Such a directory is in use
 * only from the unpacking to the end of the registration. One that a kill has left is not.
 */
[[nodiscard]] QStringList findMarkedCopies(const QString &repositoryName, const QSet<QString> &paths);

/** True for a name that newCopyName() could have made of some path. */
[[nodiscard]] bool isCopyName(const QString &directoryName);

/** True for a name that begins with "<path>@": no other example has a directory of such a name. */
[[nodiscard]] bool isMarkedCopy(const QString &directoryName, const QString &path);

/** True for a name that ends like the top directory of a server's archive, in a commit's number. */
[[nodiscard]] bool endsInCommit(const QString &directoryName);

} // namespace Varnel::Internal
