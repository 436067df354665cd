// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives and pictures: their order, how many come at a time, and what fails.

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString ARCHIVES = "/api/v4/projects/*";
const QString PICTURES = "/pictures/*";
const QString ABSENT = "absent";

QString archiveOf(int id)
{
    return QString("/api/v4/projects/%1/repository/archive.tar.gz").arg(id);
}

} // namespace

class tst_Download final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    // One example
    void theArchiveIsAskedForStrictlyBeforeThePicture();
    void requestsCarryTheirContentType();
    void bothPayloadsAreThereWhenItIsAnnounced();
    void everythingButTheBeginningHappensOnTheMainThread();
    void theProjectIsNamedByItsNumber_data();
    void theProjectIsNamedByItsNumber();
    void theArchiveIsNotJudged();
    void oneExampleBlocksItsThreadUntilItIsOver_data();
    void oneExampleBlocksItsThreadUntilItIsOver();

    // What fails
    void aFailedArchiveIsReportedAndNotAnnounced_data();
    void aFailedArchiveIsReportedAndNotAnnounced();
    void aFailedPictureStillAnnouncesTheExample_data();
    void aFailedPictureStillAnnouncesTheExample();
    void anUndecodablePictureIsNoFailure();
    void aPictureOfAForeignSchemeFailsLikeAnyOther_data();
    void aPictureOfAForeignSchemeFailsLikeAnyOther();
    void stalledTransfersFail_data();
    void stalledTransfersFail();
    void aSlowTransferIsNoStall();
    void fiveMinutesAreAStallByDefault();
    void searchAndListingNeverGiveUp();

    // Several examples
    void anEmptyListStartsNothing();
    void asManyAtATimeAsThePoolHasThreads();
    void theSizeOfThePoolIsReadAtEachStart();
    void allClientsShareThePool();
    void theyAreAnnouncedInTheOrderOfCompletion();
    void othersProceedWhenOneFails();
    void aBusyGlobalPoolHoldsNothingUp();
    void aMainThreadThatWaitsForTheGlobalPoolIsNotHeldUp();

    // The end
    void aDestroyedClientAnnouncesNothing();
    void queuedDownloadsOfADestroyedClientAreNotStarted();

private:
    [[nodiscard]] Repository::ExamplePtr newExample(int id, const QJsonObject &changes = {}) const;
    [[nodiscard]] Repository::Examples newExamples(int count) const;

    std::unique_ptr<DemoServer> m_server;
    std::unique_ptr<ApiClient> m_client;
    std::unique_ptr<ClientRecorder> m_recorder;
};

void tst_Download::init()
{
    QThreadPool::globalInstance()->setMaxThreadCount(2);
    m_server = std::make_unique<DemoServer>();
    m_server->answer(ARCHIVES, 200, "archive");
    m_server->answer(PICTURES, 200, encodedPicture({256, 128}));
    m_client = std::make_unique<ApiClient>(m_server->groupUrl(), nullptr);
    QTRY_VERIFY(m_client->isReady());
    m_server->clearRequests();
    m_recorder = std::make_unique<ClientRecorder>(*m_client);
}

void tst_Download::cleanup()
{
    m_client.reset();
    m_server.reset();
}

void tst_Download::cleanupTestCase()
{
    quitApplication();
}

Repository::ExamplePtr tst_Download::newExample(int id, const QJsonObject &changes) const
{
    const QString path = QString("demo-%1").arg(id);
    QJsonObject project
        = projectObject(path, {{"id", id}, {"avatar_url", m_server->url("/pictures/" + path).toString()}});
    for (auto it = changes.begin(); it != changes.end(); ++it)
        project.insert(it.key(), it.value());
    if (project.value("avatar_url") == ABSENT)
        project.remove("avatar_url");
    return Repository::ExamplePtr::create(project);
}

Repository::Examples tst_Download::newExamples(int count) const
{
    Repository::Examples examples;
    for (int id = 1; id <= count; ++id)
        examples.append(newExample(id));
    return examples;
}

void tst_Download::theArchiveIsAskedForStrictlyBeforeThePicture()
{
    m_server->hold(ARCHIVES);
    m_client->download(Repository::Examples{newExample(1)});
    QTRY_COMPARE(m_server->heldCount(), 1);
    QCOMPARE(m_server->requestCount(PICTURES), 0);

    m_server->release(ARCHIVES);

    QTRY_COMPARE(
        m_recorder->lines(),
        (QStringList{"worker: Downloading example: Title of demo-1", "downloaded demo-1", ""}));
    QCOMPARE(m_server->requests().at(0).path(), archiveOf(1));
    QCOMPARE(m_server->requests().at(1).path(), "/pictures/demo-1");
    QCOMPARE(m_server->requestCount(), 2);
    QCOMPARE(m_server->peakConcurrency(), 1);
}

