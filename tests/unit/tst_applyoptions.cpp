// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of the options page's other changes when they are applied.

#include "common/applytest.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "plugin/constants.h"
#include "server/demoserver.h"
#include "service/downloadservice.h"
#include "settings/settings.h"
#include "ui/optionspage.h"

#include <coreplugin/helpmanager.h>

#include <QComboBox>
#include <QListWidget>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_ApplyOptions final : public ApplyTest
{
    Q_OBJECT

private slots:
    // Installing
    void addedExamplesAreHandedToTheService();
    void addedExampleIsNotTreatedAsRemovedAnyLonger();
    void installedExampleAppearsOnThePage();

    // All repositories
    void untouchedRepositoryIsLeftAlone();
    void queuesAreLogged();
    void documentationIsAnnouncedOncePerChangedRepository();
    void theServiceIsCalledBeforeTheDocumentationIsAnnounced();

    // Settings
    void intervalAloneIsSavedWithoutACall();
    void intervalZeroSwitchesUpdatesOff();
    void recordIsSavedAsItWasRead();
    void queuesAreNotStored();
    void ideAppliesThePageThroughItsBase();

    void applyingTwiceRepeatsTheCalls();
};

void tst_ApplyOptions::addedExamplesAreHandedToTheService()
{
    Demo::DemoServer server;
    server.gitlab().addProject(makeProject(1, "maps"));
    server.gitlab().addProject(makeProject(2, "clock"));
    server.gitlab().addProject(makeProject(3, "hello"));
    openPageWithServer(server);
    add({"maps", "clock"});
    QCOMPARE(server.requestCount("/api/v4/projects/*"), 0);

    m_page->apply();

    QTRY_VERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps") + "/examples-manifest.xml"));
    QTRY_VERIFY(QFileInfo::exists(exampleDirectory("Demo", "clock") + "/examples-manifest.xml"));
    QCOMPARE(server.requestCount(archiveRoute(1)), 1);
    QCOMPARE(server.requestCount(archiveRoute(2)), 1);
    QCOMPARE(server.requestCount(archiveRoute(3)), 0);
}

void tst_ApplyOptions::addedExampleIsNotTreatedAsRemovedAnyLonger()
{
    m_fixture.ide().set(Constants::REPOSITORIES, QStringList{"Demo|http://127.0.0.1:1/Demo|clock|maps"});
    m_fixture.start();
    m_fixture.list("Demo", makeExamples({"maps"}));
    openPage();
    add({"maps"});
    m_fixture.list("Demo", {}); // so that nothing is downloaded

    m_page->apply();

    QCOMPARE(storedRemovals("Demo"), QStringList{"clock"});
}

void tst_ApplyOptions::installedExampleAppearsOnThePage()
{
    Demo::DemoServer server;
    server.gitlab().addProject(makeProject(1, "maps"));
    openPageWithServer(server);
    add({"maps"});

    m_page->apply();

    QTRY_VERIFY(list()->count() == 1 && list()->item(0)->data(Qt::UserRole).isValid());
    QVERIFY(list()->item(0)->toolTip().contains(">Updated<"));
}

void tst_ApplyOptions::untouchedRepositoryIsLeftAlone()
{
    m_fixture.start();
    m_fixture.setRepositoryNames({"Later", "Other"});
    install("Later", "maps");
    install("Other", "clock");
    openPage();
    QSignalSpy status(&m_fixture.service(), &DownloadService::statusChanged);
    QSignalSpy announced(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::documentationChanged);

    m_page->apply();

    QCOMPARE(status.count(), 0);
    QCOMPARE(announced.count(), 0);
    QVERIFY(QFileInfo::exists(exampleDirectory("Later", "maps")));
    QVERIFY(QFileInfo::exists(exampleDirectory("Other", "clock")));
}

void tst_ApplyOptions::queuesAreLogged()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "clock");
    m_fixture.list("Demo", makeExamples({"maps"}));
    openPage();
    add({"maps"});
    remove({"clock"});
    m_fixture.list("Demo", {});
    const LogRecorder log;

    m_page->apply();

    QCOMPARE(
        log.lines(LogRecorder::MAIN),
        (QStringList{
            "Repository: \"Demo\"",
            "Examples to install: QSet(\"maps\")",
            "Examples to remove: QSet(\"clock\")"}));
}

void tst_ApplyOptions::documentationIsAnnouncedOncePerChangedRepository()
{
    m_fixture.setRepositoryNames({"A", "B", "C"});
    m_fixture.start();
    install("A", "maps");
    install("A", "clock");
    install("B", "maps");
    install("C", "maps");
    openPage();
    remove({"maps", "clock"});
    repositories()->setCurrentText("B");
    remove({"maps"});
    QSignalSpy announced(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::documentationChanged);

    m_page->apply();

    QCOMPARE(announced.count(), 2);
}

