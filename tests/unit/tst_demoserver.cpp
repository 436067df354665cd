// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// The demo repository's server answers as a GitLab server does, fails as it is told to, and reads its samples.
#include "server/demoserver.h"
#include "server/samples.h"

#include <archive.h>
#include <archive_entry.h>

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;

namespace {

struct Result
{
    int status = 0; // 0: none came
    QByteArray body = {};
    QHttpHeaders headers = {};
    QNetworkReply::NetworkError error = QNetworkReply::NoError;

    [[nodiscard]] QJsonObject object() const { return QJsonDocument::fromJson(body).object(); }
    [[nodiscard]] QJsonArray array() const { return QJsonDocument::fromJson(body).array(); }
};

struct ArchiveEntry
{
    QByteArray name;
    QByteArray content; // of a link: its target
    QByteArray owner;
    qint64 time = 0; // seconds since 1970
};

Project project(qint64 id, const QString &path)
{
    Project result;
    result.id = id;
    result.path = path;
    result.name = path.toUpper();
    result.tree.addFile("CMakeLists.txt", "project(x)\n");
    return result;
}

QString archivePath(qint64 id)
{
    return u"/api/v4/projects/%1/repository/archive.tar.gz"_s.arg(id);
}

QList<ArchiveEntry> entriesOf(const QByteArray &bytes)
{
    const std::unique_ptr<archive, decltype(&archive_read_free)> reader(
        archive_read_new(), archive_read_free);
    archive_read_support_filter_gzip(reader.get());
    archive_read_support_format_tar(reader.get());
    archive_read_open_memory(reader.get(), bytes.constData(), size_t(bytes.size()));
    QList<ArchiveEntry> result;
    for (archive_entry *entry = nullptr; archive_read_next_header(reader.get(), &entry) == ARCHIVE_OK;) {
        QByteArray content(qsizetype(archive_entry_size(entry)), '\0');
        archive_read_data(reader.get(), content.data(), size_t(content.size()));
        const char *target = archive_entry_symlink(entry);
        result.append(
            {archive_entry_pathname(entry),
             target ? QByteArray(target) : content,
             QByteArray(archive_entry_uname(entry)) + '/' + archive_entry_gname(entry),
             archive_entry_mtime(entry)});
    }
    return result;
}

/** What a server sends until it ends the connection, or until @p end has come. */
QByteArray bytesFrom(const DemoServer &server, const QByteArray &target, const QByteArray &end = {})
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    socket.write("GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QByteArray bytes;
    const auto isDone = [&] {
        bytes += socket.readAll();
        return end.isEmpty() ? socket.state() == QAbstractSocket::UnconnectedState : bytes.endsWith(end);
    };
    return QTest::qWaitFor(isDone) ? bytes : "timed out after: " + bytes;
}

QString runProgram(const QString &program, const QStringList &arguments, const QString &directory)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qWarning() << program << arguments << process.errorString() << process.readAllStandardError();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

void write(const QString &path, const QByteArray &content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr char DESCRIPTION[] = R"({"id": 1, "title": "T", "branch": "main", "created": "2024-01-01T00:00:00Z",
    "commit": "2024-01-01T00:00:00Z", "activity": "2024-01-01T00:00:00Z"%1})";

QByteArray description(const QByteArray &more = {})
{
    return QByteArray(DESCRIPTION).replace("%1", more);
}

} // namespace

class tst_DemoServer final : public QObject
{
    Q_OBJECT

private slots:
    void aFreePortIsChosen();
    void aPortInUseIsReported();
    void encryptedConnectionsAreServed();

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

    void theArchiveHasOneTopDirectoryAndTheTimeOfTheCommit();
    void theCompressionTellsNoNameAndNoTime();
    void theTarIsTheOneThatGitMakes();
    void veryLongNamesAndTargetsAreKept();
    void theFirstArchiveIsChunkedAndTheNextHasALength();
    void aCommitGivesANewTopDirectoryAndActivity();
    void anAvatarIsServedWithItsType();
    void aLostAvatarLeadsToTheSignInPage();

