// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is downloaded again after a listing, and the watchdog that starts repositories anew.

#include "service/downloadservice.h"

#include "client/apiclient.h"
#include "plugin/constants.h"

#include "common/clientrecorder.h"
#include "common/logrecorder.h"
#include "common/servicefixture.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Varnel;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr char DATE_FORMAT[] = "dd.MM.yyyy";

QString dateText(const QDate &date)
{
    return date.toString(QString(DATE_FORMAT));
}

QString daysAgo(int days)
{
    return dateText(QDate::currentDate().addDays(-days));
}

QJsonObject activityAt(const QDateTime &time)
{
    return {{"last_activity_at", time.toUTC().toString(Qt::ISODateWithMs)}};
}

/** Counts how often a timer fires that is a member of the service. */
class FiringCounter final : public QObject
{
public:
    explicit FiringCounter(const DownloadService &service)
        : m_service(service)
    {
        qApp->installEventFilter(this);
    }

    [[nodiscard]] int count() const { return m_count; }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        const auto begin = reinterpret_cast<quintptr>(&m_service);
        const auto address = reinterpret_cast<quintptr>(receiver);
        if (event->type() == QEvent::Timer && address >= begin && address < begin + sizeof(m_service))
            ++m_count;
        return false;
    }

private:
    const DownloadService &m_service;
    int m_count = 0;
};

} // namespace

class tst_UpdateCycle final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

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

    // The choice
    void changedExamplesAreDownloaded_data();
    void changedExamplesAreDownloaded();
    void onTheFirstCheckAllAreDownloaded();
    void missingExamplesAreDownloaded();
    void removedExamplesAreNever_data();
    void removedExamplesAreNever();
    void unusualPathsAreListedAsUsual();
    void theCycleRunsFromServerToListing();

    // The watchdog
    void repositoriesThatAreNotReadyStartAnew();
    void allThatAreNotReadyAreReportedInTheirOrder();
    void readyRepositoriesAreLeftAlone();
    void onceAllAreReadyItStopsForGood();
    void withoutRepositoriesItStopsAtOnce();
    void intervalsBeyondTheTimersRangeNeverFire();
    void theOwnersSettingsAreNotSavedAtTheEnd();

private:
    /** A service with these settings; listings of its own are held back. */
    void start(const QString &storedDate, const QVariant &days = 1);
    /** The numbers of the projects whose archives are asked for, now that a last one is. */
    [[nodiscard]] QList<int> downloads();
    [[nodiscard]] QStringList storedDates();

    std::unique_ptr<ServiceFixture> m_fixture;
    std::unique_ptr<DemoServer> m_server;
};

void tst_UpdateCycle::initTestCase()
{
    if (QTime::currentTime() > QTime(23, 59))
        QSKIP("The day changes while these tests run");
    m_fixture = std::make_unique<ServiceFixture>();
}

void tst_UpdateCycle::init()
{
    QThreadPool::globalInstance()->setMaxThreadCount(1); // downloads come one after the other
    m_server = std::make_unique<DemoServer>();
}

void tst_UpdateCycle::cleanup()
{
    std::ignore = downloads(); // none may be under way when its client goes: its worker would be lost
    m_fixture->reset();
    m_server.reset();
}

void tst_UpdateCycle::cleanupTestCase()
{
    quitApplication();
}

void tst_UpdateCycle::start(const QString &storedDate, const QVariant &days)
{
    m_server->hold("/api/v4/groups*");
    m_server->answer("/api/v4/projects/*", 404);
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, days);
    if (!storedDate.isNull())
        m_fixture->ide().set(Constants::UPDATES_CHECKED, QStringList{"Demo|" + storedDate});
    m_fixture->start(m_server->groupUrl());
}

