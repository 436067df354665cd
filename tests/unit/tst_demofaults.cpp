// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The demo repository's server fails as it is told to.

#include "common/demofixture.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;
using namespace Varnel::Test;

class tst_DemoFaults final : public DemoFixture
{
    Q_OBJECT

private slots:
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
};

void tst_DemoFaults::anAnswerIsDelayed()
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

void tst_DemoFaults::aConnectionIsResetBeforeTheHead()
{
    DemoServer server;
    server.addFault(u"*"_s, {.cutAfter = Fault::BEFORE_HEAD});

    QCOMPARE(bytesFrom(server, "/x"), QByteArray());
}

void tst_DemoFaults::aConnectionIsResetAfterSomeBytes()
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

void tst_DemoFaults::anAnswerIsCutShortByAnOrderlyClose()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Close});

    const QByteArray bytes = bytesFrom(server, "/x");

    QVERIFY(bytes.contains("Content-Length: 1000\r\n"));
    QVERIFY(bytes.endsWith("\r\n\r\nxxxxxxxxxx"));
}

void tst_DemoFaults::allOfALongPartComesBeforeAnOrderlyClose()
{
    DemoServer server;
    const qint64 length = 20'000'000; // bytes, more than the system keeps for a connection
    server.answer(u"/x"_s, 200, QByteArray(length + 1, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = length, .end = Fault::End::Close});

    QCOMPARE(bytesFrom(server, "/x").count('x'), length);
}

void tst_DemoFaults::aChunkedAnswerIsCutShortAsIfWhole()
{
    DemoServer server;
    server.answer(u"/x"_s, 200, QByteArray(1000, 'x'));
    server.addFault(u"/x"_s, {.cutAfter = 10, .end = Fault::End::Finish, .framing = Framing::Chunked});

    const Result result = get(server.url(u"/x"_s));

    QCOMPARE(result.error, QNetworkReply::NoError);
    QCOMPARE(result.body, QByteArray(10, 'x'));
}

void tst_DemoFaults::aStalledAnswerIsCompletedByTheRelease()
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

void tst_DemoFaults::anAnswerIsChunkedOnDemand()
{
    DemoServer server;
    const QByteArray body(200'000, 'x');
    server.answer(u"/x"_s, 200, body);
    server.addFault(u"/x"_s, {.framing = Framing::Chunked});

    const Result result = get(server.url(u"/x"_s));

    QCOMPARE(result.headers.value("transfer-encoding"), "chunked"_ba);
    QCOMPARE(result.body, body);
}

void tst_DemoFaults::rawBytesReplaceAnAnswer()
{
    DemoServer server;
    server.addFault(u"/x"_s, {.bytes = "what is this?"_ba});

    QCOMPARE(bytesFrom(server, "/x"), "what is this?"_ba);
}

void tst_DemoFaults::aFaultHitsAsManyRequestsAsAskedFor()
{
    DemoServer server;
    server.addFault(u"*"_s, {.bytes = "no"_ba, .times = 2});

    QCOMPARE(bytesFrom(server, "/api/v4/groups"), "no"_ba);
    QCOMPARE(bytesFrom(server, "/api/v4/groups"), "no"_ba);
    QCOMPARE(get(server.url(u"/api/v4/groups"_s)).status, 200);
}

void tst_DemoFaults::aConnectionIsUsedAgainAfterAChunkedCut()
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

QTEST_MAIN(tst_DemoFaults)
#include "tst_demofaults.moc"
