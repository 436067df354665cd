// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives that want to leave their directory, or bring what no project has.

#include "subject.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"
#include "plugin/constants.h"

#include <archive.h>

#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace Varnel::Test {

namespace {

QList<Case> pathCases()
{
    return {
        refused("one up", [] { return project().file("../evil"); }),
        refused("all the way up", [] { return project().file(World::wayUp() + "home/evil"); }),
        refused("over a file above", [] { return project().file(World::wayUp() + "home/canary"); }),
        refused("up from below", [] { return project().file(TOP + "a/../../../evil"); }),
        refused("up and down inside", [] { return project().file(TOP + "a/../b"); }),
        refused("up at the end", [] { return project().directory(TOP + ".."); }),
        refused("up behind a dot", [] { return project().file("./../evil"); }),
        refused("up behind double slashes", [] { return project().file(TOP + "..//../evil"); }),
        refused("absolute", [] { return project().file(inHome("evil")); }),
        refused("absolute with two slashes", [] { return project().file("/" + inHome("evil")); }),
        refused("absolute directory", [] { return project().directory(inHome("evil/")); }),
        refused(
            "up by a pax record",
            [] { return project().records({{"path", "../evil"}}).file(TOP + "innocent"); }),
        refused(
            "absolute by a pax record",
            [] { return project().records({{"path", inHome("evil")}}).file(TOP + "innocent"); }),
        refused(
            "up by a long name of the GNU kind",
            [] {
                return project()
                    .add({.path = "././@LongLink", .type = 'L', .content = QByteArray("../evil\0", 8)})
                    .file(TOP + "innocent");
            }),
        refused(
            "up by a sparse name",
            [] {
                return project()
                    .records(
                        {{"GNU.sparse.major", "1"},
                         {"GNU.sparse.minor", "0"},
                         {"GNU.sparse.name", "../evil"},
                         {"GNU.sparse.realsize", "512"}})
                    .file(TOP + "innocent", QByteArray("0\n").leftJustified(512, '\0'));
            }),
        installed(
            "up by a global record, which counts for nothing",
            [] { return TarBuilder().records({{"path", "../evil"}}, 'g').raw(project().unfinished()); }),
        installed("backslashes, which are letters here", [] { return project().file(TOP + "..\\..\\evil"); }),
        installed(
            "leading dots",
            [] {
                return TarBuilder().directory("./").file("./" + TOP + "./CMakeLists.txt", "project(x)\n");
            }),
        {.name = "rights of the common directory",
         .end = End::Installed,
         .tar =
             [] {
                 return TarBuilder().add({.path = "./", .type = '5', .mode = 0}).raw(project().unfinished());
             }},
    };
}

QList<Case> linkCases()
{
    return {
        installed(
            "link out of the project", [] { return project().symbolicLink(TOP + "l", inHome("canary")); }),
        installed("dangling link", [] { return project().symbolicLink(TOP + "l", "nowhere"); }),
        installed("link to itself", [] { return project().symbolicLink(TOP + "l", "l"); }),
        installed("link to the directory above", [] { return project().symbolicLink(TOP + "l", "../.."); }),
        installed(
            "manifest is a link",
            [] { return project().symbolicLink(TOP + "examples-manifest.xml", inHome("canary")); }),
        installed(
            "manifest is a link to what is not there",
            [] { return project().symbolicLink(TOP + "examples-manifest.xml", inHome("evil")); }),
        installed(
            "manifest is a hard link to a link",
            [] {
                return project()
                    .symbolicLink(TOP + "l", inHome("canary"))
                    .hardLink(TOP + "examples-manifest.xml", TOP + "l");
            }),
        installed(
            "manifest is a link in a directory of mode 0511",
            [] {
                return project()
                    .symbolicLink(TOP + "examples-manifest.xml", inHome("canary"))
                    .add({.path = TOP, .type = '5', .mode = 0511});
            }),
        {.name = "picture is a link",
         .prepare =
             [](World &world) {
                 world.subject().archive
                     = project().symbolicLink(TOP + "example-icon.png", inHome("canary")).tarGz();
                 world.subject().avatar = encodedPicture({4, 4});
                 world.subject().avatarFile = "a.png";
             },
         .check =
             [](World &) {
                 const QFileInfo icon(World::exampleDirectory("subject") + "/example-icon.png");
                 QVERIFY(icon.isFile() && !icon.isSymLink());
             }},
        {.name = "project file is a link to a device",
         .end = End::NotRegistered,
         .tar =
             [] {
                 return TarBuilder().file(TOP + "readme").symbolicLink(TOP + "CMakeLists.txt", "/dev/zero");
             }},
        installed(
            "text to search is a link to a device",
            [] {
                return project()
                    .symbolicLink(TOP + "a.qml", "/dev/zero")
                    .symbolicLink(TOP + "b.qml", "/dev/stdin");
            }),
        installed("icons are a link out", [] { return project().symbolicLink(TOP + "icons", inHome("")); }),
        refused(
            "write through a link",
            [] { return project().symbolicLink(TOP + "l", inHome("")).file(TOP + "l/evil"); }),
        refused(
            "write through a link that comes later",
            [] { return project().file(TOP + "l/evil").symbolicLink(TOP + "l", inHome("")); }),
        refused(
            "write over a link",
            [] { return project().symbolicLink(TOP + "l", inHome("canary")).file(TOP + "l", "evil"); }),
        refused(
            "write through two links",
            [] {
                return project()
                    .symbolicLink(TOP + "a", "b")
                    .symbolicLink(TOP + "b", inHome(""))
                    .file(TOP + "a/evil");
            }),
        refused(
            "write through a link, spelled otherwise",
            [] { return project().symbolicLink("./" + TOP + "/l/", inHome("")).file(TOP + "./l//evil"); }),
        refused(
            "top directory is a link", [] { return TarBuilder().symbolicLink(TOP.chopped(1), inHome("")); }),
        refused(
            "top directory is a link, with files",
            [] {
                return TarBuilder().symbolicLink(TOP.chopped(1), inHome("")).file(TOP + "CMakeLists.txt");
            }),
        refused(
            "link to a manifest, among several top directories",
            [] {
                return TarBuilder()
                    .file("deep/sub/" + QByteArray(Constants::MANIFEST_FILE))
                    .file("other/file")
                    .symbolicLink("planted", "deep/sub");
            }),
        {.name = "manifest whose name the Welcome screen takes for its own",
         .tar = [] { return project().file(TOP + "example\xc5\xbf-manifest.xml"); },
         .check =
             [](World &) {
                 QVERIFY(!QFileInfo::exists(
                     World::exampleDirectory("subject") + QStringLiteral("/example\u017f-manifest.xml")));
             }},
        refused("link named like the example", [] { return project().symbolicLink("subject", inHome("")); }),
        refused(
            "link beside the top directory, to its neighbour",
            [] { return project().symbolicLink("other", "neighbour"); }),
        refused(
            "links out of two top directories",
            [] { return project().file("b/x").symbolicLink("b/l", World::wayUp() + "home"); }),
        {.name = "link of an earlier archive, in the way",
         .end = End::NotUnpacked,
         .prepare =
             [](World &world) {
                 makeLink(World::repositoryDirectory() + "planted", World::path("home"));
                 world.subject().archive = project().file("planted/evil").tarGz();
             }},
        {.name = "left-over with a link inside",
         .prepare =
             [](World &world) {
                 makeDirectory(World::repositoryDirectory() + QString::fromLatin1(TOP));
                 makeLink(World::repositoryDirectory() + QString::fromLatin1(TOP) + "l", World::path("home"));
                 world.subject().archive = project().file(TOP + "l/evil").tarGz();
             },
         .clears = {QString::fromLatin1(TOP.chopped(1))}},
        {.name = "left-over that is a link",
         .prepare =
             [](World &world) {
                 makeLink(
                     World::repositoryDirectory() + QString::fromLatin1(TOP.chopped(1)), World::path("home"));
                 world.subject().archive = project().tarGz();
             },
         .clears = {QString::fromLatin1(TOP.chopped(1))}},
        {.name = "example's place taken by a link",
         .end = End::NotRegistered,
         .prepare =
             [](World &world) {
                 makeLink(World::repositoryDirectory() + "subject", World::path("home"));
                 world.subject().archive = project().tarGz();
             },
         .clears = {"subject"}},
    };
}

QList<Case> hardLinkCases()
{
    return {
        refused("hard link up", [] { return project().hardLink(TOP + "h", World::wayUp() + "home/canary"); }),
        refused(
            "hard link to an absolute path", [] { return project().hardLink(TOP + "h", inHome("canary")); }),
        refused(
            "hard link to a neighbour",
            [] { return project().hardLink(TOP + "h", "neighbour/CMakeLists.txt"); }),
        refused(
            "hard link by a pax record",
            [] {
                return project()
                    .records({{"linkpath", inHome("canary")}})
                    .hardLink(TOP + "h", TOP + "main.cpp");
            }),
        refused(
            "hard link by a long name of the GNU kind",
            [] {
                return project()
                    .add({.path = "././@LongLink", .type = 'K', .content = inHome("canary") + '\0'})
                    .hardLink(TOP + "h", TOP + "main.cpp");
            }),
        refused(
            "hard link through a link",
            [] {
                return project().symbolicLink(TOP + "l", inHome("")).hardLink(TOP + "h", TOP + "l/canary");
            }),
        refused(
            "write through a hard link to a link",
            [] {
                return project()
                    .symbolicLink(TOP + "l", inHome(""))
                    .hardLink(TOP + "h", TOP + "l")
                    .file(TOP + "h/evil");
            }),
        refused(
            "hard link with content",
            [] {
                return project().add(
                    {.path = TOP + "h",
                     .type = '1',
                     .content = "evil",
                     .target = World::wayUp() + "home/canary"});
            }),
        installed("hard link inside", [] { return project().hardLink(TOP + "h", TOP + "main.cpp"); }),
    };
}

QList<Case> kindCases()
{
    return {
        refused("character device", [] { return project().add({.path = TOP + "d", .type = '3'}); }),
        refused("block device", [] { return project().add({.path = TOP + "d", .type = '4'}); }),
        refused("pipe", [] { return project().add({.path = TOP + "d", .type = '6'}); }),
        ending(
            End::NotUnpacked,
            "socket",
            [] {
                QByteArray cpio
                    = packed({{.path = "subject/d"}}, ARCHIVE_FORMAT_CPIO_SVR4_NOCRC, ARCHIVE_FILTER_NONE);
                return gzipped(cpio.replace(14, 8, "0000c1a4")); // the mode field of the first header
            }()),
        {.name = "setuid and setgid file",
         .tar = [] { return project().add({.path = TOP + "tool", .mode = 06755}); }},
        installed("file without rights", [] { return project().add({.path = TOP + "f", .mode = 0}); }),
        refused(
            "nested 201 deep",
            [] { return project().file(TOP + QByteArray("d/").repeated(199) + "main.cpp"); }),
        installed(
            "nested 200 deep",
            [] { return project().file(TOP + QByteArray("d/").repeated(198) + "main.cpp"); }),
        installed(
            "directory without rights",
            [] { return project().add({.path = TOP + "d/", .type = '5', .mode = 0}).file(TOP + "d/f"); }),
        {.name = "file and directory of one name",
         .tar = [] { return project().file(TOP + "x").file(TOP + "x/y"); },
         .failsWithoutCmake = true}, // GNU tar puts no directory in a file's place
    };
}

QList<Case> entryNameCases()
{
    const auto withFile = [](const QString &name, const QByteArray &file) {
        return installed("named " + name, [file] { return project().file(TOP + file); });
    };
    return {
        withFile("with wildcards", "*?[a]"),
        withFile("with a line feed", "a\nb"),
        withFile("with control characters", "\x01\x1b[31m\x7f"),
        withFile("like an option", "-rf"),
        withFile("like a home", "~root"),
        withFile("like a command", "$(touch evil);`touch evil`|touch evil"),
        withFile("with markers", "%1%2%s%n"),
        withFile(
            "from right to left",
            "\xe2\x80\xae"
            "fdp.exe"),
        withFile("with spaces only", "   "),
        withFile("three dots", "..."),
        withFile("255 letters", QByteArray(255, 'n')),
        withFile("not UTF-8", "caf\xe9\xff\xfe"),
        withFile("overlong UTF-8", "\xc0\xae\xc0\xae\xc0\xaf"),
        installed("case twins", [] { return project().file(TOP + "Main.cpp").file(TOP + "MAIN.CPP"); }),
        installed(
            "case twins of directories",
            [] {
                return project().file(TOP + "lib/a").file(TOP + "Lib/b").symbolicLink(TOP + "LIB", "lib");
            }),
        installed("directory that is not UTF-8", [] { return project().file(TOP + "\xff\xfe/x/y"); }),
        installed("link that is not UTF-8", [] { return project().symbolicLink(TOP + "\xff", "\xfe"); }),
        installed(
            "same file a thousand times",
            [] { return project().raw(TarBuilder().file(TOP + "same").unfinished().repeated(1000)); }),
        // The name cannot be told to Qt, so the directory cannot be given its place.
        refused(
            "top directory that is not UTF-8",
            [] { return TarBuilder().file("subject-\xff/CMakeLists.txt"); }),
        refused("name of 256 letters", [] { return project().file(TOP + QByteArray(256, 'n')); }),
        refused("name of 5,000 letters", [] { return project().file(TOP + QByteArray(5000, 'n')); }),
        // The library passes such a record over; the name is what the header has of it.
        installed(
            "path of a megabyte",
            [] { return project().file(TOP + QByteArray("d/").repeated(500'000) + 'f'); }),
        refused(
            "nested 1,000 deep",
            [] { return project().file(TOP + QByteArray("d/").repeated(1000) + "main.cpp"); }),
        refused(
            "nested 2,000 deep",
            [] { return project().file(TOP + QByteArray("d/").repeated(2000) + "main.cpp"); }),
        refused("empty name", [] { return project().file(""); }),
        refused(
            "file named like the common directory", [] { return project().symbolicLink(".", inHome("")); }),
    };
}

QList<Case> placeCases()
{
    return {
        {.name = "directory of another example",
         .end = End::NotUnpacked,
         .tar = [] { return TarBuilder().file("neighbour/CMakeLists.txt", "evil"); }},
        {.name = "no top directory",
         .end = End::NotRegistered,
         .tar = [] { return TarBuilder().file("CMakeLists.txt").file("main.cpp"); },
         .remains = {"CMakeLists.txt", "main.cpp"}},
        {.name = "two top directories",
         .end = End::NotRegistered,
         .tar = [] { return project().file("subject-extra/readme"); },
         .remains = {QString::fromLatin1(TOP.chopped(1))}},
        {.name = "top directory of another name",
         .end = End::NotRegistered,
         .tar = [] { return TarBuilder().file("else/CMakeLists.txt"); },
         .remains = {"else"}},
        {.name = "no entry at all", .end = End::NotRegistered, .tar = [] { return TarBuilder(); }},
        {.name = "no project file",
         .end = End::NotRegistered,
         .tar = [] { return TarBuilder().file(TOP + "readme"); }},
        installed(
            "top directory with the example's own name",
            [] { return TarBuilder().file("subject/CMakeLists.txt"); }),
        installed(
            "hostile manifest and picture",
            [] {
                return project()
                    .file(TOP + "examples-manifest.xml", "<instructionals module=\"evil\">")
                    .directory(TOP + "example-icon.png/x");
            }),
        installed(
            "manifest is a directory", [] { return project().directory(TOP + "examples-manifest.xml/x"); }),
    };
}

} // namespace

QList<Case> archiveCases()
{
    return pathCases() + linkCases() + hardLinkCases() + kindCases() + entryNameCases() + placeCases()
           + archiveFormCases();
}

} // namespace Varnel::Test
