// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Answers about the group that are no JSON, or JSON of another shape.

#include "case.h"

#include "client/repository.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace Varnel::Test {

namespace {

constexpr qint64 MEGABYTE = 1024 * 1024;

using Change = std::function<void(QJsonObject &)>;

/** Answers the listing as the server would, changed. */
void changeListing(World &world, const Change &change)
{
    Demo::Gitlab *gitlab = &world.server().gitlab();
    world.server().handle(World::LISTING_ROUTE, [gitlab, change](const Demo::Request &request) {
        Demo::Request plain = request;
        plain.headers = {}; // no compression is asked for, so that the body can be read here
        Demo::Reply reply = gitlab->reply(plain);
        QJsonObject group = QJsonDocument::fromJson(reply.body).object();
        change(group);
        return Demo::Reply::json(QJsonDocument(group));
    });
}

Case listing(const QString &name, End end, const Change &change)
{
    return {.name = "listing: " + name, .end = end, .prepare = [change](World &world) {
                changeListing(world, change);
            }};
}

Case withProjects(const QString &name, End end, const QJsonValue &projects)
{
    return listing(name, end, [projects](QJsonObject &group) { group.insert("projects", projects); });
}

Case search(const QString &name, End end, const QByteArray &body)
{
    return {.name = "search: " + name, .end = end, .prepare = [end, body](World &world) {
                world.server().answer(World::SEARCH_ROUTE, 200, body, {{"Content-Type", "application/json"}});
                if (end == End::NotReady)
                    world.setSetting(Constants::SERVICE_RESTART_TIMEOUT, 1);
            }};
}

Case rawListing(const QString &name, End end, const QByteArray &body)
{
    return {.name = "listing: " + name, .end = end, .prepare = [body](World &world) {
                world.server().answer(
                    World::LISTING_ROUTE, 200, body, {{"Content-Type", "application/json"}});
            }};
}

Case field(const QString &name, End end, const QString &key, const QJsonValue &value)
{
    return {.name = "project: " + name, .end = end, .prepare = [key, value](World &world) {
                world.subject().overrides.insert(key, value);
            }};
}

/** The field missing, and of each type that it may not have. */
QList<Case> wrongValues(const QString &key, End end)
{
    QList<Case> cases{
        {.name = QString("project: %1 missing").arg(key), .end = end, .prepare = [key](World &world) {
             world.subject().omitted.append(key);
         }}};
    const std::pair<QString, QJsonValue> values[]{
        {"null", QJsonValue(QJsonValue::Null)},
        {"true", QJsonValue(true)},
        {"an array", QJsonValue(QJsonArray{"text", 1})},
        {"an object", QJsonValue(QJsonObject{{"key", "value"}})},
        {"a number, or a text for a number", key == "id" ? QJsonValue("7") : QJsonValue(7)}};
    for (const auto &[name, value] : values)
        cases.append(field(QString("%1 is %2").arg(key, name), end, key, value));
    return cases;
}

QList<Case> searchCases()
{
    const QByteArray good = R"({"id":4711,"full_path":"samples"})";
    return {
        search("nothing", End::NotAnswered, ""),
        search("null", End::NotAnswered, "null"),
        search("a number", End::NotAnswered, "4711"),
        search("a text", End::NotAnswered, "\"samples\""),
        search("empty array", End::NotAnswered, "[]"),
        search("empty object", End::NotAnswered, "{}"),
        search("array of null", End::NotAnswered, "[null]"),
        search("array in array", End::NotAnswered, "[[" + good + "]]"),
        search("login page", End::NotAnswered, "<!DOCTYPE html><html><body>Sign in</body></html>"),
        search("cut short", End::NotAnswered, "[" + good.chopped(3)),
        search("something behind", End::NotAnswered, "[" + good + "] []"),
        search("nested 100,000 deep", End::NotAnswered, QByteArray(100'000, '[') + QByteArray(100'000, ']')),
        search(
            "objects nested 100,000 deep",
            End::NotAnswered,
            QByteArray("{\"a\":").repeated(100'000) + "1" + QByteArray(100'000, '}')),
        search("not UTF-8", End::NotAnswered, "[{\"id\":4711,\"name\":\"\xff\xfe\"}]"),
        search("UTF-16", End::NotAnswered, "\xff\xfe[\0]\0"),
        search("NUL bytes", End::NotAnswered, QByteArray("[{\"id\":\0 4711}]", 15)),
        search("error object", End::NotAnswered, R"({"message":"404 Group Not Found"})"),
        search("id null", End::NotReady, R"([{"id":null}])"),
        search("id a text", End::NotReady, R"([{"id":"4711"}])"),
        search("id zero", End::NotReady, R"([{"id":0}])"),
        search("id a fraction", End::NotReady, R"([{"id":4711.5}])"),
        search("id beyond 32 bits", End::NotReady, R"([{"id":99999999999999999999}])"),
        search("id beyond all numbers", End::NotAnswered, R"([{"id":1e999}])"),
        search("id true", End::NotReady, R"([{"id":true}])"),
        search("id an array", End::NotReady, R"([{"id":[4711]}])"),
        search("id in another letter case", End::NotAnswered, R"([{"ID":4711}])"),
        search("id negative", End::NotAnswered, R"([{"id":-1}])"),
        search("id of another group", End::NotAnswered, R"([{"id":1}])"),
        search("the same key twice", End::Installed, R"([{"id":1,"id":4711}])"),
        search("an object in place of the array", End::Installed, good),
        search("a byte order mark", End::Installed, "\xef\xbb\xbf[" + good + "]"),
        search("20,000 groups", End::Installed, "[" + good + ("," + good).repeated(20'000) + "]"),
    };
}

QList<Case> listingCases()
{
    return {
        rawListing("nothing", End::NotAnswered, ""),
        rawListing("null", End::NotAnswered, "null"),
        rawListing("empty object", End::NotAnswered, "{}"),
        rawListing("empty array", End::NotAnswered, "[]"),
        rawListing("login page", End::NotAnswered, "<!DOCTYPE html><html><body>Sign in</body></html>"),
        rawListing("cut short", End::NotAnswered, R"({"id":4711,"projects":[{"id":7,"na)"),
        rawListing(
            "nested 100,000 deep",
            End::NotAnswered,
            R"({"projects":)" + QByteArray(100'000, '[') + QByteArray(100'000, ']') + "}"),
        rawListing(
            "projects twice, the last empty", End::NotListed, R"({"projects":[{"id":7}],"projects":[]})"),
        rawListing("projects in another letter case", End::NotAnswered, R"({"Projects":[]})"),
        rawListing("an array in an array", End::NotAnswered, R"([[{"projects":[]}]])"),
        rawListing("not UTF-8", End::NotAnswered, "{\"projects\":[{\"id\":7,\"name\":\"\xff\"}]}"),
        rawListing("keys escaped", End::NotListed, R"({"\u0070rojects":[]})"),
        withProjects("projects are null", End::NotListed, QJsonValue::Null),
        withProjects("projects are a text", End::NotListed, "projects"),
        withProjects("projects are an object", End::NotListed, QJsonObject{{"0", QJsonObject{{"id", 7}}}}),
        withProjects("projects are numbers", End::NotListed, QJsonArray{7, 8.5, -1}),
        withProjects(
            "projects are of every type",
            End::NotListed,
            QJsonArray{QJsonValue::Null, true, 1, "text", QJsonArray{}, QJsonObject{}}),
        listing(
            "one honest project among nonsense",
            End::Installed,
            [](QJsonObject &group) {
                QJsonArray projects{
                    QJsonValue::Null, 5, "x", QJsonArray{QJsonObject{}}, QJsonObject{{"id", 9}}};
                projects.append(group.value("projects").toArray().at(0));
                group.insert("projects", projects);
            }),
        listing(
            "the same project 1,000 times",
            End::Installed,
            [](QJsonObject &group) {
                QJsonArray projects;
                for (int i = 0; i < 1000; ++i)
                    projects.append(group.value("projects").toArray().at(0));
                group.insert("projects", projects);
            }),
        {.name = "listing: 50,000 projects",
         .end = End::NotUpdated,
         .prepare =
             [](World &world) {
                 world.setSetting(Constants::UPDATES_TIMEOUT, 0);
                 changeListing(world, [](QJsonObject &group) {
                     QJsonObject project = group.value("projects").toArray().at(0).toObject();
                     QJsonArray projects;
                     for (int i = 1; i <= 50'000; ++i) {
                         project.insert("path", QString("subject-%1").arg(i));
                         projects.append(project);
                     }
                     group.insert("projects", projects);
                 });
             },
         .check = [](World &world) { QCOMPARE(world.service()->examples("hostile").size(), 50'000); },
         .memory = 1000 * MEGABYTE},
        {.name = "listing: 100 MB of text",
         .prepare =
             [](World &world) {
                 changeListing(world, [](QJsonObject &group) {
                     group.insert("description", QString(100 * MEGABYTE, u'x'));
                 });
             },
         .memory = 1500 * MEGABYTE},
        {.name = "listing: 200 MB of text",
         .end = End::NotAnswered,
         .prepare =
             [](World &world) {
                 world.server().answer(
                     World::LISTING_ROUTE,
                     200,
                     "{\"description\":\"" + QByteArray(200 * MEGABYTE, 'x') + "\"}");
             },
         .memory = 1500 * MEGABYTE},
    };
}

QList<Case> fieldCases()
{
    QList<Case> cases
        = wrongValues("id", End::NotListed) + wrongValues("name", End::NotListed)
          + wrongValues("web_url", End::NotListed) + wrongValues("path", End::NoArchive)
          + wrongValues("description", End::Installed) + wrongValues("avatar_url", End::Installed)
          + wrongValues("last_activity_at", End::Installed) + wrongValues("tag_list", End::Installed);
    cases += {
        field("id zero", End::NotListed, "id", 0),
        field("id negative", End::NotDownloaded, "id", -7),
        field("id beyond 53 bits", End::NotDownloaded, "id", 9007199254740993.0),
        field("id beyond 64 bits", End::NotDownloaded, "id", 1e300),
        field("id beyond 64 bits, negative", End::NotDownloaded, "id", -1e300),
        field("id nearly zero", End::NotDownloaded, "id", 1e-300),
        field("id a fraction", End::Installed, "id", 7.9),
        field("name empty", End::NotListed, "name", ""),
        field("web_url empty", End::NotListed, "web_url", ""),
        field("web_url a script", End::Installed, "web_url", "javascript:alert(1)"),
        field(
            "tags of every type",
            End::Installed,
            "tag_list",
            QJsonArray{QJsonValue::Null, 1, QJsonArray{}, QJsonObject{}, "<tag>&]]>"}),
        field(
            "100,000 tags",
            End::Installed,
            "tag_list",
            [] {
                QJsonArray tags;
                for (int i = 0; i < 100'000; ++i)
                    tags.append(QString::number(i));
                return tags;
            }()),
        field("activity in year 99999", End::Installed, "last_activity_at", "99999-01-01T00:00:00Z"),
        field("activity in year 9999", End::Installed, "last_activity_at", "9999-12-31T23:59:59.999Z"),
        field("activity before all years", End::Installed, "last_activity_at", "-0001-01-01T00:00:00Z"),
        field("activity on no day", End::Installed, "last_activity_at", "2024-02-31T25:61:61Z"),
        field("activity a million letters", End::Installed, "last_activity_at", QString(1'000'000, u'2')),
    };
    return cases;
}

} // namespace

QList<Case> jsonCases()
{
    return searchCases() + listingCases() + fieldCases();
}

} // namespace Varnel::Test
