// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Settings files that were damaged or written by hand.

#include "case.h"

#include "plugin/constants.h"

#include <QTest>

namespace Varnel::Test {

namespace {

using namespace Varnel::Constants;

constexpr int FLOOD = IS_SANITIZED ? 20'000 : 100'000;

Case with(const QString &name, End end, const QString &key, const QVariant &value)
{
    return {
        .name = name,
        .end = end,
        .prepare = [key, value](World &world) { world.setSetting(key, value); },
        .isCuredByRestart = end == End::NotConfigured || end == End::NotReady};
}

/** The repository's entry among others. */
Case among(const QString &name, const QStringList &before, const QStringList &after = {})
{
    return {.name = "repositories: " + name, .prepare = [before, after](World &world) {
                world.setSetting(REPOSITORIES, before + QStringList{world.repositoryEntry()} + after);
            }};
}

Case file(const QString &name, const QByteArray &bytes)
{
    return {
        .name = "file: " + name,
        .end = End::NotConfigured,
        .prepare = [bytes](World &world) { world.setSettingsFile(bytes); },
        .isCuredByRestart = true};
}

QStringList numbered(const QString &pattern, int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(pattern.arg(i));
    return texts;
}

QList<Case> repositoryCases()
{
    return {
        among(
            "nonsense around", {"", "|", "||||", "a", "a|", "|http://127.0.0.1:1/g", "\n|\n"}, {"b", "|||"}),
        among("name taken by a later one", {}, {"hostile|http://127.0.0.1:1/other|"}),
        {.name = "repositories: address taken by a later one",
         .prepare =
             [](World &world) {
                 const QString entry = world.repositoryEntry();
                 world.setSetting(
                     REPOSITORIES, QStringList{entry, QString(entry).replace("hostile|", "other|")});
             }},
        among("addresses that are none", {"a|http://[|", "b|x y z|", "c|:|", "d|http:///|", "e|%|"}),
        among("address of a file", {"a|file:///etc/passwd|"}),
        among("address of another service", {"a|ftp://127.0.0.1:1/g|", "b|javascript:alert(1)|"}),
        among("address of a million letters", {"a|http://127.0.0.1:1/" + QString(1'000'000, u'g') + "|"}),
        among("name of a million letters", {QString(1'000'000, u'n') + "|http://127.0.0.1:1/g|"}),
        among("names with markers", {"%1|http://127.0.0.1:1/a|", "%2%3%4|http://127.0.0.1:1/b|%1"}),
        among("names that are paths", {"../../evil|http://127.0.0.1:1/a|", "/evil|http://127.0.0.1:1/b|"}),
        among("a flood of faulty entries", numbered("faulty %1", FLOOD)),
        among("500 repositories that nobody answers for", {}, numbered("r%1|http://127.0.0.1:1/%1|", 500)),
        {.name = "repositories: a flood of removed examples",
         .prepare =
             [](World &world) {
                 const QString entry
                     = world.repositoryEntry() + '|' + numbered("removed-%1", FLOOD).join('|');
                 world.setSetting(REPOSITORIES, QStringList{entry});
             }},
        {.name = "repositories: the example itself was removed",
         .end = End::NotUpdated,
         .prepare =
             [](World &world) {
                 world.setSetting(REPOSITORIES, QStringList{world.repositoryEntry() + "|subject"});
             }},
        with("repositories: none", End::NotConfigured, REPOSITORIES, QStringList{}),
        with("repositories: a number", End::NotConfigured, REPOSITORIES, 42),
        with("repositories: bytes", End::NotConfigured, REPOSITORIES, QByteArray("\0\xff\xfe|\0", 5)),
        with("repositories: a map", End::NotConfigured, REPOSITORIES, QVariantMap{{"a", "b"}}),
    };
}

QList<Case> numberCases()
{
    return {
        with("update period: a text", End::NotUpdated, UPDATES_TIMEOUT, "soon"),
        with("update period: negative", End::NotUpdated, UPDATES_TIMEOUT, "-1"),
        with("update period: empty", End::NotUpdated, UPDATES_TIMEOUT, ""),
        with("update period: a list", End::NotUpdated, UPDATES_TIMEOUT, QStringList{"1", "2"}),
        with("update period: beyond 32 bits", End::NotUpdated, UPDATES_TIMEOUT, "4294967296"),
        with("update period: the last of 32 bits", End::Installed, UPDATES_TIMEOUT, "4294967295"),
        with("restart period: the last of 32 bits", End::Installed, SERVICE_RESTART_TIMEOUT, "4294967295"),
        with("restart period: one that overflows", End::Installed, SERVICE_RESTART_TIMEOUT, "2147484"),
        with("restart period: a text", End::NotReady, SERVICE_RESTART_TIMEOUT, "soon"),
        with("restart period: zero", End::NotReady, SERVICE_RESTART_TIMEOUT, 0),
    };
}

QList<Case> dateCases()
{
    return {
        with("dates: no day", End::Installed, UPDATES_CHECKED, QStringList{"hostile|32.13.2020"}),
        with("dates: none", End::Installed, UPDATES_CHECKED, QStringList{"hostile|"}),
        with("dates: no separator", End::Installed, UPDATES_CHECKED, QStringList{"hostile"}),
        with("dates: too many separators", End::Installed, UPDATES_CHECKED, QStringList{"hostile|a|b"}),
        with("dates: in the far future", End::NotUpdated, UPDATES_CHECKED, QStringList{"hostile|31.12.9999"}),
        with("dates: long ago", End::Installed, UPDATES_CHECKED, QStringList{"hostile|01.01.0001"}),
        with(
            "dates: two of one name",
            End::NotUpdated,
            UPDATES_CHECKED,
            QStringList{"hostile|31.12.9999", "hostile|01.01.2000"}),
        with("dates: markers", End::Installed, UPDATES_CHECKED, QStringList{"%1|%2", "%3|01.01.2000"}),
        with("dates: a flood of others", End::Installed, UPDATES_CHECKED, numbered("r%1|01.01.2000", FLOOD)),
        with("dates: bytes", End::Installed, UPDATES_CHECKED, QByteArray("\0\xff|\xfe", 4)),
    };
}

QList<Case> fileCases()
{
    return {
        file("empty", ""),
        file("zeros", QByteArray(4096, '\0')),
        file(
            "a program",
            "\x7f"
            "ELF"
                + QByteArray(4096, '\xfe')),
        file("not UTF-8", "[Varnel]\nRepositories=\"\xff\xfe|http://127.0.0.1:1/g|\"\n"),
        file("a section without an end", "[Varnel\nRepositories=a|http://127.0.0.1:1/g|\n"),
        file("an unclosed quote", "[Varnel]\nRepositories=\"a|http://127.0.0.1:1/g|\n"),
        file("broken escapes", "[Varnel]\nRepositories=\"\\x|\\xffffffff|\\q\"\n"),
        file("a variant that is none", "[Varnel]\nRepositories=@Variant(\\0\\0\\0\\x7f\\xff\\xff)\n"),
        file(
            "a variant of an unknown type",
            "[Varnel]\nRepositories=@Invalid()\nUpdatesCheckTimeoutDays=@Size(1 2)\n"),
        file("a line of a million letters", "[Varnel]\nRepositories=" + QByteArray(1'000'000, 'x') + "\n"),
    };
}

} // namespace

QList<Case> settingsCases()
{
    return repositoryCases() + numberCases() + dateCases() + fileCases();
}

} // namespace Varnel::Test
