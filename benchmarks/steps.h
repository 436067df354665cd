// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in's single steps as they are measured, so that a change of their form is followed in one place.
#pragma once

#include <QByteArray>
#include <QString>

namespace Varnel::Bench {

/**
 * Reads and judges an archive, and writes a fresh one into the temporary directory. False if it is refused.
 */
[[nodiscard]] bool vet(const QByteArray &archive);

/** The file to open of an unpacked project, relative to its directory. */
[[nodiscard]] QString chooseFile(const QString &directory);

/** Makes examples of the body of an answer to the listing; returns how many. */
[[nodiscard]] qsizetype readListing(const QByteArray &body);

/**
 * How many directories of a repository belong to any of these examples, as an update asks for each of them.
 */
[[nodiscard]] qsizetype listCopies(const QString &repositoryName, const QStringList &paths);

} // namespace Varnel::Bench
