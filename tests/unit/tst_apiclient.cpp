// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One client and one server: how requests look, how answers are judged, how a group is found and listed.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalServer>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>
#include <QTest>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString GROUPS = "/api/v4/groups";
const QString WITHOUT_TLS = "--without-tls";

QByteArray json(const QJsonArray &array)
{
    return QJsonDocument(array).toJson();
}

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

/** Of a server on this machine, with a certificate that nobody trusts. */
QSslConfiguration selfSigned()
{
    const QTemporaryDir directory;
    const QString key = directory.filePath("key.pem");
    const QString certificate = directory.filePath("certificate.pem");
    const int exitCode = QProcess::execute(
        "openssl",
        {"req",
         "-x509",
         "-newkey",
         "rsa:2048",
         "-nodes",
         "-subj",
         "/CN=127.0.0.1",
         "-quiet",
         "-addext",
         "subjectAltName=IP:127.0.0.1",
         "-keyout",
         key,
         "-out",
         certificate});
    if (exitCode != 0)
        qFatal("cannot make a certificate");
    QSslConfiguration encryption;
    encryption.setPrivateKey(QSslKey(readFile(key), QSsl::Rsa));
    encryption.setLocalCertificate(QSslCertificate(readFile(certificate)));
    return encryption;
}

/** One that this process trusts while the object lives. */
class TrustedCertificate final
{
public:
    TrustedCertificate()
    {
        QSslConfiguration trusting = m_previous;
        trusting.addCaCertificate(m_configuration.localCertificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    ~TrustedCertificate() { QSslConfiguration::setDefaultConfiguration(m_previous); }
    Q_DISABLE_COPY_MOVE(TrustedCertificate)

    [[nodiscard]] const QSslConfiguration &configuration() const { return m_configuration; }

private:
    const QSslConfiguration m_configuration = selfSigned();
    const QSslConfiguration m_previous = QSslConfiguration::defaultConfiguration();
};

QStringList networkErrors(const ClientRecorder &recorder)
{
    return recorder.lines().filter("Network error: ");
}

/** Which backend does TLS is settled with its first use, so this has a process of its own. */
int runWithoutTls(const QUrl &url)
{
    if (!QSslSocket::setActiveBackend("cert-only") || QSslSocket::supportsSsl())
        return 1;
    const LogRecorder log;
    const ApiClient client(url, nullptr);
    QObject::connect(&client, &ApiClient::ready, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    const int exitCode = QCoreApplication::exec();
    for (const QString &line : log.lines(LogRecorder::API).filter("SSL"))
        puts(qPrintable(line));
    puts(client.isReady() ? "ready" : "not ready");
    return exitCode;
}

} // namespace

class tst_ApiClient final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();

    // Addresses
    void unusableAddressesAreLoggedAndNeverAsked_data();
    void unusableAddressesAreLoggedAndNeverAsked();
    void theGroupIsThePathWithoutItsOuterSlashes_data();
    void theGroupIsThePathWithoutItsOuterSlashes();
    void theAddressKeepsItsQuery();
    void theAddressKeepsUserAndFragment();
    void nothingIsAskedBeforeTheEventLoopRuns();
    void withoutTlsItIsLoggedAndTheGroupIsStillSearched();

    // Requests
    void theSearchIsAPlainRequestWithAContentType();
    void theListingIsAPlainRequestWithAContentType();
    void eachRequestIsLogged();

    // Outcomes
    void failuresAreReportedOnceWithTheErrorText_data();
    void failuresAreReportedOnceWithTheErrorText();
    void aRefusedConnectionIsReported();
    void anUntrustedCertificateIsAFailure();
    void foreignSchemesFailFromTheEventLoop_data();
    void foreignSchemesFailFromTheEventLoop();
    void ordinaryRedirectsAreFollowed();
    void redirectsToALocalSocketAreRefused_data();
    void redirectsToALocalSocketAreRefused();
    void redirectsToLessSafetyAreRefused();
    void redirectsToMoreSafetyAreFollowed();
    void anyStatusOfSuccessIsASuccess_data();
    void anyStatusOfSuccessIsASuccess();
    void anEmptyAnswerIsANullDocument();
    void anAnswerThatIsNoJsonIsLogged();
    void anEmptyStatusIsEmittedButNotLogged();

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

    // The end
    void aDestroyedClientCallsNobody();
    void aDestroyedClientDropsItsConnection();
};

void tst_ApiClient::cleanupTestCase()
{
    quitApplication();
}

void tst_ApiClient::unusableAddressesAreLoggedAndNeverAsked_data()
{
    QTest::addColumn<QString>("address"); // "%1": the server's port
    QTest::addColumn<QString>("line");

    const QString notValid = "Provided repository url is not valid: \"%1\"";
    const QString noGroup = "Provided repository url has no group: \"%1\"";
    QTest::newRow("empty") << "" << notValid.arg("");
    QTest::newRow("relative") << "samples" << notValid.arg("samples");
    QTest::newRow("relative to a host") << "//127.0.0.1/samples" << notValid.arg("//127.0.0.1/samples");
    QTest::newRow("local file") << "file:///samples" << notValid.arg("file:///samples");
    QTest::newRow("bad port") << "http://127.0.0.1:99999/samples" << notValid.arg("");
    QTest::newRow("host alone") << "http://127.0.0.1:%1" << noGroup.arg("http://127.0.0.1:%1");
    QTest::newRow("one slash") << "http://127.0.0.1:%1/" << noGroup.arg("http://127.0.0.1:%1/");
    QTest::newRow("two slashes") << "http://127.0.0.1:%1//" << noGroup.arg("http://127.0.0.1:%1//");
}

void tst_ApiClient::unusableAddressesAreLoggedAndNeverAsked()
{
    QFETCH(QString, address);
    QFETCH(QString, line);
    DemoServer server;
    const LogRecorder log;
    address.replace("%1", QString::number(server.port()));
    line.replace("%1", QString::number(server.port()));

    const ApiClient client(QUrl(address), nullptr);
    const ClientRecorder recorder(client);

    QCOMPARE(log.lines(LogRecorder::API), QStringList{line});
    // Whatever it had queued would come before what a later client has.
    const ApiClient later(server.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(recorder.lines(), QStringList());
    QVERIFY(!client.isReady());
}

void tst_ApiClient::theGroupIsThePathWithoutItsOuterSlashes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("query");

    QTest::newRow("plain") << "/examples" << QByteArray("search=%22examples%22");
    QTest::newRow("closing slash") << "/examples/" << QByteArray("search=%22examples%22");
    QTest::newRow("subgroup") << "/a/b" << QByteArray("search=%22a/b%22");
    QTest::newRow("doubled slashes") << "//a/b//" << QByteArray("search=%22/a/b/%22");
    QTest::newRow("encoded letters") << "/s%C3%A4mples" << QByteArray("search=%22s%C3%A4mples%22");
    QTest::newRow("space") << "/my group" << QByteArray("search=%22my%20group%22");
}

void tst_ApiClient::theGroupIsThePathWithoutItsOuterSlashes()
{
    QFETCH(const QString, path);
    QFETCH(const QByteArray, query);
    DemoServer server;

    const ApiClient client(QUrl("http://127.0.0.1:" + QString::number(server.port()) + path), nullptr);

    QTRY_COMPARE(server.requestCount(), 1);
    QCOMPARE(server.requests().constFirst().rawPath(), "/api/v4/groups");
    QCOMPARE(server.requests().constFirst().rawQuery(), query);
}

void tst_ApiClient::theAddressKeepsItsQuery()
{
    DemoServer server;

    const ApiClient client(QUrl(server.groupUrl().toString() + "?x=1"), nullptr);

    QTRY_COMPARE(server.requestCount(), 1);
    QCOMPARE(server.requests().constFirst().rawPath(), "/api/v4");
    QCOMPARE(server.requests().constFirst().rawQuery(), "x=1/groups?search=%22samples%22");
}

void tst_ApiClient::theAddressKeepsUserAndFragment()
{
    DemoServer server;
    const LogRecorder log;
    const QString host = "127.0.0.1:" + QString::number(server.port());

    const ApiClient client(QUrl("http://user:word@" + host + "/samples"), nullptr);
    const ApiClient other(QUrl("http://" + host + "/samples#part"), nullptr);

    QTRY_COMPARE(server.requestCount(), 2);
    QCOMPARE(
        log.lines(LogRecorder::API).filter("Requesting:"),
        (QStringList{
            "Requesting: \"http://user:word@" + host + "/api/v4/groups?search=%22samples%22\"",
            "Requesting: \"http://" + host + "/api/v4#part/groups?search=%22samples%22\""}));
    QStringList targets;
    for (const Request &request : server.requests())
        targets.append(QString::fromLatin1(request.target));
    targets.sort();
    QCOMPARE(targets, (QStringList{"/api/v4", "/api/v4/groups?search=%22samples%22"}));
}

void tst_ApiClient::nothingIsAskedBeforeTheEventLoopRuns()
{
    DemoServer server;
    const LogRecorder log;

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    const QStringList atFirst = log.lines(LogRecorder::API);

    QCOMPARE(atFirst, QStringList());
    QTRY_VERIFY(recorder.isReady());
    QCOMPARE(recorder.lines(), (QStringList{"Searching examples", "", "API client is ready", "ready"}));
}

void tst_ApiClient::withoutTlsItIsLoggedAndTheGroupIsStillSearched()
{
    DemoServer server;
    QProcess process;

    process.start(QCoreApplication::applicationFilePath(), {WITHOUT_TLS, server.groupUrl().toString()});

    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 20'000);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(
        QString::fromUtf8(process.readAllStandardOutput()),
        "Platform SSL support is not detected - connection to the repositories most likely will not be "
        "established!\nready\n");
    QCOMPARE(server.requestCount(GROUPS), 1);
}