void tst_Download::requestsCarryTheirContentType()
{
    m_client->download(Repository::Examples{newExample(1)});

    QTRY_COMPARE(m_recorder->downloads().size(), 1);
    const QList<Request> requests = m_server->requests();
    QCOMPARE(requests.at(0).method, "GET");
    QCOMPARE(requests.at(0).target, archiveOf(1).toLatin1());
    QCOMPARE(requests.at(0).header("Content-Type"), "application/zip");
    QCOMPARE(requests.at(1).header("Content-Type"), "image/png");
    for (const Request &request : requests)
        QVERIFY(!request.headers.contains("Accept"));
}

void tst_Download::bothPayloadsAreThereWhenItIsAnnounced()
{
    const Repository::ExamplePtr example = newExample(1);
    QByteArray data;
    QSize size;
    Repository::ExamplePtr announced;
    connect(m_client.get(), &ApiClient::downloaded, this, [&](const Repository::ExamplePtr &downloaded) {
        announced = downloaded;
        data = downloaded->data();
        size = downloaded->image().size();
    });

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(announced, example);
    QCOMPARE(data, "archive");
    QCOMPARE(size, QSize(128, 64));
}

void tst_Download::everythingButTheBeginningHappensOnTheMainThread()
{
    m_server->answer("/pictures/demo-2", 404);
    m_server->answer(archiveOf(3), 404);

    m_client->download(newExamples(4));

    QTRY_COMPARE(m_recorder->downloads().size(), 3);
    QTRY_COMPARE(m_recorder->lines().filter("Network error").size(), 2);
    QStringList ofWorkers = m_recorder->lines().filter("worker: ");
    ofWorkers.sort();
    QCOMPARE(
        ofWorkers,
        (QStringList{
            "worker: Downloading example: Title of demo-1",
            "worker: Downloading example: Title of demo-2",
            "worker: Downloading example: Title of demo-3",
            "worker: Downloading example: Title of demo-4"}));
}

void tst_Download::theProjectIsNamedByItsNumber_data()
{
    QTest::addColumn<QJsonValue>("id");
    QTest::addColumn<QString>("number");

    QTest::newRow("small") << QJsonValue(42) << "42";
    QTest::newRow("64 bits") << QJsonValue(qint64(5'000'000'000)) << "5000000000";
    QTest::newRow("negative") << QJsonValue(-42) << "-42";
    QTest::newRow("broken") << QJsonValue(42.9) << "42";
    QTest::newRow("text") << QJsonValue("42") << "0";
    QTest::newRow("larger than any number") << QJsonValue(1e300) << "0";
    QTest::newRow("just too large") << QJsonValue(9223372036854775808.0) << "0";
    QTest::newRow("just not too small") << QJsonValue(-9223372036854775808.0) << "-9223372036854775808";
}

void tst_Download::theProjectIsNamedByItsNumber()
{
    QFETCH(const QJsonValue, id);
    QFETCH(const QString, number);

    m_client->download(Repository::Examples{newExample(1, {{"id", id}})});

    QTRY_COMPARE(m_recorder->downloads().size(), 1);
    QCOMPARE(
        m_server->requests().constFirst().path(),
        "/api/v4/projects/" + number + "/repository/archive.tar.gz");
}

void tst_Download::theArchiveIsNotJudged()
{
    m_server->answer(archiveOf(1), 200, "<html>", {{"Content-Type", "text/html"}});
    m_server->answer(archiveOf(2), 200, {});

    m_client->download(newExamples(2));

    QTRY_COMPARE(m_recorder->downloads().size(), 2);
    QCOMPARE(m_recorder->lines().filter("error").size(), 0);
}

void tst_Download::oneExampleBlocksItsThreadUntilItIsOver_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("announced");

    QTest::newRow("with an archive") << 200 << QStringList{"demo-1"};
    QTest::newRow("without") << 404 << QStringList();
}

void tst_Download::oneExampleBlocksItsThreadUntilItIsOver()
{
    QFETCH(const int, status);
    QFETCH(const QStringList, announced);
    m_server->answer(ARCHIVES, status, "archive");
    m_server->hold(ARCHIVES);
    std::atomic<bool> hasReturned = false;
    bool wasOver = false;
    connect(m_client.get(), &ApiClient::downloaded, this, [&] { wasOver = hasReturned; });
    const std::unique_ptr<QThread> thread(QThread::create([&, example = newExample(1)] {
        m_client->download(example);
        hasReturned = true;
    }));
    thread->start();
    QTRY_COMPARE(m_server->heldCount(), 1);
    QVERIFY(!hasReturned);

    m_server->release(ARCHIVES);

    QTRY_VERIFY(thread->isFinished());
    QVERIFY(hasReturned);
    QVERIFY(!wasOver);
    QCOMPARE(m_recorder->downloads(), announced);
}

void tst_Download::aFailedArchiveIsReportedAndNotAnnounced_data()
{
    QTest::addColumn<int>("status");

    QTest::newRow("empty repository") << 404;
    QTest::newRow("too many requests") << 429;
    QTest::newRow("broken server") << 500;
}

void tst_Download::aFailedArchiveIsReportedAndNotAnnounced()
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

void tst_Download::aFailedPictureStillAnnouncesTheExample_data()
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

void tst_Download::aFailedPictureStillAnnouncesTheExample()
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

void tst_Download::anUndecodablePictureIsNoFailure()
{
    m_server->answer(PICTURES, 200, "<html>");
    const Repository::ExamplePtr example = newExample(1);

    m_client->download(Repository::Examples{example});

    QTRY_COMPARE(
        m_recorder->lines(),
        (QStringList{"worker: Downloading example: Title of demo-1", "downloaded demo-1", ""}));
    QVERIFY(example->image().isNull());
}

void tst_Download::aPictureOfAForeignSchemeFailsLikeAnyOther_data()
{
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("scheme");

    const QString file = QDir::tempPath() + "/picture.png";
    QTest::newRow("local file") << "file://" + file << "file";
    QTest::newRow("resource") << "qrc:/examples-manifest.xml" << "qrc";
    QTest::newRow("data") << "data:text/plain,hello" << "data";
    QTest::newRow("ftp") << "ftp://127.0.0.1/x.png" << "ftp";
}

void tst_Download::aPictureOfAForeignSchemeFailsLikeAnyOther()
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

void tst_Download::stalledTransfersFail_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<bool>("isAnnounced");

    QTest::newRow("archive, before the head") << archiveOf(1) << qint64(Fault::BEFORE_HEAD) << false;
    QTest::newRow("archive, in the body") << archiveOf(1) << qint64(3) << false;
    QTest::newRow("picture, before the head") << PICTURES << qint64(Fault::BEFORE_HEAD) << true;
    QTest::newRow("picture, in the body") << PICTURES << qint64(3) << true;
}

