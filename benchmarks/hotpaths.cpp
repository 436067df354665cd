// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One of the paths that all else waits for, on the same data each time. Valgrind counts the instructions of
// hotPath().
// Usage: hotpaths archive|search|copies|listing|page

#include "common/archivebuilder.h"
#include "common/testfiles.h"
#include "common/uifixture.h"
#include "steps.h"
#include "ui/optionswidget.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QRandomGenerator>

#include <cstdio>

using namespace Varnel;

namespace {

using Work = std::function<bool()>;

QString nameOf(int number)
{
    return QString("example-%1").arg(number, 4, 10, QLatin1Char('0'));
}

/** Text that compresses to about a half. */
QByteArray text(qsizetype size)
{
    static QRandomGenerator generator(20);
    QByteArray bytes(size / 2, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(generator.generate());
    return bytes.toHex();
}

/** With as many brackets as source code has. */
QByteArray sourceText(qsizetype size)
{
    QByteArray bytes = text(size);
    for (const char *digits : {"0a", "1a", "2a", "3a", "4a", "5a"})
        bytes.replace(digits, "n(");
    return bytes;
}

bool archive(const std::function<bool(const Work &)> &run)
{
    Test::TarBuilder builder;
    builder.directory("project-main-0123456789/");
    for (int i = 0; i < 200; ++i)
        builder.file("project-main-0123456789/file" + QByteArray::number(i) + ".txt", text(5'000));
    const QByteArray bytes = builder.tarGz();
    return run([&] { return Bench::vet(bytes); });
}

bool search(const std::function<bool(const Work &)> &run)
{
    const QString tree = QDir::tempPath() + "/tree";
    for (int i = 0; i < 500; ++i)
        Test::writeFile(tree + QString("/d%1/file%2.cpp").arg(i % 10).arg(i), sourceText(20'000));
    Test::writeFile(tree + "/CMakeLists.txt", "project(measured)\n");
    return run([&] { return Bench::chooseFile(tree) == "CMakeLists.txt"; });
}

bool copies(const std::function<bool(const Work &)> &run)
{
    constexpr int COUNT = 100;
    QStringList paths;
    for (int i = 0; i < COUNT; ++i) {
        paths.append(nameOf(i));
        Test::install("Demo", nameOf(i));
    }
    return run([&] { return Bench::listCopies("Demo", paths) == COUNT; });
}

bool listing(const std::function<bool(const Work &)> &run)
{
    constexpr int COUNT = 1'000;
    QJsonArray projects;
    for (int i = 0; i < COUNT; ++i) {
        projects.append(QJsonObject{
            {"id", i + 1},
            {"path", nameOf(i)},
            {"name", "Example " + QString::number(i)},
            {"description", QString(500, 'x')},
            {"web_url", "https://gitlab.example.org/samples/" + nameOf(i)},
            {"avatar_url", "https://gitlab.example.org/uploads/" + nameOf(i)},
            {"last_activity_at", "2024-01-01T00:00:00.000Z"},
            {"tag_list", QJsonArray{"qml", "maps"}}});
    }
    const QByteArray body = QJsonDocument(QJsonObject{{"id", 1}, {"projects", projects}}).toJson();
    return run([&] { return Bench::readListing(body) == COUNT; });
}

bool page(const std::function<bool(const Work &)> &run)
{
    constexpr int COUNT = 200;
    Test::UiFixture fixture;
    fixture.reset();
    fixture.setRepositoryNames({"Demo"});
    fixture.start();
    Internal::Repository::Examples online;
    for (int i = 0; i < COUNT; ++i) {
        Test::install("Demo", nameOf(i));
        online.append(Test::makeActiveExample(nameOf(i), "2100-01-01T00:00:00Z"));
    }
    fixture.list("Demo", online);
    return run([] {
        const Test::OptionsWidget widget;
        Test::waitForScans();
        QCoreApplication::processEvents();
        return widget.findChild<QListWidget *>("examplesListWidget")->count() == COUNT;
    });
}

} // namespace

// Found by its name: not to be inlined, cloned or renamed.
extern "C" [[gnu::noipa]] bool hotPath(const Work &work)
{
    return work();
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QHash<QString, bool (*)(const std::function<bool(const Work &)> &)> paths{
        {"archive", archive}, {"search", search}, {"copies", copies}, {"listing", listing}, {"page", page}};
    const auto path = paths.value(application.arguments().value(1));
    if (!path) {
        std::fputs("Usage: hotpaths archive|search|copies|listing|page\n", stderr);
        return EXIT_FAILURE;
    }
    return path([](const Work &work) { return work() && hotPath(work); }) ? EXIT_SUCCESS : EXIT_FAILURE;
}
