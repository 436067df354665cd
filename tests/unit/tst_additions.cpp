// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Adding examples on the options page, up to the moment when that is applied.

#include "common/pagetest.h"
#include "common/testfiles.h"
#include "ui/examplesdialog.h"

#include <QComboBox>
#include <QListWidget>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Additions final : public PageTest
{
    Q_OBJECT

private slots:
    void addingWithoutOnlineExamplesWarns_data();
    void addingWithoutOnlineExamplesWarns();
    void dialogListsTheRepositoryAndBelongsToThePage();
    void addedExampleIsAQueuedPlainRow();
    void cancelledDialogAddsNothing_data();
    void cancelledDialogAddsNothing();
    void listedNamesAreNotAddedAgain_data();
    void listedNamesAreNotAddedAgain();
    void namesThatDifferInCaseAreAddedOnce();
    void additionsGoToTheRepositoryShownAfterTheDialog();
    void redrawWhileTheDialogIsOpenKeepsTheSelection();
    void pageThatGoesWhileTheDialogIsOpenAddsNothing();
};

void tst_Additions::addingWithoutOnlineExamplesWarns_data()
{
    QTest::addColumn<QStringList>("repositories");
    QTest::newRow("nothing listed yet") << QStringList{"Demo"};
    QTest::newRow("no repository") << QStringList{};
}

void tst_Additions::addingWithoutOnlineExamplesWarns()
{
    QFETCH(QStringList, repositories);
    openPage(repositories);
    showPage();

    clickAdd();

    const QMessageBox *box = messageBox();
    QVERIFY(box);
    QCOMPARE(box->icon(), QMessageBox::Warning);
    QCOMPARE(box->windowTitle(), "Examples Not Found");
    QCOMPARE(box->text(), "Check your online connection and try again later!");
}

void tst_Additions::dialogListsTheRepositoryAndBelongsToThePage()
{
    install("Demo", "maps");
    openPage({"Demo", "Other"});
    m_fixture.list("Demo", makeExamples({"maps", "clock"}));
    m_fixture.list("Other", makeExamples({"hello"}));
    QStringList listed;
    QObject *parent = nullptr;
    WhenOpened<ExamplesDialog> look([&](ExamplesDialog *dialog) {
        listed = texts(dialog->findChild<QListWidget *>("examplesListWidget"));
        parent = dialog->parent();
        dialog->reject();
    });

    clickAdd();

    QCOMPARE(listed, (QStringList{"clock", "maps"}));
    QCOMPARE(parent, m_page.get());
}

void tst_Additions::addedExampleIsAQueuedPlainRow()
{
    install("Demo", "hello");
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps", "clock"}));

    add({"clock", "maps"});

    QCOMPARE(texts(list()), (QStringList{"clock", "hello", "maps"}));
    const QListWidgetItem *row = findRow(list(), "maps");
    QVERIFY(!row->data(Qt::UserRole).isValid());
    QVERIFY(!row->data(Qt::ToolTipRole).isValid());
    QVERIFY(!row->data(Qt::BackgroundRole).isValid());
    QVERIFY(!QFileInfo::exists(exampleDirectory("Demo", "maps")));
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, (QStringList{"clock", "maps"}));
}

void tst_Additions::cancelledDialogAddsNothing_data()
{
    QTest::addColumn<bool>("closed");
    QTest::newRow("Cancel") << false;
    QTest::newRow("window closed") << true;
}

void tst_Additions::cancelledDialogAddsNothing()
{
    QFETCH(bool, closed);
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    WhenOpened<ExamplesDialog> leave([closed](ExamplesDialog *dialog) {
        selectRows(dialog->findChild<QListWidget *>("examplesListWidget"), {"maps"});
        closed ? void(dialog->close()) : dialog->reject();
    });

    clickAdd();

    QVERIFY(leave.happened());
    QCOMPARE(list()->count(), 0);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, QStringList{});
}

void tst_Additions::listedNamesAreNotAddedAgain_data()
{
    QTest::addColumn<QString>("installed");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<bool>("added");
    QTest::newRow("same name") << "maps" << "maps" << false;
    QTest::newRow("upper case") << "maps" << "MAPS" << false;
    QTest::newRow("lower case") << "Maps" << "maps" << false;
    QTest::newRow("accented letter in another case") << QString("\u00e4") << QString("\u00c4") << false;
    QTest::newRow("accented letter and its base") << QString("\u00e4") << QString("a") << true;
    QTest::newRow("sharp s is no double s") << QString("stra\u00dfe") << QString("strasse") << true;
    QTest::newRow("beginning of a name") << "maps" << "map" << true;
    QTest::newRow("wildcard") << "maps" << "m*" << true;
}

void tst_Additions::listedNamesAreNotAddedAgain()
{
    QFETCH(QString, installed);
    QFETCH(QString, chosen);
    QFETCH(bool, added);
    install("Demo", installed);
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({chosen}));
    QCOMPARE(list()->findItems(chosen, Qt::MatchFixedString).isEmpty(), added);

    add({chosen});

    QCOMPARE(list()->count(), added ? 2 : 1);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, added ? QStringList{chosen} : QStringList{});
}

void tst_Additions::namesThatDifferInCaseAreAddedOnce()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps", "Maps", "MAPS"}));

    add({"maps", "Maps", "MAPS"});

    const QStringList added = texts(list());
    QCOMPARE(added.size(), 1);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, added);
}

void tst_Additions::additionsGoToTheRepositoryShownAfterTheDialog()
{
    openPage({"Demo", "Other"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    WhenOpened<ExamplesDialog> choose([this](ExamplesDialog *dialog) {
        repositories()->setCurrentText("Other");
        selectRows(dialog->findChild<QListWidget *>("examplesListWidget"), {"maps"});
        dialog->accept();
    });

    clickAdd();

    const QHash<QString, Queues> queues = m_fixture.applyOffline(*m_page);
    QCOMPARE(queues["Demo"].toInstall, QStringList{});
    QCOMPARE(queues["Other"].toInstall, QStringList{"maps"});
}

void tst_Additions::redrawWhileTheDialogIsOpenKeepsTheSelection()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps", "clock"}));
    WhenOpened<ExamplesDialog> choose([this](ExamplesDialog *dialog) {
        selectRows(dialog->findChild<QListWidget *>("examplesListWidget"), {"maps", "clock"});
        install("Demo", "clock"); // its download ends now
        m_fixture.list("Demo", makeExamples({"hello"}));
        dialog->accept();
    });

    clickAdd();

    QCOMPARE(texts(list()), (QStringList{"clock", "maps"}));
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, QStringList{"maps"});
}

void tst_Additions::pageThatGoesWhileTheDialogIsOpenAddsNothing()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    WhenOpened<ExamplesDialog> destroy([this](ExamplesDialog *) { m_page.reset(); });

    clickAdd();

    QVERIFY(destroy.happened());
    QVERIFY(!m_page);
}

QTEST_MAIN(tst_Additions)
#include "tst_additions.moc"