QList<int> tst_UpdateCycle::downloads()
{
    constexpr int LAST = 999;
    m_server->answer(QString("/api/v4/projects/%1/*").arg(LAST), 200, "archive");
    ApiClient last(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(last);
    last.download(Repository::Examples{makeExample("last", {{"id", LAST}})});
    // To the end: a worker whose client goes is lost.
    if (!QTest::qWaitFor([&] { return !recorder.downloads().isEmpty(); }))
        qFatal("downloads are stuck");

    QList<int> ids;
    const QList<Request> requests = m_server->requests("/api/v4/projects/*");
    for (const Request &request : requests)
        ids.append(request.path().section('/', 4, 4).toInt());
    ids.removeOne(LAST);
    std::ranges::sort(ids);
    return ids;
}

QStringList tst_UpdateCycle::storedDates()
{
    QStringList dates = m_fixture->ide().stored("Varnel/UpdatesCheckedDate").toStringList();
    dates.sort();
    return dates;
}

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

void tst_UpdateCycle::changedExamplesAreDownloaded_data()
{
    QTest::addColumn<QJsonObject>("changes");
    QTest::addColumn<bool>("isDownloaded");

    const QDateTime checked = QDate::currentDate().addDays(-5).startOfDay(); // local time
    QTest::newRow("long before") << activityAt(checked.addYears(-1)) << false;
    QTest::newRow("a second before the day of the check") << activityAt(checked.addSecs(-1)) << false;
    QTest::newRow("less than a second before") << activityAt(checked.addMSecs(-999)) << true;
    QTest::newRow("at the start of the day of the check") << activityAt(checked) << true;
    QTest::newRow("later on the day of the check") << activityAt(checked.addSecs(3600)) << true;
    QTest::newRow("after the day of the check") << activityAt(checked.addDays(2)) << true;
    QTest::newRow("in the future") << activityAt(checked.addYears(3)) << true;
    QTest::newRow("at an unknown time") << QJsonObject{{"last_activity_at", "x"}} << true;
    QTest::newRow("never") << QJsonObject{{"last_activity_at", QJsonValue::Null}} << true;
}

void tst_UpdateCycle::changedExamplesAreDownloaded()
{
    QFETCH(QJsonObject, changes);
    QFETCH(const bool, isDownloaded);
    makeDirectory(ServiceFixture::path("a"));
    start(daysAgo(5));
    const LogRecorder log;
    changes.insert("id", 1);

    m_fixture->list({makeExample("a", changes)});

    QCOMPARE(downloads(), isDownloaded ? QList<int>{1} : QList<int>());
    QCOMPARE(log.lines(LogRecorder::SERVICE).contains("Skip example: \"Title of a\""), !isDownloaded);
}

void tst_UpdateCycle::onTheFirstCheckAllAreDownloaded()
{
    makeDirectory(ServiceFixture::path("a"));
    start({});

    m_fixture->list({makeExample("a", {{"id", 1}}), makeExample("b", {{"id", 2}})});

    QCOMPARE(downloads(), (QList<int>{1, 2}));
}

void tst_UpdateCycle::missingExamplesAreDownloaded()
{
    makeDirectory(ServiceFixture::path("there"));
    writeFile(ServiceFixture::path("file"), "in the way");
    makeDirectory(ServiceFixture::path("Missing-in-another-case"));
    start(daysAgo(5));
    const LogRecorder log;

    m_fixture->list(
        {makeExample("there", {{"id", 1}}),
         makeExample("missing", {{"id", 2}}),
         makeExample("file", {{"id", 3}}),
         makeExample("missing-in-another-case", {{"id", 4}})});

    QCOMPARE(downloads(), (QList<int>{2, 3, 4}));
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        (QStringList{"Updating examples: 4", "Skip example: \"Title of there\""}));
}

void tst_UpdateCycle::removedExamplesAreNever_data()
{
    QTest::addColumn<QString>("storedDate");
    QTest::addColumn<bool>("isThere");

    QTest::newRow("first check") << QString() << false;
    QTest::newRow("unchanged, missing") << daysAgo(5) << false;
    QTest::newRow("still there") << QString() << true;
}

void tst_UpdateCycle::removedExamplesAreNever()
{
    QFETCH(const QString, storedDate);
    QFETCH(const bool, isThere);
    if (isThere)
        makeDirectory(ServiceFixture::path("removed"));
    start(storedDate);
    const LogRecorder log;

    m_fixture->list(
        {makeExample("removed", {{"id", 1}, {"last_activity_at", "2999-01-01T00:00:00Z"}}),
         makeExample("Removed", {{"id", 2}})});

    QCOMPARE(downloads(), QList<int>{2});
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        (QStringList{"Updating examples: 2", "Skip example: \"Title of removed\""}));
}

void tst_UpdateCycle::unusualPathsAreListedAsUsual()
{
    start({});
    const Repository::Examples examples{
        makeExample("../up", {{"id", 1}}), makeExample("", {{"id", 2}}), makeExample("*", {{"id", 3}})};

    m_fixture->list(examples);

    QCOMPARE(m_fixture->service().examples("Demo"), examples);
    QCOMPARE(downloads(), (QList<int>{1, 2, 3}));
}

void tst_UpdateCycle::theCycleRunsFromServerToListing()
{
    Project project;
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

void tst_UpdateCycle::repositoriesThatAreNotReadyStartAnew()
{
    m_server->answer("/api/v4/groups", 503);
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 0);
    const LogRecorder log;

    m_fixture->start(m_server->groupUrl());
    QTRY_VERIFY(m_server->requestCount() >= 1);
    QTRY_VERIFY(m_fixture->lines().size() >= 3);
    m_server->restore();

    const QString status = "API client is not ready - restarting (" + m_server->groupUrl().toString() + ')';
    QCOMPARE(m_fixture->lines().constFirst(), status);
    QVERIFY(log.lines(LogRecorder::SERVICE).contains("Status: \"" + status + '"'));
}

