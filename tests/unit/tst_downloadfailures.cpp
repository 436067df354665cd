// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives and pictures that do not come, stall, or have lost their client.

#include "client/apiclient.h"

#include "common/downloadfixture.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_DownloadFailures final : public DownloadFixture
{
    Q_OBJECT

private slots:
    // What fails
    void aFailedArchiveIsReportedAndNotAnnounced_data();
    void aFailedArchiveIsReportedAndNotAnnounced();
    void aFailedPictureStillAnnouncesTheExample_data();
    void aFailedPictureStillAnnouncesTheExample();
    void anUndecodablePictureIsNoFailure();
    void aPictureOfAForeignSchemeFailsLikeAnyOther_data();
    void aPictureOfAForeignSchemeFailsLikeAnyOther();

    // Stalls
    void stalledTransfersFail_data();
    void stalledTransfersFail();
    void aSlowTransferIsNoStall();
    void fiveMinutesAreAStallByDefault();
    void searchAndListingNeverGiveUp();

    // The end, last, as the workers of a destroyed client stay until the application quits
    void aDestroyedClientAnnouncesNothing();
    void queuedDownloadsOfADestroyedClientAreNotStarted();
};

void tst_DownloadFailures::aFailedArchiveIsReportedAndNotAnnounced_data()
{
    QTest::addColumn<int>("status");

    QTest::newRow("empty repository") << 404;
    QTest::newRow("too many requests") << 429;
    QTest::newRow("broken server") << 500;
}

void tst_DownloadFailures::aFailedArchiveIsReportedAndNotAnnounced()
{
    QFETCH(const int, status);
    m_server->answer(archiveOf(1), status, "body");
    const Repository::ExamplePtr example = newExample(1);

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(m_recorder->lines().size(), 2);
    m_client->download(Repository::Examples{newExample(2)});
    QTRY_COMPARE(m_recorder->downloads(), QStringList{"demo-2"});
    QCOMPARE(m_recorder->lines().at(0), "worker: Downloading example: Title of demo-1");
    QVERIFY(m_recorder->lines().at(1).startsWith("Network error: "));
    QCOMPARE(m_recorder->lines().filter("Network error").size(), 1);
    QCOMPARE(m_server->requestCount("/pictures/demo-1"), 0);
    QVERIFY(example->data().isEmpty());
}

void tst_DownloadFailures::aFailedPictureStillAnnouncesTheExample_data()
{
    QTest::addColumn<QJsonValue>("picture"); // "/...": on the server
    QTest::addColumn<QString>("text");

    QTest::newRow("missing") << QJsonValue("/gone.png") << "/gone.png";
    QTest::newRow("empty") << QJsonValue("") << "";
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << "";
    QTest::newRow("absent") << QJsonValue(ABSENT) << "";
    QTest::newRow("no text") << QJsonValue(7) << "";
    QTest::newRow("relative") << QJsonValue("uploads/x.png") << "uploads/x.png";
}

void tst_DownloadFailures::aFailedPictureStillAnnouncesTheExample()
{
    QFETCH(QJsonValue, picture);
    QFETCH(QString, text);
    if (text.startsWith('/')) {
        text = m_server->url(text).toString();
        picture = text;
    }
    const Repository::ExamplePtr example = newExample(1, {{"avatar_url", picture}});

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(m_recorder->lines().size(), 4);
    const QStringList lines = m_recorder->lines();
    QVERIFY2(lines.at(1).startsWith("Network error: "), qPrintable(lines.at(1)));
    QCOMPARE(
        lines,
        (QStringList{
            "worker: Downloading example: Title of demo-1",
            lines.at(1),
            "downloaded demo-1",
            "Unable to download image: " + text}));
    QCOMPARE(example->data(), "archive");
    QVERIFY(example->image().isNull());
}

