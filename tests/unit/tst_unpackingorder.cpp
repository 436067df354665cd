// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which archives are unpacked at the same time, and which wait for each other.

#include "common/archivebuilder.h"
#include "common/testfiles.h"
#include "common/unarchivertools.h"
#include "common/unpackingfixture.h"
#include "service/nativefiles.h"

#include <QTest>

#include <memory>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_UnpackingOrder final : public UnpackingFixture
{
    Q_OBJECT

private slots:
    void examplesAreUnpackedAtTheSameTime();
    void aCopyInTheMakingIsNotClearedAway_data();
    void aCopyInTheMakingIsNotClearedAway();
    void archivesOfOneExampleAreUnpackedInTheirOrder();
    void archivesOfTwoExamplesWithOneTopDirectoryWaitForEachOther();
    void anArchiveWithoutOneTopDirectoryIsUnpackedAlone_data();
    void anArchiveWithoutOneTopDirectoryIsUnpackedAlone();
    void archivesThatAreRefusedAfterWaitingBlockNoLaterOne();
    void anArchiveWaitsForAnotherProcess();
    void otherProcessesWaitForTheRegistration();
};

// A lock of another object counts as another process's.
void tst_UnpackingOrder::anArchiveWaitsForAnotherProcess()
{
    const Tools tools(GATED);
    makeDirectory(ServiceFixture::path({}));
    auto other = std::make_unique<DirectoryLock>(ServiceFixture::path({}));
    QVERIFY(!other->isTaken());

    download("hello", projectArchive("hello-main-1"));

    QVERIFY(waitForVetting());
    QVERIFY(!tools.has("hello"));
    m_fixture->clearLines();
    other.reset();
    QTRY_VERIFY(tools.has("hello"));
    tools.openGate();
    QVERIFY(waitForLines(2));
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

void tst_UnpackingOrder::otherProcessesWaitForTheRegistration()
{
    const auto isTaken = [] { return DirectoryLock(ServiceFixture::path({})).isTaken(); };
    const Tools tools(GATED);
    bool wasTakenAtTheEnd = false;
    connect(&m_fixture->service(), &DownloadService::updated, this, [&] { wasTakenAtTheEnd = isTaken(); });

    download("hello", projectArchive("hello-main-1"));

    QTRY_VERIFY(tools.has("hello"));
    QVERIFY(isTaken());
    tools.openGate();
    QVERIFY(waitForLines(3));
    QVERIFY(wasTakenAtTheEnd);
    QTRY_VERIFY(!isTaken());
}

void tst_UnpackingOrder::examplesAreUnpackedAtTheSameTime()
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

void tst_UnpackingOrder::aCopyInTheMakingIsNotClearedAway_data()
{
    QTest::addColumn<QString>("slow"); // the path whose archive takes long to unpack
    QTest::addColumn<QString>("quick");

    QTest::newRow("by an example with a longer path") << "maps" << "maps-main";
    QTest::newRow("by an example with a shorter path") << "maps-main" << "maps";
    QTest::newRow("by an older download of its own") << "maps" << "maps";
}

void tst_UnpackingOrder::aCopyInTheMakingIsNotClearedAway()
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

void tst_UnpackingOrder::archivesOfOneExampleAreUnpackedInTheirOrder()
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

void tst_UnpackingOrder::archivesOfTwoExamplesWithOneTopDirectoryWaitForEachOther()
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

void tst_UnpackingOrder::anArchiveWithoutOneTopDirectoryIsUnpackedAlone_data()
{
    QTest::addColumn<bool>("isFirst");

    QTest::newRow("after another one") << false;
    QTest::newRow("before another one") << true;
}

void tst_UnpackingOrder::anArchiveWithoutOneTopDirectoryIsUnpackedAlone()
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

// They are refused one within the other, as the end of each lets the next one begin.
void tst_UnpackingOrder::archivesThatAreRefusedAfterWaitingBlockNoLaterOne()
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
    QTRY_COMPARE(m_fixture->lines().count(UNPACKING_FAILED), 4); // with two of the vetting
    QTRY_COMPARE(m_fixture->lines().count("documentation changed"), 1);
    m_fixture->clearLines();

    download("hello", TarBuilder().file("hello-b/app.pro", "b").file("other/x").tarGz());

    QVERIFY(waitForLines(3));
    QCOMPARE(m_fixture->lines(), successOf("hello"));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "b");
}

QTEST_MAIN(tst_UnpackingOrder)
#include "tst_unpackingorder.moc"
