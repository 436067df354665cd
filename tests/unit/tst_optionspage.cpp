// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The options page as it is registered, built and filled with the settings.

#include "common/pagetest.h"
#include "plugin/constants.h"
#include "settings/settings.h"
#include "ui/optionspage.h"

#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_OptionsPage final : public PageTest
{
    Q_OBJECT

private slots:
    // The page
    void pageStandsInTheHelpCategory();
    void pageShowsWhatItsCreatorMakes();
    void pageWithoutACreatorFailsLoudly();

    // The form
    void formIsBuiltAsDesigned_data();
    void formIsBuiltAsDesigned();
    void widgetsStandWhereTheyBelong();
    void listIsReadOnlySortedAndTakesSeveralRows();
    void readingOrderIsTabOrder();
    void labelsAreBuddiesOfTheirFields();
    void filterLineLooksLikeTheIdesOwn();
    void fieldsHaveAccessibleNames();

    // What is loaded
    void intervalIsLoaded_data();
    void intervalIsLoaded();
    void repositoriesAreSortedByCase();
    void repositoryShowsItsFolderAndAddress();
    void everyPageReadsTheSettingsAfresh();
};

void tst_OptionsPage::pageStandsInTheHelpCategory()
{
    const OptionsPage page("Examples", "Test.Page", [] { return nullptr; }, nullptr);

    QCOMPARE(page.id(), Utils::Id("Test.Page"));
    QCOMPARE(page.displayName(), "Examples");
    QCOMPARE(page.category(), Utils::Id("H.Help"));
    QVERIFY(Core::IOptionsPage::allOptionsPages().contains(&page));
}

void tst_OptionsPage::pageShowsWhatItsCreatorMakes()
{
    m_fixture.start();
    OptionsWidget *made = nullptr;
    OptionsPage page("Examples", "Test.Page", [&made] { return made = new OptionsWidget; }, nullptr);

    const std::unique_ptr<QWidget> widget(page.widget());

    QVERIFY(made);
    QCOMPARE(widget.get(), made);
}

void tst_OptionsPage::pageWithoutACreatorFailsLoudly()
{
    OptionsPage page("Examples", "Test.Page", {}, nullptr);

    QVERIFY_THROWS_EXCEPTION(std::bad_function_call, page.widget());
}

void tst_OptionsPage::formIsBuiltAsDesigned_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    const auto row = [](const char *name,
                        const char *className,
                        const char *property = "",
                        const char *text = "",
                        const char *toolTip = "") {
        QTest::newRow(name) << name << className << property << text << toolTip;
    };
    row("groupBox",
        "QGroupBox",
        "title",
        "Installed Examples",
        "Add or remove examples from selected repository");
    row("label_3", "QLabel", "text", "Repository:");
    row("repositoryComboBox", "QComboBox", "", "", "Selected repository name");
    row("examplesListWidget", "QListWidget", "", "", "List of installed examples");
    row("filterLineEdit", "Utils::FancyLineEdit", "text", "", "Filter examples");
    row("addButton", "QPushButton", "text", "Add...", "Add examples from online repository");
    row("removeButton", "QPushButton", "text", "Remove", "Remove selected installed examples");
    row("groupBox_2", "QGroupBox", "title", "Online Updates");
    row("label", "QLabel", "text", "Check every");
    row("timeoutSpinBox",
        "QSpinBox",
        "suffix",
        "",
        "Timeout for checking example updates and downloading new examples.\n"
        "Set 0 to disable automatic updates.");
    row("label_2", "QLabel", "text", "day(s)");
    row("verticalLayout", "QVBoxLayout");
    row("gridLayout", "QGridLayout");
    row("verticalLayout_2", "QVBoxLayout");
    row("_4", "QVBoxLayout");
    row("horizontalLayout_2", "QHBoxLayout");
}

void tst_OptionsPage::formIsBuiltAsDesigned()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QString, property);
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    openPage({"Demo"});

    QCOMPARE(m_page->objectName(), "Varnel__Internal__OptionsWidget");
    QCOMPARE(m_page->size(), QSize(538, 400));
    const QObjectList found = m_page->findChildren<QObject *>(name);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.constFirst()->metaObject()->className(), className);
    if (!property.isEmpty())
        QCOMPARE(found.constFirst()->property(property.toLatin1()).toString(), text);
    if (auto widget = qobject_cast<QWidget *>(found.constFirst()))
        QCOMPARE(widget->toolTip(), toolTip);
}