void tst_DownloadFailures::anUndecodablePictureIsNoFailure()
{
    m_server->answer(PICTURES, 200, "<html>");
    const Repository::ExamplePtr example = newExample(1);

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(
        m_recorder->lines(),
        (QStringList{"worker: Downloading example: Title of demo-1", "downloaded demo-1", ""}));
    QVERIFY(example->image().isNull());
}

void tst_DownloadFailures::aPictureOfAForeignSchemeFailsLikeAnyOther_data()
{
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("scheme");

    const QString file = QDir::tempPath() + "/picture.png";
    QTest::newRow("local file") << "file://" + file << "file";
    QTest::newRow("resource") << "qrc:/examples-manifest.xml" << "qrc";
    QTest::newRow("data") << "data:text/plain,hello" << "data";
    QTest::newRow("ftp") << "ftp://127.0.0.1/x.png" << "ftp";
}

void tst_DownloadFailures::aPictureOfAForeignSchemeFailsLikeAnyOther()
{
    QFETCH(const QString, picture);
    QFETCH(const QString, scheme);
    writeFile(QDir::tempPath() + "/picture.png", encodedPicture({8, 8}));
    const Repository::ExamplePtr example = newExample(1, {{"avatar_url", picture}});
    const LogRecorder log;

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(
        m_recorder->lines(),
        (QStringList{
            "worker: Downloading example: Title of demo-1",
            "Network error: Protocol \"" + scheme + "\" is unknown",
            "downloaded demo-1",
            "Unable to download image: " + picture}));
    QVERIFY(example->image().isNull());
    QVERIFY(log.lines(LogRecorder::API).contains("Requesting: \"" + QUrl(picture).toString() + '"'));
}

void tst_DownloadFailures::stalledTransfersFail_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<bool>("isAnnounced");

    QTest::newRow("archive, before the head") << archiveOf(1) << qint64(Fault::BEFORE_HEAD) << false;
    QTest::newRow("archive, in the body") << archiveOf(1) << qint64(3) << false;
    QTest::newRow("picture, before the head") << PICTURES << qint64(Fault::BEFORE_HEAD) << true;
    QTest::newRow("picture, in the body") << PICTURES << qint64(3) << true;
}

void tst_DownloadFailures::stalledTransfersFail()
{
    QFETCH(const QString, route);
    QFETCH(const qint64, bytes);
    QFETCH(const bool, isAnnounced);
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    m_server->addFault(route, {.cutAfter = bytes, .end = Fault::End::Stall, .times = 1});
    m_client->setDownloadTimeout(200ms);

    m_client->download(newExamples(2));

    // The second one shows that the only worker is free again.
    QTRY_VERIFY(m_recorder->downloads().contains("demo-2"));
    QTRY_COMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
    QCOMPARE(m_recorder->downloads().contains("demo-1"), isAnnounced);
}

void tst_DownloadFailures::aSlowTransferIsNoStall()
{
    constexpr auto TIMEOUT = 1000ms;
    constexpr int SIZE = 15;
    QTcpServer trickling;
    QVERIFY(trickling.listen(QHostAddress::LocalHost));
    QTimer drops;
    connect(&trickling, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *connection = trickling.nextPendingConnection();
        connection->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(SIZE) + "\r\n\r\n");
        connect(&drops, &QTimer::timeout, connection, [connection] { connection->write("x"); });
        drops.start(TIMEOUT / 10);
    });
    m_server->answer(
        archiveOf(1), Reply::redirect("http://127.0.0.1:" + QByteArray::number(trickling.serverPort())));
    m_client->setDownloadTimeout(TIMEOUT);
    const Repository::ExamplePtr example = newExample(1);
    QElapsedTimer elapsed;
    elapsed.start();

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(m_recorder->downloads().size(), 1);
    QVERIFY(elapsed.durationElapsed() > TIMEOUT);
    QCOMPARE(example->data(), QByteArray(SIZE, 'x'));
    QCOMPARE(m_recorder->lines().filter("Network error: ").size(), 0);
}

void tst_DownloadFailures::fiveMinutesAreAStallByDefault()
{
    QCOMPARE(m_client->downloadTimeout(), 300s);
}

