// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What answers to a search and a listing say, without a server.

#include "client/answers.h"

#include "common/logrecorder.h"
#include "common/testfiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Answers final : public QObject
{
    Q_OBJECT

private slots:
    void whatIsNoJsonIsNullAndLogged();
    void jsonIsNotLogged();
    void groupsAreRead_data();
    void groupsAreRead();
    void listingsAreRead_data();
    void listingsAreRead();
    void ofSeveralTheFirstIsTaken();
    void validProjectsKeepTheirOrder();
};

void tst_Answers::whatIsNoJsonIsNullAndLogged()
{
    const LogRecorder log;

    QVERIFY(parseAnswer("<html>").isNull());

    QCOMPARE(
        log.lines(LogRecorder::API),
        (QStringList{"Json response: \"<html>\"", "Json parse error:  \"illegal value\""}));
}

void tst_Answers::jsonIsNotLogged()
{
    const LogRecorder log;

    QCOMPARE(parseAnswer("[7]").array().size(), 1);

    QCOMPARE(log.lines(LogRecorder::API), QStringList());
}

void tst_Answers::groupsAreRead_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("id");
    QTest::addColumn<QString>("fault");

    const QString noId = "Search error: request return wrong data - no id field";
    const QString null = "Search error: request return null object";
    QTest::newRow("array") << QByteArray(R"([{"id":7}])") << qint64(7) << "";
    QTest::newRow("object") << QByteArray(R"({"id":7})") << qint64(7) << "";
    QTest::newRow("negative") << QByteArray(R"({"id":-7})") << qint64(-7) << "";
    QTest::newRow("largest") << QByteArray(R"({"id":2147483647})") << qint64(2147483647) << "";
    QTest::newRow("beyond 32 bits") << QByteArray(R"({"id":2147483648})") << qint64(0) << "";
    QTest::newRow("fraction") << QByteArray(R"({"id":7.5})") << qint64(0) << "";
    QTest::newRow("text") << QByteArray(R"({"id":"7"})") << qint64(0) << "";
    QTest::newRow("null number") << QByteArray(R"({"id":null})") << qint64(0) << "";
    QTest::newRow("zero") << QByteArray(R"({"id":0})") << qint64(0) << "";
    QTest::newRow("no number") << QByteArray(R"({"name":"x"})") << qint64(0) << noId;
    QTest::newRow("nothing found") << QByteArray("[]") << qint64(0) << noId;
    QTest::newRow("numbers") << QByteArray("[7]") << qint64(0) << noId;
    QTest::newRow("array in array") << QByteArray(R"([[{"id":7}]])") << qint64(0) << noId;
    QTest::newRow("null") << QByteArray("null") << qint64(0) << null;
    QTest::newRow("nothing") << QByteArray() << qint64(0) << null;
}

void tst_Answers::groupsAreRead()
{
    QFETCH(const QByteArray, json);
    QFETCH(const qint64, id);
    QFETCH(const QString, fault);

    const GroupAnswer answer = readGroup(QJsonDocument::fromJson(json));

    QCOMPARE(answer.id, id);
    QCOMPARE(answer.fault, fault);
}

void tst_Answers::listingsAreRead_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("fault");

    const QByteArray project = QJsonDocument(projectObject("demo")).toJson();
    const QString noProjects = "Fetch error: request return wrong data - no projects field";
    const QString null = "Fetch error: request return null object";
    QTest::newRow("object") << "{\"projects\":[" + project + "]}" << 1 << "";
    QTest::newRow("array") << "[{\"projects\":[" + project + "]}]" << 1 << "";
    QTest::newRow("twice the same") << "{\"projects\":[" + project + ',' + project + "]}" << 2 << "";
    QTest::newRow("no project") << QByteArray(R"({"projects":[]})") << 0 << "";
    QTest::newRow("projects are an object") << "{\"projects\":" + project + "}" << 0 << "";
    QTest::newRow("projects are null") << QByteArray(R"({"projects":null})") << 0 << "";
    QTest::newRow("key absent") << QByteArray(R"({"id":7})") << 0 << noProjects;
    QTest::newRow("key in capitals") << QByteArray(R"({"Projects":[]})") << 0 << noProjects;
    QTest::newRow("empty array") << QByteArray("[]") << 0 << noProjects;
    QTest::newRow("null") << QByteArray("null") << 0 << null;
    QTest::newRow("nothing") << QByteArray() << 0 << null;
}

void tst_Answers::listingsAreRead()
{
    QFETCH(const QByteArray, json);
    QFETCH(const int, count);
    QFETCH(const QString, fault);

    const ListingAnswer answer = readListing(QJsonDocument::fromJson(json));

    QCOMPARE(answer.examples.size(), count);
    QCOMPARE(answer.fault, fault);
}

void tst_Answers::ofSeveralTheFirstIsTaken()
{
    const LogRecorder log;
    const QJsonObject project = projectObject("demo");

    const GroupAnswer group
        = readGroup(QJsonDocument(QJsonArray{QJsonObject{{"id", 7}}, QJsonObject{{"id", 8}}}));
    const ListingAnswer listing = readListing(QJsonDocument(
        QJsonArray{QJsonObject{{"projects", QJsonArray{}}}, QJsonObject{{"projects", QJsonArray{project}}}}));

    QCOMPARE(group.id, 7);
    QCOMPARE(listing.examples.size(), 0);
    QCOMPARE(
        log.lines(LogRecorder::API),
        (QStringList{
            "Search request return more than 1 object - taking first",
            "Fetch request return more than 1 object - taking first"}));
}

void tst_Answers::validProjectsKeepTheirOrder()
{
    const QJsonArray projects{
        projectObject("z"), projectObject("invalid", {{"web_url", ""}}), "text", 7, projectObject("a")};

    const ListingAnswer answer = readListing(QJsonDocument(QJsonObject{{"projects", projects}}));

    QCOMPARE(answer.examples.size(), 2);
    QCOMPARE(answer.examples.at(0)->name(), "z");
    QCOMPARE(answer.examples.at(1)->name(), "a");
    QCOMPARE(answer.examples.at(1)->project(), projects.at(4).toObject());
}

QTEST_MAIN(tst_Answers)
#include "tst_answers.moc"
