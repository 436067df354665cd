// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One client and one server: which addresses it takes, how its requests look, and its end.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QApplication>
#include <QMetaMethod>
#include <QNetworkReply>
#include <QProcess>
#include <QSslSocket>
#include <QTest>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString GROUPS = "/api/v4/groups";
const QString WITHOUT_TLS = "--without-tls";

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
    void theInterfaceIsInItsOrder();

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
    void requestsAreThoseOfABareManagerWithAContentType_data();
    void requestsAreThoseOfABareManagerWithAContentType();
    void eachRequestIsLogged();

    // The end
    void aDestroyedClientCallsNobody();
    void aDestroyedClientDropsItsConnection();
};

void tst_ApiClient::cleanupTestCase()
{
    quitApplication();
}

void tst_ApiClient::theInterfaceIsInItsOrder()
{
    const QMetaObject &meta = ApiClient::staticMetaObject;
    QList<std::pair<QByteArray, QMetaMethod::MethodType>> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods.append({meta.method(i).methodSignature(), meta.method(i).methodType()});

    QCOMPARE(
        methods,
        (QList<std::pair<QByteArray, QMetaMethod::MethodType>>{
            {"ready()", QMetaMethod::Signal},
            {"statusChanged(QString)", QMetaMethod::Signal},
            {"fetched(Repository::Examples)", QMetaMethod::Signal},
            {"downloaded(Repository::ExamplePtr)", QMetaMethod::Signal},
            {"fetch()", QMetaMethod::Slot}}));
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

// Neither a name of ours, as a user agent, nor anything else goes with them.
void tst_ApiClient::requestsAreThoseOfABareManagerWithAContentType_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<QByteArray>("type");

    QTest::newRow("search") << GROUPS << QByteArray("application/json");
    QTest::newRow("listing") << GROUPS + "/*" << QByteArray("application/json");
    QTest::newRow("archive") << QString("/api/v4/projects/*") << QByteArray("application/zip");
    QTest::newRow("picture") << QString("/picture") << QByteArray("image/png");
}

void tst_ApiClient::requestsAreThoseOfABareManagerWithAContentType()
{
    QFETCH(const QString, route);
    QFETCH(const QByteArray, type);
    DemoServer server;
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    connect(&client, &ApiClient::ready, &client, &ApiClient::fetch);
    server.answer("/api/v4/projects/*", 200, "archive");
    client.download(
        Repository::Examples{makeExample("demo", {{"avatar_url", server.url("/picture").toString()}})});
    QTRY_COMPARE(recorder.count("fetched 0"), 1);
    QTRY_COMPARE(recorder.downloads().size(), 1);
    const QList<Request> requests = server.requests(route);
    QCOMPARE(requests.size(), 1);

    QNetworkAccessManager manager;
    QNetworkRequest bare(server.url("/bare"));
    bare.setRawHeader("Content-Type", type);
    const std::unique_ptr<QNetworkReply> reply(manager.get(bare));
    QTRY_VERIFY(reply->isFinished());

    QCOMPARE(
        requests.constFirst().headers.toListOfPairs(),
        server.requests("/bare").constFirst().headers.toListOfPairs());
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

void tst_ApiClient::aDestroyedClientCallsNobody()
{
    DemoServer server;
    server.hold(GROUPS);
    auto client = std::make_unique<ApiClient>(server.groupUrl(), nullptr);
    connect(client.get(), &ApiClient::ready, client.get(), &ApiClient::fetch);
    QTRY_COMPARE(server.heldCount(), 1);
    const LogRecorder log;

    client.reset();
    server.release(GROUPS);

    DemoServer other;
    const ApiClient later(other.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QCOMPARE(server.requestCount(), 1);
    // The later client's own lines are all there are.
    QCOMPARE(
        log.lines(LogRecorder::API),
        (QStringList{
            "Status: \"Searching examples\"",
            "Requesting: \"" + other.url(GROUPS).toString() + "?search=%22samples%22\"",
            "Status: \"API client is ready\""}));
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
