// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives and pictures: their order, and how many come at a time.

#include "client/apiclient.h"

#include "common/downloadfixture.h"
#include "common/testfiles.h"

#include <QScopeGuard>
#include <QSemaphore>
#include <QTest>
#include <QThreadPool>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Download final : public DownloadFixture
{
    Q_OBJECT

private slots:
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

    // Several examples
    void anEmptyListStartsNothing();
    void asManyAtATimeAsThePoolHasThreads();
    void theSizeOfThePoolIsReadAtEachStart();
    void allClientsShareThePool();
    void theyAreAnnouncedInTheOrderOfCompletion();
    void othersProceedWhenOneFails();
    void aBusyGlobalPoolHoldsNothingUp();
    void aMainThreadThatWaitsForTheGlobalPoolIsNotHeldUp();
};

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

QTEST_MAIN(tst_Download)
#include "tst_download.moc"
