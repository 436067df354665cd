// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of the options page's list when it is drawn again or filtered.

#include "common/pagetest.h"
#include "common/testfiles.h"
#include "service/downloadservice.h"

#include <coreplugin/helpmanager.h>
#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Redraws final : public PageTest
{
    Q_OBJECT

private Q_SLOTS:
    // Redraws
    void serviceUpdateScansTheDiskAgain();
    void everyScanIsAnnounced();
    void addedRowsVanishAndStayQueued();
    void removedRowsComeBackAndStayQueued();

    // The filter
    void filterHidesWhatDoesNotContainIt_data();
    void filterHidesWhatDoesNotContainIt();
};

void tst_Redraws::serviceUpdateScansTheDiskAgain()
{
    install("Demo", "maps");
    install("Demo", "clock");
    openPage({"Demo"});
    install("Demo", "hello");
    QVERIFY(QDir(exampleDirectory("Demo", "maps")).removeRecursively());
    QCOMPARE(texts(list()), (QStringList{"clock", "maps"}));

    Q_EMIT m_fixture.service().updated();

    QCOMPARE(texts(list()), (QStringList{"clock", "hello"}));
}

void tst_Redraws::everyScanIsAnnounced()
{
    QSignalSpy announced(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::documentationChanged);

    openPage({"Demo", "Other"});
    QCOMPARE(announced.count(), 1);

    Q_EMIT m_fixture.service().updated();
    QCOMPARE(announced.count(), 2);

    repositories()->setCurrentText("Other");
    QCOMPARE(announced.count(), 2);
}

void tst_Redraws::addedRowsVanishAndStayQueued()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});

    Q_EMIT m_fixture.service().updated();

    QCOMPARE(list()->count(), 0);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, QStringList{"maps"});
}

void tst_Redraws::removedRowsComeBackAndStayQueued()
{
    install("Demo", "maps");
    openPage({"Demo"});
    remove({"maps"});

    Q_EMIT m_fixture.service().updated();

    QCOMPARE(texts(list()), QStringList{"maps"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{"maps"});
}

void tst_Redraws::filterHidesWhatDoesNotContainIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("visible");
    QTest::newRow("empty") << "" << QStringList{"Clock", "hello-maps", "maps"};
    QTest::newRow("upper case finds lower case") << "MAPS" << QStringList{"hello-maps", "maps"};
    QTest::newRow("lower case finds upper case") << "lock" << QStringList{"Clock"};
    QTest::newRow("nothing fits") << "*" << QStringList{};
}

void tst_Redraws::filterHidesWhatDoesNotContainIt()
{
    QFETCH(QString, text);
    QFETCH(QStringList, visible);
    install("Demo", "maps");
    install("Demo", "hello-maps");
    install("Demo", "Clock");
    openPage({"Demo"});
    filter()->setText("c"); // whatever was filtered before

    filter()->setText(text);

    QCOMPARE(visibleTexts(list()), visible);
    QCOMPARE(list()->count(), 3);
}

QTEST_MAIN(tst_Redraws)
#include "tst_redraws.moc"
