// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What counts as a success of a request, and how a failure is reported.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/certificate.h"
#include "server/demoserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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

QStringList networkErrors(const ClientRecorder &recorder)
{
    return recorder.lines().filter("Network error: ");
}

} // namespace

class tst_Outcomes final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();
    void failuresAreReportedOnceWithTheErrorText_data();
    void failuresAreReportedOnceWithTheErrorText();
    void aRefusedConnectionIsReported();
    void aHostThatIsNotFoundIsReported();
    void anUntrustedCertificateIsAFailure();
    void anErrorCountsMoreThanAStatus();
    void foreignSchemesFailFromTheEventLoop_data();
    void foreignSchemesFailFromTheEventLoop();
    void anyStatusOfSuccessIsASuccess_data();
    void anyStatusOfSuccessIsASuccess();
    void anEmptyAnswerIsANullDocument();
    void anAnswerThatIsNoJsonIsLogged();
    void anEmptyStatusIsEmittedButNotLogged();
};

void tst_Outcomes::cleanupTestCase()
{
    quitApplication();
}

void tst_Outcomes::failuresAreReportedOnceWithTheErrorText_data()
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

void tst_Outcomes::failuresAreReportedOnceWithTheErrorText()
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

void tst_Outcomes::aRefusedConnectionIsReported()
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

// A name of more than 255 letters is refused before any server for names is asked.
void tst_Outcomes::aHostThatIsNotFoundIsReported()
{
    const QString host = (QString(60, 'x') + '.').repeated(5) + "invalid";

    const ApiClient client(QUrl("http://" + host + "/samples"), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(
        recorder.lines(), (QStringList{"Searching examples", "Network error: Host " + host + " not found"}));
    QVERIFY(!client.isReady());
}

void tst_Outcomes::anUntrustedCertificateIsAFailure()
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

void tst_Outcomes::anErrorCountsMoreThanAStatus()
{
    DemoServer server;
    server.answer(GROUPS, 200, json(QJsonArray{QJsonObject{{"id", 7}}}) + QByteArray(100'000, ' '));
    // The head and all that matters come, and then the connection breaks off.
    server.addFault(GROUPS, {.cutAfter = 90'000, .end = Fault::End::Reset});

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(networkErrors(recorder).size(), 1);
    QVERIFY(!client.isReady());
}

void tst_Outcomes::foreignSchemesFailFromTheEventLoop_data()
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

void tst_Outcomes::foreignSchemesFailFromTheEventLoop()
{
    QFETCH(const QString, address);
    QFETCH(const QString, error);
    QStringList events;
    const ApiClient client(QUrl(address), nullptr);
    connect(&client, &ApiClient::statusChanged, this, [&events](const QString &status) {
        events.append(status);
        // What is queued now, while the request is being made, comes before its failure.
        QMetaObject::invokeMethod(qApp, [&events] { events.append("a turn"); }, Qt::QueuedConnection);
    });

    QTRY_COMPARE(events, (QStringList{"Searching examples", "a turn", error, "a turn"}));
    QVERIFY(!client.isReady());
}

void tst_Outcomes::anyStatusOfSuccessIsASuccess_data()
{
    QTest::addColumn<int>("status");

    for (const int status : {200, 201, 202, 203, 206, 226, 299})
        QTest::addRow("%d", status) << status;
}

void tst_Outcomes::anyStatusOfSuccessIsASuccess()
{
    QFETCH(const int, status);
    DemoServer server;
    server.answer(GROUPS, status, json(QJsonArray{QJsonObject{{"id", 7}}}));

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
}

void tst_Outcomes::anEmptyAnswerIsANullDocument()
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

void tst_Outcomes::anAnswerThatIsNoJsonIsLogged()
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

void tst_Outcomes::anEmptyStatusIsEmittedButNotLogged()
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

QTEST_MAIN(tst_Outcomes)
#include "tst_outcomes.moc"
