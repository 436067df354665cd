// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Receivers that destroy the client or quit the application in the middle of each of its signals, and
// requests that come too late. Quitting happens in a process of its own, as an application quits but once.

#include "client/apiclient.h"

#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <cstdio>

using namespace std::chrono_literals;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString SEARCH = "/api/v4/groups";
const QString LISTING = "/api/v4/groups/*";
const QString ARCHIVES = "/api/v4/projects/*";
const QString PICTURE = "/picture";
const QString FOREIGN = "ftp://127.0.0.1/picture";
const QString RESET_WORKER = "a worker whose client is gone";
const QString LATE_LISTING = "listing";
const QString LATE_DOWNLOAD = "download";
const QString LATE_DOWNLOAD_THAT_BLOCKS = "download that blocks";
const QString QUEUED_SEARCH = "search that waits its turn";
const QString QUEUED_FAILURE = "failure that waits its turn";
constexpr int NOT_REACHED = 77; // exit code

/** One signal of a client that looks up its group, lists it and downloads its only example. */
struct Place
{
    const char *name;
    QString line;
    int occurrence = 1;
    std::function<void(DemoServer &)> prepare = [](DemoServer &) {};
    QString picture = PICTURE;
    bool isForeignGroup = false;
};

std::function<void(DemoServer &)> answer(const QString &route, int status, const QByteArray &body = {})
{
    return [=](DemoServer &server) { server.answer(route, status, body); };
}

const QList<Place> &places()
{
    static const QList<Place> ALL{
        {"search begins", "Searching examples"},
        {"search fails", "Network error", 1, answer(SEARCH, 500)},
        {"search of a foreign scheme fails", "Network error", 1, [](DemoServer &) {}, PICTURE, true},
        {"search is answered", ""},
        {"search is answered badly", "Search error", 1, answer(SEARCH, 200, "{}")},
        {"search says that the client is ready", "API client is ready"},
        {"ready", "ready"},
        {"listing begins", "Fetch examples"},
        {"listing fails", "Network error", 1, answer(LISTING, 500)},
        {"listing is answered", "", 2},
        {"listing is answered badly", "Fetch error", 1, answer(LISTING, 200, "{}")},
        {"fetched", "fetched"},
        {"archive fails", "Network error", 1, answer(ARCHIVES, 404)},
        {"picture fails", "Network error", 1, answer(PICTURE, 404)},
        {"picture of a foreign scheme fails", "Network error", 1, [](DemoServer &) {}, FOREIGN},
        {"downloaded", "downloaded"},
        {"downloaded without a picture", "downloaded", 1, answer(PICTURE, 404)},
        {"picture is there", "", 3},
        {"picture is not there", "Unable to download image", 1, answer(PICTURE, 404)}};
    return ALL;
}

/** Runs a client as far as a place, and does something there, in the middle of the signal. */
class Scenario final : public QObject
{
public:
    Scenario(const Place &place, const std::function<void(Scenario &)> &act)
        : m_place(place)
        , m_act(act)
    {
        m_server.answer(ARCHIVES, 200, "archive");
        m_server.answer(PICTURE, 200, encodedPicture({8, 8}));
        Project project;
        project.id = 7;
        project.path = project.name = "subject";
        project.overrides.insert(
            "avatar_url", place.picture == PICTURE ? m_server.url(PICTURE).toString() : place.picture);
        m_server.gitlab().addProject(project);
        place.prepare(m_server);
        m_client = std::make_unique<ApiClient>(
            place.isForeignGroup ? QUrl("ftp://127.0.0.1/samples") : m_server.groupUrl(), nullptr);
        connectTo(m_client.get());
    }

    void destroyClient() { m_client.reset(); }
    [[nodiscard]] bool isReached() const { return m_isReached; }
    [[nodiscard]] DemoServer &server() { return m_server; }
    /** What was logged and asked from the place on. */
    [[nodiscard]] QStringList aftermath() const
    {
        QStringList lines = m_log.lines(LogRecorder::API).sliced(m_logged);
        if (m_server.requestCount() != m_requests)
            lines.append("a request");
        return lines + m_signals;
    }

private:
    void connectTo(ApiClient *client)
    {
        connect(client, &ApiClient::statusChanged, this, [this](const QString &text) { onSignal(text); });
        connect(client, &ApiClient::ready, this, [this, client] {
            onSignal("ready");
            if (!m_isReached)
                client->fetch();
        });
        connect(client, &ApiClient::fetched, this, [this, client](const Repository::Examples &examples) {
            onSignal("fetched");
            if (!m_isReached)
                client->download(examples);
        });
        connect(client, &ApiClient::downloaded, this, [this] { onSignal("downloaded"); });
    }

