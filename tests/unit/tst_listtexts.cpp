// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What lists and tool tips show of texts that others wrote: plain text, and not too much of it.

#include "common/pagetest.h"
#include "common/testfiles.h"
#include "ui/examplesdialog.h"
#include "ui/tooltip.h"

#include <utils/fancylineedit.h>

#include <QAccessible>
#include <QComboBox>
#include <QHelpEvent>
#include <QListWidget>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>

#include <ctime>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qsizetype HUGE_LENGTH = 2'000'000;
constexpr int HUGE_COUNT = 30;
constexpr double PATIENCE_SECONDS = 5; // of the processor; the layout of such texts takes minutes

// QToolTip replaces a text that is shown already only if the place differs.
QString hover(QAbstractItemView *view, const QModelIndex &index)
{
    QToolTip::hideText();
    const QPoint pos = view->visualRect(index).center();
    QHelpEvent request(QEvent::ToolTip, pos, view->viewport()->mapToGlobal(pos));
    QCoreApplication::sendEvent(view->viewport(), &request);
    return QToolTip::text();
}

/** What a reader sees of a rich text, and by its absence what was taken for markup. */
QString readable(const QString &richText)
{
    QTextDocument document;
    document.setHtml(richText);
    return document.toPlainText();
}

double secondsSince(std::clock_t start)
{
    return double(std::clock() - start) / CLOCKS_PER_SEC;
}

QStringList hugeNames()
{
    QStringList result;
    for (int i = 0; i < HUGE_COUNT; ++i)
        result.append(QString(HUGE_LENGTH, 'x') + QString::number(i));
    return result;
}

QJsonObject project(const QString &path)
{
    return {{"path", path}, {"name", "Maps"}, {"web_url", "http://127.0.0.1/samples/maps"}};
}

} // namespace

class tst_ListTexts final : public PageTest
{
    Q_OBJECT

private slots:
    void textsOfTheServerArePlain_data();
    void textsOfTheServerArePlain();
    void markersInTextsArePlain();
    void markersThatMultiplyCostNothing();
    void longTextsAreCutInToolTips();
    void whatIsNotLongIsShownWhole();
    void lineSeparatorsDoNotMakeAToolTipHigh();
    void namesOfDirectoriesArePlain();
    void textsOfTheSettingsArePlain();
    void addedRowHasNoToolTip();

    void hugePathsDoNotHangTheDialog();
    void hugePathsDoNotHangThePage();
    void screenReadersGetTheBeginningOfAHugePath();

private:
    /** Shows a dialog with one project and hovers over its row; the data has to be the specified one. */
    QString hoverOver(const QJsonObject &project);
};

QString tst_ListTexts::hoverOver(const QJsonObject &project)
{
    const auto example = Repository::ExamplePtr::create(project);
    ExamplesDialog dialog({example}, nullptr);
    dialog.show();
    const auto list = dialog.findChild<QListWidget *>("examplesListWidget");
    return hover(list, list->model()->index(0, 0));
}

void tst_ListTexts::textsOfTheServerArePlain_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    const std::pair<const char *, QString> texts[] = {
        {"picture", "<img src=\"file:///nowhere.png\">"},
        {"picture without quotes", "<img src=file:///nowhere.png>"},
        {"huge picture", "<img src=':/x.png' width=30000 height=30000>"},
        {"background", "<table background='file:///nowhere.png'><tr><td>x"},
        {"style sheet", "<style>@import url(file:///nowhere.png);</style>"},
        {"end of the cell", "</td></tr></table><img src='file:///nowhere.png'>"},
        {"entities", "&lt;img src='file:///nowhere.png'&gt; &#60;b&#62;"},
        {"cells", "<table><tr>" + QString("<td>").repeated(50)},
        {"comment", "<!-- "},
        {"ampersand", "Rock & Roll <3"},
    };
    for (const char *key : {"name", "description", "web_url"}) {
        for (const auto &[what, text] : texts)
            QTest::addRow("%s in %s", what, key) << QString::fromLatin1(key) << text;
    }
}

void tst_ListTexts::textsOfTheServerArePlain()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    QJsonObject maps = project("maps");
    maps[key] = text;

    const QString shown = hoverOver(maps);

    QVERIFY2(readable(shown).contains(text.simplified()), qPrintable(shown));
    QCOMPARE(shown.count("<td"), 8);
}

void tst_ListTexts::markersInTextsArePlain()
{
    QJsonObject maps = project("maps");
    maps["name"] = "%2 100% %L4";
    maps["description"] = "About %1";

    const QString shown = readable(hoverOver(maps));

    QVERIFY2(shown.contains("%2 100% %L4"), qPrintable(shown));
    QVERIFY2(shown.contains("About %1"), qPrintable(shown));
}

