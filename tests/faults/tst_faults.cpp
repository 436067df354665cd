// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Every request and every step on the disk fails, alone and together with every other one. Whatever fails,
// the installed example stays whole or goes whole, and the next due update installs the new version.

#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "faults/diskfaults.h"
#include "faults/versions.h"
#include "service/downloadservice.h"

#include "server/demoserver.h"

#include <utils/qtcsettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <cerrno>
#include <optional>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Varnel::Test;
using namespace std::chrono_literals;
using Varnel::Demo::DemoServer;
using Varnel::Internal::DownloadService;

namespace {

constexpr int FILES = 6;
constexpr int PATIENCE = 60'000; // ms
constexpr int DAYS_AGO = 10;
const bool IS_LONG = qEnvironmentVariableIsSet("VARNEL_LONG_TESTS"); // the pairs take minutes

constexpr char SEARCH[] = "/api/v4/groups";
constexpr char DETAILS[] = "/api/v4/groups/*";
constexpr char ARCHIVE[] = "/api/v4/projects/*";
constexpr char PICTURE[] = "/uploads/*";

enum class Tool { Works, Fails, IsKilled, IsMissing };
enum class Directory { Stays, Vanishes };

struct Fault
{
    const char *name = "";
    const char *route = nullptr; // of the request that fails
    std::optional<DiskFault> disk = {};
    Tool tool = Tool::Works;
    Directory directory = Directory::Stays;
};

const QList<Fault> &allFaults()
{
    using enum DiskStep;
    static const QList<Fault> faults{
        {.name = "group search", .route = SEARCH},
        {.name = "group details", .route = DETAILS},
        {.name = "archive", .route = ARCHIVE},
        {.name = "picture", .route = PICTURE},
        {.name = "temporary file not opened", .disk = DiskFault{Open, "/archives/#", EACCES}},
        {.name = "temporary file not written", .disk = DiskFault{Write, "/archives/#", ENOSPC}},
        {.name = "temporary file not named", .disk = DiskFault{Link, ".tar.gz", EACCES}},
        {.name = "temporary file not deleted", .disk = DiskFault{Delete, ".tar.gz", EACCES}},
        {.name = "fresh archive not opened", .disk = DiskFault{Open, ".tar.gz.fresh", EACCES}},
        {.name = "fresh archive not written", .disk = DiskFault{Write, ".tar.gz.fresh", ENOSPC}},
        {.name = "fresh archive not renamed", .disk = DiskFault{Rename, ".tar.gz.fresh", EIO}},
        {.name = "tool fails", .tool = Tool::Fails},
        {.name = "tool killed", .tool = Tool::IsKilled},
        {.name = "tool missing", .tool = Tool::IsMissing},
        {.name = "directory vanishes", .directory = Directory::Vanishes},
        {.name = "copy not renamed", .disk = DiskFault{Rename, "sample-00", EACCES}},
        {.name = "copy's time not set", .disk = DiskFault{SetTime, "sample-00", EPERM}},
        {.name = "no exchange", .disk = DiskFault{Exchange, "sample-00", EINVAL}},
        {.name = "nothing deleted", .disk = DiskFault{Delete, "/Demo/sample-00", EACCES}},
        {.name = "picture not opened", .disk = DiskFault{Open, "example-icon.png", EACCES}},
        {.name = "picture not written", .disk = DiskFault{Write, "example-icon.png", ENOSPC}},
        {.name = "picture not renamed", .disk = DiskFault{Rename, "example-icon.png", EIO}},
        {.name = "manifest not opened", .disk = DiskFault{Open, "examples-manifest.xml", EACCES}},
        {.name = "manifest not written", .disk = DiskFault{Write, "examples-manifest.xml", ENOSPC}},
        {.name = "manifest not renamed", .disk = DiskFault{Rename, "examples-manifest.xml", EIO}},
        {.name = "settings not opened", .disk = DiskFault{Open, "settings.ini", EACCES}},
        {.name = "settings not written", .disk = DiskFault{Write, "settings.ini", ENOSPC}},
        {.name = "settings not renamed", .disk = DiskFault{Rename, "settings.ini", EIO}},
    };
    return faults;
}

QString toolDirectory()
{
    return qEnvironmentVariable("XDG_RUNTIME_DIR") + "/tools";
}

// A tool that fails notes here that it ran.
QString toolLog()
{
    return qEnvironmentVariable("XDG_RUNTIME_DIR") + "/tool-runs";
}

// The unarchiver takes whatever is found under this name.
void installTool(Tool tool)
{
    const QString path = toolDirectory() + "/cmake";
    QFile::remove(path);
    QFile::remove(toolLog());
    if (tool == Tool::IsMissing)
        return;
    QByteArray script = "#!/bin/sh\necho run >>\"" + QFile::encodeName(toolLog()) + "\"\n";
    if (tool == Tool::Works)
        script += "exec /usr/bin/cmake \"$@\"\n";
    else if (tool == Tool::Fails)
        script += "exit 1\n";
    else // with its work half done
        script += "export PATH=/usr/bin:/bin; /usr/bin/cmake \"$@\"; rm -f ./*-main-*/files/1.txt; kill "
                  "-KILL $$\n";
    writeFile(path, script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void removeTemporaryArchives()
{
    const QStringList archives = temporaryArchives();
    for (const QString &archive : archives)
        QFile::remove(QDir::tempPath() + '/' + archive);
}

} // namespace

class tst_Faults final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyFaultAndEveryPairLeavesAWholeExample_data();
    void everyFaultAndEveryPairLeavesAWholeExample();
    void aClockPutBackOverMidnightStopsNoUpdate();
    void copiesOfACutShortRegistrationGoWithTheNextUpdate();
    void aFullDiskLeavesAWholeExample();
    void aReadOnlyDiskLeavesTheExampleAlone();
    void cleanupTestCase();

private:
    void makeUpdateDue();
    int update(const QList<Fault> &faults);
    void install(int version);
    void checkWhole(int oldVersion, int newVersion);
    void checkHealed(int version);
    [[nodiscard]] QString url() const { return m_server.groupUrl().toString(); }

    std::unique_ptr<IdeEnvironment> m_environment;
    DemoServer m_server;
    int m_oldStayed = 0;
    int m_newCame = 0;
    int m_absent = 0;
    int m_updates = 0;
    int m_failedSteps = 0;
};

void tst_Faults::initTestCase()
{
    QVERIFY(m_server.isListening());
    m_environment = std::make_unique<IdeEnvironment>();
    QVERIFY(settingsFileName().startsWith(QDir::tempPath()));

    // Archives in a directory of their own: a file without a name yet is known by its directory only.
    const QString archives = QDir::tempPath() + "/archives";
    makeDirectory(archives);
    qputenv("TMPDIR", QFile::encodeName(archives));
}

void tst_Faults::init()
{
    setDiskFaults({});
    shiftClock(0s);
    m_server.restore();
    installTool(Tool::Works);
    m_environment->reset();
    removeTemporaryArchives();
}

void tst_Faults::makeUpdateDue()
{
    m_environment->settings()->clear();
    m_environment->set("Repositories", QStringList{QString(REPOSITORY) + '|' + url() + '|'});
    m_environment->set(
        "UpdatesCheckedDate",
        QStringList{
            QString(REPOSITORY) + '|' + QDate::currentDate().addDays(-DAYS_AGO).toString("dd.MM.yyyy")});
    m_environment->settings()->sync();
}

// One due update to its end, whatever that is: the failed request, a failed unpacking, or a registration.
// Returns how often the faults have struck.
int tst_Faults::update(const QList<Fault> &faults)
{
    makeUpdateDue();
    m_server.restore();
    QList<DiskFault> diskFaults;
    Tool tool = Tool::Works;
    int strikes = 0;
    bool vanishes = false;
    bool endsWithRequest = false;
    for (const Fault &fault : faults) {
        if (fault.route) {
            m_server.answer(QString::fromLatin1(fault.route), 500);
            endsWithRequest = endsWithRequest || fault.route != PICTURE;
        }
        if (fault.disk)
            diskFaults.append(*fault.disk);
        if (fault.tool != Tool::Works)
            tool = std::max(tool, fault.tool);
        vanishes = vanishes || fault.directory == Directory::Vanishes;
    }
    installTool(tool);
    setDiskFaults(diskFaults);
    m_server.clearRequests();

    LogRecorder log;
    DownloadService service(nullptr);
    QSignalSpy updated(&service, &DownloadService::updated);
    connect(&service, &DownloadService::statusChanged, this, [&](const QString &status) {
        if (vanishes && status.startsWith("Unpacking example")) {
            // This process may not be able to delete anything just now.
            QCOMPARE(QProcess::execute("/bin/rm", {"-rf", dataRoot()}), 0);
            ++strikes;
        }
        if (tool == Tool::IsMissing && status.startsWith("Downloaded file is not an archive"))
            ++strikes;
    });
    const auto isOver = [&] {
        const QString lines = log.pluginLines().join('\n');
        return updated.size() == 2 || lines.contains("Downloaded file is not an archive")
               || lines.contains("There was an error while unarchiving")
               || (endsWithRequest && lines.contains("Network error"));
    };
    if (!QTest::qWaitFor(isOver, PATIENCE))
        qFatal("the update does not end:\n%s", qPrintable(log.pluginLines().join('\n')));
    if (faults.isEmpty() && !QTest::qWaitFor([] { return markedCopies().isEmpty(); }, PATIENCE))
        qFatal("old copies are left: %s", qPrintable(markedCopies().join(' ')));
    m_environment->settings()->sync();
    m_failedSteps += failedSteps();
    ++m_updates;

    strikes += failedSteps();
    if (tool != Tool::Works && QFile::exists(toolLog()))
        ++strikes;
    for (const Fault &fault : faults)
        strikes += fault.route ? m_server.requestCount(QString::fromLatin1(fault.route)) : 0;
    setDiskFaults({});
    installTool(Tool::Works);
    return strikes;
}

void tst_Faults::install(int version)
{
    publish(&m_server, 1, version, FILES);
    update({});
    QCOMPARE(installed(0, FILES).fault, QString());
    QCOMPARE(installed(0, FILES).version, version);
}

void tst_Faults::checkWhole(int oldVersion, int newVersion)
{
    const Installed state = installed(0, FILES, Picture::Optional);
    QCOMPARE(state.fault, QString());
    if (state.version == 0)
        ++m_absent;
    else if (state.version == oldVersion)
        ++m_oldStayed;
    else
        ++m_newCame;
    QVERIFY(state.version == 0 || state.version == oldVersion || state.version == newVersion);
    QCOMPARE(settingsFault(url(), DAYS_AGO), QString());
}

void tst_Faults::checkHealed(int version)
{
    QCOMPARE(installed(0, FILES).fault, QString());
    QCOMPARE(installed(0, FILES).version, version);
    QCOMPARE(leftOvers(1), QStringList());
}

void tst_Faults::everyFaultAndEveryPairLeavesAWholeExample_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    const QList<Fault> faults = allFaults();
    for (int i = 0; i < faults.size(); ++i) {
        QTest::addRow("%s", faults[i].name) << i << i;
        for (int k = i + 1; IS_LONG && k < faults.size(); ++k)
            QTest::addRow("%s, %s", faults[i].name, faults[k].name) << i << k;
    }
}

