// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The demo repository's server answers as a GitLab server does.

#include "common/demofixture.h"

#include <QBuffer>
#include <QImage>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;
using namespace Varnel::Test;

class tst_DemoGitLab final : public DemoFixture
{
    Q_OBJECT

private slots:
    void theSearchFindsGroupsByPartsOfTheirNames_data();
    void theSearchFindsGroupsByPartsOfTheirNames();
    void foundGroupsAreInTheOrderOfTheirNames();
    void aPageTellsOfTheNextOne();
    void aGroupListsItsProjectsNewestIdFirst();
    void aGroupListsAtMostAHundredProjects();
    void aMissingDescriptionIsNullAndAClearedOneEmpty();
    void valuesOfAProjectCanBeReplacedAndLeftOut();
    void failuresHaveTheBodiesOfGitLab_data();
    void failuresHaveTheBodiesOfGitLab();
    void textIsCompressedIfTheClientOffersIt();
    void shortOrUnofferedTextIsNotCompressed();

    void anAvatarIsServedWithItsType();
    void aLostAvatarLeadsToTheSignInPage();
};

void tst_DemoGitLab::theSearchFindsGroupsByPartsOfTheirNames_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("paths");
    const QStringList both{u"demo"_s, u"demo/samples"_s};
    const QStringList one{u"demo/samples"_s};
    QTest::newRow("whole path in quotes") << u"search=\"demo/samples\""_s << one;
    QTest::newRow("whole path") << u"search=demo/samples"_s << one;
    QTest::newRow("encoded slash") << u"search=demo%2Fsamples"_s << one;
    QTest::newRow("part of the path") << u"search=\"o/samp\""_s << one;
    QTest::newRow("other letter case") << u"search=\"DEMO/Samples\""_s << one;
    QTest::newRow("full name") << u"search=\"demo / samples\""_s << one;
    QTest::newRow("parent, with its subgroup") << u"search=\"demo\""_s << both;
    QTest::newRow("nothing asked for") << u"page=1"_s << both;
    QTest::newRow("unknown") << u"search=\"other\""_s << QStringList{};
    QTest::newRow("too short for a part") << u"search=\"de\""_s << QStringList{};
}

void tst_DemoGitLab::theSearchFindsGroupsByPartsOfTheirNames()
{
    QFETCH(QString, query);
    QFETCH(QStringList, paths);
    const DemoServer server(DemoServer::Setup{.group = u"demo/samples"_s});

    const Result result = get(server.url(u"/api/v4/groups?"_s + query));

    QCOMPARE(result.status, 200);
    QStringList found;
    for (const QJsonValue &group : result.array())
        found.append(group.toObject().value("full_path"_L1).toString());
    QCOMPARE(found, paths);
}

void tst_DemoGitLab::foundGroupsAreInTheOrderOfTheirNames()
{
    DemoServer server;
    server.gitlab().addGroup(
        {.id = 9000, .path = u"samples-old"_s, .name = u"Attic of samples"_s, .description = {}});

    const QJsonArray groups = get(server.url(u"/api/v4/groups?search=\"samples\""_s)).array();

    QCOMPARE(groups.size(), 2);
    QCOMPARE(groups.at(0).toObject().value("id"_L1).toInteger(), 9000);
    QCOMPARE(groups.at(1).toObject().value("id"_L1).toInteger(), server.gitlab().group().id);
}

void tst_DemoGitLab::aPageTellsOfTheNextOne()
{
    DemoServer server;
    for (int id = 1; id <= 5; ++id)
        server.gitlab().addProject(project(id, u"p%1"_s.arg(id)));
    const QString path = u"/api/v4/groups/%1/projects?per_page=2&page=2"_s.arg(server.gitlab().group().id);

    const Result result = get(server.url(path));

    QCOMPARE(result.array().size(), 2);
    QCOMPARE(result.array().first().toObject().value("id"_L1).toInteger(), 3);
    QCOMPARE(result.headers.value("x-page"), "2"_ba);
    QCOMPARE(result.headers.value("x-next-page"), "3"_ba);
    QCOMPARE(result.headers.value("x-prev-page"), "1"_ba);
    QCOMPARE(result.headers.value("x-total"), "5"_ba);
    QCOMPARE(result.headers.value("x-total-pages"), "3"_ba);
    QVERIFY(result.headers.combinedValue("link").contains("page=3&per_page=2>; rel=\"next\""));
}

void tst_DemoGitLab::aGroupListsItsProjectsNewestIdFirst()
{
    DemoServer server;
    for (const int id : {7, 30, 12})
        server.gitlab().addProject(project(id, u"p%1"_s.arg(id)));

    const Result result = get(server.url(u"/api/v4/groups/%1"_s.arg(server.gitlab().group().id)));

    QList<qint64> ids;
    for (const QJsonValue &item : result.object().value("projects"_L1).toArray())
        ids.append(item.toObject().value("id"_L1).toInteger());
    QCOMPARE(ids, QList<qint64>({30, 12, 7}));
}

void tst_DemoGitLab::aGroupListsAtMostAHundredProjects()
{
    DemoServer server;
    for (int id = 1; id <= 101; ++id)
        server.gitlab().addProject(project(id, u"p%1"_s.arg(id)));

    const Result result = get(server.url(u"/api/v4/groups/samples"_s));

    const QJsonArray projects = result.object().value("projects"_L1).toArray();
    QCOMPARE(projects.size(), 100);
    QCOMPARE(projects.last().toObject().value("id"_L1).toInteger(), 2);
}

