// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// From a downloaded archive to an installed example, with the IDE's own unarchiver.

#include "service/downloadservice.h"

#include "plugin/constants.h"
#include "service/filesystem.h"

#include "common/archivebuilder.h"
#include "common/logrecorder.h"
#include "common/servicefixture.h"
#include "common/testfiles.h"

#include <utils/environment.h>
#include <utils/unarchiver.h>

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString UNPACKING_FAILED = "There was an error while unarchiving";
const QString REGISTRATION_FAILED = "There was an error while creating example mainfest";
const QString NO_ARCHIVE = "Downloaded file is not an archive";

QString unpacking(const QString &path)
{
    return "Unpacking example: Title of " + path;
}

QByteArray projectArchive(const QByteArray &top, const QByteArray &content = "content")
{
    return TarBuilder().directory(top).file(top + "/app.pro", content).tarGz();
}

QStringList temporaryArchives()
{
    return QDir(QDir::tempPath()).entryList({"*.tar.gz"}, QDir::AllEntries | QDir::Hidden);
}

/** Holds the programs that the IDE finds, instead of those in the search path, as long as it lives. */
class Tools final
{
public:
    Tools() { setSearchPath(m_directory.path()); }
    /** Nothing but a "cmake" that is this script. */
    explicit Tools(const QByteArray &script)
    {
        writeFile(filePath("cmake"), "#!/bin/sh\ntools='" + m_directory.path().toUtf8() + "'\n" + script);
        if (!QFile::setPermissions(filePath("cmake"), QFile::ReadOwner | QFile::ExeOwner))
            qFatal("no tool");
        setSearchPath(m_directory.path() + ':' + qEnvironmentVariable("PATH"));
    }
    ~Tools() { setSearchPath(qEnvironmentVariable("PATH")); }
    Q_DISABLE_COPY_MOVE(Tools)

    [[nodiscard]] QString filePath(const QString &name) const { return m_directory.filePath(name); }
    [[nodiscard]] bool has(const QString &name) const { return QFile::exists(filePath(name)); }
    void openGate() const { writeFile(filePath("gate"), ""); }

private:
    // The IDE's libraries look at their own copy of the environment.
    static void setSearchPath(const QString &path)
    {
        Utils::Environment::modifySystemEnvironment({{"PATH", path}});
    }

    const QTemporaryDir m_directory;
};

// Leaves a file named like the example once it is unpacked, and then takes its time.
constexpr char GATED[] = R"(
name=${4##*/}
name=${name%-??????.tar.gz}
: > "$tools/begun-$name"
tar xvzf "$4" || exit
: > "$tools/$name"
while [ -e "$tools/$name" ] && ! [ -e "$tools/gate" ]; do sleep 0.01; done
)";

/** Runs a program in a directory, for git with a time; a failure is told. */
bool run(
    const QString &directory, const QString &program, const QStringList &arguments, const QDateTime &time)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString seconds = QString("@%1 +0000").arg(time.toSecsSinceEpoch());
    for (const char *who : {"AUTHOR", "COMMITTER"}) {
        const QString prefix = QString("GIT_%1_").arg(QString::fromLatin1(who));
        environment.insert(prefix + "NAME", "Somebody");
        environment.insert(prefix + "EMAIL", "somebody@example.org");
        environment.insert(prefix + "DATE", seconds);
    }
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory);
    process.start(program, arguments);
    const bool isDone = process.waitForFinished() && process.exitCode() == 0;
    if (!isDone)
        qWarning() << program << arguments << process.readAllStandardError();
    return isDone;
}

} // namespace