    void anAnswerReplacesTheOrdinaryOne();
    void theLastAnswerOfARouteCounts();
    void restoringBringsTheOrdinaryAnswersBack();
    void anAnswerMayPointAnywhere();
    void anAnswerMayLieAboutItsLength();
    void anAnswerMayHaveAnUnknownStatus();
    void anAnswerMayHaveAFloodOfHeaders();
    void aRequestIsRecordedAsItCame();
    void requestsAreRecordedInTheOrderOfTheirComing();

    void aHeldRequestWaitsForItsRelease();
    void theNextHeldRequestIsReleasedAlone();
    void theHighestConcurrencyIsRemembered();
    void aLostClientEndsTheWaiting();
    void heldConnectionsCanBeReset();
    void aServerCanGoWhileItHolds();
    void anAnswerIsDelayed();
    void aConnectionIsResetBeforeTheHead();
    void aConnectionIsResetAfterSomeBytes();
    void anAnswerIsCutShortByAnOrderlyClose();
    void allOfALongPartComesBeforeAnOrderlyClose();
    void aChunkedAnswerIsCutShortAsIfWhole();
    void aStalledAnswerIsCompletedByTheRelease();
    void anAnswerIsChunkedOnDemand();
    void rawBytesReplaceAnAnswer();
    void aFaultHitsAsManyRequestsAsAskedFor();
    void aConnectionIsUsedAgainAfterAChunkedCut();

    void theOwnSamplesAreReadable();
    void picturesArePaintedAsDescribed();
    void whatIsWrongWithASampleIsSaid_data();
    void whatIsWrongWithASampleIsSaid();

private:
    std::unique_ptr<QNetworkReply> start(const QUrl &url, const DemoServer::Headers &headers = {});
    Result get(const QUrl &url, const DemoServer::Headers &headers = {});

    QNetworkAccessManager m_network;
};

std::unique_ptr<QNetworkReply> tst_DemoServer::start(const QUrl &url, const DemoServer::Headers &headers)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto &[name, value] : headers)
        request.setRawHeader(name, value);
    return std::unique_ptr<QNetworkReply>(m_network.get(request));
}

Result tst_DemoServer::get(const QUrl &url, const DemoServer::Headers &headers)
{
    const std::unique_ptr<QNetworkReply> reply = start(url, headers);
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!finished.wait())
        return {};
    return {
        reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
        reply->readAll(),
        reply->headers(),
        reply->error()};
}

void tst_DemoServer::aFreePortIsChosen()
{
    const DemoServer one;
    const DemoServer other;

    QVERIFY(one.isListening());
    QVERIFY(other.isListening());
    QVERIFY(one.port() != other.port());
}

void tst_DemoServer::aPortInUseIsReported()
{
    const DemoServer one;

    const DemoServer other(DemoServer::Setup{.port = one.port()});

    QVERIFY(!other.isListening());
    QVERIFY(!other.errorString().isEmpty());
}

void tst_DemoServer::encryptedConnectionsAreServed()
{
    const QTemporaryDir directory;
    runProgram(
        u"openssl"_s,
        u"req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1 -keyout key.pem -out certificate.pem"_s
            .split(u' '),
        directory.path());
    QSslConfiguration encryption = QSslConfiguration::defaultConfiguration();
    encryption.setLocalCertificate(QSslCertificate(read(directory.filePath(u"certificate.pem"_s))));
    encryption.setPrivateKey(QSslKey(read(directory.filePath(u"key.pem"_s)), QSsl::Rsa));
    const DemoServer server(DemoServer::Setup{.encryption = encryption});
    QCOMPARE(server.url().scheme(), u"https"_s);

    QCOMPARE(get(server.url(u"/api/v4/groups"_s)).error, QNetworkReply::SslHandshakeFailedError);

    const std::unique_ptr<QNetworkReply> trusting = start(server.url(u"/api/v4/groups"_s));
    trusting->ignoreSslErrors();
    QSignalSpy finished(trusting.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());
    QCOMPARE(trusting->error(), QNetworkReply::NoError);
    QCOMPARE(server.requestCount(), 1);
}

