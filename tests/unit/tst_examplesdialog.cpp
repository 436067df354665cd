// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog that the user chooses examples in.

#include "common/testfiles.h"
#include "common/uifixture.h"
#include "ui/examplesdialog.h"

#include <utils/fancylineedit.h>

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_ExamplesDialog final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpTheme(); }

    void formIsBuiltAsDesigned();
    void listIsReadOnlySortedAndTakesSeveralRows();
    void readingOrderIsTabOrder();
    void filterLineLooksLikeTheIdesOwn();
    void fieldsHaveAccessibleNames();

    void everyExampleHasARow();
    void rowsAreSortedByName();
    void rowCarriesPathAddressAndToolTip();
    void missingValuesAreEmpty();
    void toolTipShowsTheLocalTime();

    void filterHidesWhatDoesNotContainIt_data();
    void filterHidesWhatDoesNotContainIt();
    void filteredRowsStayInTheList();

    void currentRowIsNeverAHiddenOne();

    void nothingIsSelectedBeforeTheDialogIsAccepted();
    void okReturnsTheSelectedNames();
    void okWithoutASelectionReturnsNoNames();
    void cancelReturnsNoNames();
    void closingTheWindowReturnsNoNames();
    void equalNamesCollapse();
    void keyboardAloneIsEnough();

    void returnInTheFilterPressesNoButton();
};

namespace {

QListWidget *listOf(const ExamplesDialog &dialog)
{
    return dialog.findChild<QListWidget *>("examplesListWidget");
}

Utils::FancyLineEdit *filterOf(const ExamplesDialog &dialog)
{
    return dialog.findChild<Utils::FancyLineEdit *>("filterLineEdit");
}

QDialogButtonBox *buttonsOf(const ExamplesDialog &dialog)
{
    return dialog.findChild<QDialogButtonBox *>("buttonBox");
}

} // namespace

void tst_ExamplesDialog::formIsBuiltAsDesigned()
{
    const ExamplesDialog dialog({}, nullptr);

    QCOMPARE(dialog.objectName(), "Varnel__Internal__ExamplesDialog");
    QCOMPARE(dialog.size(), QSize(640, 480));
    QCOMPARE(dialog.windowTitle(), "Select Examples to Install");
    auto layout = qobject_cast<QVBoxLayout *>(dialog.layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), "verticalLayout");
    QCOMPARE(layout->count(), 3);
    QCOMPARE(layout->itemAt(0)->widget(), listOf(dialog));
    QCOMPARE(layout->itemAt(1)->widget(), filterOf(dialog));
    QCOMPARE(layout->itemAt(2)->widget(), buttonsOf(dialog));
    QCOMPARE(filterOf(dialog)->toolTip(), "Filter examples");
    QCOMPARE(buttonsOf(dialog)->orientation(), Qt::Horizontal);
    QCOMPARE(buttonsOf(dialog)->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
}

void tst_ExamplesDialog::listIsReadOnlySortedAndTakesSeveralRows()
{
    const ExamplesDialog dialog({}, nullptr);
    const QListWidget *list = listOf(dialog);

    QCOMPARE(list->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list->selectionMode(), QAbstractItemView::ExtendedSelection);
    QVERIFY(list->uniformItemSizes());
    QVERIFY(list->isSortingEnabled());
}