class tst_Unpacking final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    // The ordinary way
    void anArchiveBecomesAnInstalledExample();
    void eachStepIsReportedAndLogged();
    void theSlotReturnsAtOnce();
    void severalExamplesAreAllInstalled();
    void examplesAreUnpackedAtTheSameTime();
    void theIdesSecondUnarchiverWillDo();
    void anUpdateReplacesTheInstalledExample();
    void archivesOfGitAreInstalled_data();
    void archivesOfGitAreInstalled();
    void anUpdateIsInstalledWhateverItsCommitTime_data();
    void anUpdateIsInstalledWhateverItsCommitTime();
    void theCopyOfAPathGoesToThatPathOnly();
    void aCopyInTheMakingIsNotClearedAway_data();
    void aCopyInTheMakingIsNotClearedAway();
    void aHalfUnpackedLeftOverDoesNotWin();
    void aLeftOverWithAManifestIsReplacedToo();
    void aDirectoryOfAnotherNameIsLeftAsItIs();
    void whatBelongsToAnotherRepositoryIsLeftAlone_data();
    void whatBelongsToAnotherRepositoryIsLeftAlone();
    void anArchiveWithoutOneTopDirectoryGoesTheUsualWay();

    // What fails before the unarchiver
    void anEmptyArchiveIsReported();
    void aStrangersExampleIsReported_data();
    void aStrangersExampleIsReported();
    void anUnknownRepositoryIsReported();
    void aTemporaryFileThatCannotBeMadeEndsAsNoArchive();
    void withoutAnUnarchiverNothingIsUnpacked();
    void pathsThatAreNotPlainOpenNoFile_data();
    void pathsThatAreNotPlainOpenNoFile();

    // What the vetting refuses
    void refusedArchivesLeaveNothing_data();
    void refusedArchivesLeaveNothing();
    void anArchiveInTheNameOfAnInstalledExampleIsRefused();
    void anUpdateUnpackedUnderTheExamplesOwnNameIsRefused();
    void aLeftOverOfTheSameNameIsReplaced();
    void aPlantedLinkDoesNotServeALaterArchive_data();
    void aPlantedLinkDoesNotServeALaterArchive();
    void aLinkInADirectoryThatIsNotUtf8ServesNoLaterArchive();
    void archivesOfOneExampleAreUnpackedInTheirOrder();
    void archivesOfTwoExamplesWithOneTopDirectoryWaitForEachOther();
    void anArchiveWithoutOneTopDirectoryIsUnpackedAlone_data();
    void anArchiveWithoutOneTopDirectoryIsUnpackedAlone();
    void archivesThatAreRefusedAfterWaitingBlockNoLaterOne();

    // What fails in the unarchiver
    void aFailedUnarchiverIsReported();
    void whatAFailedUnarchiverUnpackedStays();
    void anArchiveWithoutAProjectLeavesNoDirectory();

    // How it ends
    void theTemporaryFileIsGoneBeforeTheResultIsTold_data();
    void theTemporaryFileIsGoneBeforeTheResultIsTold();
    void anUnarchiverGoesWithTheService();

private:
    Repository::ExamplePtr download(const QString &path, const QByteArray &archive);
    [[nodiscard]] bool waitForLines(qsizetype count) const;
    /** Until whatever was downloaded before has been vetted, and started if nothing is in its way. */
    [[nodiscard]] bool waitForVetting();
    [[nodiscard]] static QStringList successOf(const QString &path)
    {
        return {unpacking(path), "updated", "documentation changed"};
    }

    std::unique_ptr<ServiceFixture> m_fixture;
};

void tst_Unpacking::initTestCase()
{
    m_fixture = std::make_unique<ServiceFixture>();
}

void tst_Unpacking::init()
{
    m_fixture->start();
}

