// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The demo repository's server answers what it is told to, remembers what it was asked, and holds it.

#include "common/certificate.h"
#include "common/demofixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;
using namespace Varnel::Test;

class tst_DemoServer final : public DemoFixture
{
    Q_OBJECT

private slots:
    void aFreePortIsChosen();
    void aPortInUseIsReported();
    void encryptedConnectionsAreServed();

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
};

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
    const DemoServer server(DemoServer::Setup{.encryption = selfSigned()});
    QCOMPARE(server.url().scheme(), u"https"_s);

    QCOMPARE(get(server.url(u"/api/v4/groups"_s)).error, QNetworkReply::SslHandshakeFailedError);

    const std::unique_ptr<QNetworkReply> trusting = start(server.url(u"/api/v4/groups"_s));
    trusting->ignoreSslErrors();
    QSignalSpy finished(trusting.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());
    QCOMPARE(trusting->error(), QNetworkReply::NoError);
    QCOMPARE(server.requestCount(), 1);
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

QTEST_MAIN(tst_DemoServer)
#include "tst_demoserver.moc"
