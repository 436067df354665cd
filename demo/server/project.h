// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// One project of the demo group: what the server knows of it.
#pragma once

#include "server/tarball.h"

#include <QDateTime>
#include <QJsonObject>
#include <QStringList>
#include <QTimeZone>

namespace Varnel::Demo {

struct Project
{
    qint64 id = 0;
    QString path;
    QString name;
    QString description; // null: was never set
    QStringList topics;
    QString branch = QStringLiteral("main");
    QDateTime createdAt = QDateTime::fromSecsSinceEpoch(1'600'000'000, QTimeZone::UTC);
    QDateTime lastActivityAt = QDateTime::fromSecsSinceEpoch(1'700'000'000, QTimeZone::UTC);
    QDateTime commitTime = QDateTime::fromSecsSinceEpoch(1'700'000'000, QTimeZone::UTC);
    int commits = 1;      // each further one changes the commit id, also of an unchanged tree
    bool isEmpty = false; // nothing has been pushed

    QString avatarFile; // its name on the server; empty: no avatar
    QByteArray avatar;  // encoded; empty: the server has lost it, which a real one answers with a redirect

    Tree tree;
    QByteArray archive; // sent in place of the tree's archive if not empty

    QJsonObject overrides; // keys of the project object that are sent with another value
    QStringList omitted;   // keys that are not sent at all

    /** 40 hexadecimal digits that depend on content, time and number of the commit. */
    [[nodiscard]] QByteArray commitId() const;
    /** The name of the archive and of the one directory in it. */
    [[nodiscard]] QByteArray topDirectory() const;
    /** As GitLab packs the default branch. */
    [[nodiscard]] QByteArray archiveBytes() const;
};

} // namespace Varnel::Demo