void tst_Unpacking::cleanup()
{
    m_fixture->reset();
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::cleanupTestCase()
{
    quitApplication();
}

/** As if the example had just been downloaded. */
Repository::ExamplePtr tst_Unpacking::download(const QString &path, const QByteArray &archive)
{
    const Repository::ExamplePtr example = makeExample(path);
    example->setData(archive);
    emit m_fixture->repository().downloaded(example);
    return example;
}

bool tst_Unpacking::waitForLines(qsizetype count) const
{
    return QTest::qWaitFor([&] { return m_fixture->lines().size() >= count; }, 15'000);
}

bool tst_Unpacking::waitForVetting()
{
    // They are vetted one after the other. The last result may be told at once, before those that wait as events.
    download("last", "no archive");
    if (!QTest::qWaitFor([this] { return m_fixture->lines().contains(UNPACKING_FAILED); }))
        return false;
    QCoreApplication::processEvents();
    // By the time that this has run, so has the beginning of what was started before.
    return QProcess::execute("sh", {"-c", "tar --version > /dev/null"}) == 0;
}

void tst_Unpacking::anArchiveBecomesAnInstalledExample()
{
    download("hello", projectArchive("hello-main-4f0c"));

    QTRY_COMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::eachStepIsReportedAndLogged()
{
    const LogRecorder log;

    download("hello", projectArchive("hello-main-4f0c"));

    QVERIFY(waitForLines(3));
    const QStringList lines = log.lines(LogRecorder::SERVICE);
    QCOMPARE(lines.at(0), "Status: \"Unpacking example: Title of hello\"");
    const QRegularExpression saved(QRegularExpression::anchoredPattern(
        "Saved temp file: \"" + QRegularExpression::escape(QDir::tempPath())
        + "/hello-[A-Za-z]{6}\\.tar\\.gz\""));
    QVERIFY2(saved.match(lines.at(1)).hasMatch(), qPrintable(lines.at(1)));
    QCOMPARE(lines.at(2), "Repository contains no image for example: \"Title of hello\"");
    QCOMPARE(lines.size(), 3);
    const QStringList output = log.lines(LogRecorder::ARCHIVE);
    QVERIFY(!output.isEmpty());
    for (const QString &line : output)
        QVERIFY2(line.startsWith("Unpacking output: \""), qPrintable(line));
    QVERIFY(output.join(' ').contains("hello-main-4f0c/app.pro"));
}

void tst_Unpacking::theSlotReturnsAtOnce()
{
    download("hello", projectArchive("hello-main-4f0c"));

    QCOMPARE(m_fixture->lines(), QStringList{unpacking("hello")});
    QCOMPARE(temporaryArchives().size(), 1);
    QVERIFY(!QFile::exists(ServiceFixture::path("hello")));
    QVERIFY(waitForLines(3));
}

void tst_Unpacking::severalExamplesAreAllInstalled()
{
    QStringList expected;
    for (int i = 0; i < 8; ++i) {
        const QString path = QString("demo-%1").arg(i);
        download(path, projectArchive(path.toUtf8() + "-main-4f0c"));
        expected.append(path);
    }

    QVERIFY(waitForLines(8 * 3));
    QCOMPARE(ServiceFixture::installed(), expected);
    QCOMPARE(m_fixture->lines().count("updated"), 8);
}

void tst_Unpacking::examplesAreUnpackedAtTheSameTime()
{
    const Tools tools(GATED);

    download("clock", projectArchive("clock-main-1"));
    download("hello", projectArchive("hello-main-1"));

    QTRY_VERIFY(tools.has("clock") && tools.has("hello"));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("clock"), unpacking("hello")}));
    tools.openGate();
    QVERIFY(waitForLines(2 * 3));
    QCOMPARE(entriesOf(ServiceFixture::path("clock")), (QStringList{"app.pro", "examples-manifest.xml"}));
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
}

void tst_Unpacking::theIdesSecondUnarchiverWillDo()
{
    const Tools tools;
    for (const QString &program : {QString("tar"), QString("gzip")})
        makeLink(tools.filePath(program), QStandardPaths::findExecutable(program));

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
}

void tst_Unpacking::anUpdateReplacesTheInstalledExample()
{
    download("hello", projectArchive("hello-main-1", "old"));
    QVERIFY(waitForLines(3));

    download("hello", projectArchive("hello-main-2", "new"));

    QVERIFY(waitForLines(6));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "new");
}

void tst_Unpacking::archivesOfGitAreInstalled_data()
{
    QTest::addColumn<QDateTime>("commitTime");
    QTest::addColumn<QString>("branch");

    const QDateTime now = QDateTime::currentDateTimeUtc();
    QTest::newRow("years ago") << now.addYears(-8) << "main";
    QTest::newRow("now") << now << "main";
    QTest::newRow("in the future") << now.addYears(4) << "main";
    QTest::newRow("branch with a slash") << now << "release/1.0";
}

