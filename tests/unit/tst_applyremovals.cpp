// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of examples whose removal is applied.

#include "common/applytest.h"
#include "common/testfiles.h"
#include "server/demoserver.h"
#include "service/downloadservice.h"
#include "settings/settings.h"

#include <coreplugin/helpmanager.h>

#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

#include <filesystem>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_ApplyRemovals final : public ApplyTest
{
    Q_OBJECT

private slots:
    void removedExamplesAreDeletedAndRemembered();
    void otherExamplesStay();
    void removedExampleThatIsGoneAlreadyIsNoError();
    void removedRowsDoNotComeBackWithTheRepository();
    void linksAreRemovedAndNotFollowed();
    void exampleThatIsALinkLosesOnlyTheLink();
    void namesThatAreNotUtf8AreDeleted();
    void nameThatIsNotPlainIsRememberedButNotDeleted();
    void removalWithNothingToInstallStillReachesTheService();
    void removalWithNothingToInstallInstallsNothing();
};

void tst_ApplyRemovals::removedExamplesAreDeletedAndRemembered()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    install("Demo", "clock");
    writeFile(exampleDirectory("Demo", "maps") + "/src/deep/main.cpp", "int main() {}");
    openPage();
    remove({"maps", "clock"});
    QVERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps")));

    m_page->apply();

    QVERIFY(!QFileInfo::exists(exampleDirectory("Demo", "maps")));
    QVERIFY(!QFileInfo::exists(exampleDirectory("Demo", "clock")));
    QCOMPARE(storedRemovals("Demo"), (QStringList{"clock", "maps"}));
}

void tst_ApplyRemovals::otherExamplesStay()
{
    m_fixture.setRepositoryNames({"Demo", "Other"});
    m_fixture.start();
    install("Demo", "maps");
    install("Demo", "maps-2");
    install("Demo", "Maps");
    install("Other", "maps");
    openPage();
    remove({"maps"});

    m_page->apply();

    QCOMPARE(entriesOf(Settings::location().arg("Demo")), (QStringList{"Maps", "maps-2"}));
    QVERIFY(QFileInfo::exists(exampleDirectory("Other", "maps")));
    QCOMPARE(storedRemovals("Other"), QStringList{});
}

void tst_ApplyRemovals::removedExampleThatIsGoneAlreadyIsNoError()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    openPage();
    remove({"maps"});
    QVERIFY(QDir(exampleDirectory("Demo", "maps")).removeRecursively());

    m_page->apply();

    QCOMPARE(storedRemovals("Demo"), QStringList{"maps"});
}

void tst_ApplyRemovals::removedRowsDoNotComeBackWithTheRepository()
{
    m_fixture.setRepositoryNames({"Demo", "Other"});
    m_fixture.start();
    install("Demo", "maps");
    install("Demo", "clock");
    openPage();
    remove({"maps"});

    m_page->apply();
    repositories()->setCurrentText("Other");
    repositories()->setCurrentText("Demo");

    QCOMPARE(texts(list()), QStringList{"clock"});
}

void tst_ApplyRemovals::linksAreRemovedAndNotFollowed()
{
    const QString outside = QDir::tempPath() + "/outside";
    writeFile(outside + "/precious", "keep");
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    makeLink(exampleDirectory("Demo", "maps") + "/planted", outside);
    openPage();
    remove({"maps"});

    m_page->apply();

    QVERIFY(!QFileInfo::exists(exampleDirectory("Demo", "maps")));
    QCOMPARE(entriesOf(outside), QStringList{"precious"});
}

void tst_ApplyRemovals::exampleThatIsALinkLosesOnlyTheLink()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    openPage();
    remove({"maps"});
    const QString elsewhere = QDir::tempPath() + "/moved-by-the-user";
    QVERIFY(QDir().rename(exampleDirectory("Demo", "maps"), elsewhere));
    makeLink(exampleDirectory("Demo", "maps"), elsewhere);

    m_page->apply();

    QVERIFY(!QFileInfo(exampleDirectory("Demo", "maps")).isSymLink());
    QCOMPARE(entriesOf(elsewhere), QStringList{"examples-manifest.xml"});
}

void tst_ApplyRemovals::namesThatAreNotUtf8AreDeleted()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    QVERIFY(std::filesystem::create_directory(exampleDirectory("Demo", "maps").toStdString() + "/\xff"));
    openPage();
    remove({"maps"});

    m_page->apply();

    QVERIFY(!std::filesystem::exists(exampleDirectory("Demo", "maps").toStdString()));
}

void tst_ApplyRemovals::nameThatIsNotPlainIsRememberedButNotDeleted()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps[1]");
    install("Demo", "clock");
    openPage();
    remove({"maps[1]", "clock"});
    QSignalSpy announced(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::documentationChanged);

    m_page->apply();

    QCOMPARE(entriesOf(Settings::location().arg("Demo")), QStringList{"maps[1]"});
    QCOMPARE(storedRemovals("Demo"), (QStringList{"clock", "maps[1]"}));
    QCOMPARE(announced.count(), 1);
}

// The service tells of a call only if it does not know the repository: one that was configured after it
// started.
void tst_ApplyRemovals::removalWithNothingToInstallStillReachesTheService()
{
    m_fixture.start();
    m_fixture.setRepositoryNames({"Later"});
    install("Later", "maps");
    openPage();
    remove({"maps"});
    QSignalSpy status(&m_fixture.service(), &DownloadService::statusChanged);

    m_page->apply();

    QCOMPARE(status.count(), 1);
    QCOMPARE(
        status.at(0).at(0).toString(),
        "Skip downloading examples - unable to find repository for name: Later");
}

// The archive that is asked for afterwards shows that the call was over.
void tst_ApplyRemovals::removalWithNothingToInstallInstallsNothing()
{
    Demo::DemoServer server;
    server.gitlab().addProject(makeProject(1, "maps"));
    server.gitlab().addProject(makeProject(2, "clock"));
    install("Demo", "clock");
    openPageWithServer(server);
    remove({"clock"});

    m_page->apply();

    m_fixture.service().save("Demo", {"maps"});
    QTRY_VERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps") + "/examples-manifest.xml"));
    QCOMPARE(server.requestCount(archiveRoute(1)), 1);
    QCOMPARE(server.requestCount(archiveRoute(2)), 0);
}

QTEST_MAIN(tst_ApplyRemovals)
#include "tst_applyremovals.moc"