void tst_DownloadFailures::searchAndListingNeverGiveUp()
{
    m_client->setDownloadTimeout(100ms);
    m_server->hold("*");
    ApiClient searching(m_server->groupUrl(), nullptr);
    searching.setDownloadTimeout(100ms);
    const ClientRecorder recorder(searching);
    m_client->fetch();
    QTRY_COMPARE(m_server->heldCount(), 2);

    // What would have been too long for the two is too long for this.
    m_client->download(newExamples(1));
    QTRY_COMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
    QTRY_COMPARE(m_server->heldCount(), 2); // the third goes when the server notices
    m_server->release("*");

    QTRY_COMPARE(m_recorder->count("fetched 0"), 1);
    QTRY_VERIFY(searching.isReady());
    QCOMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
    QCOMPARE(recorder.lines().filter("Network error: ").size(), 0);
}

void tst_DownloadFailures::aDestroyedClientAnnouncesNothing()
{
    QThreadPool::globalInstance()->setMaxThreadCount(8);
    m_server->hold(archiveOf(1));
    m_server->hold("/pictures/demo-2");
    const Repository::Examples examples = newExamples(2);
    m_client->download(examples);
    QTRY_COMPARE(m_server->heldCount(), 2);
    const LogRecorder log;

    m_client.reset();
    QTRY_COMPARE(m_server->heldCount(), 0); // both connections are gone
    m_server->restore();
    m_server->answer(ARCHIVES, 200, "archive");
    m_server->answer(PICTURES, 200, encodedPicture({8, 8}));
    m_server->clearRequests();

    ApiClient later(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(later);
    later.download(Repository::Examples{newExample(3)});
    QTRY_COMPARE(recorder.downloads().size(), 1);
    // The server and the log know nothing but the later client's search and its example.
    QCOMPARE(m_server->requestCount("/api/v4/groups"), 1);
    QCOMPARE(m_server->requestCount(archiveOf(3)), 1);
    QCOMPARE(m_server->requestCount("/pictures/demo-3"), 1);
    QCOMPARE(m_server->requestCount(), 3);
    QCOMPARE(log.lines(LogRecorder::API).filter("Requesting:").size(), 3);
    QCOMPARE(log.lines(LogRecorder::API).filter("Network error").size(), 0);
    QVERIFY(examples.at(0)->data().isEmpty());
    QVERIFY(examples.at(1)->image().isNull());
}

void tst_DownloadFailures::queuedDownloadsOfADestroyedClientAreNotStarted()
{
    constexpr int COUNT = 20; // more than fit
    QThreadPool::globalInstance()->setMaxThreadCount(12);
    ApiClient other(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(other);
    QTRY_VERIFY(other.isReady());
    m_server->clearRequests();
    m_server->hold(ARCHIVES);
    const LogRecorder log;
    const auto started
        = [&log] { return log.lines(LogRecorder::API).filter("Downloading example: Title of demo-").size(); };
    m_client->download(newExamples(COUNT));
    QTRY_VERIFY(m_server->heldCount() >= 4);
    QTRY_COMPARE(qsizetype(m_server->heldCount()), started());

    m_client.reset();
    const qsizetype startedBefore = started();
    QCOMPARE_LT(startedBefore, COUNT);
    QTRY_COMPARE(m_server->heldCount(), 0);
    m_server->release(ARCHIVES);
    QThreadPool::globalInstance()->setMaxThreadCount(40);
    other.download(Repository::Examples{newExample(99)}); // makes room for what is queued

    // It comes behind them in the queue.
    QTRY_COMPARE(recorder.downloads(), QStringList{"demo-99"});
    QCOMPARE(started(), startedBefore + 1);
    QCOMPARE(m_server->requestCount(ARCHIVES), int(startedBefore) + 1);
}

QTEST_MAIN(tst_DownloadFailures)
#include "tst_downloadfailures.moc"