void tst_Faults::everyFaultAndEveryPairLeavesAWholeExample()
{
    QFETCH(int, first);
    QFETCH(int, second);
    install(1);
    publish(&m_server, 1, 2, FILES);
    QList<Fault> faults{allFaults()[first]};
    if (second != first)
        faults.append(allFaults()[second]);

    if (QTest::currentTestFailed())
        return;

    const int strikes = update(faults);

    QCOMPARE_GE(strikes, 1);
    checkWhole(1, 2);
    const bool mayLeaveArchive = std::any_of(faults.cbegin(), faults.cend(), [](const Fault &fault) {
        return fault.disk && fault.disk->step == DiskStep::Delete && fault.disk->pathPart == ".tar.gz";
    });
    if (mayLeaveArchive)
        removeTemporaryArchives();
    QCOMPARE(temporaryArchives(), QStringList());
    if (QTest::currentTestFailed())
        return;

    publish(&m_server, 1, 3, FILES);
    update({});
    checkHealed(3);
}

// The copy that was installed before the clock was put back is of the future then.
void tst_Faults::aClockPutBackOverMidnightStopsNoUpdate()
{
    install(1);

    const QTime now = QTime::currentTime();
    shiftClock(-std::chrono::seconds(now.msecsSinceStartOfDay() / 1000 + 1));
    install(2);
    shiftClock(-48h);
    install(3);

    checkHealed(3);
}

