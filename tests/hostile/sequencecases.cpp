// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What one archive leaves behind for the next: two and three of one example, and of two at the same time, in
// one process and over a restart. Whatever came before, the honest archive at the end installs.

#include "case.h"

#include <QFile>
#include <QTest>

namespace Varnel::Test {

namespace {

/** One way to be an archive of the project with this path; its top directory is always the same. */
struct Kind
{
    QString name;
    std::function<TarBuilder(const QByteArray &path)> make;
    QStringList remains = {};      ///< in the repository's directory
    QStringList remainsAlone = {}; ///< the same where the other example is not listed
};

TarBuilder project(const QByteArray &path)
{
    return TarBuilder()
        .directory(path + "-main-1/")
        .file(path + "-main-1/CMakeLists.txt", "project(" + path + ")\n")
        .file(path + "-main-1/main.cpp", "int main() {}\n");
}

QByteArray home()
{
    return QFile::encodeName(World::path("home"));
}

QByteArray neighbourOf(const QByteArray &path)
{
    return path == "subject" ? "other" : "subject";
}

Kind honest()
{
    return {"honest", &project};
}

const QList<Kind> &kinds()
{
    static const QList<Kind> ALL{
        honest(),
        {"plants links",
         [](const QByteArray &path) {
             const QByteArray top = path + "-main-1/";
             return project(path)
                 .symbolicLink(top + "l", home())
                 .symbolicLink(top + "examples-manifest.xml", home() + "/canary")
                 .symbolicLink(top + "example-icon.png", home() + "/evil")
                 .add({.path = top, .type = '5', .mode = 0555});
         }},
        {"writes where a link was",
         [](const QByteArray &path) { return project(path).file(path + "-main-1/l/canary", "evil"); }},
        {"stops half-way",
         [](const QByteArray &path) {
             const QByteArray top = path + "-main-1/";
             return project(path)
                 .symbolicLink(top + "l", home())
                 .hardLink(top + "h", top + "later")
                 .file(top + "later");
         }},
        {"has no top directory",
         [](const QByteArray &) {
             return TarBuilder().file("loose/CMakeLists.txt").symbolicLink("loose/l", "../free").file("free");
         },
         {"free", "loose"}},
        {"takes the other's directory",
         [](const QByteArray &path) {
             const QByteArray other = neighbourOf(path);
             return TarBuilder().file(other + "/CMakeLists.txt", "evil").symbolicLink(other + "/l", home());
         },
         {},
         {"other"}},
        {"is called like the other's copy",
         [](const QByteArray &path) {
             const QByteArray other = neighbourOf(path);
             return TarBuilder()
                 .add({.path = other + "-main-1/", .type = '5', .mode = 0})
                 .file(other + "-main-1/CMakeLists.txt", "evil")
                 .symbolicLink(other + "-main-1/l", home());
         },
         {},
         {"other-main-1"}},
    };
    return ALL;
}

Case sequence(const QString &how, const QList<Kind> &steps, bool isRestarted, bool hasOther)
{
    QStringList names;
    QStringList remains;
    for (const Kind &step : steps) {
        names.append(step.name);
        remains += hasOther ? step.remains : step.remains + step.remainsAlone;
    }
    if (hasOther)
        remains.append("other");
    const auto act = [=](World &world) {
        for (const Kind &step : steps + QList{honest()}) {
            world.subject().archive = step.make("subject").tarGz();
            if (hasOther)
                world.other().archive = step.make("other").tarGz();
            world.updateAll(isRestarted);
        }
    };
    const auto check = [hasOther](World &) { QCOMPARE(World::isInstalled("other"), hasOther); };
    return {.name = how + ": " + names.join(", "), .act = act, .check = check, .remains = remains};
}

} // namespace

QList<Case> sequenceCases()
{
    QList<Case> cases;
    for (const Kind &first : kinds()) {
        for (const bool isRestarted : {false, true}) {
            const QString how = isRestarted ? QString("over a restart") : QString("at once");
            cases.append(sequence(how, {first}, isRestarted, false));
            cases.append(sequence("two examples " + how, {first}, isRestarted, true));
            for (const Kind &second : kinds()) {
                cases.append(sequence(how, {first, second}, isRestarted, false));
                if (!isRestarted)
                    cases.append(sequence("two examples " + how, {first, second}, isRestarted, true));
            }
        }
    }
    return cases;
}

} // namespace Varnel::Test
