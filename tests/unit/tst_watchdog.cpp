// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The watchdog starts repositories anew until all are ready.

#include "service/downloadservice.h"

#include "plugin/constants.h"

#include "common/logrecorder.h"
#include "common/updatefixture.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Varnel;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

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

class tst_Watchdog final : public UpdateFixture
{
    Q_OBJECT

private slots:
    void repositoriesThatAreNotReadyStartAnew();
    void allThatAreNotReadyAreReportedInTheirOrder();
    void readyRepositoriesAreLeftAlone();
    void onceAllAreReadyItStopsForGood();
    void withoutRepositoriesItStopsAtOnce();
    void intervalsBeyondTheTimersRangeNeverFire();
    void theOwnersSettingsAreNotSavedAtTheEnd();
};

void tst_Watchdog::repositoriesThatAreNotReadyStartAnew()
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

void tst_Watchdog::allThatAreNotReadyAreReportedInTheirOrder()
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

void tst_Watchdog::readyRepositoriesAreLeftAlone()
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

void tst_Watchdog::onceAllAreReadyItStopsForGood()
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

void tst_Watchdog::withoutRepositoriesItStopsAtOnce()
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

void tst_Watchdog::intervalsBeyondTheTimersRangeNeverFire()
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

void tst_Watchdog::theOwnersSettingsAreNotSavedAtTheEnd()
{
    m_fixture->start();
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, 33);

    m_fixture->stop();

    QCOMPARE(m_fixture->ide().stored("Varnel/UpdatesCheckTimeoutDays").toInt(), 33);
}

QTEST_MAIN(tst_Watchdog)
#include "tst_watchdog.moc"
