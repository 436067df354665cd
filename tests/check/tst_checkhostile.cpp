// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Every case of hostile input that comes from a server, given to varnel-check: it must say of it what the
// plug-in makes of it, end by itself, change nothing and show nothing that deceives.

#include "hostile/case.h"

#include "common/files.h"

#include <utils/environment.h>

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <algorithm>

#include <unistd.h>

using namespace Varnel::Test;

namespace {

QList<Case> everyNth(const QList<Case> &cases, qsizetype step)
{
    QList<Case> result;
    for (qsizetype i = 0; i < cases.size(); i += step)
        result.append(cases.at(i));
    return result;
}

// It is an ordinary user who is guarded, and gets every case. Root needs some, since images are built as
// root.
qsizetype sampleStep()
{
    constexpr qsizetype AS_ROOT = 4;
    return ::geteuid() == 0 && !qEnvironmentVariableIsSet("VARNEL_LONG_TESTS") ? AS_ROOT : 1;
}

// What is on the user's disk or in the settings is not the command's. Rights beyond the common ones matter
// after the unpacking only, which is the plug-in's own; each way once is enough.
const QList<Family> &familiesOfServers()
{
    static const QList<Family> ALL = [] {
        const QStringList foreign{"Archives and what is on the disk", "Several archives", "Settings files"};
        const QMap<QString, qsizetype> steps{
            {"Archives with odd rights", 47}, // shares no factor with the number of rights
            {"Archives without cmake", 8}};
        QList<Family> result;
        for (const Family &family : families()) {
            if (!foreign.contains(family.name))
                result.append(
                    {family.name, everyNth(family.cases, sampleStep() * steps.value(family.name, 1))});
        }
        return result;
    }();
    return ALL;
}

// The command trusts nobody whom only this process trusts, and knows no settings.
bool isForCommand(const QString &family, const Case &testCase)
{
    const bool isAboutSettings = family == "TLS" && testCase.name.contains("behind an address");
    const bool takesSecondTry = testCase.name.contains("asked again");
    return !testCase.act && !isAboutSettings && !takesSecondTry;
}

End endOf(const QString &family, const Case &testCase)
{
    return family == "TLS" ? End::NotAnswered : testCase.end;
}

/** What a run of the command gave. */
struct Outcome
{
    bool hasEnded = false;
    int exitCode = -1;
    QByteArray output = {};
    QByteArray errors = {};
    QByteArray page = {};
    qint64 peakMemory = 0; // bytes

    [[nodiscard]] QJsonObject report() const { return QJsonDocument::fromJson(output).object(); }

    [[nodiscard]] QStringList findings() const
    {
        QStringList ids;
        for (const QJsonValue finding : report().value("findings").toArray())
            ids.append(finding["id"].toString());
        return ids;
    }

    [[nodiscard]] bool hasOneOf(const QStringList &ids) const
    {
        const QStringList found = findings();
        return std::any_of(ids.cbegin(), ids.cend(), [&](const QString &id) { return found.contains(id); });
    }

    [[nodiscard]] bool installs(const QString &path) const
    {
        const QJsonArray examples = report().value("examples").toArray();
        return std::any_of(examples.cbegin(), examples.cend(), [&](const QJsonValue &example) {
            return example["path"].toString() == path && example["manifest"].isObject();
        });
    }
};

// The kernel forgets the peak with the process.
qint64 peakMemoryOf(qint64 process)
{
    QFile file(QString("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.sliced(6).simplified().split(' ').constFirst().toLongLong() * 1024;
    }
    return 0;
}

// The unarchiver that a case hides, and its locale, are known to the IDE's libraries of this process only.
QProcessEnvironment environment()
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    const Utils::Environment ours = Utils::Environment::systemEnvironment();
    for (const QString &name : {QString("PATH"), QString("LC_ALL"), QString("LANG")}) {
        if (ours.hasKey(name))
            result.insert(name, ours.value(name));
    }
    return result;
}

Outcome runCheck(const World &world, const QStringList &more, const QString &page)
{
    const QString url = world.repositoryEntry().section('|', 1, 1);
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(VARNEL_CHECK, QStringList{url, "--json", "--jobs", "2", "--html", page} + more);
    // Until it runs its own program, a new process has the memory, and with it the peak, of this one.
    process.waitForStarted();
    Outcome outcome;
    const auto isOver = [&] {
        outcome.peakMemory = std::max(outcome.peakMemory, peakMemoryOf(process.processId()));
        outcome.output += process.readAllStandardOutput();
        return process.state() == QProcess::NotRunning;
    };
    outcome.hasEnded
        = World::waitFor(isOver, std::chrono::seconds(90)) && process.exitStatus() == QProcess::NormalExit;
    if (!outcome.hasEnded) {
        process.kill();
        process.waitForFinished();
    }
    outcome.exitCode = process.exitCode();
    outcome.output += process.readAllStandardOutput();
    outcome.errors = process.readAllStandardError();
    outcome.page = readFile(page);
    return outcome;
}

// The decoder of one format tells the terminal what is wrong, in words of its own.
QByteArray withoutDecoders(const QByteArray &errors)
{
    QByteArrayList lines = errors.split('\n');
    lines.removeIf([](const QByteArray &line) { return line.startsWith("libpng error: "); });
    return lines.join('\n');
}

bool isHidden(uint character)
{
    switch (QChar::category(char32_t(character))) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_PrivateUse:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return character != '\n';
    default:
        return false;
    }
}

