// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <stop_token>

namespace Varnel::Internal {

/** Whether an archive may be handed to the unarchiver. */
struct ArchiveVerdict
{
    bool isAccepted = false;
    /** Raw name of the one directory that everything lies below; empty if there is not exactly one. */
    QByteArray topDirectory;
    QString reason; ///< why it was refused, for the log only
    /**
     * Without a one top directory: every path that unpacking creates or that a link leads to, relative and plain,
     * to be checked against what is on disk with leadsThroughLink().
     */
    QList<QByteArray> entries;
};

/**
 * Judges an archive by its bytes. The unarchiver does as it is told: it writes above its directory, to absolute
 * paths and through links that it has just unpacked, so nothing that could make it do so must reach it.
 * @p freeBytes is the free space of the volume, negative if unknown. A pure function; any thread; may take seconds.
 */
[[nodiscard]] ArchiveVerdict vetArchive(const QByteArray &archive, qint64 freeBytes, std::stop_token stop);

/**
 * True if unpacking one of @p entries below @p directory would go through a symbolic link that is on the disk
 * already, or replace one.
 */
[[nodiscard]] bool leadsThroughLink(const QString &directory, const QList<QByteArray> &entries);

} // namespace Varnel::Internal
