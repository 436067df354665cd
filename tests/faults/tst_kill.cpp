// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The process is killed at random instants of an update. The seed is printed; VARNEL_SEED repeats a run.

#include "common/ideenvironment.h"
#include "common/testfiles.h"
#include "faults/versions.h"

#include "server/demoserver.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <unistd.h>

using namespace Varnel::Test;
using Varnel::Demo::DemoServer;
using Varnel::Demo::Request;

namespace {

constexpr int EXAMPLES = 20;
constexpr int FILES = 15; // of each example
constexpr int DAYS_AGO = 10;
constexpr int PATIENCE = 120'000; // ms

} // namespace

class tst_Kill final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void anyInstantLeavesWholeExamplesAndTheNextUpdateHeals();

private:
    void start(QProcess *updater);
    void update();
    void killAtRandom();
    void check(int oldVersion, int newVersion);
    void checkHealed(int version);

    DemoServer m_server;
    QRandomGenerator m_random;
    qint64 m_duration = 0;            // ms of an undisturbed update
    qint64 m_durationOfDownloads = 0; // ms of it from the first archive's request on

    struct
    {
        int kills = 0;
        int tooLate = 0; // the update was complete already
        int oldExamples = 0;
        int newExamples = 0;
        int absentExamples = 0;
        int unpackedLeftOvers = 0;
        int markedLeftOvers = 0;
        int temporaryArchives = 0;
    } m_figures;
};

void tst_Kill::initTestCase()
{
    const quint32 seed = qEnvironmentVariableIsSet("VARNEL_SEED")
                             ? qEnvironmentVariable("VARNEL_SEED").toUInt()
                             : QRandomGenerator::global()->generate();
    m_random.seed(seed);
    qInfo("seed %u", seed);
    QVERIFY(m_server.isListening());

    // The time that an update takes, and a first version of everything.
    publish(&m_server, EXAMPLES, 1, FILES);
    writeSettings(m_server.groupUrl().toString(), DAYS_AGO);
    QElapsedTimer clock;
    qint64 firstArchive = -1;
    QObject context;
    connect(&m_server, &DemoServer::requestReceived, &context, [&](const Request &request) {
        if (firstArchive < 0 && request.path().contains("/repository/archive"))
            firstArchive = clock.elapsed();
    });
    clock.start();
    update();
    m_duration = clock.elapsed();
    m_durationOfDownloads = m_duration - firstArchive;
    QVERIFY(firstArchive > 0);
    checkHealed(1);
}

void tst_Kill::start(QProcess *updater)
{
    updater->setProcessChannelMode(QProcess::ForwardedChannels);
    // Its unarchivers are in its group and outlive it.
    updater->setChildProcessModifier([] { ::setpgid(0, 0); });
    updater->start(UPDATER, {QString::number(EXAMPLES)});
    QVERIFY(updater->waitForStarted());
}

void tst_Kill::update()
{
    QProcess updater;
    start(&updater);
    QTRY_COMPARE_WITH_TIMEOUT(updater.state(), QProcess::NotRunning, PATIENCE);
    QCOMPARE(updater.exitCode(), 0);
}

// Most strikes hit the time in which something is on its way to the disk. Every other one also ends the
// unarchivers, as when the machine goes down; else they finish what they began.
void tst_Kill::killAtRandom()
{
    const bool isEarly = m_random.bounded(10) == 0;
    const bool isWholeGroup = m_random.bounded(2) == 0;
    const auto delay = std::chrono::milliseconds(
        m_random.bounded(isEarly ? m_duration : m_durationOfDownloads + m_durationOfDownloads / 8));

    QProcess updater;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, &updater, &QProcess::kill); // nothing if it has ended
    if (!isEarly) {
        connect(&m_server, &DemoServer::requestReceived, &timer, [&](const Request &request) {
            if (!timer.isActive() && request.path().contains("/repository/archive"))
                timer.start(delay);
        });
    }
    start(&updater);
    const pid_t group = pid_t(updater.processId());
    QVERIFY(group > 0);
    if (isEarly)
        timer.start(delay);
    QTRY_COMPARE_WITH_TIMEOUT(updater.state(), QProcess::NotRunning, PATIENCE);
    if (isWholeGroup)
        ::kill(-group, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(::kill(-group, 0) != 0, PATIENCE);

    if (updater.exitStatus() == QProcess::CrashExit)
        ++m_figures.kills;
    else
        ++m_figures.tooLate;
}

void tst_Kill::check(int oldVersion, int newVersion)
{
    for (int i = 0; i < EXAMPLES; ++i) {
        const Installed state = installed(i, FILES);
        QVERIFY2(state.fault.isEmpty(), qPrintable(versionedName(i) + ": " + state.fault));
        if (state.version == 0)
            ++m_figures.absentExamples;
        else if (state.version == oldVersion)
            ++m_figures.oldExamples;
        else if (state.version == newVersion)
            ++m_figures.newExamples;
        else
            QFAIL(qPrintable(QString("%1 is of version %2").arg(versionedName(i)).arg(state.version)));
    }
    const QStringList names = leftOvers(EXAMPLES);
    for (const QString &name : names)
        ++(name.contains('@') ? m_figures.markedLeftOvers : m_figures.unpackedLeftOvers);

    const QStringList archives = temporaryArchives();
    m_figures.temporaryArchives += int(archives.size());
    for (const QString &archive : archives)
        QFile::remove(QDir::tempPath() + '/' + archive);

    const QString fault = settingsFault(m_server.groupUrl().toString(), DAYS_AGO);
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

void tst_Kill::checkHealed(int version)
{
    for (int i = 0; i < EXAMPLES; ++i) {
        const Installed state = installed(i, FILES);
        QVERIFY2(state.fault.isEmpty(), qPrintable(versionedName(i) + ": " + state.fault));
        QCOMPARE(state.version, version);
    }
    QCOMPARE(leftOvers(EXAMPLES), QStringList());
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Kill::anyInstantLeavesWholeExamplesAndTheNextUpdateHeals()
{
    const int rounds = qEnvironmentVariableIsSet("VARNEL_LONG_TESTS") ? 200 : 20;
    for (int round = 1; m_figures.kills < rounds && !QTest::currentTestFailed(); ++round) {
        const int version = round + 1;
        publish(&m_server, EXAMPLES, version, FILES);
        writeSettings(m_server.groupUrl().toString(), DAYS_AGO);

        killAtRandom();
        check(round, version);

        writeSettings(m_server.groupUrl().toString(), DAYS_AGO);
        update();
        checkHealed(version);
    }
    qInfo(
        "%d kills (%d came too late): %d examples left as they were, %d new, %d absent; left over: %d "
        "unpacked, "
        "%d marked copies, %d temporary archives; each time the next update healed all",
        m_figures.kills,
        m_figures.tooLate,
        m_figures.oldExamples,
        m_figures.newExamples,
        m_figures.absentExamples,
        m_figures.unpackedLeftOvers,
        m_figures.markedLeftOvers,
        m_figures.temporaryArchives);
}

QTEST_GUILESS_MAIN(tst_Kill)

#include "tst_kill.moc"
