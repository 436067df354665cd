// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archiveentry.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <memory>

namespace Varnel::Internal {

/**
 * The paths that unpacking an archive creates, as directories within directories, so that many deep paths
 * need little memory. Paths are relative, in raw bytes, without "." and "..".
 */
class PathTree final
{
public:
    struct Node
    {
        ArchiveEntry::Kind kind = ArchiveEntry::Kind::Directory;
        bool isEntry = false;   ///< named by an entry, not only implied by a path below it
        bool isLeftOut = false; ///< not to be unpacked
        QByteArray target;      ///< of a symbolic link
        std::map<QByteArray, std::unique_ptr<Node>> children;
    };

    /** The root: its children are what is at the top. */
    [[nodiscard]] const Node &root() const { return m_root; }
    /** Null if the tree does not hold @p path. */
    [[nodiscard]] const Node *find(const QByteArray &path) const;
    /** The child of @p parent with this name, made if there is none. */
    Node &child(Node &parent, const QByteArray &name);
    [[nodiscard]] Node &root() { return m_root; }
    /** How many nodes there are, without the root. */
    [[nodiscard]] qsizetype size() const { return m_size; }

private:
    Node m_root;
    qsizetype m_size = 0;
};

/** True if a path of @p tree is, or leads through, a symbolic link that is below @p directory on the disk. */
[[nodiscard]] bool leadsThroughLink(const QString &directory, const PathTree &tree);

} // namespace Varnel::Internal
