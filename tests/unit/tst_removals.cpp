// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Removing examples on the options page, up to the moment when that is applied.

#include "common/pagetest.h"
#include "common/testfiles.h"

#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QListWidget>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Removals final : public PageTest
{
    Q_OBJECT

private slots:
    void removingWithoutASelectionInforms();
    void removedExamplesAreQueuedAndLeaveTheList();
    void removingAnAddedExampleCancelsOut();
    void addingAnExampleAgainAfterRemovingItsRowQueuesItOnce();
    void addingARemovedExampleBackCancelsOut();
    void hiddenRowsAreRemovedWithTheSelection();
    void whatTheFilterHidesStaysHiddenAfterARemoval();
    void queuesAreKeptPerRepository();
    void closedPageForgetsItsQueues();
};

void tst_Removals::removingWithoutASelectionInforms()
{
    install("Demo", "maps");
    openPage({"Demo"});
    showPage();

    clickRemove();

    const QMessageBox *box = messageBox();
    QVERIFY(box);
    QCOMPARE(box->icon(), QMessageBox::Information);
    QCOMPARE(box->windowTitle(), "Examples Not Selected");
    QCOMPARE(
        box->text(),
        "Select examples to remove, press Remove button, then press Apply button to apply changes.");
    QCOMPARE(list()->count(), 1);
}

void tst_Removals::removedExamplesAreQueuedAndLeaveTheList()
{
    install("Demo", "maps");
    install("Demo", "clock");
    install("Demo", "hello");
    openPage({"Demo"});

    remove({"maps", "clock"});

    QCOMPARE(texts(list()), QStringList{"hello"});
    QVERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps")));
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, (QStringList{"clock", "maps"}));
}

void tst_Removals::removingAnAddedExampleCancelsOut()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});

    remove({"maps"});

    QCOMPARE(list()->count(), 0);
    const Queues queues = m_fixture.applyOffline(*m_page)["Demo"];
    QCOMPARE(queues.toInstall, QStringList{});
    QCOMPARE(queues.toRemove, QStringList{});
}

void tst_Removals::addingAnExampleAgainAfterRemovingItsRowQueuesItOnce()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});
    remove({"maps"});

    add({"maps"});

    QCOMPARE(texts(list()), QStringList{"maps"});
    const Queues queues = m_fixture.applyOffline(*m_page)["Demo"];
    QCOMPARE(queues.toInstall, QStringList{"maps"});
    QCOMPARE(queues.toRemove, QStringList{});
}

void tst_Removals::addingARemovedExampleBackCancelsOut()
{
    install("Demo", "maps");
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    remove({"maps"});

    add({"maps"});

    QCOMPARE(texts(list()), QStringList{"maps"});
    const Queues queues = m_fixture.applyOffline(*m_page)["Demo"];
    QCOMPARE(queues.toInstall, QStringList{});
    QCOMPARE(queues.toRemove, QStringList{});
    QVERIFY(QFileInfo::exists(exampleDirectory("Demo", "maps")));
}

void tst_Removals::hiddenRowsAreRemovedWithTheSelection()
{
    install("Demo", "maps");
    install("Demo", "clock");
    openPage({"Demo"});
    selectRows(list(), {"maps"});
    filter()->setText("clock");

    clickRemove();

    QCOMPARE(texts(list()), QStringList{"clock"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{"maps"});
}

void tst_Removals::whatTheFilterHidesStaysHiddenAfterARemoval()
{
    for (const QString &name : QStringList{"a-1", "b-1", "c-1", "d-2", "e-1", "f-2", "g-1"})
        install("Demo", name);
    openPage({"Demo"});
    filter()->setText("1");
    list()->setCurrentItem(findRow(list(), "c-1")); // the next row is hidden

    remove({"a-1", "b-1", "c-1", "e-1"});

    QCOMPARE(texts(list()), (QStringList{"d-2", "f-2", "g-1"}));
    QCOMPARE(visibleTexts(list()), QStringList{"g-1"});
    QCOMPARE(list()->currentItem()->text(), "g-1");
    filter()->clear();
    QCOMPARE(visibleTexts(list()), (QStringList{"d-2", "f-2", "g-1"}));
}

void tst_Removals::queuesAreKeptPerRepository()
{
    install("Demo", "maps");
    install("Other", "maps");
    openPage({"Demo", "Other"});
    m_fixture.list("Other", makeExamples({"clock"}));
    remove({"maps"});
    repositories()->setCurrentText("Other");
    add({"clock"});
    repositories()->setCurrentText("Demo");

    const QHash<QString, Queues> queues = m_fixture.applyOffline(*m_page);

    QCOMPARE(queues["Demo"].toInstall, QStringList{});
    QCOMPARE(queues["Demo"].toRemove, QStringList{"maps"});
    QCOMPARE(queues["Other"].toInstall, QStringList{"clock"});
    QCOMPARE(queues["Other"].toRemove, QStringList{});
}

void tst_Removals::closedPageForgetsItsQueues()
{
    install("Demo", "maps");
    openPage({"Demo"});
    remove({"maps"});

    reopenPage();

    QCOMPARE(texts(list()), QStringList{"maps"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{});
}

QTEST_MAIN(tst_Removals)
#include "tst_removals.moc"