void tst_ExamplesDialog::readingOrderIsTabOrder()
{
    ExamplesDialog dialog({}, nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTRY_COMPARE(dialog.focusWidget(), listOf(dialog));

    QTest::keyClick(&dialog, Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget(), filterOf(dialog));

    QTest::keyClick(&dialog, Qt::Key_Tab);
    QVERIFY(buttonsOf(dialog)->isAncestorOf(dialog.focusWidget()));
}

void tst_ExamplesDialog::filterLineLooksLikeTheIdesOwn()
{
    const ExamplesDialog dialog({}, nullptr);
    Utils::FancyLineEdit reference;
    reference.setFiltering(true);

    QVERIFY(!reference.placeholderText().isEmpty());
    QCOMPARE(filterOf(dialog)->placeholderText(), reference.placeholderText());
}

void tst_ExamplesDialog::fieldsHaveAccessibleNames()
{
    const ExamplesDialog dialog({}, nullptr);

    QVERIFY(!listOf(dialog)->accessibleName().isEmpty());
    QVERIFY(!filterOf(dialog)->accessibleName().isEmpty());
}

void tst_ExamplesDialog::everyExampleHasARow()
{
    const ExamplesDialog dialog(makeExamples({"a", "b", "b"}), nullptr);

    QCOMPARE(texts(listOf(dialog)), (QStringList{"a", "b", "b"}));
}

void tst_ExamplesDialog::rowsAreSortedByName()
{
    const ExamplesDialog dialog(makeExamples({"maps", "clock", "hello"}), nullptr);

    QCOMPARE(texts(listOf(dialog)), (QStringList{"clock", "hello", "maps"}));
}

void tst_ExamplesDialog::rowCarriesPathAddressAndToolTip()
{
    const Repository::ExamplePtr example = makeActiveExample("maps", "2023-05-04T10:11:12.345Z");

    const ExamplesDialog dialog({example}, nullptr);

    const QListWidgetItem *row = listOf(dialog)->item(0);
    QCOMPARE(row->text(), "maps");
    QCOMPARE(row->data(Qt::UserRole).toString(), "http://127.0.0.1/samples/maps");
    const QString date = example->lastActivity().toLocalTime().toString(Qt::TextDate);
    QCOMPARE(
        row->toolTip(),
        "<table><tbody><tr><td style=\"width: 40%;\">Name:&nbsp;</td><td style=\"width: 60%;\">Title of "
        "maps</td></tr>"
        "<tr><td style=\"width: 40%;\">Description:&nbsp;</td><td style=\"width: 60%;\">About maps</td></tr>"
        "<tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\">"
            + date
            + "</td></tr><tr><td style=\"width: 40%;\">Location:&nbsp;</td>"
              "<td style=\"width: 60%;\">http://127.0.0.1/samples/maps</td></tr></tbody></table>");
}

void tst_ExamplesDialog::missingValuesAreEmpty()
{
    const auto example = Repository::ExamplePtr::create(QJsonObject{{"path", "bare"}});

    const ExamplesDialog dialog({example}, nullptr);

    const QListWidgetItem *row = listOf(dialog)->item(0);
    QCOMPARE(row->data(Qt::UserRole).toString(), "");
    QCOMPARE(
        row->toolTip(),
        "<table><tbody><tr><td style=\"width: 40%;\">Name:&nbsp;</td><td style=\"width: 60%;\"></td></tr>"
        "<tr><td style=\"width: 40%;\">Description:&nbsp;</td><td style=\"width: 60%;\"></td></tr>"
        "<tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\"></td></tr>"
        "<tr><td style=\"width: 40%;\">Location:&nbsp;</td><td style=\"width: "
        "60%;\"></td></tr></tbody></table>");
}

void tst_ExamplesDialog::toolTipShowsTheLocalTime()
{
    const QByteArray timeZone = qgetenv("TZ");
    qputenv("TZ", "XYZ-5"); // five hours ahead
    tzset();

    const ExamplesDialog dialog({makeActiveExample("maps", "2023-05-04T22:11:12Z")}, nullptr);

    QVERIFY2(
        listOf(dialog)->item(0)->toolTip().contains("Fri May 5 03:11:12 2023"),
        qPrintable(listOf(dialog)->item(0)->toolTip()));
    timeZone.isNull() ? qunsetenv("TZ") : qputenv("TZ", timeZone);
    tzset();
}

void tst_ExamplesDialog::filterHidesWhatDoesNotContainIt_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("visible");
    QTest::newRow("empty") << "" << QStringList{"Clock", "hello-maps", "maps"};
    QTest::newRow("beginning") << "map" << QStringList{"hello-maps", "maps"};
    QTest::newRow("middle") << "o-m" << QStringList{"hello-maps"};
    QTest::newRow("upper case finds lower case") << "MAPS" << QStringList{"hello-maps", "maps"};
    QTest::newRow("lower case finds upper case") << "clock" << QStringList{"Clock"};
    QTest::newRow("not a wildcard") << "*" << QStringList{};
    QTest::newRow("not a regular expression") << "m.ps" << QStringList{};
    QTest::newRow("nothing fits") << "zzz" << QStringList{};
}

void tst_ExamplesDialog::filterHidesWhatDoesNotContainIt()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, visible);
    const ExamplesDialog dialog(makeExamples({"maps", "hello-maps", "Clock"}), nullptr);
    filterOf(dialog)->setText("cl"); // whatever was filtered before

    filterOf(dialog)->setText(filter);

    QCOMPARE(visibleTexts(listOf(dialog)), visible);
}

