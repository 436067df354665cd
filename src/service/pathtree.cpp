// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/pathtree.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <filesystem>

namespace Varnel::Internal {

namespace {

namespace fs = std::filesystem;

bool leadsThroughLink(const fs::path &directory, const PathTree::Node &node)
{
    return std::any_of(node.children.cbegin(), node.children.cend(), [&directory](const auto &child) {
        const fs::path path = directory / child.first.toStdString();
        std::error_code error;
        const fs::file_type type = fs::symlink_status(path, error).type();
        if (type == fs::file_type::symlink)
            return true;
        // What is not there holds no link either.
        return type == fs::file_type::directory && leadsThroughLink(path, *child.second);
    });
}

} // namespace

const PathTree::Node *PathTree::find(const QByteArray &path) const
{
    const Node *node = &m_root;
    for (const QByteArray &name : path.split('/')) {
        const auto child = node->children.find(name);
        if (child == node->children.cend())
            return nullptr;
        node = child->second.get();
    }
    return node;
}

PathTree::Node &PathTree::child(Node &parent, const QByteArray &name)
{
    std::unique_ptr<Node> &child = parent.children[name];
    if (!child) {
        child = std::make_unique<Node>();
        ++m_size;
    }
    return *child;
}

bool leadsThroughLink(const QString &directory, const PathTree &tree)
{
    return leadsThroughLink(fs::path(QFile::encodeName(directory).toStdString()), tree.root());
}

} // namespace Varnel::Internal
