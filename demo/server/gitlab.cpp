// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/gitlab.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeDatabase>
#include <QTimeZone>
#include <QUrlQuery>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

constexpr qint64 FIRST_GROUP_ID = 4711;
constexpr int EMBEDDED_PROJECTS = 100; // the most that one group answer lists
constexpr int DEFAULT_PAGE_SIZE = 20;
constexpr int GREATEST_PAGE_SIZE = 100;
constexpr int SHORTEST_FUZZY_TERM = 3;   // characters; anything shorter is compared exactly
constexpr int SHORTEST_COMPRESSED = 250; // bytes
constexpr char SIGN_IN_PATH[] = "/users/sign_in";

Reply message(int status, const QString &text)
{
    return Reply::json(QJsonDocument(QJsonObject{{u"message"_s, text}}), status);
}

Reply noSuchRoute()
{
    return Reply::json(QJsonDocument(QJsonObject{{u"error"_s, u"404 Not Found"_s}}), 404);
}

Reply htmlPage(int status, const QByteArray &title)
{
    const QByteArray body = "<!DOCTYPE html><html><head><title>" + title + "</title></head><body><h1>" + title
                            + "</h1></body></html>";
    return Reply::make(status, body, {{"Content-Type", "text/html; charset=utf-8"}});
}

