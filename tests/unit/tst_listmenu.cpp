// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The context menu of the lists, by mouse and by keyboard, and which addresses it opens.

#include "common/logrecorder.h"
#include "common/uifixture.h"
#include "plugin/plugin.h"
#include "ui/examplesdialog.h"

#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QListWidget>
#include <QMenu>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_ListMenu final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpTheme(); }
    void init();
    void cleanup();

    void menuHasTheOneEntry();
    void menuOpensWhereTheRowWasClicked();
    void emptySpaceHasNoMenu();
    void closedMenuOpensNothing();
    void allSelectedRowsAreOpened();
    void rowsAreOpenedInTheOrderOfSelection();
    void rowUnderTheCursorDoesNotCount();
    void rowWithoutDataIsLoggedAndTheOthersAreOpened();
    void menuKeyOpensTheMenuOfTheCurrentRow();
    void menuKeyReachesACurrentRowThatIsScrolledAway();
    void listThatGoesWhileTheMenuIsOpenIsLeftAlone();
    void connectionDiesWithTheList();
    void emptyConverterFailsLoudly();

    void dialogOpensWebPages_data();
    void dialogOpensWebPages();
    void dialogOpensNoOtherAddress_data();
    void dialogOpensNoOtherAddress();

public slots:
    void open(const QUrl &url) { m_opened.append(url.toString()); }

private:
    void chooseFromMenuAt(const QPoint &pos);
    void pressMenuKey();
    void openFromDialog(const QString &address);
    [[nodiscard]] QPoint centerOf(int row) const
    {
        return m_list->visualItemRect(m_list->item(row)).center();
    }

    std::unique_ptr<QListWidget> m_list;
    QStringList m_opened;
};

void tst_ListMenu::init()
{
    m_opened.clear();
    QDesktopServices::setUrlHandler("demo", this, "open");

    m_list = std::make_unique<QListWidget>();
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->resize(300, 200);
    for (const QString &name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}) {
        auto row = new QListWidgetItem(name, m_list.get());
        row->setData(Qt::UserRole, QString("demo:" + name));
    }
    Plugin::initMenu(m_list.get(), [](const QString &text) { return QUrl(text, QUrl::TolerantMode); });
    m_list->show();
    QVERIFY(QTest::qWaitForWindowActive(m_list.get()));
}

void tst_ListMenu::cleanup()
{
    QDesktopServices::unsetUrlHandler("demo");
    m_list.reset();
}

// The way of a right click: a press, which selects, and the request that follows from it.
void tst_ListMenu::chooseFromMenuAt(const QPoint &pos)
{
    WhenOpened<QMenu> choose([](QMenu *menu) {
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });

    QContextMenuEvent request(QContextMenuEvent::Mouse, pos, m_list->viewport()->mapToGlobal(pos));
    QCoreApplication::sendEvent(m_list->viewport(), &request);

    QVERIFY(choose.happened());
}