void tst_Unpacking::archivesOfGitAreInstalled()
{
    QFETCH(const QDateTime, commitTime);
    QFETCH(const QString, branch);
    const QTemporaryDir work;
    const auto git = [&](const QStringList &arguments) {
        return run(
            work.path(), "git", QStringList{"-c", "init.defaultBranch=" + branch} + arguments, commitTime);
    };
    writeFile(work.filePath("hello.pro"), "TEMPLATE = app\n");
    writeFile(work.filePath("src/main.cpp"), "int main(int, char **) {}\n");
    makeLink(work.filePath("link"), "hello.pro");
    QVERIFY(git({"init", "--quiet"}) && git({"add", "."}) && git({"commit", "--quiet", "-m", "First"}));
    // As the server names it: the branch's slash is no directory.
    const QString top = "hello-" + QString(branch).replace('/', '-') + "-4f0c1d6a";
    const QString command
        = QString("git archive --prefix=%1/ '%2' | gzip -n > ../%1.tar.gz").arg(top, branch);
    QVERIFY(run(work.path(), "sh", {"-c", command}, commitTime));
    const QString archive = work.path() + "/../" + top + ".tar.gz";
    const QByteArray bytes = readFile(archive);
    QVERIFY(QFile::remove(archive));
    for (int round = 0; round < 2; ++round) { // the second time as an update
        m_fixture->clearLines();

        download("hello", bytes);

        QVERIFY(waitForLines(3));
        QCOMPARE(m_fixture->lines(), successOf("hello"));
        QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"}); // the old one goes in the background
        QVERIFY(readFile(ServiceFixture::path("hello/examples-manifest.xml"))
                    .contains("<fileToOpen>/src/main.cpp</fileToOpen>"));
        QCOMPARE(
            QFile::symLinkTarget(ServiceFixture::path("hello/link")),
            ServiceFixture::path("hello/hello.pro"));
    }
}

void tst_Unpacking::anUpdateIsInstalledWhateverItsCommitTime_data()
{
    QTest::addColumn<QDateTime>("installed");

    // The archive's own times lie in 2023.
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QTest::newRow("over an older one") << now.addYears(-20);
    QTest::newRow("over one of today") << now;
    QTest::newRow("over one of the future") << now.addYears(1);
}

void tst_Unpacking::anUpdateIsInstalledWhateverItsCommitTime()
{
    QFETCH(const QDateTime, installed);
    download("hello", projectArchive("hello-main-1", "old"));
    QVERIFY(waitForLines(3));
    setTime(ServiceFixture::path("hello"), installed);

    download("hello", projectArchive("hello-main-2", "new"));

    QVERIFY(waitForLines(6));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "new");
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

void tst_Unpacking::theCopyOfAPathGoesToThatPathOnly()
{
    m_fixture->list(makeExamples({"maps", "maps-main"}));
    m_fixture->clearLines();

    download("maps-main", projectArchive("maps-main-main-1", "of maps-main"));
    download("maps", projectArchive("maps-main-2", "of maps"));

    QVERIFY(waitForLines(6));
    QCOMPARE(ServiceFixture::installed(), (QStringList{"maps", "maps-main"}));
    QCOMPARE(readFile(ServiceFixture::path("maps/app.pro")), "of maps");
    QCOMPARE(readFile(ServiceFixture::path("maps-main/app.pro")), "of maps-main");
}

void tst_Unpacking::aCopyInTheMakingIsNotClearedAway_data()
{
    QTest::addColumn<QString>("slow"); // the path whose archive takes long to unpack
    QTest::addColumn<QString>("quick");

    QTest::newRow("by an example with a longer path") << "maps" << "maps-main";
    QTest::newRow("by an example with a shorter path") << "maps-main" << "maps";
    QTest::newRow("by an older download of its own") << "maps" << "maps";
}

void tst_Unpacking::aCopyInTheMakingIsNotClearedAway()
{
    QFETCH(const QString, slow);
    QFETCH(const QString, quick);
    // Takes its time only over the archive of this name.
    const Tools tools(
        "case $4 in */" + slow.toUtf8() + "-??????.tar.gz) ;; *) exec tar xvzf \"$4\";; esac\n" + GATED);
    m_fixture->list(makeExamples({"maps", "maps-main"}));
    m_fixture->clearLines();

    download(slow, projectArchive(slow.toUtf8() + "-main-1", "slow"));
    QTRY_VERIFY(QFile::exists(ServiceFixture::path(slow + "-main-1/app.pro")));
    download(quick, projectArchive(quick.toUtf8() + "-main-2", "quick"));
    // A third one without a part in it shows that the second one has been vetted.
    download("other", projectArchive("other-main-1"));
    QTRY_VERIFY(QFile::exists(ServiceFixture::path("other/examples-manifest.xml")));
    tools.openGate();

    QVERIFY(waitForLines(3 * 3));
    QCOMPARE(m_fixture->lines().count("updated"), 3);
    QCOMPARE(m_fixture->lines().filter("error").size(), 0);
    QCOMPARE(readFile(ServiceFixture::path(quick + "/app.pro")), "quick");
    if (slow != quick)
        QCOMPARE(readFile(ServiceFixture::path(slow + "/app.pro")), "slow");
}

