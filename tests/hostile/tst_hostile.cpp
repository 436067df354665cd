// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The referee: runs every case of hostile input against the plug-in's service and looks at what it has done.

#include "case.h"

#include "client/repository.h"
#include "common/mainloopwatch.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

using namespace Varnel;
using namespace Varnel::Test;

namespace {

// One of these texts tells that a case has come to its end.
QStringList signs(End end)
{
    switch (end) {
    case End::NotReady:
        return {"API client is not ready - restarting"};
    case End::NotAnswered:
        return {"Search error: ", "Fetch error: ", "Network error: "};
    case End::NotReceived:
        return {"The data is not downloaded for example: ", "There was an error while unarchiving"};
    case End::NoData:
        return {"The data is not downloaded for example: "};
    case End::NoArchive:
        return {"Downloaded file is not an archive"};
    case End::NotUnpacked:
        return {"There was an error while unarchiving"};
    case End::NotRegistered:
        return {"There was an error while creating example mainfest"};
    default:
        return {};
    }
}

bool hasLoggedOneOf(const World &world, const QStringList &texts)
{
    return std::any_of(
        texts.cbegin(), texts.cend(), [&world](const QString &text) { return world.hasLogged(text); });
}

// The picture's error has a status of its own behind it.
bool hasArchiveFailed(const World &world)
{
    return world.hasLogged("Network error: ") && !world.hasLogged("Unable to download image: ");
}

bool hasEnded(const Case &testCase, const World &world)
{
    switch (testCase.end) {
    case End::Installed:
        return World::isInstalled(testCase.installedAs) && world.isIdle();
    case End::NotConfigured:
        return !world.repository();
    case End::NotListed:
        return world.hasLogged("Updating examples: 0");
    case End::NotUpdated:
        return !world.repository()->examples().isEmpty();
    case End::NotDownloaded:
        return hasArchiveFailed(world) && world.isIdle();
    case End::NotReceived:
        return (hasArchiveFailed(world) || hasLoggedOneOf(world, signs(testCase.end))) && world.isIdle();
    case End::NotReady:
        return hasLoggedOneOf(world, signs(testCase.end));
    default:
        return hasLoggedOneOf(world, signs(testCase.end)) && world.isIdle();
    }
}

// The most memory that this process ever had, in bytes; the kernel forgets it on request.
void forgetPeakMemory()
{
    QFile file("/proc/self/clear_refs");
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("cannot reset the peak of memory");
}

qint64 peakMemory()
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read the peak of memory");
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.sliced(6).simplified().split(' ').constFirst().toLongLong() * 1024;
    }
    return 0;
}

bool isLoopHeld()
{
    return WatchedApplication::longestWork().time > LONGEST_WORK
           || WatchedApplication::longestSleep().time > LONGEST_SLEEP;
}

// What the Welcome screen needs of a manifest: it is XML throughout, of this repository, with a project.
QString faultOfManifest(const QString &example)
{
    QFile file(World::exampleDirectory(example) + '/' + Constants::MANIFEST_FILE);
    if (!file.open(QIODevice::ReadOnly))
        return "no manifest";
    QXmlStreamReader reader(&file);
    QString module;
    QString project;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"instructionals")
            module = reader.attributes().value("module").toString();
        if (reader.isStartElement() && reader.name() == u"example")
            project = reader.attributes().value("projectPath").toString();
    }
    if (reader.hasError())
        return reader.errorString();
    return module.isEmpty() || project.isEmpty() ? "manifest without module or project" : QString();
}

} // namespace

class tst_Hostile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyCaseDoesNoHarm_data();
    void everyCaseDoesNoHarm();
    void tableInTheDocumentIsRight();
    void cleanupTestCase();

private:
    static void run(const Case &testCase);
    static void judgeEnd(const Case &testCase, World &world);
    static void judgeRepository(const Case &testCase, const QStringList &before);
};

void tst_Hostile::initTestCase()
{
    World::prepareProcess();
}

void tst_Hostile::everyCaseDoesNoHarm_data()
{
    QTest::addColumn<const Case *>("testCase");
    for (const Family &family : families()) {
        for (const Case &testCase : family.cases)
            QTest::addRow("%s: %s", qPrintable(family.name), qPrintable(testCase.name)) << &testCase;
    }
}