// What the window system's plug-in sends for it.
void tst_ListMenu::pressMenuKey()
{
    QContextMenuEvent request(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(m_list->windowHandle(), &request);
}

void tst_ListMenu::menuHasTheOneEntry()
{
    QStringList entries;
    WhenOpened<QMenu> menu([&entries](QMenu *opened) {
        for (const QAction *action : opened->actions())
            entries.append(action->text());
        opened->close();
    });

    emit m_list->customContextMenuRequested(centerOf(0));

    QCOMPARE(entries, QStringList{"Open location..."});
    QCOMPARE(m_list->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_ListMenu::menuOpensWhereTheRowWasClicked()
{
    QPoint pos;
    WhenOpened<QMenu> menu([&pos](QMenu *opened) {
        pos = opened->pos();
        opened->close();
    });

    emit m_list->customContextMenuRequested(centerOf(1));

    QCOMPARE(pos, m_list->viewport()->mapToGlobal(centerOf(1)));
}

void tst_ListMenu::emptySpaceHasNoMenu()
{
    m_list->selectAll();
    WhenOpened<QMenu> menu([](QMenu *opened) { opened->close(); });

    emit m_list->customContextMenuRequested(m_list->viewport()->rect().bottomRight() - QPoint(2, 2));

    QCoreApplication::processEvents();
    QVERIFY(!menu.happened());
    QVERIFY(m_opened.isEmpty());
}

void tst_ListMenu::closedMenuOpensNothing()
{
    m_list->selectAll();
    WhenOpened<QMenu> menu([](QMenu *opened) { QTest::keyClick(opened, Qt::Key_Escape); });

    emit m_list->customContextMenuRequested(centerOf(0));

    QVERIFY(menu.happened());
    QVERIFY(m_opened.isEmpty());
}

void tst_ListMenu::allSelectedRowsAreOpened()
{
    m_list->selectAll();

    chooseFromMenuAt(centerOf(1));

    m_opened.sort();
    QCOMPARE(m_opened, (QStringList{"demo:a", "demo:b", "demo:c"}));
}

void tst_ListMenu::rowsAreOpenedInTheOrderOfSelection()
{
    m_list->item(2)->setSelected(true);
    m_list->item(0)->setSelected(true);
    QStringList expected;
    for (const QListWidgetItem *row : m_list->selectedItems())
        expected.append(row->data(Qt::UserRole).toString());

    chooseFromMenuAt(centerOf(0));

    QCOMPARE(m_opened, expected);
    QCOMPARE(m_opened.size(), 2);
}

void tst_ListMenu::rowUnderTheCursorDoesNotCount()
{
    m_list->item(0)->setSelected(true);

    chooseFromMenuAt(centerOf(2));

    QCOMPARE(m_opened, QStringList{"demo:a"});
}

void tst_ListMenu::rowWithoutDataIsLoggedAndTheOthersAreOpened()
{
    QLoggingCategory::setFilterRules("zel.varnel.plugin.debug=true");
    new QListWidgetItem("added", m_list.get());
    m_list->item(3)->setSelected(true);
    m_list->item(1)->setSelected(true);
    QTest::ignoreMessage(QtDebugMsg, "Unable to open location: \"added\"");

    chooseFromMenuAt(centerOf(3));

    QCOMPARE(m_opened, QStringList{"demo:b"});
    QLoggingCategory::setFilterRules({});
}

void tst_ListMenu::menuKeyOpensTheMenuOfTheCurrentRow()
{
    m_list->setFocus(Qt::TabFocusReason);
    QTest::keyClick(m_list.get(), Qt::Key_Down);
    QPoint pos;
    WhenOpened<QMenu> menu([&pos](QMenu *opened) {
        pos = opened->pos();
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    pressMenuKey();

    QVERIFY(menu.happened());
    QCOMPARE(m_list->itemAt(m_list->viewport()->mapFromGlobal(pos)), m_list->currentItem());
    QCOMPARE(m_opened, QStringList{m_list->currentItem()->data(Qt::UserRole).toString()});
}

void tst_ListMenu::menuKeyReachesACurrentRowThatIsScrolledAway()
{
    for (int i = 0; i < 100; ++i)
        new QListWidgetItem(QString::number(i), m_list.get());
    m_list->setFocus(Qt::TabFocusReason);
    m_list->setCurrentRow(0);
    m_list->scrollToBottom();
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    pressMenuKey();

    QCOMPARE(m_opened, QStringList{"demo:a"});
}

void tst_ListMenu::listThatGoesWhileTheMenuIsOpenIsLeftAlone()
{
    m_list->selectAll();
    WhenOpened<QMenu> menu([this](QMenu *opened) {
        m_list.reset();
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    emit m_list->customContextMenuRequested(centerOf(0));

    QVERIFY(menu.happened());
    QVERIFY(m_opened.isEmpty());
}

void tst_ListMenu::connectionDiesWithTheList()
{
    auto witness = std::make_shared<int>(0);
    QListWidget *list = new QListWidget;
    Plugin::initMenu(list, [witness](const QString &) { return QUrl(); });
    QCOMPARE(witness.use_count(), 2);

    delete list;

    QCOMPARE(witness.use_count(), 1);
}

void tst_ListMenu::emptyConverterFailsLoudly()
{
    QListWidget list;
    list.addItem("maps");
    Plugin::initMenu(&list, {});
    list.show();
    list.setCurrentRow(0);
    WhenOpened<QMenu> choose([](QMenu *menu) {
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });

    QVERIFY_THROWS_EXCEPTION(
        std::bad_function_call,
        emit list.customContextMenuRequested(list.visualItemRect(list.item(0)).center()));
    QVERIFY(choose.happened());
}

// Chooses "Open location..." for the only row, whose address is handed to open() if the desktop gets it.
void tst_ListMenu::openFromDialog(const QString &address)
{
    const QString scheme = QUrl(address, QUrl::TolerantMode).scheme();
    QDesktopServices::setUrlHandler(scheme, this, "open");
    const auto example = Repository::ExamplePtr::create(QJsonObject{{"path", "maps"}, {"web_url", address}});
    ExamplesDialog dialog({example}, nullptr);
    QListWidget *list = dialog.findChild<QListWidget *>("examplesListWidget");
    dialog.show();
    list->item(0)->setSelected(true);
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    emit list->customContextMenuRequested(list->visualItemRect(list->item(0)).center());

    QVERIFY(menu.happened());
    QDesktopServices::unsetUrlHandler(scheme);
}

void tst_ListMenu::dialogOpensWebPages_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("http") << "http://127.0.0.1/samples/maps";
    QTest::newRow("https") << "https://127.0.0.1/samples/maps";
}

void tst_ListMenu::dialogOpensWebPages()
{
    QFETCH(QString, address);

    openFromDialog(address);

    QCOMPARE(m_opened, QStringList{address});
}

void tst_ListMenu::dialogOpensNoOtherAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("file") << "file:///etc/passwd";
    QTest::newRow("malformed") << "http://[::1";
    QTest::newRow("too long to be read") << "http://x/" + QString(4088, 'a');
    QTest::newRow("share") << "smb://127.0.0.1/share";
    QTest::newRow("mail") << "mailto:a@example.com?attach=/etc/passwd";
    QTest::newRow("scheme of a program") << "demo:start";
    QTest::newRow("beginning like http") << "httpx://127.0.0.1/";
}

void tst_ListMenu::dialogOpensNoOtherAddress()
{
    QFETCH(QString, address);
    const LogRecorder log;

    openFromDialog(address);

    QCOMPARE(m_opened, QStringList());
    QCOMPARE(log.lines(LogRecorder::MAIN), QStringList{"Unable to open location: \"maps\""});
}

QTEST_MAIN(tst_ListMenu)
#include "tst_listmenu.moc"
