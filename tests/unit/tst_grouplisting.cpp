// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// How a group is found and listed.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString GROUPS = "/api/v4/groups";

QByteArray json(const QJsonArray &array)
{
    return QJsonDocument(array).toJson();
}

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

QStringList networkErrors(const ClientRecorder &recorder)
{
    return recorder.lines().filter("Network error: ");
}

} // namespace

class tst_GroupListing final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();

    // Search
    void searchAnswersAreJudged_data();
    void searchAnswersAreJudged();
    void ofSeveralGroupsTheFirstIsTaken();
    void aSearchThatFailedIsNotRepeated();

    // Listing
    void listingBeforeTheGroupIsKnownIsReported();
    void listingAnswersAreJudged_data();
    void listingAnswersAreJudged();
    void ofSeveralListedGroupsTheFirstIsTaken();
    void projectsThatAreNotValidAreDropped();
    void theProjectIsKeptWhole();
    void listingsAreIndependentOfEachOther();
    void listingsOfARealisticServerAreRead();
};

void tst_GroupListing::cleanupTestCase()
{
    quitApplication();
}

void tst_GroupListing::searchAnswersAreJudged_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("lines"); // after the clearing one

    const QStringList noId{"Search error: request return wrong data - no id field"};
    const QStringList null{"Search error: request return null object"};
    const QStringList ready{"API client is ready", "ready"};
    QTest::newRow("one group") << json(QJsonArray{QJsonObject{{"id", 7}}}) << ready;
    QTest::newRow("object in place of a list") << json(QJsonObject{{"id", 7}}) << ready;
    QTest::newRow("another group's name") << json(QJsonArray{QJsonObject{{"id", 7}, {"path", "x"}}}) << ready;
    QTest::newRow("negative number") << json(QJsonArray{QJsonObject{{"id", -7}}}) << ready;
    QTest::newRow("nothing found") << json(QJsonArray{}) << noId;
    QTest::newRow("no number") << json(QJsonArray{QJsonObject{{"name", "x"}}}) << noId;
    QTest::newRow("list of numbers") << json(QJsonArray{7}) << noId;
    QTest::newRow("empty object") << json(QJsonObject{}) << noId;
    QTest::newRow("number 0") << json(QJsonArray{QJsonObject{{"id", 0}}}) << QStringList{};
    QTest::newRow("number as text") << json(QJsonArray{QJsonObject{{"id", "7"}}}) << QStringList{};
    QTest::newRow("number null") << json(QJsonArray{QJsonObject{{"id", QJsonValue::Null}}}) << QStringList{};
    QTest::newRow("broken number") << json(QJsonArray{QJsonObject{{"id", 7.5}}}) << QStringList{};
    QTest::newRow("number beyond 32 bits")
        << json(QJsonArray{QJsonObject{{"id", 4294967297.0}}}) << QStringList{};
    QTest::newRow("null") << QByteArray("null") << null;
    QTest::newRow("number alone") << QByteArray("7") << null;
    QTest::newRow("cut short") << QByteArray("[{\"id\": 7") << null;
    QTest::newRow("page of a proxy") << QByteArray("<!DOCTYPE html>") << null;
}

void tst_GroupListing::searchAnswersAreJudged()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QStringList, lines);
    DemoServer server;
    server.answer(GROUPS, 200, body);

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    const QStringList expected = QStringList{"Searching examples", ""} + lines;
    QTRY_COMPARE(recorder.lines(), expected);
    QCOMPARE(client.isReady(), lines.contains("ready"));
}

void tst_GroupListing::ofSeveralGroupsTheFirstIsTaken()
{
    DemoServer server;
    server.answer(GROUPS, 200, json(QJsonArray{QJsonObject{{"id", 7}}, QJsonObject{{"id", 8}}}));
    const LogRecorder log;

    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    client.fetch();

    QTRY_COMPARE(server.requestCount("/api/v4/groups/7"), 1);
    QCOMPARE(
        log.lines(LogRecorder::API).filter("taking").constFirst(),
        "Search request return more than 1 object - taking first");
}

void tst_GroupListing::aSearchThatFailedIsNotRepeated()
{
    DemoServer server;
    server.answer(GROUPS, 503);
    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    QTRY_COMPARE(networkErrors(recorder).size(), 1);

    server.restore();
    const ApiClient later(server.groupUrl(), nullptr);

    QTRY_VERIFY(later.isReady());
    QCOMPARE(server.requestCount(), 2);
    QVERIFY(!client.isReady());
}

void tst_GroupListing::listingBeforeTheGroupIsKnownIsReported()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    client.fetch();

    QCOMPARE(
        recorder.lines(), QStringList{"Repository error: group id not found - unable to fetch examples"});
    QTRY_VERIFY(recorder.isReady());
    QCOMPARE(server.requestCount(), 1);
}

