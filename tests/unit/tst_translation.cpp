// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The page and the dialog in each language: that nothing stays untranslated, and that every text has its room.

#include "common/testfiles.h"
#include "common/uifixture.h"
#include "service/downloadservice.h"
#include "ui/examplesdialog.h"
#include "ui/optionswidget.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QTranslator>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Translation final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyTextOfTheFormsIsTranslated();
    void textsThatTheCodeSetsAreTranslated();
    void menuIsTranslated();
    void textsFitTheirPlaces_data();
    void textsFitTheirPlaces();

private:
    void switchToGerman();

    UiFixture m_fixture;
    QTranslator m_translator;
};

namespace {

/** Every text that a user may read or hear, by the name of its widget. Parts of Qt's and the IDE's have none. */
QMap<QString, QString> allTexts(const QWidget &top)
{
    QMap<QString, QString> result;
    QList<const QWidget *> widgets{&top};
    for (const QWidget *widget : top.findChildren<QWidget *>())
        widgets.append(widget);
    for (const QWidget *widget : std::as_const(widgets)) {
        for (const char *property : {"windowTitle", "title", "text", "toolTip", "accessibleName"}) {
            const QString text = widget->property(property).toString();
            if (!text.isEmpty() && !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_"))
                result.insert(widget->objectName() + '.' + QLatin1StringView(property), text);
        }
    }
    return result;
}

// The same in both languages; the number is the spin box's.
bool mayStay(const QString &text)
{
    return text == "Repository:" || text == "0";
}

int neededWidth(const QWidget &widget)
{
    if (auto box = qobject_cast<const QGroupBox *>(&widget))
        return box->fontMetrics().horizontalAdvance(box->title()) + 2 * box->fontMetrics().averageCharWidth();
    return widget.sizeHint().width();
}

} // namespace

void tst_Translation::init()
{
    m_fixture.reset();
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    m_fixture.list("Demo", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});
}

void tst_Translation::cleanup()
{
    QCoreApplication::removeTranslator(&m_translator);
}

void tst_Translation::switchToGerman()
{
    QVERIFY(m_translator.load(QLocale("de_DE"), "Varnel", "_", VARNEL_TRANSLATIONS));
    QCoreApplication::installTranslator(&m_translator);
}

void tst_Translation::everyTextOfTheFormsIsTranslated()
{
    const auto readAll
        = [] { return std::pair(allTexts(OptionsWidget()), allTexts(ExamplesDialog({}, nullptr))); };
    const auto [englishPage, englishDialog] = readAll();
    switchToGerman();

    const auto [germanPage, germanDialog] = readAll();

    QVERIFY(englishPage.size() > 10);
    QVERIFY(englishDialog.size() > 3);
    QCOMPARE(germanPage.keys(), englishPage.keys());
    QCOMPARE(germanDialog.keys(), englishDialog.keys());
    for (auto it = englishPage.begin(); it != englishPage.end(); ++it)
        QVERIFY2(germanPage[it.key()] != it.value() || mayStay(it.value()), qPrintable(it.key()));
    for (auto it = englishDialog.begin(); it != englishDialog.end(); ++it)
        QVERIFY2(germanDialog[it.key()] != it.value() || mayStay(it.value()), qPrintable(it.key()));
}

void tst_Translation::textsThatTheCodeSetsAreTranslated()
{
    switchToGerman();

    OptionsWidget page;
    const ExamplesDialog dialog(makeExamples({"maps"}), nullptr);

    const QString row = page.findChild<QListWidget *>("examplesListWidget")->item(0)->toolTip();
    QVERIFY2(row.contains("Aktualisierung verfügbar"), qPrintable(row));
    QVERIFY2(row.contains("Ort:&nbsp;"), qPrintable(row));
    const QString repository
        = page.findChild<QComboBox *>("repositoryComboBox")->itemData(0, Qt::ToolTipRole).toString();
    QVERIFY2(repository.contains("Verzeichnis:&nbsp;"), qPrintable(repository));
    const QString online = dialog.findChild<QListWidget *>("examplesListWidget")->item(0)->toolTip();
    QVERIFY2(online.contains("Beschreibung:&nbsp;"), qPrintable(online));
}

void tst_Translation::menuIsTranslated()
{
    switchToGerman();
    QListWidget list;
    list.addItem("maps");
    Plugin::initMenu(&list, [](const QString &) { return QUrl(); });
    list.show();
    QString text;
    WhenOpened<QMenu> menu([&text](QMenu *opened) {
        text = opened->actions().constFirst()->text();
        opened->close();
    });

    Q_EMIT list.customContextMenuRequested(list.visualItemRect(list.item(0)).center());

    QCOMPARE(text, "Ort öffnen...");
}

void tst_Translation::textsFitTheirPlaces_data()
{
    QTest::addColumn<bool>("german");
    QTest::newRow("English") << false;
    QTest::newRow("German") << true;
}

void tst_Translation::textsFitTheirPlaces()
{
    QFETCH(bool, german);
    if (german)
        switchToGerman();
    OptionsWidget page;
    ExamplesDialog dialog({}, nullptr);
    page.show();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    QCOMPARE(page.size(), QSize(538, 400));
    QCOMPARE(dialog.size(), QSize(640, 480));
    int checked = 0;
    const QList<QWidget *> widgets = page.findChildren<QWidget *>() + dialog.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const bool isText = qobject_cast<const QLabel *>(widget) || qobject_cast<const QGroupBox *>(widget)
                            || (qobject_cast<const QAbstractButton *>(widget)
                                && !qobject_cast<const QLineEdit *>(widget->parentWidget()));
        if (!isText || !widget->isVisible())
            continue;
        QVERIFY2(
            widget->width() >= neededWidth(*widget) && widget->height() >= widget->fontMetrics().height(),
            qPrintable(widget->objectName()));
        ++checked;
    }
    QCOMPARE(checked, 9); // 3 labels, 2 boxes, 2 + 2 buttons
}

QTEST_MAIN(tst_Translation)
#include "tst_translation.moc"