bool showsHidden(const QByteArray &text)
{
    const QList<uint> characters = QString::fromUtf8(text).toUcs4();
    return std::any_of(characters.cbegin(), characters.cend(), isHidden);
}

// What the plug-in makes of the project, as the command tells it.
QString faultOf(End end, const QString &path, const Outcome &outcome)
{
    const auto failsFor = [&](const QStringList &ids) {
        if (!outcome.hasOneOf(ids))
            return "none of " + ids.join(", ") + ", but " + outcome.findings().join(", ");
        return outcome.exitCode == 1 ? QString() : QString("exit code %1").arg(outcome.exitCode);
    };
    switch (end) {
    case End::Installed:
        return outcome.installs(path) ? QString() : "not installed: " + outcome.findings().join(", ");
    case End::NotReady:
    case End::NotAnswered:
    case End::NotConfigured:
        return outcome.exitCode == 2 ? QString() : QString("exit code %1").arg(outcome.exitCode);
    case End::NotListed:
    case End::NotUpdated:
        return outcome.report().value("summary")["isComplete"].toBool() ? QString() : "not complete";
    case End::NotDownloaded:
        return failsFor({"archive-failed"});
    case End::NotReceived:
        // It may as well come whole, with only a length that lies.
        return outcome.installs(path) ? QString()
                                      : failsFor({"archive-failed", "archive-empty", "archive-refused"});
    case End::NoData:
        return failsFor({"archive-empty"});
    case End::NoArchive:
        return failsFor({"path-not-plain", "archive-not-saved"});
    case End::NotUnpacked:
        return failsFor({"archive-refused", "archive-obstacle", "archive-not-unpacked"});
    case End::NotRegistered:
        return failsFor({"project-file-missing", "registration-failed"});
    }
    return "an end that is not known";
}

} // namespace

class tst_CheckHostile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { World::prepareProcess(); }
    void commandTellsWhatThePluginMakesOfIt_data();
    void commandTellsWhatThePluginMakesOfIt();
};

void tst_CheckHostile::commandTellsWhatThePluginMakesOfIt_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<const Case *>("testCase");
    for (const Family &family : familiesOfServers()) {
        for (const Case &testCase : family.cases) {
            if (isForCommand(family.name, testCase))
                QTest::addRow("%s: %s", qPrintable(family.name), qPrintable(testCase.name))
                    << family.name << &testCase;
        }
    }
}

void tst_CheckHostile::commandTellsWhatThePluginMakesOfIt()
{
    constexpr qint64 OWN_MEMORY = Q_INT64_C(100) * 1024 * 1024;
    QFETCH(const QString, family);
    QFETCH(const Case *, testCase);
    World world;
    if (testCase->tar)
        world.subject().archive = testCase->tar().tarGz();
    const QStringList ordinaryEntries = World::repositoryEntries();
    if (testCase->prepare)
        testCase->prepare(world);
    const QString page = World::path("config/page.html");
    writeFile(page, {}); // is there before, and so are the directories
    const QStringList entriesBefore = World::repositoryEntries();
    QMap<QByteArray, QByteArray> before = World::everythingElse();
    before.remove(QFile::encodeName(page));

    // What the plug-in lists without downloading it is, as elsewhere, looked at as a list. A large answer
    // that is one may take its time on a busy machine.
    const bool isListed = testCase->end == End::Installed || testCase->end == End::NotUpdated;
    QStringList more{"--timeout", QString::number(isListed ? 60 : 3)};
    if (testCase->end == End::NotUpdated)
        more += QStringList{"--only", "none"};
    const Outcome outcome = runCheck(world, more, page);

    QVERIFY2(outcome.hasEnded, outcome.output + outcome.errors);
    world.liftLimit();
    QVERIFY2(withoutDecoders(outcome.errors).isEmpty(), outcome.errors);
    const bool isAboutDisk
        = entriesBefore != ordinaryEntries || testCase->name == "directory of another example";
    if (!isAboutDisk)
        QCOMPARE(faultOf(endOf(family, *testCase), testCase->installedAs, outcome), QString());
    QVERIFY2(!showsHidden(outcome.output), outcome.output);
    QVERIFY(!showsHidden(outcome.page));
    QVERIFY(outcome.page.startsWith("<!DOCTYPE html>") && !outcome.page.contains("<script"));
    QMap<QByteArray, QByteArray> after = World::everythingElse();
    after.remove(QFile::encodeName(page));
    QCOMPARE(World::differences(before, after), QStringList());
    QCOMPARE(World::repositoryEntries(), entriesBefore);
    QCOMPARE_LT(outcome.peakMemory, testCase->memory + OWN_MEMORY);
}

QTEST_MAIN(tst_CheckHostile)

#include "tst_checkhostile.moc"