void tst_ApiClient::theSearchIsAPlainRequestWithAContentType()
{
    DemoServer server;

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
    QCOMPARE(server.requestCount(), 1);
    const Request request = server.requests().constFirst();
    QCOMPARE(request.method, "GET");
    QCOMPARE(request.target, "/api/v4/groups?search=%22samples%22");
    QCOMPARE(request.header("Content-Type"), "application/json");
    for (const char *header : {"Accept", "Authorization", "Private-Token", "Cookie"})
        QVERIFY2(!request.headers.contains(header), header);
    QVERIFY(request.body.isEmpty());
}

void tst_ApiClient::theListingIsAPlainRequestWithAContentType()
{
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    QTRY_VERIFY(client.isReady());
    server.clearRequests();

    client.fetch();

    QTRY_COMPARE(recorder.count("fetched 0"), 1);
    QCOMPARE(server.requestCount(), 1);
    const Request request = server.requests().constFirst();
    QCOMPARE(request.method, "GET");
    QCOMPARE(request.target, QString("/api/v4/groups/%1").arg(server.gitlab().group().id).toLatin1());
    QCOMPARE(request.header("Content-Type"), "application/json");
    QVERIFY(!request.headers.contains("Accept"));
}

void tst_ApiClient::eachRequestIsLogged()
{
    DemoServer server;
    const LogRecorder log;
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    connect(&client, &ApiClient::ready, &client, &ApiClient::fetch);

    QTRY_COMPARE(recorder.count("fetched 0"), 1);

    const QString base = server.url("/api/v4/groups").toString();
    QCOMPARE(
        log.pluginLines(),
        (QStringList{
            "api: Status: \"Searching examples\"",
            "api: Requesting: \"" + base + "?search=%22samples%22\"",
            "api: Status: \"API client is ready\"",
            "api: Status: \"Fetch examples\"",
            "api: Requesting: \"" + base + '/' + QString::number(server.gitlab().group().id) + '"'}));
}