// Their manifest would make the Welcome screen show the example twice, also one that did not change since.
void tst_Faults::copiesOfACutShortRegistrationGoWithTheNextUpdate()
{
    install(1);
    const QString name = versionedName(0);
    const QByteArray manifest
        = readFile(dataRoot() + '/' + REPOSITORY + '/' + name + "/examples-manifest.xml");
    const QString unique = QString(32, u'a');
    const QStringList kept{"other@" + unique, name + "-mine", name + '@' + unique + "-mine", name + "@mine"};
    const QStringList copies{name + '@' + unique, name + '@' + QString(32, u'0')};
    for (const QString &directory : kept + copies)
        writeFile(dataRoot() + '/' + REPOSITORY + '/' + directory + "/examples-manifest.xml", manifest);
    m_server.gitlab().project(name)->lastActivityAt = QDateTime::currentDateTimeUtc().addYears(-1);

    makeUpdateDue();
    m_server.clearRequests();

    const DownloadService service(nullptr);

    QTRY_COMPARE(leftOvers(1), kept);
    QCOMPARE(m_server.requestCount(ARCHIVE), 0);
}

void tst_Faults::aFullDiskLeavesAWholeExample()
{
    const QByteArray root = QFile::encodeName(dataRoot());
    QDir().mkpath(dataRoot());
    if (::mount("varnel", root, "tmpfs", 0, "size=4m") != 0)
        QSKIP("no right to mount a file system in a private namespace");
    const auto unmount = qScopeGuard([&] { ::umount2(root, MNT_DETACH); });

    for (int freePages = 0; freePages < 40; ++freePages) {
        QFile::remove(dataRoot() + "/ballast");
        publish(&m_server, 1, 2 * freePages + 1, FILES);
        update({});
        checkHealed(2 * freePages + 1);
        struct statvfs volume;
        QCOMPARE(::statvfs(root, &volume), 0);
        const qint64 ballast = qint64(volume.f_bavail - freePages) * qint64(volume.f_frsize);
        writeFile(dataRoot() + "/ballast", QByteArray(ballast, 'x'));
        publish(&m_server, 1, 2 * freePages + 2, FILES);

        update({});

        checkWhole(2 * freePages + 1, 2 * freePages + 2);
        QCOMPARE(temporaryArchives(), QStringList());
        if (QTest::currentTestFailed())
            return;
    }
    qInfo("40 updates with 0 to 39 free pages");
}