void tst_DemoServer::theSearchFindsGroupsByPartsOfTheirNames_data()
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

void tst_DemoServer::theSearchFindsGroupsByPartsOfTheirNames()
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

void tst_DemoServer::foundGroupsAreInTheOrderOfTheirNames()
{
    DemoServer server;
    server.gitlab().addGroup(
        {.id = 9000, .path = u"samples-old"_s, .name = u"Attic of samples"_s, .description = {}});

    const QJsonArray groups = get(server.url(u"/api/v4/groups?search=\"samples\""_s)).array();

    QCOMPARE(groups.size(), 2);
    QCOMPARE(groups.at(0).toObject().value("id"_L1).toInteger(), 9000);
    QCOMPARE(groups.at(1).toObject().value("id"_L1).toInteger(), server.gitlab().group().id);
}

void tst_DemoServer::aPageTellsOfTheNextOne()
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

void tst_DemoServer::aGroupListsItsProjectsNewestIdFirst()
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

void tst_DemoServer::aGroupListsAtMostAHundredProjects()
{
    DemoServer server;
    for (int id = 1; id <= 101; ++id)
        server.gitlab().addProject(project(id, u"p%1"_s.arg(id)));

    const Result result = get(server.url(u"/api/v4/groups/samples"_s));

    const QJsonArray projects = result.object().value("projects"_L1).toArray();
    QCOMPARE(projects.size(), 100);
    QCOMPARE(projects.last().toObject().value("id"_L1).toInteger(), 2);
}

void tst_DemoServer::aMissingDescriptionIsNullAndAClearedOneEmpty()
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

void tst_DemoServer::valuesOfAProjectCanBeReplacedAndLeftOut()
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

void tst_DemoServer::failuresHaveTheBodiesOfGitLab_data()
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

void tst_DemoServer::failuresHaveTheBodiesOfGitLab()
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

void tst_DemoServer::textIsCompressedIfTheClientOffersIt()
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

void tst_DemoServer::shortOrUnofferedTextIsNotCompressed()
{
    const DemoServer server;

    const Result unoffered = get(server.url(u"/api/v4/groups"_s), {{"Accept-Encoding", "identity"}});
    const Result brief = get(server.url(u"/api/v4/groups/1"_s), {{"Accept-Encoding", "gzip"}});

    QVERIFY(unoffered.body.startsWith('['));
    QCOMPARE(unoffered.headers.value("content-length"), QByteArray::number(unoffered.body.size()));
    QVERIFY(brief.body.startsWith('{'));
}

void tst_DemoServer::theArchiveHasOneTopDirectoryAndTheTimeOfTheCommit()
{
    DemoServer server;
    Project slashed = project(42, u"hello"_s);
    slashed.branch = u"release/1.0"_s;
    slashed.tree.addFile("src/main.cpp", "int main() {}\n");
    server.gitlab().addProject(slashed);

    const Result result = get(server.url(archivePath(42)));

    QCOMPARE(result.status, 200);
    QCOMPARE(result.headers.value("content-type"), "application/octet-stream"_ba);
    const QByteArray top = "hello-release-1.0-" + slashed.commitId();
    QCOMPARE(slashed.commitId().size(), 40);
    QVERIFY(result.headers.combinedValue("content-disposition").contains(QByteArray(top + ".tar.gz")));
    QByteArrayList names;
    for (const ArchiveEntry &entry : entriesOf(result.body)) {
        names.append(entry.name);
        QCOMPARE(entry.time, slashed.commitTime.toSecsSinceEpoch());
        QCOMPARE(entry.owner, "root/root"_ba);
    }
    QCOMPARE(
        names, QByteArrayList({top + '/', top + "/CMakeLists.txt", top + "/src/", top + "/src/main.cpp"}));
}

void tst_DemoServer::theCompressionTellsNoNameAndNoTime()
{
    const QByteArray header = gzip("content").first(8);

    QCOMPARE(header, QByteArray("\x1f\x8b\x08\0\0\0\0\0", 8)); // method, then no flags and no time
}