// Filled in step by step, these would make a tool tip of some terabytes.
void tst_ListTexts::markersThatMultiplyCostNothing()
{
    QJsonObject maps = project("maps");
    maps["name"] = QString("%2").repeated(100'000);
    maps["description"] = QString("%4").repeated(100'000);
    maps["web_url"] = "http://" + QString(1'000, 'x');

    const QString shown = hoverOver(maps);

    QVERIFY(shown.size() < 10'000);
}

void tst_ListTexts::longTextsAreCutInToolTips()
{
    for (const QString &key :
         {QStringLiteral("name"), QStringLiteral("description"), QStringLiteral("web_url")}) {
        QJsonObject maps = project("maps");
        maps[key] = QString(10'000, 'x');

        const QString shown = readable(hoverOver(maps));

        QVERIFY2(shown.contains(QString(SHOWN_CHARACTERS - 1, 'x') + u'\u2026'), qPrintable(key));
        QCOMPARE(shown.count("xx"), SHOWN_CHARACTERS - 2);
    }
}

void tst_ListTexts::whatIsNotLongIsShownWhole()
{
    QJsonObject maps = project("maps");
    maps["description"] = QString(SHOWN_CHARACTERS, 'x');

    QVERIFY(readable(hoverOver(maps)).contains(QString(SHOWN_CHARACTERS, 'x')));
}

void tst_ListTexts::lineSeparatorsDoNotMakeAToolTipHigh()
{
    QJsonObject maps = project("maps");
    const int lines = int(readable(hoverOver(maps)).count('\n'));
    maps["description"] = QString("a\u2028b\u2029c\nd").repeated(30);

    QCOMPARE(int(readable(hoverOver(maps)).count('\n')), lines);
}

void tst_ListTexts::namesOfDirectoriesArePlain()
{
    const QString name = "<img src='file:pipe'>&lt;b&gt; %3";
    install("Demo", name);
    openPage({"Demo"});
    showPage();

    const QString shown = hover(list(), list()->model()->index(0, 0));

    QVERIFY2(readable(shown).contains("/Demo/" + name), qPrintable(shown));
    QCOMPARE(shown.count("<td"), 6);
    QVERIFY(list()->item(0)->toolTip().contains("/Demo/<img src='file:pipe'>&lt;b&gt; Updated<"));
}

void tst_ListTexts::textsOfTheSettingsArePlain()
{
    const QString name = "<img src='file:pipe'>";
    openPage({name});
    showPage();
    repositories()->showPopup();
    QAbstractItemView *view = repositories()->view();

    const QString shown = hover(view, view->model()->index(0, 0));

    QVERIFY2(readable(shown).contains("/" + name), qPrintable(shown));
    QCOMPARE(shown.count("<td"), 4);
    QVERIFY(repositories()->itemData(0, Qt::ToolTipRole).toString().contains("/" + name));
}

void tst_ListTexts::addedRowHasNoToolTip()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});
    showPage();

    const QString shown = hover(list(), list()->model()->index(0, 0));

    QVERIFY(!list()->item(0)->data(Qt::ToolTipRole).isValid());
    QVERIFY2(!shown.contains("<table>"), qPrintable(shown));
}

void tst_ListTexts::hugePathsDoNotHangTheDialog()
{
    const QStringList names = hugeNames();
    const Repository::Examples examples = makeExamples(names);
    const std::clock_t start = std::clock();

    ExamplesDialog dialog(examples, nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto list = dialog.findChild<QListWidget *>("examplesListWidget");
    dialog.grab();
    for (const char *text : {"x", "xx1", "", "29"})
        dialog.findChild<Utils::FancyLineEdit *>("filterLineEdit")->setText(QLatin1StringView(text));
    hover(list, list->model()->index(29, 0));
    list->setCurrentRow(29);
    dialog.grab();
    list->item(29)->setSelected(true);
    dialog.accept();

    const double seconds = secondsSince(start);
    QVERIFY2(seconds < PATIENCE_SECONDS, qPrintable(QString::number(seconds)));
    QCOMPARE(visibleTexts(list).size(), 1);
    QVERIFY(names.contains(list->item(0)->text()));
    QCOMPARE(dialog.selected().size(), 1);
}

void tst_ListTexts::hugePathsDoNotHangThePage()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples(hugeNames()));
    showPage();
    const std::clock_t start = std::clock();
    WhenOpened<ExamplesDialog> all([](ExamplesDialog *dialog) {
        dialog->findChild<QListWidget *>("examplesListWidget")->selectAll();
        dialog->accept();
    });

    clickAdd();
    m_page->grab();
    filter()->setText("1");
    m_page->grab();
    list()->setFocus();

    const double seconds = secondsSince(start);
    QVERIFY2(seconds < PATIENCE_SECONDS, qPrintable(QString::number(seconds)));
    QCOMPARE(list()->count(), HUGE_COUNT);
}

void tst_ListTexts::screenReadersGetTheBeginningOfAHugePath()
{
    const ExamplesDialog dialog(makeExamples({"maps", QString(HUGE_LENGTH, 'x')}), nullptr);
    const auto list = dialog.findChild<QListWidget *>("examplesListWidget");

    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list);
    QCOMPARE(interface->childCount(), 2);
    QCOMPARE(interface->child(0)->text(QAccessible::Name), "maps");
    QCOMPARE(interface->child(1)->text(QAccessible::Name).size(), SHOWN_CHARACTERS);
    QCOMPARE(list->item(1)->text().size(), HUGE_LENGTH);
}

QTEST_MAIN(tst_ListTexts)
#include "tst_listtexts.moc"
