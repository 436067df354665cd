// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archiveentry.h"
#include "service/pathtree.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

namespace Varnel::Internal {

/** Whether an archive may be unpacked, and where it goes. */
struct ArchiveVerdict
{
    bool isAccepted = false;
    /** Name of the one directory that everything lies below; empty if there is not exactly one. */
    QString topDirectory = {};
    QString reason = {}; ///< why it was refused, for the log only
    /**
     * Of an accepted archive: all paths that unpacking creates. If there is not exactly one top directory,
     * also those that links lead to; check them against the disk with leadsThroughLink().
     */
    std::shared_ptr<const PathTree> paths = {};
};

/**
 * Judges the entries of one archive, one after the other as it is read. The unarchiver does as it is told: it
 * writes above its directory, to absolute paths and through links that it has just unpacked, so entries that
 * would make it do so are refused here. Knows nothing of formats. One thread at a time.
 */
class ArchiveJudge final
{
public:
    enum class Ruling { Accept, LeaveOut, Refuse };

    /** @p maximumSize is what the contents may have in all, in bytes. */
    explicit ArchiveJudge(quint64 maximumSize);

    /** Rules on the next entry and makes its path, and a hard link's target, relative and plain. */
    [[nodiscard]] Ruling judge(ArchiveEntry &entry);

    /** The verdict on all entries. An archive with an entry that was refused is refused. */
    [[nodiscard]] ArchiveVerdict verdict();

private:
    [[nodiscard]] Ruling judgePlain(const ArchiveEntry &entry);
    [[nodiscard]] bool hasUsableName(const ArchiveEntry &entry);
    [[nodiscard]] bool makeHardLinkPlain(ArchiveEntry &entry);
    [[nodiscard]] bool countSize(const ArchiveEntry &entry);
    [[nodiscard]] PathTree::Node *nodeOf(const QByteArray &path, bool isEntry);
    [[nodiscard]] bool place(const ArchiveEntry &entry, PathTree::Node &node);
    [[nodiscard]] bool linksStayInside();
    Ruling refuse(const char *reason, const QByteArray &path);

    struct Link
    {
        QByteArray path;
        QByteArray target;
    };

    const quint64 m_maximumSize;
    quint64 m_size = 0;      // of the contents so far
    qsizetype m_entries = 0; // with the directories that are only implied
    quint64 m_namesSize = 0;
    std::shared_ptr<PathTree> m_paths = std::make_shared<PathTree>();
    QList<Link> m_links; // symbolic links, and hard links to them
    QString m_reason;
};

} // namespace Varnel::Internal