void tst_ExamplesDialog::filteredRowsStayInTheList()
{
    ExamplesDialog dialog(makeExamples({"clock", "maps"}), nullptr);
    selectRows(listOf(dialog), {"clock"});

    filterOf(dialog)->setText("maps");
    dialog.accept();

    QCOMPARE(listOf(dialog)->count(), 2);
    QCOMPARE(dialog.selected(), QSet<QString>{"clock"});
}

void tst_ExamplesDialog::currentRowIsNeverAHiddenOne()
{
    const ExamplesDialog dialog(makeExamples({"clock", "hello", "maps"}), nullptr);
    listOf(dialog)->setCurrentRow(0);

    filterOf(dialog)->setText("e");
    QCOMPARE(listOf(dialog)->currentItem()->text(), "hello");

    filterOf(dialog)->setText("nothing fits");
    filterOf(dialog)->setText("maps");
    QCOMPARE(listOf(dialog)->currentItem()->text(), "maps");
    QCOMPARE(listOf(dialog)->selectedItems(), QList<QListWidgetItem *>{findRow(listOf(dialog), "clock")});
}

void tst_ExamplesDialog::nothingIsSelectedBeforeTheDialogIsAccepted()
{
    const ExamplesDialog dialog(makeExamples({"clock", "maps"}), nullptr);

    selectRows(listOf(dialog), {"clock"});

    QVERIFY(dialog.selected().isEmpty());
}

void tst_ExamplesDialog::okReturnsTheSelectedNames()
{
    ExamplesDialog dialog(makeExamples({"clock", "hello", "maps"}), nullptr);
    selectRows(listOf(dialog), {"maps", "clock"});

    buttonsOf(dialog)->button(QDialogButtonBox::Ok)->click();

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.selected(), (QSet<QString>{"clock", "maps"}));
}

void tst_ExamplesDialog::okWithoutASelectionReturnsNoNames()
{
    ExamplesDialog dialog(makeExamples({"clock"}), nullptr);
    dialog.show();

    buttonsOf(dialog)->button(QDialogButtonBox::Ok)->click();

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    QVERIFY(dialog.selected().isEmpty());
}

void tst_ExamplesDialog::cancelReturnsNoNames()
{
    ExamplesDialog dialog(makeExamples({"clock"}), nullptr);
    dialog.show();
    selectRows(listOf(dialog), {"clock"});

    buttonsOf(dialog)->button(QDialogButtonBox::Cancel)->click();

    QVERIFY(!dialog.isVisible());
    QVERIFY(dialog.selected().isEmpty());
}

void tst_ExamplesDialog::closingTheWindowReturnsNoNames()
{
    ExamplesDialog dialog(makeExamples({"clock"}), nullptr);
    dialog.show();
    selectRows(listOf(dialog), {"clock"});

    QVERIFY(dialog.close());

    QVERIFY(dialog.selected().isEmpty());
}

void tst_ExamplesDialog::equalNamesCollapse()
{
    ExamplesDialog dialog(makeExamples({"clock", "clock"}), nullptr);
    listOf(dialog)->selectAll();

    dialog.accept();

    QCOMPARE(dialog.selected(), QSet<QString>{"clock"});
}

void tst_ExamplesDialog::keyboardAloneIsEnough()
{
    ExamplesDialog dialog(makeExamples({"clock", "hello", "maps"}), nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTRY_COMPARE(dialog.focusWidget(), listOf(dialog));

    QTest::keyClick(listOf(dialog), Qt::Key_Tab);
    QTest::keyClicks(dialog.focusWidget(), "ma");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(dialog.focusWidget(), listOf(dialog));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.selected(), QSet<QString>{"maps"});
}

void tst_ExamplesDialog::returnInTheFilterPressesNoButton()
{
    ExamplesDialog dialog(makeExamples({"clock", "maps"}), nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    selectRows(listOf(dialog), {"clock"});
    filterOf(dialog)->setFocus();

    QTest::keyClicks(filterOf(dialog), "maps");
    QTest::keyClick(filterOf(dialog), Qt::Key_Return);

    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.selected().isEmpty());
}

QTEST_MAIN(tst_ExamplesDialog)
#include "tst_examplesdialog.moc"
