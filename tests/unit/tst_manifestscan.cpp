// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// How the options page learns what is installed, of small repositories and of huge ones.

#include "common/mainloopwatch.h"
#include "common/pagetest.h"
#include "common/testfiles.h"
#include "service/downloadservice.h"
#include "settings/settings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QListWidget>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr int MANY = 8'000; // directories; an archive may bring ten times as many
constexpr auto LONGEST_HOLD = std::chrono::milliseconds(100);

QString hugeFolder()
{
    return QDir::tempPath() + "/huge-repository";
}

/** The repository's folder may be a link of the user's own: the directories are made only once. */
void installHuge(const QString &repository)
{
    const QString folder = Settings::location().arg(repository);
    QVERIFY(QDir().mkpath(QFileInfo(folder).path()));
    QVERIFY(QFile::link(hugeFolder(), folder));
}

} // namespace

class tst_ManifestScan final : public PageTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void smallRepositoryIsListedAtOnce();
    void copyOnItsWayIsNoRow();
    void manyDirectoriesDoNotHoldTheMainLoop();
    void changeDuringAScanIsSeen();
    void whatIsRemovedDuringAScanStaysAway();
    void pageGoesDuringAScan();

private:
    [[nodiscard]] bool isScanning() const { return m_page->findChild<ManifestScan *>()->isRunning(); }
};

void tst_ManifestScan::initTestCase()
{
    for (int i = 0; i < MANY; ++i)
        QVERIFY(QDir().mkpath(hugeFolder() + QString("/huge/%1/%2").arg(i % 100).arg(i)));
    writeFile(hugeFolder() + "/huge/examples-manifest.xml", "<instructionals/>");
}

void tst_ManifestScan::smallRepositoryIsListedAtOnce()
{
    install("Demo", "maps");
    openPage({"Demo"});
    const auto isListedAtOnce = [] {
        const OptionsWidget page;
        return texts(page.findChild<QListWidget *>("examplesListWidget")) == QStringList{"maps"};
    };

    QTRY_VERIFY(isListedAtOnce()); // a busy machine may need several
}

void tst_ManifestScan::copyOnItsWayIsNoRow()
{
    install("Demo", "maps");
    install("Demo", "maps@0123456789abcdef0123456789abcdef");
    install("Demo", "maps@0123456789abcdef0123456789abcdef/parts/inner");
    install("Demo", "maps@home");

    openPage({"Demo"});

    QCOMPARE(texts(list()), (QStringList{"maps", "maps@home"}));
}

void tst_ManifestScan::manyDirectoriesDoNotHoldTheMainLoop()
{
    installHuge("Demo");
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    WatchedApplication::forgetHolds();

    // By an event, since those are what is watched.
    const auto open = [this] { m_page = std::make_unique<OptionsWidget>(); };
    QMetaObject::invokeMethod(&m_fixture.service(), open, Qt::QueuedConnection);
    QTRY_VERIFY(m_page);
    QVERIFY(isScanning());
    waitForScans();

    QCOMPARE(texts(list()), QStringList{"huge"});
    QCOMPARE_LT(WatchedApplication::longestWork().time, LONGEST_HOLD);
    QCOMPARE_LT(WatchedApplication::longestSleep().time, LONGEST_HOLD);
}

void tst_ManifestScan::changeDuringAScanIsSeen()
{
    installHuge("Other");
    openPage({"Demo", "Other"});
    emit m_fixture.service().updated();
    QVERIFY(isScanning());

    install("Demo", "maps"); // it has passed that
    emit m_fixture.service().updated();
    waitForScans();

    QCOMPARE(texts(list()), QStringList{"maps"});
}

void tst_ManifestScan::whatIsRemovedDuringAScanStaysAway()
{
    install("Demo", "maps");
    installHuge("Other");
    openPage({"Demo", "Other"});
    remove({"maps"});
    emit m_fixture.service().updated();
    QVERIFY(isScanning());

    m_page->apply();
    waitForScans();

    QCOMPARE(texts(list()), QStringList());
}

void tst_ManifestScan::pageGoesDuringAScan()
{
    installHuge("Demo");
    openPage({"Demo"});
    emit m_fixture.service().updated();
    QVERIFY(isScanning());
    QElapsedTimer time;
    time.start();

    m_page.reset();

    QCOMPARE_LT(time.durationElapsed(), LONGEST_HOLD);
}

int main(int argc, char **argv)
{
    WatchedApplication application(argc, argv);
    tst_ManifestScan test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_manifestscan.moc"
