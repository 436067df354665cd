// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives that want to fill the disk, that are cut short, or that are none.

#include "subject.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"

#include <QRandomGenerator>

#include <archive.h>

namespace Varnel::Test {

namespace {

constexpr qint64 MEGABYTE = 1024 * 1024;

using Records = QList<std::pair<QByteArray, QByteArray>>;

QByteArray sparse(const QByteArray &size)
{
    return project()
        .records(
            {{"GNU.sparse.major", "1"},
             {"GNU.sparse.minor", "0"},
             {"GNU.sparse.name", TOP + "holes.qml"},
             {"GNU.sparse.realsize", size}})
        .file(TOP + "GNUSparseFile.0/holes", QByteArray("1\n0\n0\n").leftJustified(512, '\0'))
        .tarGz();
}

QByteArray withTopDirectories(int count)
{
    TarBuilder tar;
    for (int i = 0; i < count; ++i)
        tar.file("subject-" + QByteArray::number(i) + "/CMakeLists.txt");
    return tar.tarGz();
}

QByteArray noise(qint64 size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(1);
    random.generate(reinterpret_cast<quint32 *>(bytes.begin()), reinterpret_cast<quint32 *>(bytes.end()));
    return bytes;
}

QList<Case> sizeCases()
{
    const auto declaring
        = [](qint64 size) { return project().add({.path = TOP + "big", .declaredSize = size}).tarGz(); };
    const QByteArray zeros = gzipped(QByteArray(8 * MEGABYTE, '\0'));
    const QByteArray entry = TarBuilder().file(TOP + "same", {}).unfinished();
    return {
        ending(End::NotUnpacked, "declares a byte more than 4 GiB", declaring((Q_INT64_C(4) << 30) + 1)),
        ending(
            End::NotUnpacked, "declares the largest number", declaring(std::numeric_limits<qint64>::max())),
        ending(End::NotUnpacked, "declares a negative number", declaring(-1)),
        ending(End::NotUnpacked, "declares more than it holds", declaring(MEGABYTE)),
        ending(
            End::NotUnpacked,
            "bomb of 5 GB",
            gzipped(project().add({.path = TOP + "bomb", .declaredSize = 5'000'000'000}).unfinished())
                + zeros.repeated(596) + TarBuilder().tarGz()),
        ending(End::NotUnpacked, "bomb behind the end", project().tarGz() + zeros.repeated(100)),
        ending(End::NotUnpacked, "gzip in gzip in gzip", gzipped(gzipped(gzipped(project().tar())))),
        ending(End::Installed, "gzip in gzip", gzipped(project().tarGz())),
        ending(End::NotUnpacked, "sparse file of 8 TB", sparse("8000000000000")),
        ending(End::Installed, "sparse file of 200 MB, mostly holes", sparse("200000000")),
        // The newest is taken; the others are copies that have had their time.
        ending(End::Installed, "1,000 top directories", withTopDirectories(1000)),
        ending(End::NotUnpacked, "1,001 top directories", withTopDirectories(1001)),
        {.name = "100 MB that cannot be compressed",
         .prepare
         = [](World &world) { sending(project().file(TOP + "noise", noise(100 * MEGABYTE)).tar())(world); },
         .memory = 500 * MEGABYTE}, // the server's, the plug-in's, and the fresh one
        ending(
            End::NotUnpacked,
            "100,001 entries",
            gzipped(project().unfinished()) + gzipped(entry.repeated(1000)).repeated(100)
                + TarBuilder().tarGz()),
        {.name = "long records for 100,000 entries",
         .end = End::NotUnpacked,
         .prepare = sending(
             gzipped(TarBuilder()
                         .records({{"comment", QByteArray(8000, 'c')}, {"path", TOP + QByteArray(4000, 'p')}})
                         .file("x")
                         .unfinished()
                         .repeated(100))
                 .repeated(500)
             + TarBuilder().tarGz())},
    };
}

QList<Case> truncationCases()
{
    const QByteArray whole = project().file(TOP + "text", QByteArray("text ").repeated(5000)).tarGz();
    const QByteArray tar = project().tar();
    return {
        ending(End::NotUnpacked, "cut at the first byte", whole.first(1)),
        ending(End::NotUnpacked, "cut within the gzip header", whole.first(8)),
        ending(End::NotUnpacked, "cut in the middle", whole.first(whole.size() / 2)),
        ending(End::NotUnpacked, "cut before the gzip trailer", whole.chopped(8)),
        ending(End::NotUnpacked, "cut by one byte", whole.chopped(1)),
        ending(End::NotUnpacked, "tar cut within a header", gzipped(tar.first(700))),
        ending(End::NotUnpacked, "tar cut within a file", gzipped(tar.first(1030))),
        ending(End::NotUnpacked, "tar cut between two entries", gzipped(project().unfinished())),
        ending(
            End::NotUnpacked,
            "tar cut behind its global header",
            gzipped(TarBuilder().records({{"comment", "4f0c"}}, 'g').unfinished())),
        ending(End::NotUnpacked, "tar cut before any entry", gzipped({})),
        ending(
            End::NotUnpacked,
            "tar cut within the end marker",
            gzipped(project().unfinished() + QByteArray(300, '\0'))),
        ending(
            End::NotUnpacked,
            "bits flipped in the middle",
            [whole] {
                QByteArray bytes = whole;
                for (qsizetype i = 0; i < 8; ++i)
                    bytes[bytes.size() / 2 + i] = char(~bytes[bytes.size() / 2 + i]);
                return bytes;
            }()),
        {.name = "nothing",
         .end = End::NoData,
         .prepare = [](World &world) { world.server().answer(World::ARCHIVE_ROUTE, 200, ""); }},
    };
}

QList<Case> formatCases()
{
    const QByteArray html = "<!DOCTYPE html><html><body><h1>Sign in</h1></body></html>";
    const QList<TarEntry> files{
        {.path = TOP + "CMakeLists.txt", .content = "project(subject)\n"},
        {.path = TOP + "main.cpp", .content = "int main() {}\n"}};
    return {
        ending(End::NotUnpacked, "login page", html),
        ending(End::NotUnpacked, "login page, gzipped", gzipped(html)),
        ending(End::NotUnpacked, "error message", R"({"message":"404 File Not Found"})"),
        ending(End::NotUnpacked, "text of the throttle", "Retry later\n"),
        ending(End::NotUnpacked, "picture", "\x89PNG\r\n\x1a\n"),
        ending(
            End::NotUnpacked,
            "program",
            "\x7f"
            "ELF\x02\x01\x01"
                + QByteArray(5000, '\x01')),
        ending(End::NotUnpacked, "script", "#!/bin/sh\ntouch evil\n"),
        ending(
            End::NotUnpacked,
            "list of files in place of files",
            "#mtree\n./listed type=file contents=/etc/passwd\n"),
        ending(End::NotUnpacked, "zeros, but too few", QByteArray(300, '\0')),
        ending(End::NotUnpacked, "lrzip, which takes a program", "LRZI" + QByteArray(100, '\x06')),
        ending(
            End::NotUnpacked,
            "lzop, which takes a program",
            "\x89LZO" + QByteArray("\0\r\n\x1a\n", 5) + QByteArray(100, '\x01')),
        ending(End::Installed, "plain tar", project().tar()),
        ending(End::Installed, "bzip2", compressed(project().tar(), ARCHIVE_FILTER_BZIP2)),
        ending(End::NotUnpacked, "xz", compressed(project().tar(), ARCHIVE_FILTER_XZ)),
        ending(End::Installed, "zip", packed(files, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE)),
        ending(
            End::NotUnpacked,
            "zip with a path up",
            packed({{.path = "../evil", .content = "x"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE)),
        ending(
            End::NotUnpacked,
            "zip that writes through a link",
            packed(
                {{.path = TOP + "l", .type = '2', .target = "/tmp"},
                 {.path = TOP + "l/evil", .content = "x"}},
                ARCHIVE_FORMAT_ZIP,
                ARCHIVE_FILTER_NONE)),
        ending(
            End::NotUnpacked,
            "zip without its directory",
            packed(files, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE).chopped(60)),
    };
}

QList<Case> recordCases()
{
    const auto with = [](const QString &name, const Records &records) {
        return installed(name, [records] { return project().records(records).file(TOP + "innocent"); });
    };
    return {
        with("record that renames inside", {{"path", TOP + "renamed"}}),
        with("record with a time far ahead", {{"mtime", "99999999999999"}}),
        with("record with a time before all times", {{"mtime", "-99999999999999"}}),
        with("record with a time that is none", {{"mtime", "soon"}}),
        with("record with another owner", {{"uid", "12345"}, {"uname", "nobody"}, {"gname", "wheel"}}),
        with("record with an unknown key", {{"EVIL.key", "value"}}),
        refused(
            "record with a larger size",
            [] { return project().records({{"size", "999999"}}).file(TOP + "innocent"); }),
        installed(
            "record longer than it says",
            [] {
                return project()
                    .add({.path = "x", .type = 'x', .content = "999999 path=../evil\n"})
                    .file(TOP + "innocent");
            }),
        installed(
            "record of zero length",
            [] {
                return project()
                    .add({.path = "x", .type = 'x', .content = "0 path=../evil\n"})
                    .file(TOP + "innocent");
            }),
    };
}

} // namespace

QList<Case> archiveFormCases()
{
    return sizeCases() + truncationCases() + formatCases() + recordCases();
}

} // namespace Varnel::Test
