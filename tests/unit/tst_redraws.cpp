// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of the options page's list when it is drawn again or filtered.

#include "common/pagetest.h"
#include "common/testfiles.h"
#include "service/downloadservice.h"

#include <coreplugin/helpmanager.h>
#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Redraws final : public PageTest
{
    Q_OBJECT

private slots:
    // Redraws
    void serviceUpdateScansTheDiskAgain();
    void everyScanIsAnnounced();
    void theListIsRedrawnBeforeTheAnnouncement();
    void addedRowsVanishAndStayQueued();
    void removedRowsComeBackAndStayQueued();
    void selectionAndCurrentRowSurvive();
    void scrollPositionSurvives();
    void anotherRepositoryBeginsAtItsTop();

    // The filter
    void filterHidesWhatDoesNotContainIt_data();
    void filterHidesWhatDoesNotContainIt();
    void filterHoldsAfterARedraw();
    void filterHoldsForAddedRows();
    void filterHoldsForAnotherRepository();
    void returnPressesNoButton_data();
    void returnPressesNoButton();
};

void tst_Redraws::serviceUpdateScansTheDiskAgain()
{
    install("Demo", "maps");
    install("Demo", "clock");
    openPage({"Demo"});
    install("Demo", "hello");
    QVERIFY(QDir(exampleDirectory("Demo", "maps")).removeRecursively());
    QCOMPARE(texts(list()), (QStringList{"clock", "maps"}));

    m_fixture.update();

    QCOMPARE(texts(list()), (QStringList{"clock", "hello"}));
}

void tst_Redraws::everyScanIsAnnounced()
{
    QSignalSpy announced(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::documentationChanged);

    openPage({"Demo", "Other"});
    QCOMPARE(announced.count(), 1);

    m_fixture.update();
    QCOMPARE(announced.count(), 2);

    repositories()->setCurrentText("Other");
    QCOMPARE(announced.count(), 2);
}

void tst_Redraws::theListIsRedrawnBeforeTheAnnouncement()
{
    openPage({"Demo"});
    install("Demo", "maps");
    QStringList shown;
    const QObject receiver; // goes before the list of texts does
    connect(
        Core::HelpManager::Signals::instance(),
        &Core::HelpManager::Signals::documentationChanged,
        &receiver,
        [&] { shown = texts(list()); });

    m_fixture.update();

    QCOMPARE(shown, QStringList{"maps"});
}

void tst_Redraws::addedRowsVanishAndStayQueued()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});

    m_fixture.update();

    QCOMPARE(list()->count(), 0);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, QStringList{"maps"});
}

void tst_Redraws::removedRowsComeBackAndStayQueued()
{
    install("Demo", "maps");
    openPage({"Demo"});
    remove({"maps"});

    m_fixture.update();

    QCOMPARE(texts(list()), QStringList{"maps"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{"maps"});
}

void tst_Redraws::selectionAndCurrentRowSurvive()
{
    for (const QString &name : QStringList{"clock", "hello", "maps", "tiles"})
        install("Demo", name);
    openPage({"Demo"});
    showPage();
    selectRows(list(), {"clock", "maps"});
    list()->setCurrentItem(findRow(list(), "tiles"), QItemSelectionModel::NoUpdate);
    install("Demo", "atlas");
    QVERIFY(QDir(exampleDirectory("Demo", "clock")).removeRecursively());

    m_fixture.update();

    QCOMPARE(texts(list()), (QStringList{"atlas", "hello", "maps", "tiles"}));
    QCOMPARE(list()->selectedItems(), QList<QListWidgetItem *>{findRow(list(), "maps")});
    QCOMPARE(list()->currentItem(), findRow(list(), "tiles"));
}

void tst_Redraws::scrollPositionSurvives()
{
    for (int i = 0; i < 100; ++i)
        install("Demo", QString("maps-%1").arg(i, 3, 10, QLatin1Char('0')) + QString(150, 'x'));
    openPage({"Demo"});
    showPage();
    filter()->setText("maps");
    list()->setCurrentRow(0);
    list()->verticalScrollBar()->setValue(40);
    list()->horizontalScrollBar()->setValue(50);
    QCOMPARE(list()->verticalScrollBar()->value(), 40);
    QCOMPARE(list()->horizontalScrollBar()->value(), 50);

    m_fixture.update();
    list()->grab(); // the layout that a redraw leaves for later

    QCOMPARE(list()->verticalScrollBar()->value(), 40);
    QCOMPARE(list()->horizontalScrollBar()->value(), 50);
    QVERIFY(list()->itemAt(list()->viewport()->rect().topLeft())->text().startsWith("maps-040"));
}

void tst_Redraws::anotherRepositoryBeginsAtItsTop()
{
    for (int i = 0; i < 100; ++i) {
        install("Demo", QString("maps-%1").arg(i));
        install("Other", QString("maps-%1").arg(i));
    }
    openPage({"Demo", "Other"});
    showPage();
    selectRows(list(), {"maps-7"});
    list()->verticalScrollBar()->setValue(40);

    repositories()->setCurrentText("Other");
    list()->grab();

    QCOMPARE(list()->verticalScrollBar()->value(), 0);
    QVERIFY(list()->selectedItems().isEmpty());
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

void tst_Redraws::filterHoldsAfterARedraw()
{
    install("Demo", "maps");
    install("Demo", "clock");
    openPage({"Demo"});
    filter()->setText("a");
    install("Demo", "atlas");
    install("Demo", "hello");

    m_fixture.update();

    QCOMPARE(texts(list()), (QStringList{"atlas", "clock", "hello", "maps"}));
    QCOMPARE(visibleTexts(list()), (QStringList{"atlas", "maps"}));
}

void tst_Redraws::filterHoldsForAddedRows()
{
    install("Demo", "maps");
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"atlas", "clock"}));
    filter()->setText("a");

    add({"atlas", "clock"});

    QCOMPARE(texts(list()), (QStringList{"atlas", "clock", "maps"}));
    QCOMPARE(visibleTexts(list()), (QStringList{"atlas", "maps"}));
}

void tst_Redraws::filterHoldsForAnotherRepository()
{
    install("Other", "maps");
    install("Other", "clock");
    openPage({"Demo", "Other"});
    filter()->setText("a");

    repositories()->setCurrentText("Other");

    QCOMPARE(visibleTexts(list()), QStringList{"maps"});
}

void tst_Redraws::returnPressesNoButton_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
}

void tst_Redraws::returnPressesNoButton()
{
    QFETCH(int, key);
    openPage({"Demo"});
    Utils::FancyLineEdit *line = filter();
    QDialog preferences;
    QVBoxLayout layout(&preferences);
    layout.addWidget(m_page.release());
    QPushButton ok("OK", &preferences);
    ok.setDefault(true);
    int pressed = 0;
    const QList<QPushButton *> buttons = preferences.findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 3);
    for (const QPushButton *button : buttons)
        connect(button, &QPushButton::clicked, &preferences, [&pressed] { ++pressed; });
    preferences.show();
    QVERIFY(QTest::qWaitForWindowActive(&preferences));
    line->setFocus();
    QTest::keyClicks(line, "maps");

    QTest::keyClick(line, Qt::Key(key), key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);

    QCOMPARE(pressed, 0);
    QCOMPARE(line->text(), "maps");
}

QTEST_MAIN(tst_Redraws)
#include "tst_redraws.moc"
