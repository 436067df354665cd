// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The options page up to the moment when its changes are applied.

#include "common/testfiles.h"
#include "common/uifixture.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"
#include "settings/settings.h"
#include "ui/examplesdialog.h"
#include "ui/optionspage.h"
#include "ui/optionswidget.h"

#include <coreplugin/helpmanager.h>
#include <utils/fancylineedit.h>
#include <utils/qtcsettings.h>

#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include <filesystem>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_OptionsWidget final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.reset(); }
    void cleanup() { m_page.reset(); }

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

    // What is installed
    void pageWithoutRepositoriesIsEmpty();
    void installedExamplesAreListedByName();
    void repositoryWithoutAFolderHasNoRows();
    void choosingARepositoryShowsItsExamples();
    void nestedManifestsAreRowsOfTheirOwn();
    void onlyReadableManifestsCount();
    void nameThatIsNotUtf8HidesNoManifest();
    void rowCarriesPathAndToolTip();
    void toolTipNamesTheRealFolder();

    // What is outdated
    void newerExampleIsMarked_data();
    void newerExampleIsMarked();
    void markedRowStaysReadable();
    void olderDuplicateDoesNotHideTheNewerOne();
    void markNeedsTheSameRepository();

    // Redraws
    void serviceUpdateScansTheDiskAgain();
    void everyScanIsAnnounced();
    void addedRowsVanishAndStayQueued();
    void removedRowsComeBackAndStayQueued();

    // The filter
    void filterHidesWhatDoesNotContainIt_data();
    void filterHidesWhatDoesNotContainIt();

    // Adding
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

    // Removing
    void removingWithoutASelectionInforms();
    void removedExamplesAreQueuedAndLeaveTheList();
    void removingAnAddedExampleCancelsOut();
    void addingAnExampleAgainAfterRemovingItsRowQueuesItOnce();
    void addingARemovedExampleBackCancelsOut();
    void hiddenRowsAreRemovedWithTheSelection();
    void whatTheFilterHidesStaysHiddenAfterARemoval();
    void queuesAreKeptPerRepository();
    void closedPageForgetsItsQueues();

    void openLocationOpensTheFolder();
    void openLocationOfAnAddedRowIsOnlyLogged();

public Q_SLOTS:
    void open(const QUrl &url) { m_opened.append(url); }

private:
    /** Starts the plug-in with these repositories and opens the page. */
    void openPage(const QStringList &repositories);
    void showPage();
    void reopenPage()
    {
        m_page.reset();
        m_page = std::make_unique<OptionsWidget>();
    }

    template<class Widget>
    Widget *find(const char *name) const
    {
        return m_page->findChild<Widget *>(QLatin1StringView(name));
    }
    [[nodiscard]] QListWidget *list() const { return find<QListWidget>("examplesListWidget"); }
    [[nodiscard]] QComboBox *repositories() const { return find<QComboBox>("repositoryComboBox"); }
    [[nodiscard]] Utils::FancyLineEdit *filter() const
    {
        return find<Utils::FancyLineEdit>("filterLineEdit");
    }
    void clickAdd() const { find<QPushButton>("addButton")->click(); }
    void clickRemove() const { find<QPushButton>("removeButton")->click(); }

    void add(const QStringList &names);
    void remove(const QStringList &names);

    UiFixture m_fixture;
    std::unique_ptr<OptionsWidget> m_page;
    QList<QUrl> m_opened;
};

void tst_OptionsWidget::openPage(const QStringList &repositories)
{
    m_fixture.setRepositoryNames(repositories);
    m_fixture.start();
    m_page = std::make_unique<OptionsWidget>();
}

// Message boxes look for the active window, and where there is none for the IDE's.
void tst_OptionsWidget::showPage()
{
    m_page->show();
    QVERIFY(QTest::qWaitForWindowActive(m_page.get()));
}

void tst_OptionsWidget::add(const QStringList &names)
{
    WhenOpened<ExamplesDialog> choose([&names](ExamplesDialog *dialog) {
        selectRows(dialog->findChild<QListWidget *>("examplesListWidget"), names);
        dialog->accept();
    });
    clickAdd();
    QVERIFY(choose.happened());
}

void tst_OptionsWidget::remove(const QStringList &names)
{
    selectRows(list(), names);
    clickRemove();
}