void tst_DemoServer::theTarIsTheOneThatGitMakes()
{
    const QTemporaryDir directory;
    const QByteArray longName = QByteArray(60, 'd') + '/' + QByteArray(80, 'f');
    write(directory.filePath(u"a/b.txt"_s), "text\n");
    write(directory.filePath(u"a.txt"_s), "dot before slash\n");
    write(directory.filePath(u"a0"_s), "slash before zero\n");
    write(directory.filePath(u"tool.sh"_s), "#!/bin/sh\n");
    write(directory.filePath(QString::fromLatin1(longName)), "long\n");
    write(directory.filePath(u"größe.txt"_s), "ß\n");
    QVERIFY(QFile::setPermissions(directory.filePath(u"tool.sh"_s), QFile::Permissions(0x7755)));
    QVERIFY(QFile::link(u"nowhere/at/all"_s, directory.filePath(u"link"_s)));
    const auto git = [&](const QString &arguments) {
        return runProgram(u"git"_s, arguments.split(u' '), directory.path());
    };
    git(u"init -q -b main"_s);
    git(u"add ."_s);
    qputenv("GIT_COMMITTER_DATE", "2019-03-04T05:06:07Z");
    git(u"-c user.name=n -c user.email=e commit -q -m m"_s);
    qunsetenv("GIT_COMMITTER_DATE");
    const QString id = git(u"rev-parse HEAD"_s);
    git(u"archive --prefix=top-%1/ --output=made.tar HEAD"_s.arg(id));
    const QByteArray expected = read(directory.filePath(u"made.tar"_s));
    QVERIFY(QFile::remove(directory.filePath(u"made.tar"_s)));
    QVERIFY(QDir(directory.filePath(u".git"_s)).removeRecursively());

    Tree tree;
    QCOMPARE(tree.addFrom(directory.path()), std::nullopt);
    const QByteArray made = tarball(
        tree,
        "top-" + id.toLatin1(),
        id.toLatin1(),
        QDateTime::fromString(u"2019-03-04T05:06:07Z"_s, Qt::ISODate));

    QVERIFY(!expected.isEmpty());
    QVERIFY2(made == expected, "the archives differ");
}

void tst_DemoServer::veryLongNamesAndTargetsAreKept()
{
    const QByteArray longName(300, 'n');
    const QByteArray longTarget(200, 't');
    Tree tree;
    tree.addFile(longName, "content");
    tree.add("link", {Tree::Entry::Link, longTarget});

    const QList<ArchiveEntry> entries
        = entriesOf(tarball(tree, "top", QByteArray(40, '0'), QDateTime::fromSecsSinceEpoch(0)));

    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries.at(1).content, longTarget);
    QCOMPARE(entries.at(2).name, QByteArray("top/" + longName));
    QCOMPARE(entries.at(2).content, "content"_ba);
}

void tst_DemoServer::theFirstArchiveIsChunkedAndTheNextHasALength()
{
    DemoServer server;
    server.gitlab().addProject(project(42, u"hello"_s));

    const Result fresh = get(server.url(archivePath(42)));
    const Result cached = get(server.url(archivePath(42)));

    QCOMPARE(fresh.headers.value("transfer-encoding"), "chunked"_ba);
    QVERIFY(!fresh.headers.contains("content-length"));
    QCOMPARE(cached.headers.value("content-length"), QByteArray::number(cached.body.size()));
    QCOMPARE(cached.headers.value("accept-ranges"), "bytes"_ba);
    QCOMPARE(cached.body, fresh.body);
}

