// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which unpacked directory becomes the example, whatever its times and its neighbours are.

#include "common/archivebuilder.h"
#include "common/testfiles.h"
#include "common/unpackingfixture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Varnel::Test;

namespace {

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

class tst_UnpackedCopies final : public UnpackingFixture
{
    Q_OBJECT

private slots:
    // Updates
    void anUpdateReplacesTheInstalledExample();
    void archivesOfGitAreInstalled_data();
    void archivesOfGitAreInstalled();
    void anUpdateIsInstalledWhateverItsCommitTime_data();
    void anUpdateIsInstalledWhateverItsCommitTime();

    // Names and left-overs
    void theCopyOfAPathGoesToThatPathOnly();
    void aHalfUnpackedLeftOverDoesNotWin();
    void aLeftOverWithAManifestIsReplacedToo();
    void aLeftOverOfTheSameNameIsReplaced();
    void aDirectoryOfAnotherNameIsLeftAsItIs();
    void anArchiveWithoutOneTopDirectoryGoesTheUsualWay();
};

void tst_UnpackedCopies::anUpdateReplacesTheInstalledExample()
{
    download("hello", projectArchive("hello-main-1", "old"));
    QVERIFY(waitForLines(3));

    download("hello", projectArchive("hello-main-2", "new"));

    QVERIFY(waitForLines(6));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "new");
}

void tst_UnpackedCopies::archivesOfGitAreInstalled_data()
{
    QTest::addColumn<QDateTime>("commitTime");
    QTest::addColumn<QString>("branch");

    const QDateTime now = QDateTime::currentDateTimeUtc();
    QTest::newRow("years ago") << now.addYears(-8) << "main";
    QTest::newRow("now") << now << "main";
    QTest::newRow("in the future") << now.addYears(4) << "main";
    QTest::newRow("branch with a slash") << now << "release/1.0";
}

void tst_UnpackedCopies::archivesOfGitAreInstalled()
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

void tst_UnpackedCopies::anUpdateIsInstalledWhateverItsCommitTime_data()
{
    QTest::addColumn<QDateTime>("installed");

    // The archive's own times lie in 2023.
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QTest::newRow("over an older one") << now.addYears(-20);
    QTest::newRow("over one of today") << now;
    QTest::newRow("over one of the future") << now.addYears(1);
}

void tst_UnpackedCopies::anUpdateIsInstalledWhateverItsCommitTime()
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

void tst_UnpackedCopies::theCopyOfAPathGoesToThatPathOnly()
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

void tst_UnpackedCopies::aHalfUnpackedLeftOverDoesNotWin()
{
    writeFile(ServiceFixture::path("hello-main-0/half"), "x"); // newer than any commit

    download("hello", projectArchive("hello-main-1", "whole"));

    QVERIFY(waitForLines(3));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "whole");
}

// As a kill between manifest and exchange leaves it.
void tst_UnpackedCopies::aLeftOverWithAManifestIsReplacedToo()
{
    const QString top = "hello-main-" + QString(40, 'a');
    writeFile(ServiceFixture::path(top + "/examples-manifest.xml"), "<instructionals module=\"Demo\"/>");

    download("hello", projectArchive(top.toUtf8()));

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

void tst_UnpackedCopies::aLeftOverOfTheSameNameIsReplaced()
{
    writeFile(ServiceFixture::path("hello-main-1/left-over"), "x");

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForLines(3));
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
}

// The project was renamed on the server after it was listed.
void tst_UnpackedCopies::aDirectoryOfAnotherNameIsLeftAsItIs()
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

void tst_UnpackedCopies::anArchiveWithoutOneTopDirectoryGoesTheUsualWay()
{
    download("hello", TarBuilder().file("hello-a/app.pro", "a").file("other/x").tarGz());

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(ServiceFixture::installed(), (QStringList{"hello", "other"}));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "a");
}

QTEST_MAIN(tst_UnpackedCopies)
#include "tst_unpackedcopies.moc"