void tst_OptionsWidget::pageStandsInTheHelpCategory()
{
    const OptionsPage page("Examples", "Test.Page", [] { return nullptr; }, nullptr);

    QCOMPARE(page.id(), Utils::Id("Test.Page"));
    QCOMPARE(page.displayName(), "Examples");
    QCOMPARE(page.category(), Utils::Id("H.Help"));
    QVERIFY(Core::IOptionsPage::allOptionsPages().contains(&page));
}

void tst_OptionsWidget::pageShowsWhatItsCreatorMakes()
{
    m_fixture.start();
    OptionsWidget *made = nullptr;
    OptionsPage page("Examples", "Test.Page", [&made] { return made = new OptionsWidget; }, nullptr);

    const std::unique_ptr<QWidget> widget(page.widget());

    QVERIFY(made);
    QCOMPARE(widget.get(), made);
}

void tst_OptionsWidget::pageWithoutACreatorFailsLoudly()
{
    OptionsPage page("Examples", "Test.Page", {}, nullptr);

    QVERIFY_THROWS_EXCEPTION(std::bad_function_call, page.widget());
}

void tst_OptionsWidget::formIsBuiltAsDesigned_data()
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

void tst_OptionsWidget::formIsBuiltAsDesigned()
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

void tst_OptionsWidget::widgetsStandWhereTheyBelong()
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

void tst_OptionsWidget::listIsReadOnlySortedAndTakesSeveralRows()
{
    openPage({"Demo"});

    QCOMPARE(list()->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list()->selectionMode(), QAbstractItemView::ExtendedSelection);
    QVERIFY(list()->uniformItemSizes());
    QVERIFY(list()->isSortingEnabled());
}

void tst_OptionsWidget::readingOrderIsTabOrder()
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

void tst_OptionsWidget::labelsAreBuddiesOfTheirFields()
{
    openPage({"Demo"});

    QCOMPARE(find<QLabel>("label_3")->buddy(), repositories());
    QCOMPARE(find<QLabel>("label")->buddy(), find<QWidget>("timeoutSpinBox"));
    QCOMPARE(find<QLabel>("label_2")->buddy(), find<QWidget>("timeoutSpinBox"));
}

void tst_OptionsWidget::filterLineLooksLikeTheIdesOwn()
{
    openPage({"Demo"});
    Utils::FancyLineEdit reference;
    reference.setFiltering(true);

    QVERIFY(!reference.placeholderText().isEmpty());
    QCOMPARE(filter()->placeholderText(), reference.placeholderText());
}

void tst_OptionsWidget::fieldsHaveAccessibleNames()
{
    openPage({"Demo"});

    QVERIFY(!list()->accessibleName().isEmpty());
    QVERIFY(!filter()->accessibleName().isEmpty());
}

void tst_OptionsWidget::intervalIsLoaded_data()
{
    QTest::addColumn<uint>("stored");
    QTest::addColumn<int>("shown");
    QTest::newRow("off") << 0u << 0;
    QTest::newRow("week") << 7u << 7;
    QTest::newRow("longest") << 99u << 99;
    QTest::newRow("longer than can be shown") << 365u << 99;
    QTest::newRow("longest that can be stored") << 4294967295u << 99;
}

void tst_OptionsWidget::intervalIsLoaded()
{
    QFETCH(uint, stored);
    QFETCH(int, shown);
    m_fixture.ide().set(Constants::UPDATES_TIMEOUT, stored);

    openPage({});

    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->value(), shown);
    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->minimum(), 0);
    QCOMPARE(find<QSpinBox>("timeoutSpinBox")->maximum(), 99);
}

void tst_OptionsWidget::repositoriesAreSortedByCase()
{
    openPage({"beta", "Alpha", "alpha", "Zeta"});

    QStringList names;
    for (int i = 0; i < repositories()->count(); ++i)
        names.append(repositories()->itemText(i));
    QCOMPARE(names, (QStringList{"Alpha", "Zeta", "alpha", "beta"}));
    QCOMPARE(repositories()->currentText(), "Alpha");
}

void tst_OptionsWidget::repositoryShowsItsFolderAndAddress()
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

void tst_OptionsWidget::everyPageReadsTheSettingsAfresh()
{
    openPage({"Demo"});

    m_fixture.setRepositoryNames({"Demo", "Later"});
    reopenPage();

    QCOMPARE(repositories()->count(), 2);
}