void tst_DemoServer::aCommitGivesANewTopDirectoryAndActivity()
{
    DemoServer server;
    server.gitlab().addProject(project(42, u"hello"_s));
    const QByteArray before = server.gitlab().project(u"hello"_s)->topDirectory();
    const QDateTime old = QDateTime::fromSecsSinceEpoch(1'000'000'000, QTimeZone::UTC);
    const QDateTime now = QDateTime::currentDateTimeUtc();

    QVERIFY(server.gitlab().commit(u"hello"_s, old));

    const QByteArray after = server.gitlab().project(u"hello"_s)->topDirectory();
    QVERIFY(after != before);
    QCOMPARE(entriesOf(get(server.url(archivePath(42))).body).first().name, after + '/');
    const QString activity
        = get(server.url(u"/api/v4/projects/42"_s)).object().value("last_activity_at"_L1).toString();
    QVERIFY(activity.endsWith(u'Z') && activity.contains(u'.'));
    QVERIFY(QDateTime::fromString(activity, Qt::ISODateWithMs) >= now);
    QVERIFY(!server.gitlab().commit(u"unknown"_s));
}

void tst_DemoServer::anAvatarIsServedWithItsType()
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

void tst_DemoServer::aLostAvatarLeadsToTheSignInPage()
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

void tst_DemoServer::anAnswerReplacesTheOrdinaryOne()
{
    DemoServer server;
    server.answer(u"/api/v4/groups"_s, 503, "down", {{"Retry-After", "5"}});

    const Result result = get(server.url(u"/api/v4/groups?search=x"_s));

    QCOMPARE(result.status, 503);
    QCOMPARE(result.body, "down"_ba);
    QCOMPARE(result.headers.value("Retry-After"), "5"_ba);
}

void tst_DemoServer::theLastAnswerOfARouteCounts()
{
    DemoServer server;
    server.answer(u"/a/*"_s, 200, "all");
    server.answer(u"/a/b"_s, 200, "one");

    QCOMPARE(get(server.url(u"/a/b"_s)).body, "one"_ba);
    QCOMPARE(get(server.url(u"/a/c"_s)).body, "all"_ba);
}

void tst_DemoServer::restoringBringsTheOrdinaryAnswersBack()
{
    DemoServer server;
    server.answer(u"*"_s, 500);
    server.addFault(u"*"_s, {.cutAfter = Fault::BEFORE_HEAD});

    server.restore();

    QCOMPARE(get(server.url(u"/api/v4/groups"_s)).status, 200);
}

void tst_DemoServer::anAnswerMayPointAnywhere()
{
    DemoServer server;
    server.answer(u"/there"_s, Reply::redirect("file:///etc/hostname"));

    const Result result = get(server.url(u"/there"_s));

    QCOMPARE(result.status, 302);
    QCOMPARE(result.headers.value("location"), "file:///etc/hostname"_ba);
}

void tst_DemoServer::anAnswerMayLieAboutItsLength()
{
    DemoServer server;
    server.answer(u"/short"_s, 200, "abc", {{"Content-Length", "100"}});

    const QByteArray bytes = bytesFrom(server, "/short");

    QCOMPARE(bytes.toLower().count("content-length: 100\r\n"), 1);
    QVERIFY(bytes.endsWith("\r\n\r\nabc"));
}

void tst_DemoServer::anAnswerMayHaveAnUnknownStatus()
{
    DemoServer server;
    server.answer(u"/odd"_s, 299, "odd");

    const Result result = get(server.url(u"/odd"_s));

    QCOMPARE(result.status, 299);
    QCOMPARE(result.body, "odd"_ba);
}

void tst_DemoServer::anAnswerMayHaveAFloodOfHeaders()
{
    DemoServer server;
    DemoServer::Headers headers;
    for (int count = 0; count < 500; ++count)
        headers.append({"X-Flood-" + QByteArray::number(count), QByteArray(50, 'x')});
    server.answer(u"/flood"_s, 200, "body", headers);

    const QByteArray bytes = bytesFrom(server, "/flood", "body");

    QCOMPARE(bytes.toLower().count("\r\nx-flood-"), 500);
}

void tst_DemoServer::aRequestIsRecordedAsItCame()
{
    DemoServer server;
    QSignalSpy received(&server, &DemoServer::requestReceived);

    get(server.url(u"/api/v4/groups?search=\"a/b\""_s), {{"Content-Type", "application/json"}});

    QCOMPARE(received.size(), 1);
    const Request request = server.requests(u"/api/v4/groups"_s).value(0);
    QCOMPARE(request.method, "GET"_ba);
    QCOMPARE(request.rawQuery(), "search=%22a/b%22"_ba);
    QCOMPARE(request.header("content-type"), "application/json"_ba);
    server.clearRequests();
    QCOMPARE(server.requestCount(), 0);

    // Not every client encodes what Qt's encodes.
    bytesFrom(server, "/api/v4/groups?search=\"a\"", "]");
    QCOMPARE(server.requests().value(0).rawQuery(), "search=\"a\""_ba);
}

void tst_DemoServer::requestsAreRecordedInTheOrderOfTheirComing()
{
    DemoServer server;

    for (const QString &path : {u"/a"_s, u"/b"_s, u"/c"_s})
        get(server.url(path));

    QStringList paths;
    for (const Request &request : server.requests())
        paths.append(request.path());
    QCOMPARE(paths, QStringList({u"/a"_s, u"/b"_s, u"/c"_s}));
}

void tst_DemoServer::aHeldRequestWaitsForItsRelease()
{
    DemoServer server;
    server.hold(u"/api/v4/*"_s);
    const std::unique_ptr<QNetworkReply> reply = start(server.url(u"/api/v4/groups"_s));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QTRY_COMPARE(server.heldCount(u"/api/v4/groups"_s), 1);
    QVERIFY(!reply->isFinished());

    server.release(u"/api/v4/*"_s);

    QVERIFY(finished.wait());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(server.heldCount(), 0);
}

void tst_DemoServer::theNextHeldRequestIsReleasedAlone()
{
    DemoServer server;
    server.hold(u"*"_s);
    const std::unique_ptr<QNetworkReply> first = start(server.url(u"/a"_s));
    QTRY_COMPARE(server.heldCount(), 1);
    const std::unique_ptr<QNetworkReply> second = start(server.url(u"/b"_s));
    QTRY_COMPARE(server.heldCount(), 2);

    QVERIFY(server.releaseNext(u"*"_s));

    QTRY_VERIFY(first->isFinished());
    QVERIFY(!second->isFinished());
    QCOMPARE(server.heldCount(), 1);
    QVERIFY(!server.releaseNext(u"/a"_s));
}

void tst_DemoServer::theHighestConcurrencyIsRemembered()
{
    DemoServer server;
    server.hold(u"/x/*"_s);
    const std::unique_ptr<QNetworkReply> first = start(server.url(u"/x/a"_s));
    const std::unique_ptr<QNetworkReply> second = start(server.url(u"/x/b"_s));
    QTRY_COMPARE(server.heldCount(), 2);
    get(server.url(u"/y"_s));

    server.release(u"/x/*"_s);

    QTRY_VERIFY(first->isFinished() && second->isFinished());
    get(server.url(u"/x/c"_s));
    QCOMPARE(server.peakConcurrency(u"/x/*"_s), 2);
    QCOMPARE(server.peakConcurrency(u"/x/c"_s), 1);
    QCOMPARE(server.peakConcurrency(), 3);
}

void tst_DemoServer::aLostClientEndsTheWaiting()
{
    DemoServer server;
    server.hold(u"*"_s);
    const std::unique_ptr<QNetworkReply> reply = start(server.url(u"/x"_s));
    QTRY_COMPARE(server.heldCount(), 1);

    reply->abort();

    QTRY_COMPARE(server.heldCount(), 0);
}

void tst_DemoServer::heldConnectionsCanBeReset()
{
    DemoServer server;
    server.hold(u"/x"_s);
    const std::unique_ptr<QNetworkReply> reply = start(server.url(u"/x"_s));
    QTRY_COMPARE(server.heldCount(), 1);

    server.release(u"/other"_s);
    server.resetHeld(u"/x"_s);

    QTRY_VERIFY(reply->isFinished() || server.heldCount() > 0); // the client may try again by itself
    server.resetHeld(u"/x"_s);
    QTRY_VERIFY(reply->isFinished());
    QVERIFY(reply->error() != QNetworkReply::NoError);
}

void tst_DemoServer::aServerCanGoWhileItHolds()
{
    auto server = std::make_unique<DemoServer>();
    server->hold(u"*"_s);
    const std::unique_ptr<QNetworkReply> reply = start(server->url(u"/x"_s));
    QTRY_COMPARE(server->heldCount(), 1);

    server.reset();

    QTRY_VERIFY(reply->isFinished());
    QVERIFY(reply->error() != QNetworkReply::NoError);
}

void tst_DemoServer::anAnswerIsDelayed()
{
    DemoServer server;
    const auto delay = std::chrono::milliseconds(150);
    server.addFault(u"*"_s, {.delay = delay});
    QElapsedTimer timer;
    timer.start();

    const Result result = get(server.url(u"/api/v4/groups"_s));

    QVERIFY(timer.durationElapsed() >= delay);
    QCOMPARE(result.status, 200);
}

void tst_DemoServer::aConnectionIsResetBeforeTheHead()
{
    DemoServer server;
    server.addFault(u"*"_s, {.cutAfter = Fault::BEFORE_HEAD});

    QCOMPARE(bytesFrom(server, "/x"), QByteArray());
}

void tst_DemoServer::aConnectionIsResetAfterSomeBytes()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Reset});

    QTcpSocket socket;
    QSignalSpy failed(&socket, &QTcpSocket::errorOccurred);
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    socket.write("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);

    const QByteArray bytes = socket.readAll();
    QVERIFY(bytes.contains("Content-Length: 1000\r\n"));
    QVERIFY(bytes.endsWith("\r\n\r\nxxxxxxxxxx"));
    QCOMPARE(get(server.url(u"/x"_s)).error, QNetworkReply::RemoteHostClosedError);
}

