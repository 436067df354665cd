// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "server/http.h"
#include "server/project.h"

#include <QList>
#include <QSet>
#include <QUrl>

class QJsonArray;

namespace Varnel::Demo {

struct Group
{
    qint64 id = 0;
    QString path; // with all parents
    QString name;
    QString description;
};

/**
 * Answers as a GitLab server does that has one group with public projects, read by an anonymous client:
 * group search, group details, projects, archives and avatars. Knows nothing of connections.
 */
class Gitlab final
{
public:
    /** The examples' group, and as groups without projects the parents that its path names. */
    explicit Gitlab(const QString &groupPath);

    /**
     * The address under which the server is seen from outside; absolute addresses in answers begin with it.
     */
    void setBaseUrl(const QUrl &url) { m_baseUrl = url; }

    [[nodiscard]] const Group &group() const { return m_groups.constLast(); }
    /** Adds a group without projects, so that a search may find more than one. */
    void addGroup(const Group &group);

    /** Adds a project to the examples' group, or replaces the one with the same path. */
    void addProject(const Project &project);
    /** Null if there is none of this path. */
    [[nodiscard]] Project *project(const QString &path);
    [[nodiscard]] const QList<Project> &projects() const { return m_projects; }
    /** False if there is none of this path. */
    bool removeProject(const QString &path);
    /**
     * A push: a new commit id, and activity now; the commit itself may be older. False if there is no such
     * project.
     */
    bool commit(const QString &path, const QDateTime &commitTime = QDateTime::currentDateTimeUtc());

    [[nodiscard]] Reply reply(const Request &request);

private:
    Reply apiReply(const Request &request, const QStringList &segments);
    Reply groupSearch(const Request &request) const;
    Reply groupDetails(const Request &request, const Group &group) const;
    Reply groupProjects(const Request &request, const Group &group) const;
    Reply archiveReply(const Request &request, const Project &project, const QString &format);
    Reply avatarReply(const Request &request) const;

    Reply page(const Request &request, const QJsonArray &all) const;
    const Group *findGroup(const QString &idOrPath) const;
    const Project *findProject(const QString &idOrPath) const;
    QList<const Project *> newestFirst(const Group &group) const;
    QJsonObject groupObject(const Group &group) const;
    QJsonObject projectObject(const Project &project) const;
    QString absolute(const QString &path) const;

    QUrl m_baseUrl;
    QList<Group> m_groups; // the examples' one is the last
    QList<Project> m_projects;
    QSet<QByteArray> m_cachedArchives; // by top directory: the next answer for them has a length
};

} // namespace Varnel::Demo
