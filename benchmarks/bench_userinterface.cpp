// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// How long the user waits for the page and the dialog when there are many examples. Each figure includes the
// layout and the painting that follow. BENCH_INSTALLED and BENCH_ONLINE in the environment say how many.

#include "common/testfiles.h"
#include "common/uifixture.h"
#include "measure.h"
#include "service/downloadservice.h"
#include "settings/settings.h"
#include "ui/examplesdialog.h"
#include "ui/optionswidget.h"

#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <algorithm>
#include <ctime>
#include <optional>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

int countFrom(const char *variable, int otherwise)
{
    bool isNumber = false;
    const int count = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? count : otherwise;
}

const int INSTALLED = countFrom("BENCH_INSTALLED", 1'000);
const int ONLINE = countFrom("BENCH_ONLINE", 10'000);
constexpr int FILES_PER_EXAMPLE = 20;
constexpr int REPETITIONS = 5;

QString nameOf(int number)
{
    return QString("example-%1").arg(number, 5, 10, QLatin1Char('0'));
}

Repository::Examples manyExamples()
{
    Repository::Examples result;
    for (int i = 0; i < ONLINE; ++i) {
        // Every second installed one is outdated.
        result.append(makeActiveExample(
            nameOf(i), QLatin1StringView(i % 2 ? "2001-01-01T00:00:00Z" : "2100-01-01T00:00:00Z")));
    }
    return result;
}

void installMany()
{
    for (int i = 0; i < INSTALLED; ++i) {
        const QString manifest = install("Demo", nameOf(i));
        const QString directory = QFileInfo(manifest).path();
        for (int file = 0; file < FILES_PER_EXAMPLE; ++file)
            writeFile(directory + QString("/src/file%1.cpp").arg(file), {});
    }
}

void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/** What passes on the clock and, for a machine that has other work, on the processor. */
class Stopwatch
{
public:
    Stopwatch() { m_wall.start(); }

    struct Times
    {
        double wall;      // ms
        double processor; // ms
    };
    [[nodiscard]] Times elapsed() const
    {
        return {
            double(m_wall.nsecsElapsed()) / 1e6, double(std::clock() - m_processor) * 1e3 / CLOCKS_PER_SEC};
    }

private:
    QElapsedTimer m_wall;
    std::clock_t m_processor = std::clock();
};

Stopwatch::Times measure(const std::function<void()> &act)
{
    const Stopwatch watch;
    act();
    settle();
    return watch.elapsed();
}

QJsonObject results; // seconds of every single time, by what was measured

void report(const char *what, const QList<Stopwatch::Times> &times)
{
    QList<double> wall, processor;
    QJsonArray seconds;
    for (const Stopwatch::Times &time : times)
        seconds.append(time.wall / 1e3);
    results.insert(QLatin1StringView(what), seconds);
    for (const Stopwatch::Times &time : times) {
        wall.append(time.wall);
        processor.append(time.processor);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(processor.begin(), processor.end());
    const qsizetype middle = times.size() / 2;
    qInfo(
        "%-50s %7.1f ms, worst %7.1f ms; processor %7.1f ms, worst %7.1f ms",
        what,
        wall.at(middle),
        wall.constLast(),
        processor.at(middle),
        processor.constLast());
}

} // namespace

class bench_UserInterface final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void page();
    void dialog();
    void additionsAndRemovals();
    void cleanupTestCase();

private:
    UiFixture m_fixture;
};

void bench_UserInterface::initTestCase()
{
    m_fixture.reset();
    m_fixture.setRepositoryNames({"Demo", "Empty"});
    m_fixture.start();

    QList<Stopwatch::Times> open, update, filter; // of a page that has nothing to show
    for (int i = 0; i < REPETITIONS; ++i) {
        std::unique_ptr<OptionsWidget> page;
        open.append(measure([&page] {
            page = std::make_unique<OptionsWidget>();
            page->show();
            waitForScans();
        }));
        update.append(measure([this] { m_fixture.update(); }));
        auto line = page->findChild<Utils::FancyLineEdit *>("filterLineEdit");
        for (const char *text : {"e", "ex", ""})
            filter.append(measure([&] { line->setText(QLatin1StringView(text)); }));
    }
    report("empty page: open", open);
    report("empty page: scan and redraw after an update", update);
    report("empty page: filter, per keystroke", filter);

    m_fixture.list("Demo", manyExamples());
    installMany();
    qInfo("%d installed examples of %d files, %d online", INSTALLED, FILES_PER_EXAMPLE, ONLINE);
}

void bench_UserInterface::page()
{
    QList<Stopwatch::Times> open, update, choose, filter;
    for (int i = 0; i < REPETITIONS; ++i) {
        std::unique_ptr<OptionsWidget> page;
        open.append(measure([&page] {
            page = std::make_unique<OptionsWidget>();
            page->show();
            waitForScans();
        }));
        QCOMPARE(page->findChild<QListWidget *>("examplesListWidget")->count(), INSTALLED);
        update.append(measure([this] { m_fixture.update(); }));
        auto repositories = page->findChild<QComboBox *>("repositoryComboBox");
        repositories->setCurrentText("Empty");
        settle();
        choose.append(measure([repositories] { repositories->setCurrentText("Demo"); }));
        auto line = page->findChild<Utils::FancyLineEdit *>("filterLineEdit");
        for (const char *text : {"e", "ex", "exa", "9", "99", "9", "", "zz", ""})
            filter.append(measure([&] { line->setText(QLatin1StringView(text)); }));
    }
    report("page: open", open);
    report("page: scan and redraw after an update", update);
    report("page: redraw after choosing a repository", choose);
    report("page: filter, per keystroke", filter);
}

void bench_UserInterface::dialog()
{
    QList<Stopwatch::Times> open, filter, accept;
    for (int i = 0; i < REPETITIONS; ++i) {
        std::unique_ptr<ExamplesDialog> dialog;
        open.append(measure([&] {
            dialog = std::make_unique<ExamplesDialog>(m_fixture.service().examples("Demo"), nullptr);
            dialog->show();
        }));
        auto list = dialog->findChild<QListWidget *>("examplesListWidget");
        QCOMPARE(list->count(), ONLINE);
        auto line = dialog->findChild<Utils::FancyLineEdit *>("filterLineEdit");
        for (const char *text :
             {"e", "ex", "exa", "9", "99", "9", "", "zz", "", "0", "01", "012", "0123", ""})
            filter.append(measure([&] { line->setText(QLatin1StringView(text)); }));
        list->selectAll();
        settle();
        accept.append(measure([&] { dialog->accept(); }));
        QCOMPARE(dialog->selected().size(), ONLINE);
    }
    report("dialog: open", open);
    report("dialog: filter, per keystroke", filter);
    report("dialog: accept with all selected", accept);
}

void bench_UserInterface::additionsAndRemovals()
{
    QList<Stopwatch::Times> add, remove, removeFiltered;
    for (int i = 0; i < REPETITIONS; ++i) {
        OptionsWidget page;
        page.show();
        settle();
        auto list = page.findChild<QListWidget *>("examplesListWidget");
        std::optional<Stopwatch> accepted;
        WhenOpened<ExamplesDialog> all([&accepted](ExamplesDialog *dialog) {
            dialog->findChild<QListWidget *>("examplesListWidget")->selectAll();
            accepted.emplace();
            dialog->accept();
        });
        page.findChild<QPushButton *>("addButton")->click();
        settle();
        add.append(accepted->elapsed());
        QCOMPARE(list->count(), ONLINE);

        page.findChild<Utils::FancyLineEdit *>("filterLineEdit")->setText("5");
        settle();
        for (int row = 0; row < list->count(); row += 2)
            list->item(row)->setSelected(!list->item(row)->isHidden());
        settle();
        removeFiltered.append(measure([&page] { page.findChild<QPushButton *>("removeButton")->click(); }));
        page.findChild<Utils::FancyLineEdit *>("filterLineEdit")->clear();
        list->selectAll();
        settle();
        remove.append(measure([&page] { page.findChild<QPushButton *>("removeButton")->click(); }));
        QCOMPARE(list->count(), 0);
    }
    report("page: add all online examples", add);
    report("page: remove every second row of a filtered list", removeFiltered);
    report("page: remove all rows", remove);
}

void bench_UserInterface::cleanupTestCase()
{
    Varnel::Bench::print(results);
}

QTEST_MAIN(bench_UserInterface)
#include "bench_userinterface.moc"
