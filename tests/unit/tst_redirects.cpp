// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Redirects: followed as the network layer follows them, but only to http and https.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/certificate.h"
#include "server/demoserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QNetworkReply>
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

class tst_Redirects final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();
    void ordinaryRedirectsAreFollowed();
    void aRedirectedRequestHasNoContentType();
    void cookiesOfARedirectGoWithTheNextRequest();
    void asManyRedirectsAsTheNetworkLayerFollows();
    void redirectsFailWithTheNetworkLayersTexts_data();
    void redirectsFailWithTheNetworkLayersTexts();
    void redirectsToALocalSocketAreRefused_data();
    void redirectsToALocalSocketAreRefused();
    void redirectsToLessSafetyAreRefused();
    void redirectsToMoreSafetyAreFollowed();
};

void tst_Redirects::cleanupTestCase()
{
    quitApplication();
}

void tst_Redirects::ordinaryRedirectsAreFollowed()
{
    DemoServer server;
    server.answer(GROUPS, Reply::redirect("/moved", 301));
    server.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
    QCOMPARE(server.requestCount("/moved"), 1);
}

// As the network layer has it, which leaves it out of the second request.
void tst_Redirects::aRedirectedRequestHasNoContentType()
{
    DemoServer server;
    server.answer(GROUPS, Reply::redirect("/moved", 301));
    server.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));
    QNetworkAccessManager manager;
    QNetworkRequest bare(server.url(GROUPS));
    bare.setRawHeader("Content-Type", "application/json");
    const std::unique_ptr<QNetworkReply> reply(manager.get(bare));
    QTRY_VERIFY(reply->isFinished());

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
    const QList<Request> requests = server.requests("/moved");
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.at(1).headers.toListOfPairs(), requests.at(0).headers.toListOfPairs());
    QVERIFY(!requests.at(1).headers.contains("Content-Type"));
}

void tst_Redirects::cookiesOfARedirectGoWithTheNextRequest()
{
    DemoServer server;
    Reply redirect = Reply::redirect("/moved");
    redirect.headers.append("Set-Cookie", "a=b; Path=/");
    server.answer(GROUPS, redirect);
    server.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));

    const ApiClient client(server.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
    QCOMPARE(server.requests("/moved").constFirst().header("Cookie"), "a=b");
}

void tst_Redirects::asManyRedirectsAsTheNetworkLayerFollows()
{
    DemoServer server;
    server.answer("*", Reply::redirect("/again"));
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(server.groupUrl())));
    QTRY_VERIFY(reply->isFinished());
    const int count = server.requestCount();
    server.clearRequests();

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(networkErrors(recorder), QStringList{"Network error: " + reply->errorString()});
    QCOMPARE(server.requestCount(), count);
    QCOMPARE(count, 51);
}

void tst_Redirects::redirectsFailWithTheNetworkLayersTexts_data()
{
    QTest::addColumn<QByteArray>("location");

    QTest::newRow("nowhere") << QByteArray();
    QTest::newRow("malformed") << QByteArray("http://[::1");
    QTest::newRow("file") << QByteArray("file:///etc/hostname");
    QTest::newRow("nobody answers") << QByteArray("http://127.0.0.1:1/");
}

void tst_Redirects::redirectsFailWithTheNetworkLayersTexts()
{
    QFETCH(const QByteArray, location);
    DemoServer server;
    server.answer(GROUPS, Reply::redirect(location));
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(server.url(GROUPS))));
    QTRY_VERIFY(reply->isFinished());
    QVERIFY(reply->error() != QNetworkReply::NoError);

    const ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);

    QTRY_COMPARE(networkErrors(recorder), QStringList{"Network error: " + reply->errorString()});
}

void tst_Redirects::redirectsToALocalSocketAreRefused_data()
{
    QTest::addColumn<QString>("scheme");

    QTest::newRow("plain") << "unix+http";
    QTest::newRow("encrypted") << "unix+https";
}

void tst_Redirects::redirectsToALocalSocketAreRefused()
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

void tst_Redirects::redirectsToLessSafetyAreRefused()
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

void tst_Redirects::redirectsToMoreSafetyAreFollowed()
{
    const TrustedCertificate certificate;
    DemoServer secure(DemoServer::Setup{.encryption = certificate.configuration()});
    secure.answer("/moved", 200, json(QJsonArray{QJsonObject{{"id", 7}}}));
    DemoServer plain;
    plain.answer(GROUPS, Reply::redirect(secure.url("/moved").toEncoded()));

    const ApiClient client(plain.groupUrl(), nullptr);

    QTRY_VERIFY(client.isReady());
}

QTEST_MAIN(tst_Redirects)
#include "tst_redirects.moc"