void tst_OptionsPage::widgetsStandWhereTheyBelong()
{
    openPage({"Demo"});

    auto top = qobject_cast<QVBoxLayout *>(m_page->layout());
    QVERIFY(top);
    QCOMPARE(top->itemAt(0)->widget(), find<QWidget>("groupBox"));
    QCOMPARE(top->itemAt(1)->widget(), find<QWidget>("groupBox_2"));

    auto grid = qobject_cast<QGridLayout *>(find<QGroupBox>("groupBox")->layout());
    QVERIFY(grid);
    QCOMPARE(grid->itemAtPosition(0, 0)->widget(), find<QWidget>("label_3"));
    QCOMPARE(grid->itemAtPosition(0, 1)->widget(), repositories());
    QCOMPARE(grid->itemAtPosition(1, 1)->layout(), find<QLayout>("verticalLayout_2"));
    QCOMPARE(grid->itemAtPosition(1, 2)->layout(), find<QLayout>("_4"));

    QLayout *listColumn = find<QLayout>("verticalLayout_2");
    QCOMPARE(listColumn->itemAt(0)->widget(), list());
    QCOMPARE(listColumn->itemAt(1)->widget(), filter());
    QLayout *buttonColumn = find<QLayout>("_4");
    QCOMPARE(buttonColumn->itemAt(0)->widget(), find<QWidget>("addButton"));
    QCOMPARE(buttonColumn->itemAt(1)->widget(), find<QWidget>("removeButton"));
    QVERIFY(buttonColumn->itemAt(2)->spacerItem());
    QVERIFY(buttonColumn->itemAt(2)->expandingDirections().testFlag(Qt::Vertical));

    QLayout *bottom = find<QGroupBox>("groupBox_2")->layout();
    QCOMPARE(bottom->objectName(), "horizontalLayout_2");
    QCOMPARE(bottom->itemAt(0)->widget(), find<QWidget>("label"));
    QCOMPARE(bottom->itemAt(1)->widget(), find<QWidget>("timeoutSpinBox"));
    QCOMPARE(bottom->itemAt(2)->widget(), find<QWidget>("label_2"));
    QVERIFY(bottom->itemAt(3)->expandingDirections().testFlag(Qt::Horizontal));
}

void tst_OptionsPage::listIsReadOnlySortedAndTakesSeveralRows()
{
    openPage({"Demo"});

    QCOMPARE(list()->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list()->selectionMode(), QAbstractItemView::ExtendedSelection);
    QVERIFY(list()->uniformItemSizes());
    QVERIFY(list()->isSortingEnabled());
}

void tst_OptionsPage::readingOrderIsTabOrder()
{
    openPage({"Demo"});
    showPage();
    const char *const order[]
        = {"repositoryComboBox",
           "examplesListWidget",
           "filterLineEdit",
           "addButton",
           "removeButton",
           "timeoutSpinBox"};
    repositories()->setFocus();

    for (const char *name : order) {
        QCOMPARE(m_page->focusWidget()->objectName(), QLatin1StringView(name));
        QTest::keyClick(m_page->focusWidget(), Qt::Key_Tab);
    }
}

void tst_OptionsPage::labelsAreBuddiesOfTheirFields()
{
    openPage({"Demo"});

    QCOMPARE(find<QLabel>("label_3")->buddy(), repositories());
    QCOMPARE(find<QLabel>("label")->buddy(), find<QWidget>("timeoutSpinBox"));
    QCOMPARE(find<QLabel>("label_2")->buddy(), find<QWidget>("timeoutSpinBox"));
}

void tst_OptionsPage::filterLineLooksLikeTheIdesOwn()
{
    openPage({"Demo"});
    Utils::FancyLineEdit reference;
    reference.setFiltering(true);

    QVERIFY(!reference.placeholderText().isEmpty());
    QCOMPARE(filter()->placeholderText(), reference.placeholderText());
}

void tst_OptionsPage::fieldsHaveAccessibleNames()
{
    openPage({"Demo"});

    QVERIFY(!list()->accessibleName().isEmpty());
    QVERIFY(!filter()->accessibleName().isEmpty());
}

void tst_OptionsPage::intervalIsLoaded_data()
{
    QTest::addColumn<uint>("stored");
    QTest::addColumn<int>("shown");
    QTest::newRow("off") << 0u << 0;
    QTest::newRow("week") << 7u << 7;
    QTest::newRow("longest") << 99u << 99;
    QTest::newRow("longer than can be shown") << 365u << 99;
    QTest::newRow("longest that can be stored") << 4294967295u << 99;
}

void tst_OptionsPage::intervalIsLoaded()
{
    QFETCH(uint, stored);
    QFETCH(int, shown);
    m_fixture.ide().set(Constants::UPDATES_TIMEOUT, stored);

    openPage({});

    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->value(), shown);
    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->minimum(), 0);
    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->maximum(), 99);
}

void tst_OptionsPage::repositoriesAreSortedByCase()
{
    openPage({"beta", "Alpha", "alpha", "Zeta"});

    QStringList names;
    for (int i = 0; i < repositories()->count(); ++i)
        names.append(repositories()->itemText(i));
    QCOMPARE(names, (QStringList{"Alpha", "Zeta", "alpha", "beta"}));
    QCOMPARE(repositories()->currentText(), "Alpha");
}

void tst_OptionsPage::repositoryShowsItsFolderAndAddress()
{
    openPage({"Demo", "Other"});

    const QString folder = QDir::toNativeSeparators(Settings::location().arg("Other"));
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(
        repositories()->itemData(1, Qt::ToolTipRole).toString(),
        "<table><tbody><tr><td style=\"width: 40%;\">Folder:&nbsp;</td><td style=\"width: 60%;\">" + folder
            + "</td></tr><tr><td style=\"width: 40%;\">Link:&nbsp;</td>"
              "<td style=\"width: 60%;\">http://127.0.0.1:1/Other</td></tr></tbody></table>");
}

void tst_OptionsPage::everyPageReadsTheSettingsAfresh()
{
    openPage({"Demo"});

    m_fixture.setRepositoryNames({"Demo", "Later"});
    reopenPage();

    QCOMPARE(repositories()->count(), 2);
}

QTEST_MAIN(tst_OptionsPage)
#include "tst_optionspage.moc"
