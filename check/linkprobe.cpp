// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "linkprobe.h"

#include "samples.h"

#include "service/pathtree.h"

#include <QByteArray>
#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

using Internal::ArchiveEntry;
using Internal::PathTree;
using Node = PathTree::Node;

constexpr int MOST_HOPS = 40; // through links on one way, as the kernel does
// Of all ways together: an archive can ask for a thousand times as many.
constexpr qint64 MOST_STEPS = 20'000'000;

bool isLink(const Node &node)
{
    return node.kind == ArchiveEntry::Kind::SymbolicLink;
}

/** Follows links within an archive as the kernel would on disk. */
class LinkFollower final
{
public:
    explicit LinkFollower(const std::stop_token &stop)
        : m_stop(stop)
    {
    }

    /** False once there have been too many steps. */
    [[nodiscard]] bool mayGoOn() const { return m_steps < MOST_STEPS && !m_stop.stop_requested(); }

    /** @p parents are the directories that hold the link, the top directory first. */
    [[nodiscard]] bool staysInside(QList<const Node *> parents, const Node &link)
    {
        if (link.target.startsWith('/'))
            return false;
        QByteArrayList steps = stepsOf(link);
        for (int hops = 0; !steps.isEmpty() && mayGoOn();) {
            ++m_steps;
            const QByteArray step = steps.takeLast();
            if (step.isEmpty() || step == ".")
                continue;
            if (step == "..") {
                parents.removeLast();
                if (parents.isEmpty())
                    return false;
                continue;
            }
            const auto child = parents.constLast()->children.find(step);
            if (child == parents.constLast()->children.end())
                return false;
            const Node &node = *child->second;
            if (isLink(node)) {
                if (node.target.startsWith('/') || ++hops > MOST_HOPS)
                    return false;
                steps += stepsOf(node);
            } else {
                parents.append(&node); // a file's has no children, and ends the way
            }
        }
        return true;
    }

private:
    // The next one is the last.
    static QByteArrayList stepsOf(const Node &link)
    {
        QByteArrayList steps = link.target.split('/');
        std::ranges::reverse(steps);
        return steps;
    }

    const std::stop_token m_stop;
    qint64 m_steps = 0;
};

void visit(
    const QList<const Node *> &parents, const QByteArray &path, LinkFollower *follower, Samples *samples)
{
    for (const auto &[name, node] : parents.constLast()->children) {
        const QByteArray nodePath = path + '/' + name;
        if (isLink(*node)) {
            if (follower->mayGoOn() && !follower->staysInside(parents, *node))
                samples->add(QString::fromUtf8(nodePath + " -> " + node->target));
        } else if (!node->children.empty()) {
            visit(parents + QList{static_cast<const Node *>(node.get())}, nodePath, follower, samples);
        }
    }
}

} // namespace

Findings judgeLinks(const QString &path, const PathTree &tree, const std::stop_token &stop)
{
    LinkFollower follower(stop);
    Samples links;
    // One without exactly one top directory has no such link: it would have been refused.
    if (const auto &tops = tree.root().children; tops.size() == 1)
        visit({tops.cbegin()->second.get()}, tops.cbegin()->first, &follower, &links);
    return links.isEmpty() ? Findings() : Findings{makeFinding("link-out"_L1, path, links.text())};
}

} // namespace Varnel::Check