void tst_ApplyOptions::theServiceIsCalledBeforeTheDocumentationIsAnnounced()
{
    m_fixture.start();
    m_fixture.setRepositoryNames({"Later"});
    install("Later", "maps");
    openPage();
    remove({"maps"});
    QStringList steps;
    const QObject recorder; // goes before the steps do
    connect(&m_fixture.service(), &DownloadService::statusChanged, &recorder, [&] {
        const bool isThere = QFileInfo::exists(exampleDirectory("Later", "maps"));
        steps.append(QString::fromLatin1(isThere ? "called early" : "called"));
    });
    connect(
        Core::HelpManager::Signals::instance(),
        &Core::HelpManager::Signals::documentationChanged,
        &recorder,
        [&] {
            const bool isStored = storedRemovals("Later").contains("maps");
            steps.append(QString::fromLatin1(isStored ? "announced late" : "announced"));
        });

    m_page->apply();

    QCOMPARE(steps, (QStringList{"called", "announced"}));
    QCOMPARE(storedRemovals("Later"), QStringList{"maps"});
}

void tst_ApplyOptions::intervalAloneIsSavedWithoutACall()
{
    m_fixture.start();
    m_fixture.setRepositoryNames({"Later"});
    openPage();
    interval()->setValue(14);
    QSignalSpy status(&m_fixture.service(), &DownloadService::statusChanged);

    m_page->apply();

    QCOMPARE(m_fixture.ide().stored("Varnel/UpdatesCheckTimeoutDays").toUInt(), 14u);
    QCOMPARE(status.count(), 0);
}

void tst_ApplyOptions::intervalZeroSwitchesUpdatesOff()
{
    m_fixture.ide().set(Constants::UPDATES_TIMEOUT, 7);
    m_fixture.start();
    openPage();
    interval()->setValue(0);

    m_page->apply();

    QCOMPARE(m_fixture.ide().stored("Varnel/UpdatesCheckTimeoutDays").toUInt(), 0u);
}

// A date that the service has stored meanwhile is lost; the next check then comes earlier.
void tst_ApplyOptions::recordIsSavedAsItWasRead()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.ide().set(Constants::UPDATES_CHECKED, QStringList{"Demo|01.02.2024"});
    m_fixture.ide().set(Constants::SERVICE_RESTART_TIMEOUT, 17);
    m_fixture.start();
    openPage();
    m_fixture.ide().set(Constants::UPDATES_CHECKED, QStringList{"Demo|03.02.2024"});

    m_page->apply();

    QCOMPARE(
        m_fixture.ide().stored("Varnel/UpdatesCheckedDate").toStringList(), QStringList{"Demo|01.02.2024"});
    QCOMPARE(m_fixture.ide().stored("Varnel/ServiceRestartTimeoutSeconds").toUInt(), 17u);
    QCOMPARE(
        m_fixture.ide().stored("Varnel/Repositories").toStringList(),
        QStringList{"Demo|http://127.0.0.1:1/Demo|"});
}

void tst_ApplyOptions::queuesAreNotStored()
{
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "clock");
    m_fixture.list("Demo", makeExamples({"maps"}));
    openPage();
    add({"maps"});
    remove({"clock"});

    m_fixture.applyOffline(*m_page);
    openPage();

    const Queues queues = m_fixture.applyOffline(*m_page)["Demo"];
    QCOMPARE(queues.toInstall, QStringList{});
    QCOMPARE(queues.toRemove, QStringList{});
}

void tst_ApplyOptions::ideAppliesThePageThroughItsBase()
{
    m_fixture.start();
    OptionsPage page("Examples", "Test.Page", [] { return new OptionsWidget; }, nullptr);
    const std::unique_ptr<QWidget> widget(page.widget());
    widget->findChild<QSpinBox *>("timeoutSpinBox")->setValue(31);

    page.apply();

    QCOMPARE(m_fixture.ide().stored("Varnel/UpdatesCheckTimeoutDays").toUInt(), 31u);
}

void tst_ApplyOptions::applyingTwiceRepeatsTheCalls()
{
    Demo::DemoServer server;
    server.gitlab().addProject(makeProject(1, "maps"));
    openPageWithServer(server);
    install("Demo", "clock");
    m_fixture.update();
    add({"maps"});
    remove({"clock"});
    m_page->apply();
    QTRY_VERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps") + "/examples-manifest.xml"));
    QSignalSpy updated(&m_fixture.service(), &DownloadService::updated);

    const Queues queues = UiFixture::applyAndReport(*m_page)["Demo"];

    QCOMPARE(queues.toInstall, QStringList{"maps"});
    QCOMPARE(queues.toRemove, QStringList{"clock"});
    QTRY_COMPARE(updated.count(), 1);
    QCOMPARE(server.requestCount(archiveRoute(1)), 2);
    QTRY_COMPARE(entriesOf(Settings::location().arg("Demo")), QStringList{"maps"});
    QCOMPARE(storedRemovals("Demo"), QStringList{"clock"});
}

QTEST_MAIN(tst_ApplyOptions)
#include "tst_applyoptions.moc"