void tst_ApiClient::failuresAreReportedOnceWithTheErrorText_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("text"); // how the error text ends; the network layer's own

    const QByteArray group = json(QJsonArray{QJsonObject{{"id", 1}}});
    QTest::newRow("not found") << Reply::make(404, "{}") << Fault() << "server replied: Not Found";
    QTest::newRow("forbidden") << Reply::make(403, "{}") << Fault() << "server replied: Forbidden";
    QTest::newRow("unauthorised") << Reply::make(401, "{}") << Fault() << "requires authentication";
    QTest::newRow("broken server") << Reply::make(500, group) << Fault()
                                   << "server replied: Internal Server Error";
    QTest::newRow("redirect without a target") << Reply::make(302, group) << Fault() << "";
    QTest::newRow("redirect to a file") << Reply::redirect("file:///etc/hostname") << Fault() << "";
    QTest::newRow("not modified") << Reply::make(304, {}) << Fault() << "";
    QTest::newRow("reset before the head")
        << Reply::make(200, group) << Fault{.cutAfter = Fault::BEFORE_HEAD, .end = Fault::End::Reset} << "";
    QTest::newRow("reset in the body") << Reply::make(200, group + QByteArray(100'000, ' '))
                                       << Fault{.cutAfter = 10, .end = Fault::End::Reset} << "";
    QTest::newRow("what is not HTTP")
        << Reply::make(200, group) << Fault{.bytes = "SSH-2.0-OpenSSH_9.2\r\n"} << "";
}

void tst_ApiClient::failuresAreReportedOnceWithTheErrorText()
{
    QFETCH(const Reply, reply);
    QFETCH(const Fault, fault);
    QFETCH(const QString, text);
    DemoServer server;
    server.answer(GROUPS, reply);
    server.addFault(GROUPS, fault);
    const LogRecorder log;

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(networkErrors(recorder).size(), 1);
    const QString error = networkErrors(recorder).constFirst();
    QVERIFY2(error.endsWith(text) && error != "Network error: ", qPrintable(error));
    QVERIFY(log.lines(LogRecorder::API).constLast().startsWith("Status: \"Network error: "));
    // What might come a second time comes before a later client's answer.
    server.restore();
    const ApiClient later(server.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QCOMPARE(recorder.lines(), (QStringList{"Searching examples", error}));
    QVERIFY(!client.isReady());
}

void tst_ApiClient::aRefusedConnectionIsReported()
{
    QUrl url;
    {
        const DemoServer gone;
        url = gone.groupUrl();
    }

    const ApiClient client(url, nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(recorder.lines(), (QStringList{"Searching examples", "Network error: Connection refused"}));
}

void tst_ApiClient::anUntrustedCertificateIsAFailure()
{
    const QSslConfiguration encryption = selfSigned();
    DemoServer server(DemoServer::Setup{.encryption = encryption});
    QVERIFY(server.isListening());

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(networkErrors(recorder).size(), 1);
    QVERIFY2(recorder.lines().constLast().contains("self-signed"), qPrintable(recorder.lines().constLast()));
    QCOMPARE(server.requestCount(), 0);
}

void tst_ApiClient::foreignSchemesFailFromTheEventLoop_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("error");

    QTest::newRow("ftp") << "ftp://127.0.0.1/samples" << "Network error: Protocol \"ftp\" is unknown";
    QTest::newRow("data") << "data:/samples" << "Network error: Protocol \"data\" is unknown";
    QTest::newRow("resource") << "qrc:/samples" << "Network error: Protocol \"qrc\" is unknown";
    QTest::newRow("encrypted, preconnected") << "preconnect-https://127.0.0.1/samples"
                                             << "Network error: Protocol \"preconnect-https\" is unknown";
    QTest::newRow("a local server's socket")
        << "unix+http://127.0.0.1/samples" << "Network error: Protocol \"unix+http\" is unknown";
}

void tst_ApiClient::foreignSchemesFailFromTheEventLoop()
{
    QFETCH(const QString, address);
    QFETCH(const QString, error);

    const ApiClient client(QUrl(address), nullptr);
    const ClientRecorder recorder(client);

    QCOMPARE(recorder.lines(), QStringList());
    QTRY_COMPARE(recorder.lines(), (QStringList{"Searching examples", error}));
    QVERIFY(!client.isReady());
}

void tst_ApiClient::ordinaryRedirectsAreFollowed()
{
    DemoServer server;
    server.answer(GROUPS, Reply::redirect("/moved", 301));
    server.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
    QCOMPARE(server.requestCount("/moved"), 1);
}

void tst_ApiClient::redirectsToALocalSocketAreRefused_data()
{
    QTest::addColumn<QString>("scheme");

    QTest::newRow("plain") << "unix+http";
    QTest::newRow("encrypted") << "unix+https";
}

void tst_ApiClient::redirectsToALocalSocketAreRefused()
{
    QFETCH(const QString, scheme);
    QLocalServer local;
    QVERIFY2(local.listen("local-service"), qPrintable(local.errorString()));
    DemoServer server;
    server.answer(GROUPS, Reply::redirect(scheme.toLatin1() + "://local-service/x"));

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(
        recorder.lines(), (QStringList{"Searching examples", "Network error: Unknown protocol specified"}));
    // What might still be under way comes before a later client's answer.
    server.restore();
    const ApiClient later(server.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QVERIFY(!local.hasPendingConnections());
    QCOMPARE(networkErrors(recorder).size(), 1);
}

void tst_ApiClient::redirectsToLessSafetyAreRefused()
{
    const TrustedCertificate certificate;
    DemoServer plain;
    plain.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));
    DemoServer secure(DemoServer::Setup{.encryption = certificate.configuration()});
    secure.answer(GROUPS, Reply::redirect("/nearer"));
    secure.answer("/nearer", Reply::redirect(plain.url("/moved").toEncoded()));

    const ApiClient client(secure.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(recorder.lines(), (QStringList{"Searching examples", "Network error: Insecure redirect"}));
    QCOMPARE(secure.requestCount("/nearer"), 1);
    QCOMPARE(plain.requestCount(), 0);
}

void tst_ApiClient::redirectsToMoreSafetyAreFollowed()
{
    const TrustedCertificate certificate;
    DemoServer secure(DemoServer::Setup{.encryption = certificate.configuration()});
    secure.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));
    DemoServer plain;
    plain.answer(GROUPS, Reply::redirect(secure.url("/moved").toEncoded()));

    const ApiClient client(plain.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
}

void tst_ApiClient::anyStatusOfSuccessIsASuccess_data()
{
    QTest::addColumn<int>("status");

    for (const int status : {200, 201, 202, 203, 206, 226, 299})
        QTest::addRow("%d", status) << status;
}

void tst_ApiClient::anyStatusOfSuccessIsASuccess()
{
    QFETCH(const int, status);
    DemoServer server;
    server.answer(GROUPS, status, json(QJsonArray{QJsonObject{{"id", 7}}}));

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
}

void tst_ApiClient::anEmptyAnswerIsANullDocument()
{
    DemoServer server;
    server.answer(GROUPS, 204);
    const LogRecorder log;

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(
        recorder.lines(),
        (QStringList{"Searching examples", "", "Search error: request return null object"}));
    QCOMPARE(
        log.lines(LogRecorder::API).sliced(2),
        (QStringList{
            "Json response: \"\"",
            "Json parse error:  \"illegal value\"",
            "Status: \"Search error: request return null object\""}));
}

void tst_ApiClient::anAnswerThatIsNoJsonIsLogged()
{
    DemoServer server;
    server.answer(GROUPS, 200, "<html>", {{"Content-Type", "text/html"}});
    const LogRecorder log;

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_COMPARE(log.lines(LogRecorder::API).size(), 5);
    QCOMPARE(
        log.lines(LogRecorder::API).sliced(1),
        (QStringList{
            "Requesting: \"" + server.url(GROUPS).toString() + "?search=%22samples%22\"",
            "Json response: \"<html>\"",
            "Json parse error:  \"illegal value\"",
            "Status: \"Search error: request return null object\""}));
}

void tst_ApiClient::anEmptyStatusIsEmittedButNotLogged()
{
    DemoServer server;
    const LogRecorder log;

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_VERIFY(recorder.isReady());
    QCOMPARE(recorder.count(""), 1);
    QVERIFY(!log.lines(LogRecorder::API).contains("Status: \"\""));
    QVERIFY(log.lines(LogRecorder::API).contains("Status: \"API client is ready\""));
}

void tst_ApiClient::searchAnswersAreJudged_data()
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

void tst_ApiClient::searchAnswersAreJudged()
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

void tst_ApiClient::ofSeveralGroupsTheFirstIsTaken()
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

void tst_ApiClient::aSearchThatFailedIsNotRepeated()
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

void tst_ApiClient::listingBeforeTheGroupIsKnownIsReported()
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

void tst_ApiClient::listingAnswersAreJudged_data()
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

void tst_ApiClient::listingAnswersAreJudged()
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

void tst_ApiClient::ofSeveralListedGroupsTheFirstIsTaken()
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

void tst_ApiClient::projectsThatAreNotValidAreDropped()
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

void tst_ApiClient::theProjectIsKeptWhole()
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

void tst_ApiClient::listingsAreIndependentOfEachOther()
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

void tst_ApiClient::listingsOfARealisticServerAreRead()
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

void tst_ApiClient::aDestroyedClientCallsNobody()
{
    DemoServer server;
    server.hold(GROUPS);
    auto client = std::make_unique<ApiClient>(server.groupUrl(), nullptr);
    const ClientRecorder recorder(*client);
    QTRY_COMPARE(server.heldCount(), 1);

    client.reset();
    server.release(GROUPS);

    const ApiClient later(server.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QCOMPARE(recorder.lines(), QStringList{"Searching examples"});
}

void tst_ApiClient::aDestroyedClientDropsItsConnection()
{
    DemoServer server;
    server.hold(GROUPS);
    auto client = std::make_unique<ApiClient>(server.groupUrl(), nullptr);
    QTRY_COMPARE(server.heldCount(), 1);

    client.reset();

    QTRY_COMPARE(server.heldCount(), 0);
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == WITHOUT_TLS)
        return runWithoutTls(QUrl(arguments.value(2)));
    tst_ApiClient test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_apiclient.moc"
