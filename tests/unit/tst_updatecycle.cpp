// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is saved by hand, and whether a listing begins an update.

#include "service/downloadservice.h"

#include "plugin/constants.h"

#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "common/updatefixture.h"

#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_UpdateCycle final : public UpdateFixture
{
    Q_OBJECT

private slots:
    // Repositories
    void repositoriesAreFoundByTheirNames();
    void examplesAreThoseOfTheLastListing();
    void repositoriesAreMadeOnceForAll();

    // Saving by hand
    void savingDownloadsTheNamedExamples();
    void savingForAnUnknownNameIsReported();

    // The decision
    void theIntervalDecides_data();
    void theIntervalDecides();
    void interval0TurnsUpdatesOff();
    void everyListingIsAnnouncedFirst();
    void theDateIsStoredBeforeTheDownload();
    void otherRepositoriesKeepTheirDates();
    void aStrangersSignalIsReported_data();
    void aStrangersSignalIsReported();
    void anUnknownRepositoryIsReportedAndDatedUnderAnEmptyName();
    void theDateUnderAnEmptyNameCounts();

    // All of it
    void theCycleRunsFromServerToListing();
};

void tst_UpdateCycle::repositoriesAreFoundByTheirNames()
{
    m_fixture->ide().set(Constants::REPOSITORIES, QStringList{"A|http://127.0.0.1/|", "B|http://127.0.0.1|"});
    const DownloadService service(nullptr);

    QCOMPARE(service.findRepository("A")->url(), QUrl("http://127.0.0.1/"));
    QCOMPARE(service.findRepository("B")->url(), QUrl("http://127.0.0.1"));
    QVERIFY(!service.findRepository("C"));
    QVERIFY(!service.findRepository(""));
    QCOMPARE(service.findRepository("A"), service.findRepository("A"));
}

void tst_UpdateCycle::examplesAreThoseOfTheLastListing()
{
    m_fixture->start();
    const Repository::Examples examples = makeExamples({"a", "b"});

    QCOMPARE(m_fixture->service().examples("Demo"), Repository::Examples());
    m_fixture->list(examples);
    QCOMPARE(m_fixture->service().examples("Demo"), examples);
    QCOMPARE(m_fixture->service().examples("Unknown"), Repository::Examples());
}

void tst_UpdateCycle::repositoriesAreMadeOnceForAll()
{
    m_fixture->start();

    m_fixture->ide().set(Constants::REPOSITORIES, QStringList{"New|http://127.0.0.1/new|"});

    QVERIFY(m_fixture->service().findRepository("Demo"));
    QVERIFY(!m_fixture->service().findRepository("New"));
}

void tst_UpdateCycle::savingDownloadsTheNamedExamples()
{
    start(daysAgo(0), 0);
    m_fixture->list({makeExample("a", {{"id", 1}}), makeExample("b", {{"id", 2}})});

    // Neither date nor interval matter, and not that it was removed before.
    m_fixture->service().save("Demo", {"b", "unknown"});

    QCOMPARE(downloads(), QList<int>{2});
    QCOMPARE(storedDates(), QStringList{"Demo|" + daysAgo(0)});
}

void tst_UpdateCycle::savingForAnUnknownNameIsReported()
{
    start({});
    const LogRecorder log;

    m_fixture->service().save("Other", {"a"});

    const QString status = "Skip downloading examples - unable to find repository for name: Other";
    QCOMPARE(m_fixture->lines(), QStringList{status});
    QCOMPARE(log.pluginLines(), QStringList{"service: Status: \"" + status + '"'});
    QCOMPARE(downloads(), QList<int>());
}

void tst_UpdateCycle::theIntervalDecides_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("days");
    QTest::addColumn<bool>("isUpdate");

    QTest::newRow("never checked") << QString() << 1 << true;
    QTest::newRow("invalid date") << "31.02.2026" << 1 << true;
    QTest::newRow("empty date") << "" << 1 << true;
    QTest::newRow("today") << daysAgo(0) << 1 << false;
    QTest::newRow("exactly the interval of 1") << daysAgo(1) << 1 << false;
    QTest::newRow("one day more than 1") << daysAgo(2) << 1 << true;
    QTest::newRow("one day less than 7") << daysAgo(6) << 7 << false;
    QTest::newRow("exactly the interval of 7") << daysAgo(7) << 7 << false;
    QTest::newRow("one day more than 7") << daysAgo(8) << 7 << true;
    QTest::newRow("long ago") << "01.01.1999" << 99 << true;
    QTest::newRow("tomorrow") << daysAgo(-1) << 1 << false;
    QTest::newRow("far in the future") << "01.01.2999" << 1 << false;
}

void tst_UpdateCycle::theIntervalDecides()
{
    QFETCH(const QString, stored);
    QFETCH(const int, days);
    QFETCH(const bool, isUpdate);
    start(stored, days);
    const LogRecorder log;

    m_fixture->list({makeExample("a", {{"id", 1}}), makeExample("b", {{"id", 2}})});

    QCOMPARE(m_fixture->lines(), QStringList{"updated"});
    QCOMPARE(log.lines(LogRecorder::SERVICE).contains("Updating examples: 2"), isUpdate);
    QCOMPARE(downloads(), isUpdate ? (QList<int>{1, 2}) : QList<int>());
    if (isUpdate)
        QCOMPARE(storedDates(), QStringList{"Demo|" + daysAgo(0)});
    else
        QCOMPARE(storedDates(), QStringList{"Demo|" + stored});
    if (!isUpdate)
        QCOMPARE(log.lines(LogRecorder::SERVICE), QStringList());
}

