// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archiveentry.h"

#include <QByteArrayView>
#include <QString>

#include <memory>

namespace Varnel::Internal {

/**
 * Writes a tar within gzip that every unarchiver reads alike: GNU's dialect, whose long names are raw bytes
 * in any locale, without owners, extended attributes or other records. Small contents are stored, large ones
 * compressed quickly. One thread at a time.
 */
class ArchiveWriter final
{
public:
    /**
     * Makes the new file @p path, which must not exist and may grow to @p maximumSize bytes; negative: no
     * limit.
     */
    ArchiveWriter(const QString &path, qint64 maximumSize);
    /** Removes the file unless finish() has succeeded. */
    ~ArchiveWriter();
    Q_DISABLE_COPY_MOVE(ArchiveWriter)

    /** Begins an entry. The owner may always read and write it, and enter a directory. */
    [[nodiscard]] bool addEntry(const ArchiveEntry &entry);
    /** Appends to the content of the entry added last, up to its size; zeros fill what is missing. */
    [[nodiscard]] bool addContent(QByteArrayView bytes);
    /** True if the file is written to its end. Nothing may be added then. */
    [[nodiscard]] bool finish();

    /** What addEntry() makes of @p entry: reading the archive gives this back. */
    [[nodiscard]] static ArchiveEntry written(const ArchiveEntry &entry);

private:
    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace Varnel::Internal
