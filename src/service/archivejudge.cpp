// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/archivejudge.h"

#include "plugin/constants.h"

#include <algorithm>
#include <optional>

namespace Varnel::Internal {

namespace {

using Kind = ArchiveEntry::Kind;
using Node = PathTree::Node;

constexpr qsizetype MAXIMUM_ENTRIES = 100'000;
constexpr qsizetype MAXIMUM_LEVELS = 200;
// The registration looks at each of them on the main thread.
constexpr size_t MAXIMUM_TOPS = 1000;
// Behind the path of a directory a longer one may be too long for the system.
constexpr qsizetype MAXIMUM_PATH_SIZE = 1999;
// No file system of today takes a longer name, so the unarchiver would stop half-way.
constexpr qsizetype MAXIMUM_NAME_SIZE = 255;
// All names together: 100,000 of the longest would fill the IDE's memory.
constexpr quint64 MAXIMUM_NAMES_SIZE = 64ULL * 1024 * 1024;

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

bool isLeaf(Kind kind)
{
    return kind == Kind::File || kind == Kind::HardLink;
}

// As the Welcome screen compares: the long s is a letter s to it.
bool isManifestName(const QByteArray &name)
{
    const QString folded = QString::fromUtf8(name).toCaseFolded();
    return folded == QLatin1StringView(Constants::MANIFEST_FILE)
           || folded == QLatin1StringView(Constants::OTHER_MANIFEST_FILE);
}

// The registration writes manifest and picture into an example's directory, whatever the archive has there.
// The Welcome screen would believe a second manifest, of whose texts and pictures nobody has thought.
bool isReserved(const QByteArrayList &components, Kind kind)
{
    if (components.size() < 2)
        return false;
    const QByteArray &name = components.at(1);
    const bool isPictureFile = components.size() == 2 && kind == Kind::File;
    return isManifestName(name) || (name == Constants::PICTURE_FILE && !isPictureFile);
}

// Judges the target by its text. One that climbs after it has descended counts as leading out: what it
// descended through may be a link itself.
std::optional<QByteArray> destinationOf(const QByteArray &link, QByteArray target)
{
    QByteArray directory = parentOf(link);
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

} // namespace

ArchiveJudge::ArchiveJudge(quint64 maximumSize)
    : m_maximumSize(maximumSize)
{
}

ArchiveJudge::Ruling ArchiveJudge::judge(ArchiveEntry &entry)
{
    if (entry.kind == Kind::Special)
        return refuse("neither file, directory nor link", entry.path);
    if (!countSize(entry))
        return Ruling::Refuse;
    const std::optional<QByteArray> path = plainPath(entry.path);
    if (!path)
        return refuse("absolute or climbing path", entry.path);
    // The directory that everything is unpacked into, under its own name.
    if (path->isEmpty() && entry.kind == Kind::Directory)
        return Ruling::LeaveOut;
    entry.path = *path;
    if (!hasUsableName(entry) || !makeHardLinkPlain(entry))
        return Ruling::Refuse;
    return judgePlain(entry);
}

ArchiveJudge::Ruling ArchiveJudge::judgePlain(const ArchiveEntry &entry)
{
    Node *node = nodeOf(entry.path, true);
    if (!node || !place(entry, *node))
        return Ruling::Refuse;
    node->isLeftOut = isReserved(entry.path.split('/'), entry.kind);
    return node->isLeftOut ? Ruling::LeaveOut : Ruling::Accept;
}

bool ArchiveJudge::hasUsableName(const ArchiveEntry &entry)
{
    m_namesSize += quint64(entry.path.size() + entry.target.size());
    const QByteArrayList components = entry.path.split('/');
    const bool isNameTooLong
        = std::any_of(components.cbegin(), components.cend(), [](const QByteArray &name) {
              return name.size() > MAXIMUM_NAME_SIZE;
          });
    if (entry.path.isEmpty() || (entry.kind == Kind::SymbolicLink && entry.target.isEmpty()))
        refuse("entry without a name", entry.path);
    else if (
        isNameTooLong || entry.path.size() > MAXIMUM_PATH_SIZE || entry.target.size() > MAXIMUM_PATH_SIZE
        || m_namesSize > MAXIMUM_NAMES_SIZE)
        refuse("names too long", entry.path);
    else if (components.size() > MAXIMUM_LEVELS)
        refuse("too many levels", entry.path);
    else if (!components.constFirst().isValidUtf8())
        refuse("top directory that is not UTF-8", components.constFirst());
    return m_reason.isEmpty();
}

bool ArchiveJudge::makeHardLinkPlain(ArchiveEntry &entry)
{
    if (entry.kind != Kind::HardLink)
        return true;
    const std::optional<QByteArray> target = plainPath(entry.target);
    if (!target) {
        refuse("hard link to an absolute or climbing path", entry.path);
        return false;
    }
    entry.target = *target;
    return true;
}

bool ArchiveJudge::countSize(const ArchiveEntry &entry)
{
    if (entry.size < 0 || quint64(entry.size) > m_maximumSize - m_size) {
        refuse("too large", entry.path);
        return false;
    }
    m_size += quint64(entry.size);
    return true;
}

// Null if there are too many entries or the path leads through a link; the judge then has its reason.
Node *ArchiveJudge::nodeOf(const QByteArray &path, bool isEntry)
{
    Node *node = &m_paths->root();
    const QByteArrayList components = path.split('/');
    for (const QByteArray &name : components) {
        if (node->kind == Kind::SymbolicLink) {
            refuse("entry below a symbolic link", path);
            return nullptr;
        }
        const qsizetype before = m_paths->size();
        node = &m_paths->child(*node, name);
        m_entries += m_paths->size() - before;
    }
    if (isEntry && std::exchange(node->isEntry, true))
        ++m_entries; // named again: the tree has not grown by it
    if (m_entries > MAXIMUM_ENTRIES) {
        refuse("too many entries", path);
        return nullptr;
    }
    if (m_paths->root().children.size() > MAXIMUM_TOPS) {
        refuse("too many top directories", path);
        return nullptr;
    }
    return node;
}

bool ArchiveJudge::place(const ArchiveEntry &entry, Node &node)
{
    const bool isPresent = !node.children.empty() || isLeaf(node.kind);
    Kind kind = entry.kind;
    QByteArray target = entry.target;
    if (kind == Kind::HardLink) {
        const Node *original = m_paths->find(entry.target);
        if (!original || original == &node || original->kind == Kind::Directory || original->isLeftOut) {
            refuse("hard link to what did not come before it", entry.target);
            return false;
        }
        if (original->kind == Kind::SymbolicLink) { // a second name of that link
            kind = Kind::SymbolicLink;
            target = original->target;
        }
    }
    if (node.kind == Kind::SymbolicLink || (kind == Kind::SymbolicLink && isPresent)) {
        refuse("entry over a symbolic link, or the other way round", entry.path);
        return false;
    }
    node.kind = kind;
    if (kind == Kind::SymbolicLink) {
        node.target = target;
        m_links.append({entry.path, target});
    }
    return true;
}

ArchiveVerdict ArchiveJudge::verdict()
{
    if (!m_reason.isEmpty())
        return {.reason = m_reason};
    const auto &tops = m_paths->root().children;
    ArchiveVerdict verdict{.isAccepted = true, .paths = m_paths};
    if (tops.size() == 1 && tops.cbegin()->second->kind == Kind::Directory)
        verdict.topDirectory = QString::fromUtf8(tops.cbegin()->first);
    else if (!linksStayInside())
        return {.reason = m_reason};
    return verdict;
}

// Below one top directory, which is new on the disk, links may lead anywhere. Otherwise they would lie among
// what is installed, and serve a later archive to get out. The Welcome screen would take one beside the
// examples for an example, and believe a manifest that lies wherever it leads.
bool ArchiveJudge::linksStayInside()
{
    for (const Link &link : std::as_const(m_links)) {
        if (!link.path.contains('/')) {
            refuse("symbolic link in place of a top directory", link.path);
            return false;
        }
        const std::optional<QByteArray> destination = destinationOf(link.path, link.target);
        if (!destination || destination->isEmpty() || !m_paths->find(topOf(*destination))) {
            refuse("symbolic link out of the archive", link.path);
            return false;
        }
        if (!m_paths->find(*destination) && !nodeOf(*destination, false))
            return false;
    }
    return true;
}

ArchiveJudge::Ruling ArchiveJudge::refuse(const char *reason, const QByteArray &path)
{
    if (m_reason.isEmpty())
        m_reason = QString::fromLatin1(reason) + QStringLiteral(": ") + QString::fromUtf8(path);
    return Ruling::Refuse;
}

} // namespace Varnel::Internal