void tst_Unpacking::aHalfUnpackedLeftOverDoesNotWin()
{
    writeFile(ServiceFixture::path("hello-main-0/half"), "x"); // newer than any commit

    download("hello", projectArchive("hello-main-1", "whole"));

    QVERIFY(waitForLines(3));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "whole");
}

void tst_Unpacking::anArchiveWithoutOneTopDirectoryGoesTheUsualWay()
{
    download("hello", TarBuilder().file("hello-a/app.pro", "a").file("other/x").tarGz());

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(ServiceFixture::installed(), (QStringList{"hello", "other"}));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "a");
}

// As a kill between manifest and exchange leaves it.
void tst_Unpacking::aLeftOverWithAManifestIsReplacedToo()
{
    const QString top = "hello-main-" + QString(40, 'a');
    writeFile(ServiceFixture::path(top + "/examples-manifest.xml"), "<instructionals module=\"Demo\"/>");

    download("hello", projectArchive(top.toUtf8()));

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

// The project was renamed on the server after it was listed.
void tst_Unpacking::aDirectoryOfAnotherNameIsLeftAsItIs()
{
    writeFile(ServiceFixture::path("hello-notes/app.pro"), "the user's own");

    download("hello", projectArchive("renamed-main-1"));

    QVERIFY(waitForLines(4));
    QCOMPARE(
        m_fixture->lines(),
        (QStringList{unpacking("hello"), REGISTRATION_FAILED, "updated", "documentation changed"}));
    QCOMPARE(ServiceFixture::installed(), (QStringList{"hello-notes", "renamed-main-1"}));
    QCOMPARE(readFile(ServiceFixture::path("hello-notes/app.pro")), "the user's own");
}

void tst_Unpacking::whatBelongsToAnotherRepositoryIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("archive");

    QTest::newRow("as the one top directory") << projectArchive("beta");
    QTest::newRow("as one of two") << TarBuilder().file("beta/app.pro").file("x/app.pro").tarGz();
}

void tst_Unpacking::whatBelongsToAnotherRepositoryIsLeftAlone()
{
    QFETCH(const QByteArray, archive);
    m_fixture->start(QUrl("http://127.0.0.1"), {"Demo/beta|http://127.0.0.2|"});
    writeFile(ServiceFixture::path("beta/precious/app.pro"), "x");

    download("hello", archive);

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(ServiceFixture::installed(), QStringList{"beta"});
    QCOMPARE(entriesOf(ServiceFixture::path("beta")), QStringList{"precious"});
}

void tst_Unpacking::anEmptyArchiveIsReported()
{
    const LogRecorder log;

    download("hello", {});

    const QString status = "The data is not downloaded for example: Title of hello";
    QCOMPARE(m_fixture->lines(), QStringList{status});
    QCOMPARE(log.pluginLines(), QStringList{"service: Status: \"" + status + '"'});
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Unpacking::aStrangersExampleIsReported_data()
{
    QTest::addColumn<bool>("hasSender");

    QTest::newRow("another object") << true;
    QTest::newRow("nobody") << false;
}

void tst_Unpacking::aStrangersExampleIsReported()
{
    QFETCH(const bool, hasSender);
    NoRepository stranger;
    m_fixture->connectStranger(&stranger);
    const Repository::ExamplePtr example = makeExample("hello");
    example->setData(projectArchive("hello-main-1"));

    if (hasSender)
        emit stranger.downloaded(example);
    else
        QVERIFY(QMetaObject::invokeMethod(
            &m_fixture->service(), "onDownloaded", Q_ARG(Repository::ExamplePtr, example)));

    QCOMPARE(m_fixture->lines(), QStringList{"Unable to cast repository from: QObject"});
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::anUnknownRepositoryIsReported()
{
    Repository unknown(QUrl("http://127.0.0.1/"), nullptr);
    m_fixture->connectStranger(&unknown);
    const Repository::ExamplePtr example = makeExample("hello", {{"name", "Title %2"}});
    example->setData(projectArchive("hello-main-1"));

    emit unknown.downloaded(example);

    // One substitution after the other, so the title's marker takes the address.
    QCOMPARE(
        m_fixture->lines(),
        QStringList{"Skip saving example Title http://127.0.0.1/ - unable to find repository name for url: "
                    "http://127.0.0.1/"});
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::aTemporaryFileThatCannotBeMadeEndsAsNoArchive()
{
    const QByteArray temporary = qgetenv("TMPDIR");
    const auto restore = qScopeGuard([&temporary] { qputenv("TMPDIR", temporary); });
    qputenv("TMPDIR", "/proc"); // not even root makes a file there
    const LogRecorder log;

    download("hello", projectArchive("hello-main-1"));

    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), NO_ARCHIVE}));
    QCOMPARE(log.lines(LogRecorder::SERVICE).value(1), "Saved temp file: \"\"");
}