void tst_OptionsWidget::pageWithoutRepositoriesIsEmpty()
{
    install("Demo", "maps");

    openPage({});
    Q_EMIT m_fixture.service().updated(); // the second scan knows the name of "none"

    QCOMPARE(repositories()->count(), 0);
    QCOMPARE(list()->count(), 0);
}

void tst_OptionsWidget::installedExamplesAreListedByName()
{
    install("Demo", "maps");
    install("Demo", "clock");
    install("Demo", "hello");
    install("Other", "foreign");

    openPage({"Demo", "Other"});

    QCOMPARE(texts(list()), (QStringList{"clock", "hello", "maps"}));
}

void tst_OptionsWidget::repositoryWithoutAFolderHasNoRows()
{
    openPage({"Demo"});

    QVERIFY(!QFileInfo::exists(Settings::location().arg("Demo")));
    QCOMPARE(list()->count(), 0);
}

void tst_OptionsWidget::choosingARepositoryShowsItsExamples()
{
    install("Demo", "maps");
    install("Other", "clock");
    openPage({"Demo", "Other"});

    repositories()->setCurrentText("Other");

    QCOMPARE(texts(list()), QStringList{"clock"});
}

void tst_OptionsWidget::nestedManifestsAreRowsOfTheirOwn()
{
    install("Demo", "maps");
    install("Demo", "maps/parts/inner");

    openPage({"Demo"});

    QCOMPARE(texts(list()), (QStringList{"inner", "maps"}));
}

void tst_OptionsWidget::onlyReadableManifestsCount()
{
    const QDir folder(Settings::location().arg("Demo"));
    install("Demo", "maps");
    QVERIFY(QFile::rename(install("Demo", "upper"), folder.filePath("upper/Examples-Manifest.xml")));
    QVERIFY(QFile::rename(install("Demo", "longer"), folder.filePath("longer/my-examples-manifest.xml")));
    QVERIFY(folder.mkpath("directory/examples-manifest.xml"));
    install("Demo", ".hidden");
    QVERIFY(folder.mkpath("dangling"));
    QVERIFY(QFile::link(folder.filePath("nowhere"), folder.filePath("dangling/examples-manifest.xml")));
    QVERIFY(folder.mkpath("elsewhere"));
    QVERIFY(QFile::link(folder.filePath("maps"), folder.filePath("elsewhere/linked")));

    openPage({"Demo"});

    QCOMPARE(texts(list()), QStringList{"maps"});
}

void tst_OptionsWidget::nameThatIsNotUtf8HidesNoManifest()
{
    const QStringList names{"a", "b", "c", "d"};
    for (const QString &name : names) {
        install("Demo", name);
        for (int i = 0; i < 10; ++i) {
            const std::string file
                = exampleDirectory("Demo", name).toStdString() + "/\xff" + std::to_string(i);
            QVERIFY(std::filesystem::create_directory(file));
        }
    }

    openPage({"Demo"});

    QCOMPARE(texts(list()), names);
}

void tst_OptionsWidget::rowCarriesPathAndToolTip()
{
    const QDateTime time = QDateTime::currentDateTime().addDays(-3);
    const QFileInfo manifest(install("Demo", "maps", time));

    openPage({"Demo"});

    const QListWidgetItem *row = list()->item(0);
    const QString path = manifest.dir().canonicalPath();
    QCOMPARE(row->data(Qt::UserRole).toString(), path);
    QCOMPARE(
        row->toolTip(),
        "<table><tbody><tr><td style=\"width: 40%;\">Location:&nbsp;</td><td style=\"width: 60%;\">" + path
            + "</td></tr><tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\">"
            + time.toString(Qt::TextDate)
            + "</td></tr><tr><td style=\"width: 40%;\">Status:&nbsp;</td>"
              "<td style=\"width: 60%;\">Updated</td></tr></tbody></table>");
    QVERIFY(!row->data(Qt::BackgroundRole).isValid());
    QVERIFY(!row->data(Qt::ForegroundRole).isValid());
}

void tst_OptionsWidget::toolTipNamesTheRealFolder()
{
    const QString elsewhere = QDir::tempPath() + "/elsewhere";
    QVERIFY(QDir().mkpath(elsewhere));
    const QString folder = Settings::location().arg("Demo");
    QVERIFY(QDir().mkpath(QFileInfo(folder).path()));
    QVERIFY(QFile::link(elsewhere, folder)); // a user's own way to another volume
    install("Demo", "maps");

    openPage({"Demo"});

    QCOMPARE(list()->count(), 1);
    QCOMPARE(list()->item(0)->data(Qt::UserRole).toString(), QDir(elsewhere).canonicalPath() + "/maps");
    QVERIFY(QFile::remove(folder));
}