void tst_Hostile::everyCaseDoesNoHarm()
{
    QFETCH(const Case *, testCase);
    constexpr int ATTEMPTS = 3; // a machine may stall for a moment, but not each time
    for (int i = 0; i < ATTEMPTS; ++i) {
        WatchedApplication::forgetHolds();

        run(*testCase);

        if (QTest::currentTestFailed() || testCase->mayHoldLoop || !testCase->tar || !isLoopHeld())
            return;
    }
    const WatchedApplication::Hold work = WatchedApplication::longestWork();
    const WatchedApplication::Hold sleep = WatchedApplication::longestSleep();
    QFAIL(qPrintable(
        QString("the main loop was held: %1 ms by event %2 of a %3, asleep %4 ms in event %5 of a %6")
            .arg(work.time / std::chrono::milliseconds(1))
            .arg(work.eventType)
            .arg(QLatin1StringView(work.receiver))
            .arg(sleep.time / std::chrono::milliseconds(1))
            .arg(sleep.eventType)
            .arg(QLatin1StringView(sleep.receiver))));
}

void tst_Hostile::run(const Case &testCase)
{
    World world;
    if (testCase.tar)
        world.subject().archive = testCase.tar().tarGz();
    if (testCase.prepare)
        testCase.prepare(world);
    const QMap<QByteArray, QByteArray> before = World::everythingElse();
    const QStringList entriesBefore = World::repositoryEntries();
    forgetPeakMemory();
    const qint64 memoryBefore = peakMemory();

    testCase.act ? testCase.act(world) : world.start();

    if (!World::waitFor([&] { return hasEnded(testCase, world); }))
        QFAIL(qPrintable("it does not end:\n" + world.log().join('\n')));
    judgeEnd(testCase, world);
    judgeRepository(testCase, entriesBefore);
    if (testCase.check)
        testCase.check(world);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(World::differences(before, World::everythingElse()), QStringList());

    if (testCase.isCuredByRestart)
        world.restartHonestly();
    world.installGood();

    QCOMPARE(faultOfManifest("good"), QString());
    world.stop();
    QCOMPARE(World::differences(before, World::everythingElse()), QStringList());
    QCOMPARE_LT(peakMemory() - memoryBefore, testCase.memory * (IS_SANITIZED ? 2 : 1));
}

void tst_Hostile::judgeEnd(const Case &testCase, World &world)
{
    const bool isInstalled = testCase.end == End::Installed;
    QCOMPARE(World::isInstalled(testCase.installedAs), isInstalled);
    if (isInstalled)
        QCOMPARE(faultOfManifest(testCase.installedAs), QString());
    if (testCase.end < End::NotDownloaded && !isInstalled)
        QCOMPARE(world.server().requestCount("/api/v4/projects/*"), 0);
}

// What was there stays, but for the example's own left-overs; what is new is the example, or said by the
// case. Old copies may still be on their way out.
void tst_Hostile::judgeRepository(const Case &testCase, const QStringList &before)
{
    QStringList expected = before + testCase.remains;
    if (testCase.end == End::Installed)
        expected.append(testCase.installedAs);
    for (const QString &leftOver : testCase.clears)
        expected.removeAll(leftOver);
    expected.removeDuplicates();
    expected.sort();
    World::waitFor([&] { return World::repositoryEntries() == expected; });
    QCOMPARE(World::repositoryEntries(), expected);
}

void tst_Hostile::tableInTheDocumentIsRight()
{
    QFile file(SECURITY_DOCUMENT);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString document = QString::fromUtf8(file.readAll());

    qsizetype all = 0;
    for (const Family &family : families()) {
        const QString row = QString("| %1 | %2 |").arg(family.name).arg(family.cases.size());
        QVERIFY2(document.contains(row), qPrintable("missing: " + row));
        all += family.cases.size();
    }
    const QString sum = QString("| All | %1 |").arg(all);
    QVERIFY2(document.contains(sum), qPrintable("missing: " + sum));
}

void tst_Hostile::cleanupTestCase()
{
    qsizetype all = 0;
    for (const Family &family : families()) {
        fprintf(stdout, "%5lld %s\n", static_cast<long long>(family.cases.size()), qPrintable(family.name));
        all += family.cases.size();
    }
    fprintf(stdout, "%5lld cases\n", static_cast<long long>(all));
}

int main(int argc, char *argv[])
{
    WatchedApplication application(argc, argv);
    tst_Hostile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_hostile.moc"