void tst_Faults::aReadOnlyDiskLeavesTheExampleAlone()
{
    const QByteArray root = QFile::encodeName(dataRoot());
    QDir().mkpath(dataRoot());
    if (::mount("varnel", root, "tmpfs", 0, "size=4m") != 0)
        QSKIP("no right to mount a file system in a private namespace");
    const auto unmount = qScopeGuard([&] { ::umount2(root, MNT_DETACH); });
    install(1);
    publish(&m_server, 1, 2, FILES);
    QCOMPARE(::mount(nullptr, root, nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);

    update({});

    QCOMPARE(installed(0, FILES).fault, QString());
    QCOMPARE(installed(0, FILES).version, 1);
    QCOMPARE(temporaryArchives(), QStringList());
    QCOMPARE(::mount(nullptr, root, nullptr, MS_REMOUNT, nullptr), 0);
    update({});
    checkHealed(2);
}

void tst_Faults::cleanupTestCase()
{
    qInfo(
        "%d updates, %d failed steps on the disk; after the faulty ones: %d times the old version, %d the "
        "new one, "
        "%d none",
        m_updates,
        m_failedSteps,
        m_oldStayed,
        m_newCame,
        m_absent);
    quitApplication();
    m_environment.reset();
}

// What is mounted in a namespace of one's own vanishes with the process. Namespaces are for processes of one
// thread.
int main(int argc, char **argv)
{
    if (::unshare(CLONE_NEWNS) == 0)
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    // Nothing but our own tool is found, so that it can be missing.
    qputenv("PATH", QFile::encodeName(toolDirectory()));
    QCoreApplication application(argc, argv);
    tst_Faults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_faults.moc"
