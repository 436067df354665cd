// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// The demo repository's server answers as a GitLab server does, and fails as it is told to.
#include "server/demoserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;

namespace {

struct Result
{
    int status = 0; // 0: none came
    QByteArray body;
    QHttpHeaders headers;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
};

} // namespace

class tst_DemoServer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreePortIsChosen();
    void theGroupIsFoundByTheQuotedPath();
    void anAnswerOfARouteReplacesTheOrdinaryOne();
    void aHeldRequestWaitsForItsRelease();
    void aRequestIsRecordedWithItsRawQuery();
    void anAnswerIsCutByAReset();
    void aLostHoldEndsTheExchange();

private:
    Result get(const QUrl &url, const QHttpHeaders &headers = {});

    QNetworkAccessManager m_network;
};

Result tst_DemoServer::get(const QUrl &url, const QHttpHeaders &headers)
{
    QNetworkRequest request(url);
    request.setHeaders(headers);
    const std::unique_ptr<QNetworkReply> reply(m_network.get(request));
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

void tst_DemoServer::theGroupIsFoundByTheQuotedPath()
{
    DemoServer server;

    const Result result = get(server.url(u"/api/v4/groups?search=\"samples\""_s));

    QCOMPARE(result.status, 200);
    const QJsonArray groups = QJsonDocument::fromJson(result.body).array();
    QCOMPARE(groups.size(), 1);
    QCOMPARE(groups.first().toObject().value("id"_L1).toInteger(), server.gitlab().group().id);
}

void tst_DemoServer::anAnswerOfARouteReplacesTheOrdinaryOne()
{
    DemoServer server;
    server.answer(u"/api/v4/groups"_s, 503, "down", {{"Retry-After", "5"}});

    const Result result = get(server.url(u"/api/v4/groups?search=x"_s));

    QCOMPARE(result.status, 503);
    QCOMPARE(result.body, "down"_ba);
    QCOMPARE(result.headers.value("Retry-After"), "5"_ba);
}

void tst_DemoServer::aHeldRequestWaitsForItsRelease()
{
    DemoServer server;
    server.hold(u"/api/v4/*"_s);
    const std::unique_ptr<QNetworkReply> reply(
        m_network.get(QNetworkRequest(server.url(u"/api/v4/groups"_s))));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QTRY_COMPARE(server.heldCount(u"/api/v4/groups"_s), 1);
    QVERIFY(!reply->isFinished());

    server.release(u"/api/v4/*"_s);

    QVERIFY(finished.wait());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(server.heldCount(), 0);
}

void tst_DemoServer::aRequestIsRecordedWithItsRawQuery()
{
    DemoServer server(DemoServer::Setup{.group = u"a/b"_s});
    QSignalSpy received(&server, &DemoServer::requestReceived);
    QHttpHeaders headers;
    headers.append("Content-Type", "application/json");

    get(server.url(u"/api/v4/groups?search=\"a/b\""_s), headers);

    QCOMPARE(received.size(), 1);
    const Request request = server.requests(u"/api/v4/groups"_s).value(0);
    QCOMPARE(request.method, "GET"_ba);
    QCOMPARE(request.rawQuery(), "search=%22a/b%22"_ba);
    QCOMPARE(request.header("content-type"), "application/json"_ba);
}

void tst_DemoServer::anAnswerIsCutByAReset()
{
    DemoServer server;
    server.answer(u"/file"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/file"_s, {.cutAfter = 10, .end = Fault::End::Reset});

    const Result result = get(server.url(u"/file"_s));

    QVERIFY(result.error != QNetworkReply::NoError);
}

void tst_DemoServer::aLostHoldEndsTheExchange()
{
    DemoServer server;
    server.hold(u"*"_s);
    std::unique_ptr<QNetworkReply> reply(m_network.get(QNetworkRequest(server.url(u"/x"_s))));
    QTRY_COMPARE(server.heldCount(), 1);

    reply->abort();

    QTRY_COMPARE(server.heldCount(), 0);
}

QTEST_MAIN(tst_DemoServer)

#include "tst_demoserver.moc"