void tst_OptionsWidget::newerExampleIsMarked_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("lastActivity");
    QTest::addColumn<bool>("marked");
    QTest::newRow("same time") << "maps" << "2023-05-04T10:00:00.000Z" << false;
    QTest::newRow("999 ms newer") << "maps" << "2023-05-04T10:00:00.999Z" << false;
    QTest::newRow("1 s newer") << "maps" << "2023-05-04T10:00:01.000Z" << true;
    QTest::newRow("1 s older") << "maps" << "2023-05-04T09:59:59.000Z" << false;
    QTest::newRow("newer in another time zone") << "maps" << "2023-05-04T12:00:01.000+02:00" << true;
    QTest::newRow("older in another time zone") << "maps" << "2023-05-04T11:00:00.000+02:00" << false;
    QTest::newRow("no date") << "maps" << "" << false;
    QTest::newRow("malformed date") << "maps" << "tomorrow" << false;
    QTest::newRow("another letter case") << "Maps" << "2024-05-04T10:00:00.000Z" << false;
    QTest::newRow("another example") << "maps-2" << "2024-05-04T10:00:00.000Z" << false;
}

void tst_OptionsWidget::newerExampleIsMarked()
{
    QFETCH(QString, path);
    QFETCH(QString, lastActivity);
    QFETCH(bool, marked);
    install("Demo", "maps", QDateTime::fromString("2023-05-04T10:00:00.000Z", Qt::ISODateWithMs));
    openPage({"Demo"});

    m_fixture.list("Demo", {makeActiveExample(path, lastActivity)});

    const QListWidgetItem *row = list()->item(0);
    QCOMPARE(row->data(Qt::BackgroundRole).isValid(), marked);
    QVERIFY(row->toolTip().contains(QLatin1StringView(marked ? ">Update available<" : ">Updated<")));
    if (marked)
        QCOMPARE(row->background(), QBrush(QColor(226, 178, 182)));
}

void tst_OptionsWidget::markedRowStaysReadable()
{
    QPalette dark;
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Base, Qt::black);
    install("Demo", "maps");
    openPage({"Demo"});
    list()->setPalette(dark);

    m_fixture.list("Demo", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});

    const QListWidgetItem *row = list()->item(0);
    QVERIFY(row->background().color().lightness() - row->foreground().color().lightness() > 128);
}

void tst_OptionsWidget::olderDuplicateDoesNotHideTheNewerOne()
{
    install("Demo", "maps", QDateTime::currentDateTime());
    openPage({"Demo"});

    m_fixture.list(
        "Demo",
        {makeActiveExample("maps", "2001-05-04T10:00:00.000Z"),
         makeActiveExample("maps", "2123-05-04T10:00:00.000Z"),
         makeActiveExample("maps", "")});

    QVERIFY(list()->item(0)->toolTip().contains(">Update available<"));
}

void tst_OptionsWidget::markNeedsTheSameRepository()
{
    install("Demo", "maps");
    openPage({"Demo", "Other"});

    m_fixture.list("Other", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});

    QVERIFY(list()->item(0)->toolTip().contains(">Updated<"));
}

void tst_OptionsWidget::serviceUpdateScansTheDiskAgain()
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

void tst_OptionsWidget::everyScanIsAnnounced()
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

void tst_OptionsWidget::addedRowsVanishAndStayQueued()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});

    Q_EMIT m_fixture.service().updated();

    QCOMPARE(list()->count(), 0);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, QStringList{"maps"});
}

void tst_OptionsWidget::removedRowsComeBackAndStayQueued()
{
    install("Demo", "maps");
    openPage({"Demo"});
    remove({"maps"});

    Q_EMIT m_fixture.service().updated();

    QCOMPARE(texts(list()), QStringList{"maps"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{"maps"});
}

void tst_OptionsWidget::filterHidesWhatDoesNotContainIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("visible");
    QTest::newRow("empty") << "" << QStringList{"Clock", "hello-maps", "maps"};
    QTest::newRow("upper case finds lower case") << "MAPS" << QStringList{"hello-maps", "maps"};
    QTest::newRow("lower case finds upper case") << "lock" << QStringList{"Clock"};
    QTest::newRow("nothing fits") << "*" << QStringList{};
}