    void onSignal(const QString &line)
    {
        if (m_isReached) {
            m_signals.append("signal: " + line);
            return;
        }
        const bool isIt = m_place.line.isEmpty() ? line.isEmpty() : line.startsWith(m_place.line);
        if (!isIt || ++m_occurrences != m_place.occurrence)
            return;
        m_isReached = true;
        m_logged = m_log.lines(LogRecorder::API).size();
        m_requests = m_server.requestCount();
        m_act(*this);
    }

    const Place m_place;
    const std::function<void(Scenario &)> m_act;
    LogRecorder m_log;
    DemoServer m_server;
    std::unique_ptr<ApiClient> m_client;
    bool m_isReached = false;
    int m_occurrences = 0;
    qsizetype m_logged = 0;
    int m_requests = 0;
    QStringList m_signals;
};

/** What a process does that quits at a place, or asks for something too late. */
class QuittingProcess final
{
public:
    int run(const QString &name)
    {
        QTimer::singleShot(20s, qApp, [] { QCoreApplication::exit(NOT_REACHED); });
        for (const Place &place : places()) {
            if (name == QLatin1StringView(place.name))
                return quitAt(place);
        }
        if (name == RESET_WORKER)
            return resetWhileAWorkerWaits();
        if (name == QUEUED_SEARCH)
            return quitBeforeTheSearch();
        return name == QUEUED_FAILURE ? quitBeforeTheFailure() : askLate(name);
    }

private:
    static int quitAt(const Place &place)
    {
        Scenario scenario(place, [](Scenario &) { QCoreApplication::quit(); });
        const int exitCode = QCoreApplication::exec();
        return finish(exitCode, scenario.aftermath());
    }

    /** Quits once a client is ready, and asks it for something meanwhile. */
    static int askLate(const QString &what)
    {
        DemoServer server;
        ApiClient client(server.groupUrl(), nullptr);
        LogRecorder log;
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, [&] {
            const qsizetype threads = threadCount();
            if (what == LATE_LISTING)
                client.fetch();
            else if (what == LATE_DOWNLOAD)
                client.download(Repository::Examples{makeExample("late")});
            else
                client.download(makeExample("late"));
            if (threadCount() > threads)
                std::fputs("after quitting: a worker has started\n", stderr);
        });
        QObject::connect(&client, &ApiClient::ready, qApp, [&log] {
            log.clear();
            QCoreApplication::quit();
        });
        const int exitCode = QCoreApplication::exec();
        return finish(exitCode, log.lines(LogRecorder::API).filter("Requesting:"));
    }

    static qsizetype threadCount()
    {
        return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }

    /** The event loop turns once more after quitting, for what has been queued by then. */
    static int quitBeforeTheSearch()
    {
        const DemoServer server;
        const LogRecorder log;
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        const ApiClient client(server.groupUrl(), nullptr);
        const int exitCode = QCoreApplication::exec();
        return finish(exitCode, log.lines(LogRecorder::API).filter("Requesting:"));
    }

    static int quitBeforeTheFailure()
    {
        const LogRecorder log;
        const ApiClient client(QUrl("ftp://127.0.0.1/samples"), nullptr);
        QObject::connect(&client, &ApiClient::statusChanged, qApp, [] {
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        });
        const int exitCode = QCoreApplication::exec();
        return finish(exitCode, log.lines(LogRecorder::API).filter("Network error"));
    }

    static int resetWhileAWorkerWaits()
    {
        DemoServer server;
        server.hold(ARCHIVES);
        auto client = std::make_unique<ApiClient>(server.groupUrl(), nullptr);
        const std::unique_ptr<QThread> worker(
            QThread::create([&client, example = makeExample("demo")] { client->download(example); }));
        worker->start();
        if (!QTest::qWaitFor([&server] { return server.heldCount() == 1; }))
            return NOT_REACHED;

        client.reset();
        if (!QTest::qWaitFor([&server] { return server.heldCount() == 0; }))
            return NOT_REACHED;
        const ApiClient later(server.groupUrl(), nullptr);
        QObject::connect(&later, &ApiClient::ready, qApp, [&worker] {
            std::fputs(worker->isRunning() ? "waits\n" : "has ended\n", stderr);
            QCoreApplication::quit();
        });
        const int exitCode = QCoreApplication::exec();
        std::fputs(worker->wait(10s) ? "ended\n" : "is stuck\n", stderr);
        return exitCode;
    }

    static int finish(int exitCode, const QStringList &aftermath)
    {
        for (const QString &line : aftermath)
            std::fprintf(stderr, "after quitting: %s\n", qPrintable(line));
        return exitCode;
    }
};

} // namespace

