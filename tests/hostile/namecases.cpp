// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Projects whose path, which becomes a file name, or whose title is chosen to do harm.

#include "case.h"

#include <QTest>

namespace Varnel::Test {

namespace {

Case path(const QString &name, End end, const QString &path)
{
    return {
        .name = "path " + name,
        .end = end,
        .prepare = [path](World &world) { world.subject().path = path; },
        .installedAs = end == End::Installed ? path : QString("subject")};
}

Case title(const QString &name, const QString &title)
{
    return {.name = "title " + name, .prepare = [title](World &world) { world.subject().name = title; }};
}

QList<Case> pathCases()
{
    return {
        path("empty", End::NoArchive, ""),
        path("a dot", End::NoArchive, "."),
        path("two dots", End::NoArchive, ".."),
        path("up", End::NoArchive, "../evil"),
        path("far up", End::NoArchive, "../../../../../../evil"),
        path("absolute", End::NoArchive, "/tmp/evil"),
        path("of two parts", End::NoArchive, "a/b"),
        path("with a separator at the end", End::NoArchive, "a/"),
        path("with NUL", End::NoArchive, QString("a%1b").arg(QChar(0))),
        path("of wildcards", End::NoArchive, "*"),
        path("of many wildcards", End::NoArchive, QString(100, u'*') + 'x'),
        path("with a question mark", End::NoArchive, "subjec?"),
        path("with brackets", End::NoArchive, "[a-z]"),
        path("of 4,096 letters", End::NoArchive, QString(4096, u'n')),
        path("of 255 letters", End::NoArchive, QString(255, u'n')),
        path("of 200 letters", End::Installed, QString(200, u'n')),
        path("with a first marker", End::NotUnpacked, "%1"),
        path("with a second marker", End::NotUnpacked, "%2"),
        path("with many markers", End::NotUnpacked, "%1%2%3%4%99%L1"),
        path("with formats", End::Installed, "%s%n%x"),
        path("like a temporary name", End::Installed, "XXXXXX"),
        path("hidden", End::NotRegistered, ".hidden"),
        path("of three dots", End::NotRegistered, "..."),
        path("of a space", End::Installed, " "),
        path("like an option", End::Installed, "-rf"),
        path("like a home", End::Installed, "~"),
        path("like a command", End::Installed, "$(touch evil);`touch evil`"),
        path("with quotes", End::Installed, "'\"'"),
        path("with backslashes", End::NoArchive, "..\\..\\evil"),
        path("with a line feed", End::Installed, "a\nb"),
        path("with a tabulator and an escape", End::Installed, "a\tb\x1b"),
        path("with markup", End::Installed, "<b>bold&amp;"),
        path("with a bar, which separates settings", End::Installed, "a|b"),
        path("with the mark of copies", End::Installed, "subject@1"),
        path("with the mark of copies and a digest", End::Installed, "subject@" + QString(32, u'a')),
        path("from right to left", End::Installed, QString("subject") + QChar(0x202e) + "fdp"),
        path("of nothing visible", End::Installed, QString(QChar(0x200b)) + QChar(0x2060)),
        path("beyond 16 bits", End::Installed, QString::fromUcs4(U"\U0001F600\U000E0001")),
        path("like the manifest", End::Installed, "examples-manifest.xml"),
        path("that names a neighbour behind a blank", End::Installed, "x neigh"),
        path("that names a neighbour behind a semicolon", End::Installed, "x;neigh"),
        path("like the beginning of a neighbour", End::Installed, "neigh"),
        path("in capitals", End::Installed, "SUBJECT"),
    };
}

QList<Case> titleCases()
{
    return {
        title("with markers", "%1 %2 %3 %99"),
        title("with markup", "<script>alert(1)</script>&lt;\"'"),
        title("with a picture without an end", "<img src=\"file:///dev/zero\">"),
        title("with a table of 10,000 cells", "<table><tr>" + QString("<td>x</td>").repeated(10'000)),
        title("with control characters", QString("a\x01\x02\x1b\x7f") + QChar(0) + "b"),
        title("with halves of pairs", QString("a") + QChar(0xd800) + "b" + QChar(0xdc00)),
        title("with no characters", QString("a") + QChar(0xfffe) + QChar(0xffff)),
        title("from right to left", QString(QChar(0x202e)) + "eltit"),
        title("with line feeds", "a\r\nb\nc"),
        title("of a million letters", QString(1'000'000, u't')),
        title("of a space", " "),
    };
}

} // namespace

QList<Case> nameCases()
{
    return pathCases() + titleCases();
}

} // namespace Varnel::Test