void tst_OptionsWidget::filterHidesWhatDoesNotContainIt()
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

void tst_OptionsWidget::addingWithoutOnlineExamplesWarns_data()
{
    QTest::addColumn<QStringList>("repositories");
    QTest::newRow("nothing listed yet") << QStringList{"Demo"};
    QTest::newRow("no repository") << QStringList{};
}

void tst_OptionsWidget::addingWithoutOnlineExamplesWarns()
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

void tst_OptionsWidget::dialogListsTheRepositoryAndBelongsToThePage()
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

void tst_OptionsWidget::addedExampleIsAQueuedPlainRow()
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

void tst_OptionsWidget::cancelledDialogAddsNothing_data()
{
    QTest::addColumn<bool>("closed");
    QTest::newRow("Cancel") << false;
    QTest::newRow("window closed") << true;
}

void tst_OptionsWidget::cancelledDialogAddsNothing()
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

void tst_OptionsWidget::listedNamesAreNotAddedAgain_data()
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

void tst_OptionsWidget::listedNamesAreNotAddedAgain()
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

void tst_OptionsWidget::namesThatDifferInCaseAreAddedOnce()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps", "Maps", "MAPS"}));

    add({"maps", "Maps", "MAPS"});

    const QStringList added = texts(list());
    QCOMPARE(added.size(), 1);
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toInstall, added);
}

void tst_OptionsWidget::additionsGoToTheRepositoryShownAfterTheDialog()
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

void tst_OptionsWidget::redrawWhileTheDialogIsOpenKeepsTheSelection()
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

void tst_OptionsWidget::pageThatGoesWhileTheDialogIsOpenAddsNothing()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    WhenOpened<ExamplesDialog> destroy([this](ExamplesDialog *) { m_page.reset(); });

    clickAdd();

    QVERIFY(destroy.happened());
    QVERIFY(!m_page);
}

void tst_OptionsWidget::removingWithoutASelectionInforms()
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

void tst_OptionsWidget::removedExamplesAreQueuedAndLeaveTheList()
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

void tst_OptionsWidget::removingAnAddedExampleCancelsOut()
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

void tst_OptionsWidget::addingAnExampleAgainAfterRemovingItsRowQueuesItOnce()
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

void tst_OptionsWidget::addingARemovedExampleBackCancelsOut()
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

void tst_OptionsWidget::hiddenRowsAreRemovedWithTheSelection()
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

void tst_OptionsWidget::whatTheFilterHidesStaysHiddenAfterARemoval()
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

void tst_OptionsWidget::queuesAreKeptPerRepository()
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

void tst_OptionsWidget::closedPageForgetsItsQueues()
{
    install("Demo", "maps");
    openPage({"Demo"});
    remove({"maps"});

    reopenPage();

    QCOMPARE(texts(list()), QStringList{"maps"});
    QCOMPARE(m_fixture.applyOffline(*m_page)["Demo"].toRemove, QStringList{});
}

void tst_OptionsWidget::openLocationOpensTheFolder()
{
    QDesktopServices::setUrlHandler("file", this, "open");
    m_opened.clear();
    install("Demo", "maps 100%25");
    openPage({"Demo"});
    m_page->show();
    list()->item(0)->setSelected(true);
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    Q_EMIT list()->customContextMenuRequested(list()->visualItemRect(list()->item(0)).center());

    const QString folder = QDir(exampleDirectory("Demo", "maps 100%25")).canonicalPath();
    QCOMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(folder)});
    QDesktopServices::unsetUrlHandler("file");
}

void tst_OptionsWidget::openLocationOfAnAddedRowIsOnlyLogged()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});
    m_page->show();
    list()->item(0)->setSelected(true);
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });
    QLoggingCategory::setFilterRules("zel.varnel.plugin.debug=true");
    QTest::ignoreMessage(QtDebugMsg, "Unable to open location: \"maps\"");

    Q_EMIT list()->customContextMenuRequested(list()->visualItemRect(list()->item(0)).center());

    QVERIFY(menu.happened());
    QLoggingCategory::setFilterRules({});
}

QTEST_MAIN(tst_OptionsWidget)
#include "tst_optionswidget.moc"