void tst_Unpacking::withoutAnUnarchiverNothingIsUnpacked()
{
    const Tools none;

    download("hello", projectArchive("hello-main-1"));

    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), NO_ARCHIVE}));
    QCOMPARE(temporaryArchives(), QStringList());
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Unpacking::pathsThatAreNotPlainOpenNoFile_data()
{
    QTest::addColumn<QString>("path");

    for (const char *path : {"", ".", "..", "../up", "a/b", "/absolute", "*", "a?b", "[a]"})
        QTest::addRow("'%s'", path) << QString::fromLatin1(path);
    QTest::newRow("NUL") << QString::fromLatin1("a\0b", 3);
}

void tst_Unpacking::pathsThatAreNotPlainOpenNoFile()
{
    QFETCH(const QString, path);
    makeDirectory(QDir::tempPath() + "/a");
    const QStringList before = entriesOf(QDir::tempPath());
    const QStringList above = entriesOf(QDir::tempPath() + "/..");

    download(path, projectArchive("hello-main-1"));

    QCOMPARE(m_fixture->lines(), (QStringList{unpacking(path), NO_ARCHIVE}));
    QCOMPARE(entriesOf(QDir::tempPath()), before);
    QCOMPARE(entriesOf(QDir::tempPath() + "/a"), QStringList());
    QCOMPARE(entriesOf(QDir::tempPath() + "/.."), above);
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Unpacking::refusedArchivesLeaveNothing_data()
{
    QTest::addColumn<QByteArray>("archive");

    const QByteArray good = projectArchive("hello-main-1");
    QTest::newRow("page of a proxy") << QByteArray("<!DOCTYPE html><html></html>");
    QTest::newRow("cut short") << good.first(good.size() - 9);
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("climbing") << TarBuilder().file("hello-main-1/app.pro").file("../evil").tarGz();
    QTest::newRow("absolute") << TarBuilder().file("/tmp/evil").tarGz();
    QTest::newRow("through its own link") << TarBuilder()
                                                 .file("hello-main-1/app.pro")
                                                 .symbolicLink("hello-main-1/l", "..")
                                                 .file("hello-main-1/l/evil")
                                                 .tarGz();
    QTest::newRow("pipe") << TarBuilder().add({.path = "hello-main-1/p", .type = '6'}).tarGz();
}

void tst_Unpacking::refusedArchivesLeaveNothing()
{
    QFETCH(const QByteArray, archive);
    const LogRecorder log;

    download("hello", archive);

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(ServiceFixture::installed(), QStringList());
    QCOMPARE(temporaryArchives(), QStringList());
    QVERIFY(log.lines(LogRecorder::ARCHIVE).value(0).startsWith("Archive refused: "));
    QVERIFY(!QFile::exists(dataRoot() + "/evil"));
}

void tst_Unpacking::anArchiveInTheNameOfAnInstalledExampleIsRefused()
{
    download("other", projectArchive("other-main-1", "good"));
    QVERIFY(waitForLines(3));
    m_fixture->clearLines();

    download("hello", projectArchive("other", "evil"));

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(readFile(ServiceFixture::path("other/app.pro")), "good");
}

void tst_Unpacking::anUpdateUnpackedUnderTheExamplesOwnNameIsRefused()
{
    download("hello", projectArchive("hello", "old"));
    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    m_fixture->clearLines();

    download("hello", projectArchive("hello", "new"));

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "old");
}