class tst_ClientLifetime final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void aReceiverMayDestroyTheClient_data();
    void aReceiverMayDestroyTheClient();
    void aReceiverOfAWorkersStatusMayDestroyTheClient();
    void aReceiverOfAnEarlyListingMayDestroyTheClient();
    void aReceiverMayQuitTheApplication_data();
    void aReceiverMayQuitTheApplication();
    void nothingIsAskedAfterQuitting_data();
    void nothingIsAskedAfterQuitting();
    void aWorkerWithoutAClientWaitsForTheQuitting();

private:
    static void quitInAProcess(const QString &name, const QByteArray &output = {});
};

// The workers of a destroyed client stay until the application quits.
void tst_ClientLifetime::initTestCase()
{
    QThreadPool::globalInstance()->setMaxThreadCount(64);
}

void tst_ClientLifetime::cleanupTestCase()
{
    quitApplication();
}

void tst_ClientLifetime::aReceiverMayDestroyTheClient_data()
{
    QTest::addColumn<const Place *>("place");
    for (const Place &place : places())
        QTest::newRow(place.name) << &place;
}

void tst_ClientLifetime::aReceiverMayDestroyTheClient()
{
    QFETCH(const Place *, place);
    Scenario scenario(*place, [](Scenario &at) { at.destroyClient(); });

    QTRY_VERIFY(scenario.isReached());

    // What might still be under way comes before a later client's answer.
    DemoServer other;
    const ApiClient later(other.groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QStringList aftermath = scenario.aftermath();
    aftermath.removeIf([](const QString &line) { // the later client's own
        return line.contains("Searching examples") || line.contains("API client is ready")
               || line.startsWith("Requesting: \"http://127.0.0.1") || line == "signal: ";
    });
    QCOMPARE(aftermath, QStringList());
}

// It is emitted on the worker, which goes on meanwhile.
void tst_ClientLifetime::aReceiverOfAWorkersStatusMayDestroyTheClient()
{
    Scenario scenario({"download begins", "Downloading example"}, [](Scenario &at) { at.destroyClient(); });

    QTRY_VERIFY(scenario.isReached());

    const ApiClient later(scenario.server().groupUrl(), nullptr);
    QTRY_VERIFY(later.isReady());
    QTRY_COMPARE(scenario.server().heldCount(), 0);
}

void tst_ClientLifetime::aReceiverOfAnEarlyListingMayDestroyTheClient()
{
    DemoServer server;
    auto client = std::make_unique<ApiClient>(server.groupUrl(), nullptr);
    connect(client.get(), &ApiClient::statusChanged, this, [&client] { client.reset(); });

    client->fetch();

    QVERIFY(!client);
}

void tst_ClientLifetime::quitInAProcess(const QString &name, const QByteArray &output)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);

    process.start(QCoreApplication::applicationFilePath(), {"--quit", name});

    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 40'000);
    QCOMPARE(process.readAll(), output);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void tst_ClientLifetime::aReceiverMayQuitTheApplication_data()
{
    QTest::addColumn<QString>("place");
    for (const Place &place : places())
        QTest::newRow(place.name) << QString::fromLatin1(place.name);
}

void tst_ClientLifetime::aReceiverMayQuitTheApplication()
{
    QFETCH(const QString, place);
    quitInAProcess(place);
}

void tst_ClientLifetime::nothingIsAskedAfterQuitting_data()
{
    QTest::addColumn<QString>("what");
    for (const QString &what :
         {LATE_LISTING, LATE_DOWNLOAD, LATE_DOWNLOAD_THAT_BLOCKS, QUEUED_SEARCH, QUEUED_FAILURE})
        QTest::newRow(qPrintable(what)) << what;
}

void tst_ClientLifetime::nothingIsAskedAfterQuitting()
{
    QFETCH(const QString, what);
    quitInAProcess(what);
}

void tst_ClientLifetime::aWorkerWithoutAClientWaitsForTheQuitting()
{
    quitInAProcess(RESET_WORKER, "waits\nended\n");
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--quit")
        return QuittingProcess().run(arguments.value(2));
    tst_ClientLifetime test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_clientlifetime.moc"
