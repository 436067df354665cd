// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The judgement on the entries of an archive, as a whole: their order proves nothing.

#include "service/archivevetting.h"

#include "service/archivereader.h"

#include <QFile>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace Varnel::Internal {

namespace {

using Kind = ArchiveEntry::Kind;

constexpr quint64 MAXIMUM_SIZE = Q_UINT64_C(4) * 1024 * 1024 * 1024;

quint64 maximumSize(qint64 freeBytes)
{
    return freeBytes < 0 ? MAXIMUM_SIZE : std::min(MAXIMUM_SIZE, quint64(freeBytes));
}

/** A relative path without "." and doubled separators; nothing if it is absolute or climbs. */
std::optional<QByteArray> plainPath(const QByteArray &path)
{
    if (path.startsWith('/'))
        return {};
    QByteArrayList components = path.split('/');
    components.removeIf([](const QByteArray &component) { return component.isEmpty() || component == "."; });
    if (components.contains(".."))
        return {};
    return components.join('/');
}

QByteArray topOf(const QByteArray &path)
{
    return path.first(path.contains('/') ? path.indexOf('/') : path.size());
}

QByteArray parentOf(const QByteArray &path)
{
    return path.first(std::max<qsizetype>(path.lastIndexOf('/'), 0));
}

bool isBelow(const QByteArray &path, const QByteArray &directory)
{
    return path.size() > directory.size() && path[directory.size()] == '/' && path.startsWith(directory);
}

/** Byte order with the separator first: a directory's entries follow it immediately. */
bool precedes(const QByteArray &left, const QByteArray &right)
{
    return std::lexicographical_compare(
        left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
            return a != b && (a == '/' || (b != '/' && uchar(a) < uchar(b)));
        });
}

/** Judges the entries of one archive. */
class EntryJudge
{
public:
    explicit EntryJudge(const QList<ArchiveEntry> &entries)
        : m_entries(entries)
    {
    }

    ArchiveVerdict judge()
    {
        if (makePlain() && followHardLinks() && passThroughNoLink() && stayInside())
            m_verdict.isAccepted = true;
        return std::move(m_verdict);
    }

private:
    bool makePlain()
    {
        for (ArchiveEntry &entry : m_entries) {
            if (entry.kind == Kind::Special)
                return refuse("neither file, directory nor link", entry.path);
            const std::optional<QByteArray> path = plainPath(entry.path);
            if (!path)
                return refuse("absolute or climbing path", entry.path);
            if (path->isEmpty() && entry.kind != Kind::Directory)
                return refuse("entry without a name", entry.path);
            entry.path = *path;
        }
        // The directory that everything is unpacked into, under its own name.
        m_entries.removeIf([](const ArchiveEntry &entry) { return entry.path.isEmpty(); });
        findTopDirectory();
        return makeHardLinksPlain();
    }

    bool makeHardLinksPlain()
    {
        for (ArchiveEntry &entry : m_entries) {
            if (entry.kind != Kind::HardLink)
                continue;
            const std::optional<QByteArray> target = plainPath(entry.target);
            if (!target)
                return refuse("hard link to an absolute or climbing path", entry.path);
            entry.target = *target;
        }
        return true;
    }

    void findTopDirectory()
    {
        QSet<QByteArray> tops;
        bool isDirectory = true;
        for (const ArchiveEntry &entry : std::as_const(m_entries)) {
            const QByteArray top = topOf(entry.path);
            tops.insert(top);
            isDirectory = isDirectory && (entry.path != top || entry.kind == Kind::Directory);
        }
        if (tops.size() == 1 && isDirectory)
            m_verdict.topDirectory = *tops.cbegin();
        m_tops = std::move(tops);
    }

    // A hard link to a symbolic link is a second name of that link, and one to that name is a third.
    bool followHardLinks()
    {
        QMultiHash<QByteArray, ArchiveEntry *> byTarget;
        QList<const ArchiveEntry *> links;
        for (ArchiveEntry &entry : m_entries) {
            if (entry.kind == Kind::HardLink)
                byTarget.insert(entry.target, &entry);
            else if (entry.kind == Kind::SymbolicLink)
                links.append(&entry);
        }
        m_hardLinkTargets = byTarget.uniqueKeys();
        if (!areHardLinksInside())
            return false;
        for (qsizetype i = 0; i < links.size(); ++i) {
            for (ArchiveEntry *alias : byTarget.values(links[i]->path)) {
                if (alias->kind == Kind::SymbolicLink)
                    continue;
                alias->kind = Kind::SymbolicLink;
                alias->target = links[i]->target;
                links.append(alias);
            }
        }
        return true;
    }

