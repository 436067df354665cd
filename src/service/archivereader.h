// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <stop_token>

namespace Varnel::Internal {

/** One entry of an archive, as the archive names it. */
struct ArchiveEntry
{
    enum class Kind { File, Directory, SymbolicLink, HardLink, Special };

    QByteArray path; ///< raw bytes, never empty
    Kind kind = Kind::File;
    QByteArray target; ///< of a link of either kind, raw bytes
};

/** What an archive holds, or why it was not read to its end. */
struct ArchiveListing
{
    QList<ArchiveEntry> entries;
    QString error; ///< empty if every byte could be read; untranslated
};

/**
 * Reads a whole archive of any format from memory, without starting a program and without touching the disk.
 * Gives up as soon as there are too many entries, their contents exceed @p maximumSize bytes, or @p stop is
 * requested. Any thread; may take seconds.
 */
[[nodiscard]] ArchiveListing
readArchive(const QByteArray &archive, quint64 maximumSize, const std::stop_token &stop);

} // namespace Varnel::Internal