void tst_DemoServer::anAnswerIsCutShortByAnOrderlyClose()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Close});

    const QByteArray bytes = bytesFrom(server, "/x");

    QVERIFY(bytes.contains("Content-Length: 1000\r\n"));
    QVERIFY(bytes.endsWith("\r\n\r\nxxxxxxxxxx"));
}

void tst_DemoServer::allOfALongPartComesBeforeAnOrderlyClose()
{
    DemoServer server;
    const qint64 length = 20'000'000; // bytes, more than the system keeps for a connection
    server.answer(u"/x"_s, 200, QByteArray(length + 1, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = length, .end = Fault::End::Close});

    QCOMPARE(bytesFrom(server, "/x").count('x'), length);
}

void tst_DemoServer::aChunkedAnswerIsCutShortAsIfWhole()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Finish, .framing = Framing::Chunked});

    const Result result = get(server.url(u"/x"_s));

    QCOMPARE(result.error, QNetworkReply::NoError);
    QCOMPARE(result.body, QByteArray(10, 'x'));
}

void tst_DemoServer::aStalledAnswerIsCompletedByTheRelease()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Stall});
    const std::unique_ptr<QNetworkReply> reply = start(server.url(u"/x"_s));
    QTRY_COMPARE(reply->bytesAvailable(), 10);
    QCOMPARE(server.heldCount(u"/x"_s), 1);

    server.release(u"/x"_s);

    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(reply->readAll().size(), 1000);
}

