// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives that never reach the unarchiver, and what they leave behind: nothing.

#include "common/archivebuilder.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "common/unarchivertools.h"
#include "common/unpackingfixture.h"

#include <QDir>
#include <QScopeGuard>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_RefusedArchives final : public UnpackingFixture
{
    Q_OBJECT

private slots:
    // What fails before the vetting
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
    void whatBelongsToAnotherRepositoryIsLeftAlone_data();
    void whatBelongsToAnotherRepositoryIsLeftAlone();
    void aPlantedLinkDoesNotServeALaterArchive_data();
    void aPlantedLinkDoesNotServeALaterArchive();
    void aLinkInADirectoryThatIsNotUtf8ServesNoLaterArchive();
};

void tst_RefusedArchives::anEmptyArchiveIsReported()
{
    const LogRecorder log;

    download("hello", {});

    const QString status = "The data is not downloaded for example: Title of hello";
    QCOMPARE(m_fixture->lines(), QStringList{status});
    QCOMPARE(log.pluginLines(), QStringList{"service: Status: \"" + status + '"'});
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_RefusedArchives::aStrangersExampleIsReported_data()
{
    QTest::addColumn<bool>("hasSender");

    QTest::newRow("another object") << true;
    QTest::newRow("nobody") << false;
}

void tst_RefusedArchives::aStrangersExampleIsReported()
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

void tst_RefusedArchives::anUnknownRepositoryIsReported()
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

void tst_RefusedArchives::aTemporaryFileThatCannotBeMadeEndsAsNoArchive()
{
    const QByteArray temporary = qgetenv("TMPDIR");
    const auto restore = qScopeGuard([&temporary] { qputenv("TMPDIR", temporary); });
    qputenv("TMPDIR", "/proc"); // not even root makes a file there
    const LogRecorder log;

    download("hello", projectArchive("hello-main-1"));

    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), NO_ARCHIVE}));
    QCOMPARE(log.lines(LogRecorder::SERVICE).value(1), "Saved temp file: \"\"");
}

void tst_RefusedArchives::withoutAnUnarchiverNothingIsUnpacked()
{
    const Tools none;

    download("hello", projectArchive("hello-main-1"));

    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), NO_ARCHIVE}));
    QCOMPARE(temporaryArchives(), QStringList());
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_RefusedArchives::pathsThatAreNotPlainOpenNoFile_data()
{
    QTest::addColumn<QString>("path");

    for (const char *path : {"", ".", "..", "../up", "a/b", "/absolute", "*", "a?b", "[a]"})
        QTest::addRow("'%s'", path) << QString::fromLatin1(path);
    QTest::newRow("NUL") << QString::fromLatin1("a\0b", 3);
}

void tst_RefusedArchives::pathsThatAreNotPlainOpenNoFile()
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

void tst_RefusedArchives::refusedArchivesLeaveNothing_data()
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

void tst_RefusedArchives::refusedArchivesLeaveNothing()
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

void tst_RefusedArchives::anArchiveInTheNameOfAnInstalledExampleIsRefused()
{
    download("other", projectArchive("other-main-1", "good"));
    QVERIFY(waitForLines(3));
    m_fixture->clearLines();

    download("hello", projectArchive("other", "evil"));

    QVERIFY(waitForLines(2));
    QCOMPARE(m_fixture->lines(), (QStringList{unpacking("hello"), UNPACKING_FAILED}));
    QCOMPARE(readFile(ServiceFixture::path("other/app.pro")), "good");
}

void tst_RefusedArchives::anUpdateUnpackedUnderTheExamplesOwnNameIsRefused()
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

void tst_RefusedArchives::whatBelongsToAnotherRepositoryIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("archive");

    QTest::newRow("as the one top directory") << projectArchive("beta");
    QTest::newRow("as one of two") << TarBuilder().file("beta/app.pro").file("x/app.pro").tarGz();
}

void tst_RefusedArchives::whatBelongsToAnotherRepositoryIsLeftAlone()
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

void tst_RefusedArchives::aPlantedLinkDoesNotServeALaterArchive_data()
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

void tst_RefusedArchives::aPlantedLinkDoesNotServeALaterArchive()
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

void tst_RefusedArchives::aLinkInADirectoryThatIsNotUtf8ServesNoLaterArchive()
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

QTEST_MAIN(tst_RefusedArchives)
#include "tst_refusedarchives.moc"
