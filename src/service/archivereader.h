// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archiveentry.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <optional>
#include <stop_token>

namespace Varnel::Internal {

/** A piece of a file's content. What lies between two pieces, and behind the last one, is zeros. */
struct ContentPiece
{
    qint64 offset = 0;
    QByteArrayView bytes; ///< valid until the reader is used again
};

/**
 * Reads a tar or a zip, as it is or within at most two layers of gzip and bzip2, from its first byte to its
 * last. Starts no program. What it cannot read whole, or not within bounded memory, is a fault; what the
 * entries mean is not judged. One thread at a time; each call may take seconds.
 */
class ArchiveReader final
{
public:
    /** Keeps @p archive. Every call ends soon, with a fault, once @p stop is requested. */
    ArchiveReader(const QByteArray &archive, const std::stop_token &stop);
    ~ArchiveReader();
    Q_DISABLE_COPY_MOVE(ArchiveReader)

    /**
     * The next entry. Nothing after a fault, and nothing behind the last entry: by then the archive has been
     * read to its very end. The content of the entry before must have been read.
     */
    [[nodiscard]] std::optional<ArchiveEntry> nextEntry();
    /** The next piece of the entry's content; nothing at its end and after a fault. */
    [[nodiscard]] std::optional<ContentPiece> nextPiece();

    /** What is wrong, untranslated; empty as long as nothing is. */
    [[nodiscard]] QString fault() const;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace Varnel::Internal