QString timeText(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QJsonValue textOrNull(const QString &text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

// The address as it was asked for, each part decoded by itself: a part may contain an encoded slash.
QStringList pathSegments(const Request &request)
{
    QStringList segments;
    for (const QByteArray &part : request.rawPath().split('/'))
        segments.append(QString::fromUtf8(QByteArray::fromPercentEncoding(part)));
    segments.removeFirst(); // the nothing before the leading slash
    return segments;
}

bool matches(const Group &group, const QString &fullName, const QString &search)
{
    const bool isQuoted = search.size() >= 2 && search.startsWith(u'"') && search.endsWith(u'"');
    const QString term = isQuoted ? search.sliced(1, search.size() - 2) : search;
    const auto hits = [&](const QString &text) {
        return term.size() < SHORTEST_FUZZY_TERM ? text.compare(search, Qt::CaseInsensitive) == 0
                                                 : text.contains(term, Qt::CaseInsensitive);
    };
    return search.isEmpty() || hits(group.path) || hits(fullName);
}

void addApiHeaders(Reply &reply)
{
    const QByteArray digest = QCryptographicHash::hash(reply.body, QCryptographicHash::Md5).toHex();
    const QByteArray id = digest.first(26).toUpper();
    reply.headers.append("Cache-Control", "max-age=0, private, must-revalidate");
    reply.headers.append("Etag", QByteArray("W/\"" + digest + '"'));
    reply.headers.append("Vary", "Origin, Accept-Encoding");
    reply.headers.append("X-Content-Type-Options", "nosniff");
    reply.headers.append("X-Frame-Options", "SAMEORIGIN");
    reply.headers.append(
        "X-Gitlab-Meta", QByteArray("{\"correlation_id\":\"" + id + "\",\"version\":\"1\"}"));
    reply.headers.append("X-Request-Id", id);
    reply.headers.append("X-Runtime", "0.083412");
    reply.headers.append("Referrer-Policy", "strict-origin-when-cross-origin");
}

void compress(Reply &reply, const Request &request)
{
    if (reply.body.size() < SHORTEST_COMPRESSED || !request.header("Accept-Encoding").contains("gzip"))
        return;
    reply.body = gzip(reply.body);
    reply.headers.append("Content-Encoding", "gzip");
    reply.framing = Framing::Chunked;
}

} // namespace

Gitlab::Gitlab(const QString &groupPath)
{
    QString path;
    for (const QString &part : groupPath.split(u'/', Qt::SkipEmptyParts)) {
        path += path.isEmpty() ? part : u'/' + part;
        QString name = part;
        name[0] = name.at(0).toUpper();
        m_groups.append({FIRST_GROUP_ID + m_groups.size(), path, name, u"Sample projects"_s});
    }
    if (m_groups.isEmpty())
        m_groups.append({FIRST_GROUP_ID, u"samples"_s, u"Samples"_s, u"Sample projects"_s});
}

void Gitlab::addGroup(const Group &group)
{
    m_groups.prepend(group);
}

void Gitlab::addProject(const Project &project)
{
    removeProject(project.path);
    m_projects.append(project);
}

Project *Gitlab::project(const QString &path)
{
    const auto found = std::ranges::find(m_projects, path, &Project::path);
    return found == m_projects.end() ? nullptr : &*found;
}

bool Gitlab::removeProject(const QString &path)
{
    return m_projects.removeIf([&](const Project &project) { return project.path == path; }) > 0;
}

bool Gitlab::commit(const QString &path, const QDateTime &commitTime)
{
    Project *changed = project(path);
    if (!changed)
        return false;
    ++changed->commits;
    changed->isEmpty = false;
    changed->commitTime = commitTime;
    changed->lastActivityAt = QDateTime::currentDateTimeUtc();
    return true;
}

Reply Gitlab::reply(const Request &request)
{
    const QStringList segments = pathSegments(request);
    if (segments.value(0) == "api"_L1 && segments.value(1) == "v4"_L1) {
        Reply reply = apiReply(request, segments.sliced(2));
        if (reply.headers.value("Content-Type") == "application/json") {
            addApiHeaders(reply);
            compress(reply, request);
        }
        return reply;
    }
    if (request.path() == QLatin1StringView(SIGN_IN_PATH))
        return htmlPage(200, "Sign in");
    return avatarReply(request);
}

Reply Gitlab::apiReply(const Request &request, const QStringList &segments)
{
    if (request.method != "GET" && request.method != "HEAD")
        return message(401, u"401 Unauthorized"_s);
    const QString kind = segments.value(0);
    const QString rest = segments.sliced(std::min<qsizetype>(2, segments.size())).join(u'/');

    if (kind == "groups"_L1 && segments.size() == 1)
        return groupSearch(request);
    if (kind == "groups"_L1) {
        const Group *group = findGroup(segments.at(1));
        if (!group)
            return message(404, u"404 Group Not Found"_s);
        if (rest.isEmpty())
            return groupDetails(request, *group);
        return rest == "projects"_L1 ? groupProjects(request, *group) : noSuchRoute();
    }
    if (kind == "projects"_L1 && segments.size() > 1) {
        const Project *project = findProject(segments.at(1));
        if (!project)
            return message(404, u"404 Project Not Found"_s);
        if (rest.isEmpty())
            return Reply::json(QJsonDocument(projectObject(*project)));
        if (rest == "repository/archive"_L1 || rest.startsWith("repository/archive."_L1))
            return archiveReply(request, *project, rest.section(u'.', 1));
        return noSuchRoute();
    }
    return kind == "version"_L1 ? message(401, u"401 Unauthorized"_s) : noSuchRoute();
}

Reply Gitlab::groupSearch(const Request &request) const
{
    const QString search = request.queryItem(u"search"_s);
    QList<QJsonObject> hits;
    for (const Group &group : m_groups) {
        const QJsonObject object = groupObject(group);
        if (matches(group, object.value("full_name"_L1).toString(), search))
            hits.append(object);
    }
    std::ranges::stable_sort(hits, [](const QJsonObject &one, const QJsonObject &other) {
        const int order = QString::compare(
            one.value("name"_L1).toString(), other.value("name"_L1).toString(), Qt::CaseInsensitive);
        return order != 0 ? order < 0 : one.value("id"_L1).toInteger() < other.value("id"_L1).toInteger();
    });
    QJsonArray all;
    for (const QJsonObject &hit : hits)
        all.append(hit);
    return page(request, all);
}

Reply Gitlab::groupDetails(const Request &request, const Group &group) const
{
    QJsonObject object = groupObject(group);
    object.insert("shared_with_groups"_L1, QJsonArray());
    object.insert("prevent_sharing_groups_outside_hierarchy"_L1, false);
    if (request.queryItem(u"with_projects"_s) != "false"_L1) {
        QJsonArray projects;
        for (const Project *project :
             newestFirst(group).first(std::min<qsizetype>(EMBEDDED_PROJECTS, newestFirst(group).size())))
            projects.append(projectObject(*project));
        object.insert("projects"_L1, projects);
        object.insert("shared_projects"_L1, QJsonArray());
    }
    return Reply::json(QJsonDocument(object));
}

Reply Gitlab::groupProjects(const Request &request, const Group &group) const
{
    QJsonArray all;
    for (const Project *project : newestFirst(group))
        all.append(projectObject(*project));
    return page(request, all);
}

Reply Gitlab::archiveReply(const Request &request, const Project &project, const QString &format)
{
    const QByteArray accept = request.header("Accept");
    if (accept.startsWith("image/") || accept.startsWith("video/") || accept.startsWith("text/css"))
        return message(406, u"406 Not Acceptable"_s);
    if (!format.isEmpty() && format != "tar.gz"_L1)
        return noSuchRoute(); // a real one packs zip and others, too
    if (project.isEmpty)
        return message(404, u"404 File Not Found"_s);

    Reply reply = Reply::make(
        200,
        project.archiveBytes(),
        {{"Content-Type", "application/octet-stream"},
         {"Content-Transfer-Encoding", "binary"},
         {"Content-Disposition", "attachment; filename=\"" + project.topDirectory() + ".tar.gz\""}});
    // A fresh archive is sent while it is being made, so that its length is not known yet.
    if (m_cachedArchives.contains(project.topDirectory())) {
        reply.headers.append("Accept-Ranges", "bytes");
    } else {
        reply.framing = Framing::Chunked;
        m_cachedArchives.insert(project.topDirectory());
    }
    return reply;
}

Reply Gitlab::avatarReply(const Request &request) const
{
    const QString path = request.path();
    for (const Project &project : m_projects) {
        if (project.avatar.isEmpty()
            || path != u"/uploads/-/system/project/avatar/%1/%2"_s.arg(project.id).arg(project.avatarFile))
            continue;
        const QByteArray digest = QCryptographicHash::hash(project.avatar, QCryptographicHash::Md5).toHex();
        const QMimeType type = QMimeDatabase().mimeTypeForData(project.avatar);
        return Reply::make(
            200,
            project.avatar,
            {{"Content-Type", type.name().toUtf8()},
             {"Content-Disposition", "inline; filename=\"" + project.avatarFile.toUtf8() + '"'},
             {"Cache-Control", "max-age=300, private, must-revalidate"},
             {"Etag", '"' + digest + '"'}});
    }
    if (path.startsWith("/uploads/-/"_L1))
        return Reply::redirect(absolute(QLatin1StringView(SIGN_IN_PATH)).toUtf8());
    return htmlPage(404, "The page could not be found");
}

Reply Gitlab::page(const Request &request, const QJsonArray &all) const
{
    const auto positive = [&](const QString &key, int otherwise) {
        const int number = request.queryItem(key).toInt();
        return number > 0 ? number : otherwise;
    };
    const int size = std::min(positive(u"per_page"_s, DEFAULT_PAGE_SIZE), GREATEST_PAGE_SIZE);
    const int number = positive(u"page"_s, 1);
    const int last = std::max(1, int(all.size() + size - 1) / size);

    QJsonArray items;
    for (qsizetype index = qsizetype(number - 1) * size;
         index < std::min(all.size(), qsizetype(number) * size);
         ++index)
        items.append(all.at(index));
    Reply reply = Reply::json(QJsonDocument(items));

    QByteArrayList links;
    const auto addLink = [&](int to, const QByteArray &relation) {
        QUrl url(absolute(request.path()));
        QUrlQuery query(QString::fromUtf8(request.rawQuery()));
        query.removeQueryItem(u"page"_s);
        query.removeQueryItem(u"per_page"_s);
        query.addQueryItem(u"page"_s, QString::number(to));
        query.addQueryItem(u"per_page"_s, QString::number(size));
        url.setQuery(query);
        links.append('<' + url.toEncoded() + ">; rel=\"" + relation + '"');
    };
    const bool hasPrevious = number > 1;
    const bool hasNext = number < last;
    if (hasPrevious)
        addLink(number - 1, "prev");
    if (hasNext)
        addLink(number + 1, "next");
    addLink(1, "first");
    addLink(last, "last");

    reply.headers.append("X-Page", QByteArray::number(number));
    reply.headers.append("X-Per-Page", QByteArray::number(size));
    reply.headers.append("X-Prev-Page", hasPrevious ? QByteArray::number(number - 1) : QByteArray(""));
    reply.headers.append("X-Next-Page", hasNext ? QByteArray::number(number + 1) : QByteArray(""));
    reply.headers.append("X-Total", QByteArray::number(all.size()));
    reply.headers.append("X-Total-Pages", QByteArray::number(last));
    reply.headers.append("Link", links.join(", "));
    return reply;
}

const Group *Gitlab::findGroup(const QString &idOrPath) const
{
    const auto found = std::ranges::find_if(m_groups, [&](const Group &group) {
        return QString::number(group.id) == idOrPath || group.path == idOrPath;
    });
    return found == m_groups.end() ? nullptr : &*found;
}

const Project *Gitlab::findProject(const QString &idOrPath) const
{
    const auto found = std::ranges::find_if(m_projects, [&](const Project &project) {
        return QString::number(project.id) == idOrPath || group().path + u'/' + project.path == idOrPath;
    });
    return found == m_projects.end() ? nullptr : &*found;
}

QList<const Project *> Gitlab::newestFirst(const Group &owner) const
{
    QList<const Project *> projects;
    if (owner.id != group().id)
        return projects;
    for (const Project &project : m_projects)
        projects.append(&project);
    std::ranges::sort(projects, std::greater(), &Project::id);
    return projects;
}

QJsonObject Gitlab::groupObject(const Group &group) const
{
    const QString parentPath = group.path.section(u'/', 0, -2);
    const Group *parent = parentPath.isEmpty() ? nullptr : findGroup(parentPath);
    const QString parentName
        = parent ? groupObject(*parent).value("full_name"_L1).toString() + " / "_L1 : QString();
    return {
        {u"id"_s, group.id},
        {u"web_url"_s, absolute("/groups/"_L1 + group.path)},
        {u"name"_s, group.name},
        {u"path"_s, group.path.section(u'/', -1)},
        {u"description"_s, group.description},
        {u"visibility"_s, u"public"_s},
        {u"share_with_group_lock"_s, false},
        {u"require_two_factor_authentication"_s, false},
        {u"two_factor_grace_period"_s, 48},
        {u"project_creation_level"_s, u"developer"_s},
        {u"subgroup_creation_level"_s, u"maintainer"_s},
        {u"emails_disabled"_s, false},
        {u"emails_enabled"_s, true},
        {u"mentions_disabled"_s, QJsonValue::Null},
        {u"lfs_enabled"_s, true},
        {u"default_branch"_s, QJsonValue::Null},
        {u"default_branch_protection"_s, 2},
        {u"avatar_url"_s, QJsonValue::Null},
        {u"request_access_enabled"_s, true},
        {u"full_name"_s, QString(parentName + group.name)},
        {u"full_path"_s, group.path},
        {u"created_at"_s, u"2021-03-02T08:15:30.120Z"_s},
        {u"parent_id"_s, parent ? QJsonValue(parent->id) : QJsonValue(QJsonValue::Null)},
        {u"organization_id"_s, 1},
        {u"shared_runners_setting"_s, u"enabled"_s},
        {u"max_artifacts_size"_s, QJsonValue::Null},
    };
}

QJsonObject Gitlab::projectObject(const Project &project) const
{
    const QString fullPath = group().path + u'/' + project.path;
    const QString webUrl = absolute(u'/' + fullPath);
    const QString apiUrl = absolute(u"/api/v4/projects/%1"_s.arg(project.id));
    const QJsonArray topics = QJsonArray::fromStringList(project.topics);
    const QJsonObject owner = groupObject(group());

    QJsonObject object{
        {u"id"_s, project.id},
        {u"description"_s, textOrNull(project.description)},
        {u"name"_s, project.name},
        {u"name_with_namespace"_s, QString(owner.value("full_name"_L1).toString() + " / "_L1 + project.name)},
        {u"path"_s, project.path},
        {u"path_with_namespace"_s, fullPath},
        {u"created_at"_s, timeText(project.createdAt)},
        {u"default_branch"_s, project.branch},
        {u"tag_list"_s, topics},
        {u"topics"_s, topics},
        {u"ssh_url_to_repo"_s, u"git@%1:%2.git"_s.arg(m_baseUrl.host(), fullPath)},
        {u"http_url_to_repo"_s, QString(webUrl + ".git"_L1)},
        {u"web_url"_s, webUrl},
        {u"readme_url"_s, QJsonValue::Null},
        {u"forks_count"_s, 0},
        {u"avatar_url"_s, QJsonValue::Null},
        {u"star_count"_s, 0},
        {u"last_activity_at"_s, timeText(project.lastActivityAt)},
        {u"namespace"_s,
         QJsonObject{
             {u"id"_s, group().id},
             {u"name"_s, group().name},
             {u"path"_s, owner.value("path"_L1)},
             {u"kind"_s, u"group"_s},
             {u"full_path"_s, group().path},
             {u"parent_id"_s, owner.value("parent_id"_L1)},
             {u"avatar_url"_s, QJsonValue::Null},
             {u"web_url"_s, owner.value("web_url"_L1)}}},
        {u"_links"_s,
         QJsonObject{{u"self"_s, apiUrl}, {u"repo_branches"_s, QString(apiUrl + "/repository/branches"_L1)}}},
        {u"packages_enabled"_s, true},
        {u"empty_repo"_s, project.isEmpty},
        {u"archived"_s, false},
        {u"visibility"_s, u"public"_s},
        {u"container_expiration_policy"_s, QJsonValue::Null},
        {u"repository_object_format"_s, u"sha1"_s},
        {u"issues_enabled"_s, true},
        {u"merge_requests_enabled"_s, true},
        {u"lfs_enabled"_s, true},
        {u"creator_id"_s, 17},
        {u"import_status"_s, u"none"_s},
        {u"open_issues_count"_s, 0},
        {u"updated_at"_s, timeText(project.lastActivityAt)},
        {u"ci_config_path"_s, QJsonValue::Null},
        {u"shared_with_groups"_s, QJsonArray()},
        {u"merge_method"_s, u"merge"_s},
        {u"suggestion_commit_message"_s, QJsonValue::Null},
        {u"max_artifacts_size"_s, QJsonValue::Null},
    };
    if (!project.avatarFile.isEmpty()) {
        object.insert(
            "avatar_url"_L1,
            absolute(u"/uploads/-/system/project/avatar/%1/%2"_s.arg(project.id).arg(project.avatarFile)));
    }
    for (auto it = project.overrides.begin(); it != project.overrides.end(); ++it)
        object.insert(it.key(), it.value());
    for (const QString &key : project.omitted)
        object.remove(key);
    return object;
}

QString Gitlab::absolute(const QString &path) const
{
    QUrl url = m_baseUrl;
    url.setPath(path);
    return url.toString(QUrl::FullyEncoded);
}

} // namespace Varnel::Demo