void tst_Unpacking::aLeftOverOfTheSameNameIsReplaced()
{
    writeFile(ServiceFixture::path("hello-main-1/left-over"), "x");

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForLines(3));
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
}

void tst_Unpacking::aPlantedLinkDoesNotServeALaterArchive_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<bool>("isUnpacked");

    const TarBuilder project = TarBuilder().file("hello-1/app.pro");
    QTest::newRow("in the top directory")
        << "hello-1/sub" << TarBuilder(project).file("hello-1/sub/evil").tarGz() << true;
    QTest::newRow("in place of the top directory")
        << "hello-1" << TarBuilder(project).file("hello-1/evil").tarGz() << true;
    QTest::newRow("in place of one of two") << "x" << TarBuilder(project).file("x/evil").tarGz() << false;
    QTest::newRow("in one of two") << "hello-1/sub"
                                   << TarBuilder(project).file("hello-1/sub/evil").file("x/y").tarGz()
                                   << false;
}

void tst_Unpacking::aPlantedLinkDoesNotServeALaterArchive()
{
    QFETCH(const QString, link);
    QFETCH(const QByteArray, archive);
    QFETCH(const bool, isUnpacked);
    const QString outside = dataRoot() + "/outside";
    makeDirectory(outside);
    makeLink(ServiceFixture::path(link), outside);

    download("hello", archive);

    QVERIFY(waitForLines(isUnpacked ? 3 : 2));
    QCOMPARE(
        m_fixture->lines(),
        isUnpacked ? successOf("hello") : (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(entriesOf(outside), QStringList());
}

void tst_Unpacking::aLinkInADirectoryThatIsNotUtf8ServesNoLaterArchive()
{
    const QByteArray top = "hello-\xff";
    const QString outside = dataRoot() + "/outside";
    makeDirectory(outside);
    download(
        "hello", TarBuilder().file(top + "/app.pro").symbolicLink(top + "/sub", outside.toUtf8()).tarGz());
    QVERIFY(waitForLines(2));

    download("hello", TarBuilder().file(top + "/app.pro").file(top + "/sub/evil").tarGz());

    QVERIFY(waitForLines(4));
    QCOMPARE(entriesOf(outside), QStringList());
}

void tst_Unpacking::archivesOfOneExampleAreUnpackedInTheirOrder()
{
    for (int i = 0; i < 4; ++i)
        download("hello", projectArchive("hello-main-1", "number " + QByteArray::number(i)));

    QVERIFY(waitForLines(4 * 3));
    QCOMPARE(m_fixture->lines().count("updated"), 4);
    QCOMPARE(m_fixture->lines().count(UNPACKING_FAILED), 0);
    QCOMPARE(m_fixture->lines().count(REGISTRATION_FAILED), 0);
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "number 3");
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

// They are refused one within the other, as the end of each lets the next one begin.
void tst_Unpacking::archivesThatAreRefusedAfterWaitingBlockNoLaterOne()
{
    for (const QString &installed : QStringList{"maps", "navi"})
        writeFile(
            ServiceFixture::path(installed) + "/examples-manifest.xml", "<instructionals module=\"Demo\"/>");
    const Tools tools(GATED);
    download("hello", TarBuilder().file("hello-a/app.pro").file("other/x").tarGz());
    QTRY_VERIFY(tools.has("hello"));
    download("maps-new", projectArchive("maps"));
    download("navi-new", projectArchive("navi"));
    QVERIFY(waitForVetting());
    tools.openGate();
    QTRY_COMPARE(m_fixture->lines().count(UNPACKING_FAILED), 3); // with that of the vetting
    QTRY_COMPARE(m_fixture->lines().count("documentation changed"), 1);
    m_fixture->clearLines();

    download("hello", TarBuilder().file("hello-b/app.pro", "b").file("other/x").tarGz());

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "b");
}

void tst_Unpacking::archivesOfTwoExamplesWithOneTopDirectoryWaitForEachOther()
{
    const Tools tools(GATED);

    download("a", projectArchive("x-main-1"));
    QTRY_VERIFY(tools.has("a"));
    download("b", projectArchive("x-main-1"));
    QVERIFY(waitForVetting());

    QVERIFY(!tools.has("begun-b"));
    tools.openGate();
    QTRY_VERIFY(tools.has("b"));
    QTRY_COMPARE(m_fixture->lines().count("updated"), 2);
}

void tst_Unpacking::anArchiveWithoutOneTopDirectoryIsUnpackedAlone_data()
{
    QTest::addColumn<bool>("isFirst");

    QTest::newRow("after another one") << false;
    QTest::newRow("before another one") << true;
}

void tst_Unpacking::anArchiveWithoutOneTopDirectoryIsUnpackedAlone()
{
    QFETCH(const bool, isFirst);
    const QByteArray scattered = TarBuilder().file("x/app.pro").file("y/app.pro").tarGz();
    const QByteArray whole = projectArchive("z-main-1");
    const Tools tools(GATED);

    download("a", isFirst ? scattered : whole);
    QTRY_VERIFY(tools.has("a"));
    download("b", isFirst ? whole : scattered);
    QVERIFY(waitForVetting());

    QVERIFY(!tools.has("begun-b"));
    tools.openGate();
    QTRY_VERIFY(tools.has("b"));
    QTRY_COMPARE(m_fixture->lines().count("updated"), 2);
}

void tst_Unpacking::aFailedUnarchiverIsReported()
{
    writeFile(ServiceFixture::path({}).chopped(1), "a file where the directory should be");

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::whatAFailedUnarchiverUnpackedStays()
{
    const Tools tools("tar xvzf \"$4\"\nexit 1\n");

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello-main-1"});
    QCOMPARE(entriesOf(ServiceFixture::path("hello-main-1")), QStringList{"app.pro"});
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::anArchiveWithoutAProjectLeavesNoDirectory()
{
    download("hello", TarBuilder().file("hello-main-1/README").tarGz());

    QVERIFY(waitForLines(4));
    QCOMPARE(
        m_fixture->lines(),
        (QStringList{unpacking("hello"), REGISTRATION_FAILED, "updated", "documentation changed"}));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Unpacking::theTemporaryFileIsGoneBeforeTheResultIsTold_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QStringList>("results");

    const QByteArray good = projectArchive("hello-main-1");
    QTest::newRow("unpacked") << QByteArray("exec tar xvzf \"$4\"\n") << good << QStringList{"updated"};
    QTest::newRow("unarchiver failed") << QByteArray("exit 1\n") << good << QStringList{UNPACKING_FAILED};
    QTest::newRow("refused") << QByteArray("exit 1\n") << QByteArray("x") << QStringList{UNPACKING_FAILED};
}

void tst_Unpacking::theTemporaryFileIsGoneBeforeTheResultIsTold()
{
    QFETCH(const QByteArray, script);
    QFETCH(const QByteArray, archive);
    QFETCH(const QStringList, results);
    const Tools tools(script);
    QStringList told;
    QStringList left;
    const auto record = [&](const QString &line) {
        if (line == unpacking("hello"))
            return;
        told.append(line);
        left += temporaryArchives();
    };
    const auto stop = qScopeGuard([this] { m_fixture->stop(); }); // before what the records are kept in
    connect(&m_fixture->service(), &DownloadService::statusChanged, this, record);
    connect(&m_fixture->service(), &DownloadService::updated, this, [&record] { record("updated"); });

    download("hello", archive);
    QCOMPARE(temporaryArchives().size(), 1);

    QTRY_COMPARE(told, results);
    QCOMPARE(left, QStringList());
}

void tst_Unpacking::anUnarchiverGoesWithTheService()
{
    const Tools tools(GATED);
    download("hello", projectArchive("hello-main-1"));
    QTRY_VERIFY(tools.has("hello"));
    const auto unarchiver = m_fixture->service().findChild<Utils::Unarchiver *>();
    QVERIFY(unarchiver);
    QSignalSpy destroyed(unarchiver, &QObject::destroyed);

    m_fixture->stop();

    QCOMPARE(destroyed.size(), 1);
    QVERIFY(!QFile::exists(ServiceFixture::path("hello")));
    // It is on quitting that the service removes these, which is not what happens here.
    for (const QString &archive : temporaryArchives())
        QVERIFY(QFile::remove(QDir::tempPath() + '/' + archive));
}

QTEST_MAIN(tst_Unpacking)
#include "tst_unpacking.moc"