void tst_UpdateCycle::interval0TurnsUpdatesOff()
{
    start({}, 0);
    const LogRecorder log;

    m_fixture->list(makeExamples({"a"}));
    m_fixture->list(makeExamples({"a"}));

    QCOMPARE(m_fixture->lines(), (QStringList{"updated", "updated"}));
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        (QStringList{"Automatic updates disabled", "Automatic updates disabled"}));
    QCOMPARE(downloads(), QList<int>());
    QVERIFY(!m_fixture->ide().isStored("Varnel/UpdatesCheckedDate"));
}

void tst_UpdateCycle::everyListingIsAnnouncedFirst()
{
    start({});
    QStringList logged;
    const LogRecorder log;
    connect(&m_fixture->service(), &DownloadService::updated, this, [&] {
        logged = log.lines(LogRecorder::SERVICE);
    });

    m_fixture->list(makeExamples({"a"}));

    QCOMPARE(m_fixture->lines(), QStringList{"updated"});
    QCOMPARE(logged, QStringList());
    QCOMPARE(log.lines(LogRecorder::SERVICE), QStringList{"Updating examples: 1"});
}

void tst_UpdateCycle::theDateIsStoredBeforeTheDownload()
{
    start({});

    m_fixture->list(makeExamples({"a"})); // its download needs the event loop

    QCOMPARE(m_server->requestCount("/api/v4/projects/*"), 0);
    QCOMPARE(storedDates(), QStringList{"Demo|" + daysAgo(0)});
    QCOMPARE(
        m_fixture->ide().stored("Varnel/Repositories").toStringList(),
        QStringList{"Demo|" + m_server->groupUrl().toString() + "|removed"});
    QCOMPARE(downloads(), QList<int>{42});
}

void tst_UpdateCycle::otherRepositoriesKeepTheirDates()
{
    m_fixture->ide().set(
        Constants::UPDATES_CHECKED, QStringList{"Other|01.01.2020", "Demo|01.01.2020", "Bad|x"});
    start(QString());

    m_fixture->list({});

    QCOMPARE(storedDates(), (QStringList{"Bad|", "Demo|" + daysAgo(0), "Other|01.01.2020"}));
    QCOMPARE(downloads(), QList<int>());
}

void tst_UpdateCycle::aStrangersSignalIsReported_data()
{
    QTest::addColumn<bool>("hasSender");

    QTest::newRow("another object") << true;
    QTest::newRow("nobody") << false;
}

void tst_UpdateCycle::aStrangersSignalIsReported()
{
    QFETCH(const bool, hasSender);
    start({});
    NoRepository stranger;
    m_fixture->connectStranger(&stranger);
    const LogRecorder log;

    if (hasSender)
        emit stranger.fetched();
    else
        QVERIFY(QMetaObject::invokeMethod(&m_fixture->service(), "onFetched"));

    const QString status = "Unable to cast repository from: QObject";
    QCOMPARE(m_fixture->lines(), QStringList{status});
    QCOMPARE(log.lines(LogRecorder::SERVICE), QStringList{"Status: \"" + status + '"'});
    QVERIFY(!m_fixture->ide().isStored("Varnel/UpdatesCheckedDate"));
}

void tst_UpdateCycle::anUnknownRepositoryIsReportedAndDatedUnderAnEmptyName()
{
    start({});
    Repository unknown(QUrl("http://127.0.0.1"), nullptr);
    m_fixture->connectStranger(&unknown);
    const LogRecorder log;

    unknown.onFetched(makeExamples({"a", "b"}));

    const QString status = "Skip downloading examples - unable to find repository for url: http://127.0.0.1";
    QCOMPARE(m_fixture->lines(), (QStringList{"updated", status}));
    QCOMPARE(
        log.lines(LogRecorder::SERVICE), (QStringList{"Updating examples: 2", "Status: \"" + status + '"'}));
    QCOMPARE(storedDates(), QStringList{'|' + daysAgo(0)});
    QCOMPARE(downloads(), QList<int>());
}

void tst_UpdateCycle::theDateUnderAnEmptyNameCounts()
{
    m_fixture->ide().set(Constants::UPDATES_CHECKED, QStringList{'|' + daysAgo(1)});
    start(QString());
    Repository unknown(QUrl("http://127.0.0.1"), nullptr);
    m_fixture->connectStranger(&unknown);

    unknown.onFetched(makeExamples({"a"}));

    QCOMPARE(m_fixture->lines(), QStringList{"updated"});
}

void tst_UpdateCycle::theCycleRunsFromServerToListing()
{
    Demo::Project project;
    project.id = 7;
    project.path = "hello";
    project.name = "Hello";
    project.isEmpty = true;
    m_server->gitlab().addProject(project);
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, 1);

    m_fixture->start(m_server->groupUrl());

    QTRY_COMPARE(m_server->requestCount("/api/v4/projects/7/*"), 1);
    QCOMPARE(m_fixture->lines(), QStringList{"updated"});
    QCOMPARE(storedDates(), QStringList{"Demo|" + daysAgo(0)});
}

QTEST_MAIN(tst_UpdateCycle)
#include "tst_updatecycle.moc"