void tst_DemoServer::anAnswerIsChunkedOnDemand()
{
    DemoServer server;
    const QByteArray body(200'000, 'x');
    server.answer(u"/x"_s, 200, body);
    server.addFault(u"/x"_s, {.framing = Framing::Chunked});

    const Result result = get(server.url(u"/x"_s));

    QCOMPARE(result.headers.value("transfer-encoding"), "chunked"_ba);
    QCOMPARE(result.body, body);
}

void tst_DemoServer::rawBytesReplaceAnAnswer()
{
    DemoServer server;
    server.addFault(u"/x"_s, {.bytes = "what is this?"_ba});

    QCOMPARE(bytesFrom(server, "/x"), "what is this?"_ba);
}

void tst_DemoServer::aFaultHitsAsManyRequestsAsAskedFor()
{
    DemoServer server;
    server.addFault(u"*"_s, {.bytes = "no"_ba, .times = 2});

    QCOMPARE(bytesFrom(server, "/api/v4/groups"), "no"_ba);
    QCOMPARE(bytesFrom(server, "/api/v4/groups"), "no"_ba);
    QCOMPARE(get(server.url(u"/api/v4/groups"_s)).status, 200);
}

void tst_DemoServer::aConnectionIsUsedAgainAfterAChunkedCut()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, "whole");
    server.addFault(
        u"/x"_s, {.cutAfter = 2, .end = Fault::End::Finish, .framing = Framing::Chunked, .times = 1});
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    const auto ask = [&](const QByteArray &end) {
        socket.write("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
        QByteArray bytes;
        return QTest::qWaitFor([&] { return (bytes += socket.readAll()).endsWith(end); });
    };

    QVERIFY(ask("\r\n\r\n2\r\nwh\r\n0\r\n\r\n"));
    QVERIFY(ask("\r\n\r\nwhole"));
}