void tst_UpdateCycle::allThatAreNotReadyAreReportedInTheirOrder()
{
    DemoServer second;
    QStringList lines;
    const QObject recorder; // goes before the lines do
    QStringList settings;
    for (DemoServer *server : {m_server.get(), &second}) {
        server->answer("/api/v4/groups", 503);
        connect(server, &DemoServer::requestReceived, &recorder, [&lines, server] {
            lines.append("search of " + server->groupUrl().toString());
        });
        settings.append(QString("R%1|").arg(settings.size()) + server->groupUrl().toString());
    }
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 1);
    m_fixture->ide().set(Constants::REPOSITORIES, settings);
    const DownloadService service(nullptr);
    connect(&service, &DownloadService::statusChanged, &recorder, [&lines](const QString &status) {
        lines.append(status);
    });
    QStringList urls;
    for (const Repository *repository : service.findChildren<Repository *>())
        urls.append(repository->url().toString());

    QTRY_COMPARE(lines.filter("search").size(), 3 * 2);

    QCOMPARE(urls.size(), 2);
    for (const QString &url : std::as_const(urls)) {
        const QString search = "search of " + url;
        const QString status = "API client is not ready - restarting (" + url + ')';
        QCOMPARE(lines.filter(url), (QStringList{search, status, search, status, search}));
    }
    QStringList statuses = lines.filter("restarting");
    for (const QString &url : urls + urls)
        QCOMPARE(statuses.takeFirst(), "API client is not ready - restarting (" + url + ')');
}

void tst_UpdateCycle::readyRepositoriesAreLeftAlone()
{
    DemoServer broken;
    broken.answer("/api/v4/groups", 503);
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 1);
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, 0);
    m_fixture->ide().set(
        Constants::REPOSITORIES,
        QStringList{"A|" + m_server->groupUrl().toString(), "B|" + broken.groupUrl().toString()});

    const DownloadService service(nullptr);

    QTRY_VERIFY(broken.requestCount() >= 2);
    QCOMPARE(m_server->requestCount("/api/v4/groups"), 1);
    QVERIFY(service.findRepository("A")->isReady());
}

void tst_UpdateCycle::onceAllAreReadyItStopsForGood()
{
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 1);
    m_fixture->start(m_server->groupUrl());
    QTRY_VERIFY(m_fixture->repository().isReady());

    // A second service of the same interval, started later, has fired twice: the first one has, too.
    DemoServer broken;
    broken.answer("/api/v4/groups", 503);
    m_fixture->ide().set(Constants::REPOSITORIES, QStringList{"B|" + broken.groupUrl().toString()});
    const DownloadService clock(nullptr);
    QTRY_VERIFY(broken.requestCount() >= 2);
    m_server->answer("/api/v4/groups", 503);
    m_fixture->repository().reset();
    QTRY_COMPARE(m_server->requestCount("/api/v4/groups"), 2);
    const int before = broken.requestCount();
    QTRY_VERIFY(broken.requestCount() >= before + 2);

    QVERIFY(!m_fixture->repository().isReady());
    QCOMPARE(m_server->requestCount("/api/v4/groups"), 2);
    QCOMPARE(m_fixture->lines().filter("restarting").size(), 0);
}

void tst_UpdateCycle::withoutRepositoriesItStopsAtOnce()
{
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 0);
    const LogRecorder log;
    DownloadService service(nullptr);
    QSignalSpy status(&service, &DownloadService::statusChanged);
    const FiringCounter firings(service);

    // A timer of 0 that is started later fires later, each time.
    int rounds = 0;
    QTimer clock;
    clock.callOnTimeout([&rounds] { ++rounds; });
    clock.start(0);

    QTRY_VERIFY(rounds >= 5);
    QCOMPARE(firings.count(), 1);
    QCOMPARE(status.size(), 0);
    QCOMPARE(log.lines(LogRecorder::SERVICE), QStringList());
}

void tst_UpdateCycle::intervalsBeyondTheTimersRangeNeverFire()
{
    // Times 1000 it is negative in 32 bits, which starts no timer.
    m_fixture->ide().set(Constants::SERVICE_RESTART_TIMEOUT, 2147484);
    QTest::ignoreMessage(QtWarningMsg, "QObject::startTimer: Timers cannot have negative intervals");
    m_fixture->start();

    bool hasFired = false;
    QTimer::singleShot(0, this, [&hasFired] { hasFired = true; });
    QTRY_VERIFY(hasFired);

    QCOMPARE(m_fixture->lines(), QStringList());
}

void tst_UpdateCycle::theOwnersSettingsAreNotSavedAtTheEnd()
{
    m_fixture->start();
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, 33);

    m_fixture->stop();

    QCOMPARE(m_fixture->ide().stored("Varnel/UpdatesCheckTimeoutDays").toInt(), 33);
}

QTEST_MAIN(tst_UpdateCycle)
#include "tst_updatecycle.moc"