    bool areHardLinksInside()
    {
        QSet<QByteArray> paths;
        if (!hasTopDirectory()) {
            for (const ArchiveEntry &entry : std::as_const(m_entries))
                paths.insert(entry.path);
        }
        for (const QByteArray &target : std::as_const(m_hardLinkTargets)) {
            const bool isInside
                = hasTopDirectory() ? isBelow(target, m_verdict.topDirectory) : paths.contains(target);
            if (!isInside)
                return refuse("hard link out of the archive", target);
        }
        return true;
    }

    struct Place
    {
        QByteArray path;
        bool isLink = false;
        bool isReference = false; // what a hard link names, which may be a symbolic link
    };

    /** No path, of an entry or of a hard link's target, leads through a symbolic link, and no link is replaced. */
    bool passThroughNoLink()
    {
        const QList<Place> places = sortedPlaces();
        const Place *link = nullptr;
        for (const Place &place : places) {
            if (link && (isBelow(place.path, link->path) || (place.path == link->path && !place.isReference)))
                return refuse("entry through or over a symbolic link", place.path);
            if (place.isLink)
                link = &place;
        }
        return true;
    }

    // Of equal paths a link comes first, so that the scan knows it when it sees the others.
    [[nodiscard]] QList<Place> sortedPlaces() const
    {
        QList<Place> places;
        places.reserve(m_entries.size() + m_hardLinkTargets.size());
        for (const ArchiveEntry &entry : m_entries)
            places.append({entry.path, entry.kind == Kind::SymbolicLink, false});
        for (const QByteArray &target : m_hardLinkTargets)
            places.append({target, false, true});
        std::sort(places.begin(), places.end(), [](const Place &left, const Place &right) {
            return left.path == right.path ? left.isLink > right.isLink : precedes(left.path, right.path);
        });
        return places;
    }

    // Below one top directory, which is new on the disk, links may lead anywhere. Otherwise they would lie among
    // what is installed, and serve a later archive to get out.
    bool stayInside()
    {
        if (hasTopDirectory())
            return true;
        for (const ArchiveEntry &entry : std::as_const(m_entries)) {
            m_verdict.entries.append(entry.path);
            if (entry.kind != Kind::SymbolicLink)
                continue;
            const std::optional<QByteArray> destination = destinationOf(entry);
            if (!destination || !m_tops.contains(topOf(*destination)))
                return refuse("symbolic link out of the archive", entry.path);
            m_verdict.entries.append(*destination);
        }
        return true;
    }

    // By the letter only. A target that climbs after it has descended is taken for one that leads out: what it
    // descended through may be a link itself.
    static std::optional<QByteArray> destinationOf(const ArchiveEntry &link)
    {
        QByteArray directory = parentOf(link.path);
        QByteArray target = link.target;
        while (target == ".." || target.startsWith("../")) {
            if (directory.isEmpty())
                return {};
            directory = parentOf(directory);
            target.remove(0, 3);
        }
        std::optional<QByteArray> rest = plainPath(target);
        if (!rest || directory.isEmpty())
            return rest;
        return rest->isEmpty() ? directory : QByteArray(directory + '/' + *rest);
    }

    [[nodiscard]] bool hasTopDirectory() const { return !m_verdict.topDirectory.isEmpty(); }

    bool refuse(const char *reason, const QByteArray &path)
    {
        m_verdict = {};
        m_verdict.reason = QString::fromLatin1(reason) + QStringLiteral(": ") + QString::fromUtf8(path);
        return false;
    }

    QList<ArchiveEntry> m_entries;
    QSet<QByteArray> m_tops;
    QList<QByteArray> m_hardLinkTargets;
    ArchiveVerdict m_verdict;
};

bool isLinkOnDisk(const std::filesystem::path &path)
{
    std::error_code error;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(path, error));
}

} // namespace

ArchiveVerdict vetArchive(const QByteArray &archive, qint64 freeBytes, std::stop_token stop)
{
    const ArchiveListing listing = readArchive(archive, maximumSize(freeBytes), stop);
    if (!listing.error.isEmpty()) {
        ArchiveVerdict verdict;
        verdict.reason = listing.error;
        return verdict;
    }
    return EntryJudge(listing.entries).judge();
}

bool leadsThroughLink(const QString &directory, const QList<QByteArray> &entries)
{
    const std::filesystem::path base(QFile::encodeName(directory).toStdString());
    QSet<QByteArray> seen;
    for (const QByteArray &entry : entries) {
        for (QByteArray path = entry; !path.isEmpty() && !seen.contains(path); path = parentOf(path)) {
            seen.insert(path);
            if (isLinkOnDisk(base / path.toStdString()))
                return true;
        }
    }
    return false;
}

} // namespace Varnel::Internal