void tst_DemoGitLab::aMissingDescriptionIsNullAndAClearedOneEmpty()
{
    DemoServer server;
    server.gitlab().addProject(project(1, u"never"_s));
    Project cleared = project(2, u"cleared"_s);
    cleared.description = u""_s;
    server.gitlab().addProject(cleared);

    QCOMPARE(
        get(server.url(u"/api/v4/projects/1"_s)).object().value("description"_L1),
        QJsonValue(QJsonValue::Null));
    QCOMPARE(get(server.url(u"/api/v4/projects/2"_s)).object().value("description"_L1), QJsonValue(u""_s));
}

void tst_DemoGitLab::valuesOfAProjectCanBeReplacedAndLeftOut()
{
    DemoServer server;
    Project odd = project(1, u"odd"_s);
    odd.overrides = {{u"name"_s, 5}};
    odd.omitted = QStringList{u"web_url"_s};
    server.gitlab().addProject(odd);

    const QJsonObject object = get(server.url(u"/api/v4/projects/1"_s)).object();

    QCOMPARE(object.value("name"_L1), QJsonValue(5));
    QVERIFY(!object.contains("web_url"_L1));
}

void tst_DemoGitLab::failuresHaveTheBodiesOfGitLab_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    const QByteArray noProject = R"({"message":"404 Project Not Found"})";
    QTest::newRow("group") << u"/api/v4/groups/1"_s << 404
                           << QByteArray(R"({"message":"404 Group Not Found"})");
    QTest::newRow("project") << u"/api/v4/projects/1"_s << 404 << noProject;
    QTest::newRow("archive of no project") << archivePath(1) << 404 << noProject;
    QTest::newRow("archive of nothing")
        << archivePath(42) << 404 << QByteArray(R"({"message":"404 File Not Found"})");
    QTest::newRow("route") << u"/api/v4/nothing"_s << 404 << QByteArray(R"({"error":"404 Not Found"})");
    QTest::newRow("for members") << u"/api/v4/version"_s << 401
                                 << QByteArray(R"({"message":"401 Unauthorized"})");
}

void tst_DemoGitLab::failuresHaveTheBodiesOfGitLab()
{
    QFETCH(QString, path);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    DemoServer server;
    Project empty = project(42, u"empty"_s);
    empty.isEmpty = true;
    server.gitlab().addProject(empty);

    const Result result = get(server.url(path));

    QCOMPARE(result.status, status);
    QCOMPARE(result.body, body);
    QCOMPARE(result.headers.value("content-type"), "application/json"_ba);
}

void tst_DemoGitLab::textIsCompressedIfTheClientOffersIt()
{
    const DemoServer server;

    // A header of the client's own keeps Qt from decoding the answer.
    const Result packed = get(server.url(u"/api/v4/groups"_s), {{"Accept-Encoding", "gzip"}});
    const Result decoded = get(server.url(u"/api/v4/groups"_s));

    QCOMPARE(packed.headers.value("content-encoding"), "gzip"_ba);
    QCOMPARE(packed.headers.value("transfer-encoding"), "chunked"_ba);
    QCOMPARE(packed.headers.value("content-type"), "application/json"_ba);
    QVERIFY(packed.body.startsWith("\x1f\x8b"));
    QCOMPARE(decoded.array().size(), 1);
}

void tst_DemoGitLab::shortOrUnofferedTextIsNotCompressed()
{
    const DemoServer server;

    const Result unoffered = get(server.url(u"/api/v4/groups"_s), {{"Accept-Encoding", "identity"}});
    const Result brief = get(server.url(u"/api/v4/groups/1"_s), {{"Accept-Encoding", "gzip"}});

    QVERIFY(unoffered.body.startsWith('['));
    QCOMPARE(unoffered.headers.value("content-length"), QByteArray::number(unoffered.body.size()));
    QVERIFY(brief.body.startsWith('{'));
}

void tst_DemoGitLab::anAvatarIsServedWithItsType()
{
    DemoServer server;
    Project pictured = project(42, u"hello"_s);
    QBuffer buffer(&pictured.avatar);
    QImage(4, 4, QImage::Format_RGB32).save(&buffer, "JPG");
    pictured.avatarFile = u"logo.jpg"_s;
    server.gitlab().addProject(pictured);

    const QUrl url(get(server.url(u"/api/v4/projects/42"_s)).object().value("avatar_url"_L1).toString());
    const Result result = get(url);

    QCOMPARE(url, server.url(u"/uploads/-/system/project/avatar/42/logo.jpg"_s));
    QCOMPARE(result.body, pictured.avatar);
    QCOMPARE(result.headers.value("content-type"), "image/jpeg"_ba);
}

void tst_DemoGitLab::aLostAvatarLeadsToTheSignInPage()
{
    DemoServer server;
    Project pictured = project(42, u"hello"_s);
    pictured.avatarFile = u"logo.png"_s;
    server.gitlab().addProject(pictured);

    const Result result = get(server.url(u"/uploads/-/system/project/avatar/42/logo.png"_s));
    const Result page = get(QUrl(QString::fromUtf8(result.headers.combinedValue("location"))));

    QCOMPARE(result.status, 302);
    QCOMPARE(page.status, 200);
    QVERIFY(page.headers.combinedValue("content-type").startsWith("text/html"));
}

QTEST_MAIN(tst_DemoGitLab)
#include "tst_demogitlab.moc"