void tst_DemoServer::theOwnSamplesAreReadable()
{
    const Samples samples = readSamples(QFINDTESTDATA("../../demo/samples"));

    QCOMPARE(samples.error, QString());
    QStringList paths;
    for (const Project &sample : samples.projects)
        paths.append(sample.path);
    QVERIFY(paths.contains(u"maps"_s) && paths.contains(u"maps-offline"_s));
    QVERIFY(paths.contains(u"sketches"_s));
}

void tst_DemoServer::picturesArePaintedAsDescribed()
{
    const QTemporaryDir directory;
    write(
        directory.filePath(u"one/project.json"_s), description(R"(, "avatar": {"text": "A", "colour": "red"},
                         "icons": {"icons/128x128/i.png": {"text": "I", "colour": "#00ff00"}})"));
    write(directory.filePath(u"one/files/CMakeLists.txt"_s), "");

    const Samples samples = readSamples(directory.path());

    QCOMPARE(samples.error, QString());
    const Project &one = samples.projects.first();
    QCOMPARE(QImage::fromData(one.avatar, "PNG").size(), QSize(256, 256));
    const QByteArray icon = one.tree.entries().at("icons/128x128/i.png").content;
    QCOMPARE(QImage::fromData(icon, "PNG").size(), QSize(128, 128));
    QVERIFY(one.tree.entries().contains("CMakeLists.txt"));
}

void tst_DemoServer::whatIsWrongWithASampleIsSaid_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("hasFiles");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("no JSON") << "{"_ba << true << u"project.json: "_s;
    QTest::newRow("something missing") << "{\"id\": 1}"_ba << true << u"\"title\" is missing"_s;
    QTest::newRow("wrong kind") << R"({"id": "one"})"_ba << true << u"\"id\" is of a wrong kind"_s;
    QTest::newRow("no time") << description().replace("2024-01-01T00:00:00Z", "soon") << true
                             << u"\"created\" is not a time: \"soon\""_s;
    QTest::newRow("misspelt") << description(R"(, "titel": "T")") << true << u"\"titel\" means nothing"_s;
    QTest::newRow("picture without a colour") << description(R"(, "avatar": {"text": "A"})") << true
                                              << u"\"avatar\" needs a \"text\" and a \"colour\""_s;
    QTest::newRow("no files") << description() << false << u"one/files: "_s;
}

void tst_DemoServer::whatIsWrongWithASampleIsSaid()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, hasFiles);
    QFETCH(QString, complaint);
    const QTemporaryDir directory;
    write(directory.filePath(u"one/project.json"_s), text);
    if (hasFiles)
        write(directory.filePath(u"one/files/a.txt"_s), "a");

    const Samples samples = readSamples(directory.path());

    QVERIFY2(samples.error.contains(complaint), qPrintable(samples.error));
    QVERIFY(samples.error.startsWith(directory.path()));
}

QTEST_MAIN(tst_DemoServer)

#include "tst_demoserver.moc"