void tst_Download::stalledTransfersFail()
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

void tst_Download::aSlowTransferIsNoStall()
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

void tst_Download::fiveMinutesAreAStallByDefault()
{
    QCOMPARE(m_client->downloadTimeout(), 300s);
}

void tst_Download::searchAndListingNeverGiveUp()
{
    m_client->setDownloadTimeout(100ms);
    m_server->hold("*");
    m_client->fetch();
    QTRY_COMPARE(m_server->heldCount(), 1);

    // What would have been too long for the listing is too long for this.
    m_client->download(newExamples(1));
    QTRY_COMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
    m_server->release("*");

    QTRY_COMPARE(m_recorder->count("fetched 0"), 1);
    QCOMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
}

void tst_Download::anEmptyListStartsNothing()
{
    m_client->download(Repository::Examples{});

    // A pool's jobs start in their order.
    m_client->download(newExamples(1));
    QTRY_COMPARE(m_recorder->downloads().size(), 1);
    QCOMPARE(m_recorder->lines().size(), 3);
    QCOMPARE(m_server->requestCount(), 2);
}

void tst_Download::asManyAtATimeAsThePoolHasThreads()
{
    m_server->hold(ARCHIVES);

    m_client->download(newExamples(5));

    for (int released = 0; released < 5; ++released) {
        QTRY_COMPARE(m_server->heldCount(), std::min(2, 5 - released));
        QVERIFY(m_server->releaseNext(ARCHIVES));
        QTRY_COMPARE(m_recorder->downloads().size(), released + 1);
    }
    QCOMPARE(m_server->peakConcurrency(ARCHIVES), 2);
    QCOMPARE(m_server->peakConcurrency(), 2); // a picture takes the place of its archive
    QCOMPARE(m_server->requestCount(ARCHIVES), 5);
}

void tst_Download::theSizeOfThePoolIsReadAtEachStart()
{
    m_server->hold(ARCHIVES);
    QThreadPool::globalInstance()->setMaxThreadCount(4);

    m_client->download(newExamples(6));

    QTRY_COMPARE(m_server->heldCount(), 4);
    m_server->release(ARCHIVES);
    QTRY_COMPARE(m_recorder->downloads().size(), 6);
    QCOMPARE(m_server->peakConcurrency(), 4);
}

