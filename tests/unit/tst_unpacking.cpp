// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// From a downloaded archive to an installed example, with the IDE's own unarchiver.

#include "service/downloadservice.h"

#include "common/archivebuilder.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "common/unarchivertools.h"
#include "common/unpackingfixture.h"

#include <utils/unarchiver.h>

#include <QDir>
#include <QImage>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Unpacking final : public UnpackingFixture
{
    Q_OBJECT

private slots:
    // The ordinary way
    void anArchiveBecomesAnInstalledExample();
    void itsPictureIsInstalledWithIt();
    void eachStepIsReportedAndLogged();
    void theSlotReturnsAtOnce();
    void severalExamplesAreAllInstalled();
    void theIdesSecondUnarchiverWillDo();

    // What fails in the unarchiver
    void aFileNamedLikeAWarningIsNone();
    void theMainThreadWritesTheBeginningOnly();
    void aFailedUnarchiverIsReported();
    void whatAFailedUnarchiverUnpackedStays();
    void anArchiveWithoutAProjectLeavesNoDirectory();

    // How it ends
    void theTemporaryFileIsGoneBeforeTheResultIsTold_data();
    void theTemporaryFileIsGoneBeforeTheResultIsTold();
    void anUnarchiverGoesWithTheService();
};

void tst_Unpacking::anArchiveBecomesAnInstalledExample()
{
    download("hello", projectArchive("hello-main-4f0c"));

    QTRY_COMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", "examples-manifest.xml"}));
    QCOMPARE(temporaryArchives(), QStringList());
}

void tst_Unpacking::itsPictureIsInstalledWithIt()
{
    const auto example = download("hello", projectArchive("hello-main-4f0c"));
    example->setImage(encodedPicture({16, 8}));

    QVERIFY(waitForLines(3));
    QCOMPARE(QImage(ServiceFixture::path("hello/example-icon.png"), "png").size(), QSize(128, 64));
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

void tst_Unpacking::aFileNamedLikeAWarningIsNone()
{
    const QByteArray archive
        = TarBuilder().file("hello-main-1/app.pro").file("hello-main-1/cmake -E tar: warning").tarGz();

    download("hello", archive);

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
}

void tst_Unpacking::theMainThreadWritesTheBeginningOnly()
{
    const Repository::ExamplePtr example = makeExample("hello");
    example->setData(QByteArray(1'000'000, 'x'));

    const std::optional<ArchiveFile> file = saveArchive(example);

    QVERIFY(file);
    QCOMPARE(readFile(file->path), QByteArray(64 * 1024, 'x'));
    QVERIFY(QFile::remove(file->path));
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