void tst_GroupListing::listingAnswersAreJudged_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("line"); // after the clearing one

    const QString noProjects = "Fetch error: request return wrong data - no projects field";
    const QString null = "Fetch error: request return null object";
    const QJsonObject project = projectObject("demo");
    QTest::newRow("one project") << json(QJsonObject{{"projects", QJsonArray{project}}}) << "fetched 1";
    QTest::newRow("list in place of an object")
        << json(QJsonArray{QJsonObject{{"projects", QJsonArray{project}}}}) << "fetched 1";
    QTest::newRow("no project") << json(QJsonObject{{"projects", QJsonArray{}}}) << "fetched 0";
    QTest::newRow("projects are no list") << json(QJsonObject{{"projects", project}}) << "fetched 0";
    QTest::newRow("projects null") << json(QJsonObject{{"projects", QJsonValue::Null}}) << "fetched 0";
    QTest::newRow("key absent") << json(QJsonObject{{"id", 7}}) << noProjects;
    QTest::newRow("empty list") << json(QJsonArray{}) << noProjects;
    QTest::newRow("null") << QByteArray("null") << null;
    QTest::newRow("cut short") << QByteArray("{\"projects\": [") << null;
    QTest::newRow("nothing") << QByteArray() << null;
}

void tst_GroupListing::listingAnswersAreJudged()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, line);
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    server.answer(GROUPS + "/*", 200, body);
    const ClientRecorder recorder(client);

    client.fetch();

    QTRY_COMPARE(recorder.lines(), (QStringList{"Fetch examples", "", line}));
    QVERIFY(client.isReady());
}

void tst_GroupListing::ofSeveralListedGroupsTheFirstIsTaken()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    server.answer(
        GROUPS + "/*",
        200,
        json(QJsonArray{
            QJsonObject{{"projects", QJsonArray{projectObject("first")}}},
            QJsonObject{{"projects", QJsonArray{}}}}));
    const ClientRecorder recorder(client);
    const LogRecorder log;

    client.fetch();

    QTRY_COMPARE(recorder.listing().size(), 1);
    QCOMPARE(recorder.listing().constFirst()->name(), "first");
    QCOMPARE(
        log.lines(LogRecorder::API).constLast(), "Fetch request return more than 1 object - taking first");
}

void tst_GroupListing::projectsThatAreNotValidAreDropped()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    QJsonObject invalid = projectObject("invalid");
    invalid.remove("web_url");
    server.answer(
        GROUPS + "/*",
        200,
        json(QJsonObject{
            {"projects",
             QJsonArray{
                 projectObject("z"),
                 invalid,
                 "text",
                 7,
                 QJsonValue::Null,
                 QJsonArray{},
                 projectObject("a")}}}));
    const ClientRecorder recorder(client);

    client.fetch();

    QTRY_COMPARE(recorder.lines(), (QStringList{"Fetch examples", "", "fetched 2"}));
    QCOMPARE(recorder.listing().at(0)->name(), "z"); // in the server's order
    QCOMPARE(recorder.listing().at(1)->name(), "a");
}

void tst_GroupListing::theProjectIsKeptWhole()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    const QJsonObject project = projectObject(
        "demo", {{"a_new_key", QJsonObject{{"of", "the server"}}}, {"description", "ä\n<b>"}});
    server.answer(GROUPS + "/*", 200, json(QJsonObject{{"projects", QJsonArray{project}}}));
    const ClientRecorder recorder(client);

    client.fetch();

    QTRY_COMPARE(recorder.listing().size(), 1);
    QCOMPARE(recorder.listing().constFirst()->project(), project);
}

void tst_GroupListing::listingsAreIndependentOfEachOther()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    QTRY_VERIFY(client.isReady());
    const ClientRecorder recorder(client);
    server.addFault(GROUPS + "/*", {.cutAfter = Fault::BEFORE_HEAD, .end = Fault::End::Close, .times = 1});
    server.answer(GROUPS + "/*", 500);

    client.fetch();
    QTRY_COMPARE(networkErrors(recorder).size(), 1);
    server.restore();
    client.fetch();
    client.fetch();

    QTRY_COMPARE(recorder.count("fetched 0"), 2);
    QCOMPARE(networkErrors(recorder).size(), 1);
    QCOMPARE(recorder.count("Fetch examples"), 3);
}

void tst_GroupListing::listingsOfARealisticServerAreRead()
{
    DemoServer server(DemoServer::Setup{.group = "a/b"});
    Project maps;
    maps.id = 90210;
    maps.path = "maps";
    maps.name = "Maps & more";
    maps.topics = {"qml", "ui"};
    server.gitlab().addProject(maps);
    Project newer = maps;
    newer.id = 90211;
    newer.path = "maps-main";
    newer.name = "Käse";
    server.gitlab().addProject(newer);
    ApiClient client(server.groupUrl(), nullptr);
    connect(&client, &ApiClient::ready, &client, &ApiClient::fetch);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(recorder.count("fetched 2"), 1);

    QCOMPARE(recorder.listing().at(0)->displayName(), "Käse"); // newest number first
    QCOMPARE(recorder.listing().at(1)->name(), "maps");
    QCOMPARE(recorder.listing().at(1)->tags(), (QStringList{"qml", "ui"}));
    QVERIFY(recorder.listing().at(1)->lastActivity().isValid());
}

QTEST_MAIN(tst_GroupListing)
#include "tst_grouplisting.moc"