void tst_Download::allClientsShareThePool()
{
    ApiClient other(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(other);
    QTRY_VERIFY(other.isReady());
    m_server->clearRequests();
    m_server->hold(ARCHIVES);

    m_client->download(newExamples(3));
    other.download(newExamples(3));

    QTRY_COMPARE(m_server->heldCount(), 2);
    for (int released = 0; released < 6; ++released) {
        QTRY_VERIFY(m_server->heldCount(ARCHIVES) > 0);
        QVERIFY(m_server->releaseNext(ARCHIVES));
    }
    QTRY_COMPARE(recorder.downloads().size(), 3);
    QCOMPARE(m_recorder->downloads().size(), 3);
    QCOMPARE(m_server->peakConcurrency(), 2);
}

void tst_Download::theyAreAnnouncedInTheOrderOfCompletion()
{
    m_server->hold(archiveOf(1));

    m_client->download(newExamples(3));

    QTRY_COMPARE(m_recorder->downloads(), (QStringList{"demo-2", "demo-3"}));
    m_server->release(archiveOf(1));
    QTRY_COMPARE(m_recorder->downloads(), (QStringList{"demo-2", "demo-3", "demo-1"}));
}

void tst_Download::othersProceedWhenOneFails()
{
    m_server->answer(archiveOf(2), 404);

    m_client->download(newExamples(5));

    QTRY_COMPARE(m_recorder->downloads().size(), 4);
    QVERIFY(!m_recorder->downloads().contains("demo-2"));
    QCOMPARE(m_recorder->lines().filter("Network error: ").size(), 1);
}

void tst_Download::aBusyGlobalPoolHoldsNothingUp()
{
    QSemaphore busy;
    const auto finish = qScopeGuard([&busy] {
        busy.release(2);
        QThreadPool::globalInstance()->waitForDone();
    });
    for (int i = 0; i < 2; ++i)
        QThreadPool::globalInstance()->start([&busy] { busy.acquire(); });

    m_client->download(newExamples(3));

    QTRY_COMPARE(m_recorder->downloads().size(), 3);
}

void tst_Download::aMainThreadThatWaitsForTheGlobalPoolIsNotHeldUp()
{
    m_server->hold(ARCHIVES);
    m_client->download(newExamples(3));
    QTRY_COMPARE(m_server->heldCount(), 2);
    std::atomic<bool> hasRun = false;

    QThreadPool::globalInstance()->start([&hasRun] { hasRun = true; });
    const bool isDone = QThreadPool::globalInstance()->waitForDone(5000); // no event is handled meanwhile

    QVERIFY(isDone);
    QVERIFY(hasRun);
    m_server->release(ARCHIVES);
    QTRY_COMPARE(m_recorder->downloads().size(), 3);
}

// The workers of a destroyed client stay until the application quits, so these come last.
void tst_Download::aDestroyedClientAnnouncesNothing()
{
    QThreadPool::globalInstance()->setMaxThreadCount(8);
    m_server->hold(archiveOf(1));
    m_server->hold("/pictures/demo-2");
    m_client->download(newExamples(2));
    QTRY_COMPARE(m_server->heldCount(), 2);

    m_client.reset();
    QTRY_COMPARE(m_server->heldCount(), 0); // both connections are gone
    m_server->restore();
    m_server->answer(ARCHIVES, 200, "archive");

    ApiClient later(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(later);
    later.download(Repository::Examples{newExample(3)});
    QTRY_COMPARE(recorder.downloads().size(), 1);
    QCOMPARE(m_recorder->downloads(), QStringList());
    QCOMPARE(m_recorder->lines().size(), 2);
}

void tst_Download::queuedDownloadsOfADestroyedClientAreNotStarted()
{
    QThreadPool::globalInstance()->setMaxThreadCount(8);
    ApiClient other(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(other);
    QTRY_VERIFY(other.isReady());
    m_server->clearRequests();
    m_server->hold(ARCHIVES);
    m_client->download(newExamples(20)); // more than fit
    QTRY_VERIFY(m_server->heldCount() >= 4);
    QThreadPool::globalInstance()->setMaxThreadCount(30);
    const qsizetype started = m_recorder->lines().size();

    m_client.reset();
    m_server->release(ARCHIVES);
    other.download(Repository::Examples{newExample(99)}); // makes room for what is queued

    QTRY_COMPARE(recorder.downloads(), QStringList{"demo-99"});
    QCOMPARE(m_recorder->lines().size(), started);
}

QTEST_MAIN(tst_Download)
#include "tst_download.moc"
