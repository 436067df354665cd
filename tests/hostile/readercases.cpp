// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes in which two readers see two things, or that only some readers read, or that cost a reader much.

#include "subject.h"

#include "common/tarchecksums.h"

#include <archive.h>

#include <QFile>
#include <QRandomGenerator>

namespace Varnel::Test {

namespace {

constexpr qsizetype MEGABYTE = 1024 * 1024;
constexpr qsizetype BLOCK_SIZE = 512;

const QList<TarEntry> FILES{
    {.path = TOP + "CMakeLists.txt", .content = "project(subject)\n"},
    {.path = TOP + "main.cpp", .content = "int main() {}\n"}};

QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, '\0');
    QRandomGenerator random(1);
    for (char &byte : bytes)
        byte = char(random.generate());
    return bytes;
}

Case sent(End end, const QString &name, const std::function<QByteArray()> &make)
{
    return {.name = name, .end = end, .prepare = [make](World &world) { world.subject().archive = make(); }};
}

Case refused(const QString &name, const std::function<QByteArray()> &make)
{
    return sent(End::NotUnpacked, name, make);
}

// The first 32 KiB of an ISO image are free for everybody. What the image has behind its few files is only
// padding.
QByteArray inFrontOfIso(const QByteArray &bytes)
{
    constexpr qsizetype FREE_SIZE = 32 * 1024;
    constexpr qsizetype USED_SIZE = 60'000;
    const QByteArray iso = packed(FILES, ARCHIVE_FORMAT_ISO9660, ARCHIVE_FILTER_NONE);
    return bytes + iso.sliced(bytes.size(), FREE_SIZE + USED_SIZE - bytes.size());
}

// A reader of lists takes the image for the rest of its last line, which ends at the first zero.
QByteArray evilList()
{
    const QByteArray list = "#mtree\n./" + World::wayUp() + "home/canary type=file contents=/etc/passwd\n./"
                            + World::wayUp() + "home/evil type=file contents=/etc/passwd\n";
    return list + QByteArray(QByteArray(999, '#') + '\n').repeated(31);
}

QList<Case> twoFormatsCases()
{
    return {
        refused("list in front of an ISO image", [] { return inFrontOfIso(evilList()); }),
        refused("list in front of an ISO image, gzipped", [] { return gzipped(inFrontOfIso(evilList())); }),
        refused("ISO image", [] { return inFrontOfIso({}); }),
        sent(
            End::Installed,
            "tar in front of an ISO image",
            [] { return inFrontOfIso(project().unfinished() + QByteArray(2 * BLOCK_SIZE, '\0')); }),
        sent(
            End::Installed,
            "tar in front of a zip that leads out",
            [] {
                return project().tar()
                       + packed(
                           {{.path = "../evil", .content = "x"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
            }),
        refused(
            "zip that leads out in front of a tar",
            [] {
                return packed({{.path = "../evil", .content = "x"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE)
                       + project().tar();
            }),
    };
}

// Each is the beginning of what a reader takes to a program of that name.
QList<Case> programCases()
{
    QList<Case> cases;
    const QList<std::pair<QString, QByteArray>> magics{
        {"lrzip", QByteArray("LRZI\0\6", 6)},
        {"lzop", QByteArray("\x89LZO\0\r\n\x1a\n", 9)},
        {"grzip", QByteArray("GRZipII\0\2\4:)", 12)}};
    for (const auto &[program, magic] : magics) {
        const QByteArray zip = packed(FILES, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
        cases.append(refused(program + "'s magic number in front of a zip", [=] { return magic + zip; }));
        cases.append(
            refused(program + "'s magic number in front of a tar", [=] { return magic + project().tar(); }));
    }
    for (Case &testCase : cases) {
        testCase.prepare = [prepare = testCase.prepare](World &world) {
            prepare(world);
            world.baitPrograms({"lrzip", "lzop", "grzip"});
        };
    }
    return cases;
}

QList<Case> otherFormatCases()
{
    QList<Case> cases;
    const QList<std::pair<QString, int>> formats{
        {"7zip", ARCHIVE_FORMAT_7ZIP},
        {"cpio", ARCHIVE_FORMAT_CPIO_SVR4_NOCRC},
        {"old cpio", ARCHIVE_FORMAT_CPIO_POSIX},
        {"mtree", ARCHIVE_FORMAT_MTREE},
        {"xar", ARCHIVE_FORMAT_XAR},
        {"WARC", ARCHIVE_FORMAT_WARC}};
    for (const auto &[name, format] : formats) {
        cases.append(refused(
            "format " + name, [format = format] { return packed(FILES, format, ARCHIVE_FILTER_NONE); }));
        cases.append(refused("format " + name + " within gzip", [format = format] {
            return gzipped(packed(FILES, format, ARCHIVE_FILTER_NONE));
        }));
    }
    cases.append(refused("format ar", [] {
        return "!<arch>\n" + QByteArray("CMakeLists.txt/").leftJustified(48) + "2         `\nx\n";
    }));
    const QList<std::pair<QString, int>> filters{
        {"xz", ARCHIVE_FILTER_XZ},
        {"lzma", ARCHIVE_FILTER_LZMA},
        {"lzip", ARCHIVE_FILTER_LZIP},
        {"zstd", ARCHIVE_FILTER_ZSTD},
        {"lz4", ARCHIVE_FILTER_LZ4},
        {"compress", ARCHIVE_FILTER_COMPRESS},
        {"uuencode", ARCHIVE_FILTER_UU}};
    for (const auto &[name, filter] : filters) {
        cases.append(refused(
            "compression " + name, [filter = filter] { return compressed(project().tar(), filter); }));
        cases.append(refused("compression " + name + " within gzip", [filter = filter] {
            return gzipped(compressed(project().tar(), filter));
        }));
    }
    cases.append(sent(End::Installed, "bzip2 within gzip", [] {
        return gzipped(compressed(project().tar(), ARCHIVE_FILTER_BZIP2));
    }));
    cases.append(sent(End::Installed, "zip within gzip", [] {
        return gzipped(packed(FILES, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE));
    }));
    return cases;
}

// GNU tar takes them for its own; with a size of nothing it reads on within a file's content.
QList<Case> globalRecordCases()
{
    using Records = QList<std::pair<QByteArray, QByteArray>>;
    const auto installed = [](const QString &name,
                              const Records &records,
                              const std::function<TarBuilder()> &inside) {
        return Case{.name = name, .tar = [=] {
                        return project().records(records, 'g').file(TOP + "innocent", inside().unfinished());
                    }};
    };
    const Records noSize{{"size", "0"}};
    return {
        installed(
            "global size that hides a pipe",
            noSize,
            [] { return TarBuilder().add({.path = TOP + "examples-manifest.xml", .type = '6'}); }),
        installed(
            "global size that hides a link",
            noSize,
            [] { return TarBuilder().symbolicLink(TOP + "examples-manifest.xml", inHome("canary")); }),
        installed(
            "global size that hides a path up",
            noSize,
            [] { return TarBuilder().file("../evil").file(World::wayUp() + "home/evil"); }),
        installed(
            "global path twice",
            {{"path", TOP + "renamed"}, {"path", TOP + "examples-manifest.xml"}},
            [] { return TarBuilder(); }),
        installed("global link path", {{"linkpath", inHome("canary")}}, [] { return TarBuilder(); }),
        installed("global path up", {{"path", "../evil"}}, [] { return TarBuilder(); }),
    };
}

// As old GNU tars write sparse files: four pieces in the header, and 21 in each block behind it.
QByteArray oldSparse(int extensions)
{
    QByteArray bytes = TarBuilder().add({.path = TOP + "holes", .type = 'S', .declaredSize = 0}).unfinished();
    bytes.replace(257, 8, QByteArray("ustar  \0", 8));
    bytes[482] = '\1';                       // more pieces follow
    bytes.replace(483, 12, "00000000000\0"); // as large as it really is
    mendTarChecksums(reinterpret_cast<uint8_t *>(bytes.data()), size_t(bytes.size()));
    QByteArray extension(BLOCK_SIZE, '\0');
    for (int i = 0; i < 21; ++i)
        extension.replace(
            i * 24,
            24,
            QByteArray(
                "00000000000\0"
                "00000000000\0",
                24));
    extension[504] = '\1';
    return bytes + extension.repeated(extensions);
}

QByteArray sparseMap(int pieces)
{
    QByteArray map = QByteArray::number(pieces) + '\n' + QByteArray("0\n0\n").repeated(pieces);
    map.append((BLOCK_SIZE - map.size() % BLOCK_SIZE) % BLOCK_SIZE, '\0');
    return project()
        .records(
            {{"GNU.sparse.major", "1"},
             {"GNU.sparse.minor", "0"},
             {"GNU.sparse.name", TOP + "holes"},
             {"GNU.sparse.realsize", "0"}})
        .file(TOP + "GNUSparseFile.0/holes", map)
        .unfinished();
}

// Many names that imply a directory each letter or two.
TarBuilder deepNames(const QByteArray &top, int count, int levels)
{
    TarBuilder tar;
    for (int i = 0; i < count; ++i)
        tar.file(top + QByteArray::number(i) + '/' + QByteArray("d/").repeated(levels) + "f");
    return tar;
}

QList<Case> costCases()
{
    return {
        refused(
            "sparse map of 8 million pieces",
            [] { return gzipped(sparseMap(8'000'000)) + TarBuilder().tarGz(); }),
        refused(
            "old sparse header of 16 million pieces",
            [] {
                return gzipped(project().unfinished() + oldSparse(1))
                       + gzipped(oldSparse(20'000).sliced(BLOCK_SIZE)).repeated(40) + TarBuilder().tarGz();
            }),
        refused(
            "record of 600 MB",
            [] {
                TarBuilder tar = project();
                tar.add({.path = "x", .type = 'x', .declaredSize = 600 * MEGABYTE});
                return gzipped(tar.unfinished()) + gzipped(QByteArray(8 * MEGABYTE, ' ')).repeated(75)
                       + TarBuilder().tarGz();
            }),
        refused(
            "long name of 600 MB",
            [] {
                TarBuilder tar = project();
                tar.add({.path = "x", .type = 'L', .declaredSize = 600 * MEGABYTE});
                return gzipped(tar.unfinished()) + gzipped(QByteArray(8 * MEGABYTE, 'n')).repeated(75)
                       + TarBuilder().tarGz();
            }),
        refused(
            "120 entries that imply 228,000 directories", [] { return deepNames(TOP, 120, 1900).tarGz(); }),
        refused(
            "600 entries that imply 114,000 directories", [] { return deepNames(TOP, 600, 190).tarGz(); }),
        refused("450 deep names without a top directory", [] { return deepNames("", 450, 1900).tarGz(); }),
        refused(
            "twins in a list",
            [] { return "#mtree\n" + QByteArray("./twin type=file\n").repeated(100'000); }),
        refused(
            "defaults of a list",
            [] {
                return "#mtree\n/set " + QByteArray("uname=x ").repeated(100'000) + '\n'
                       + QByteArray("./f type=file\n").repeated(2000);
            }),
        refused(
            "name table of an ar archive",
            [] { return "!<arch>\n//" + QByteArray(46, ' ') + "1073741824`\n" + QByteArray(1000, 'n'); }),
    };
}

QList<Case> fullDiskCases()
{
    constexpr qint64 LIMIT = 40 * BLOCK_SIZE; // more than the settings and a manifest
    const auto cut = [](const QString &name, const std::function<QByteArray()> &make) {
        Case testCase = refused(name, make);
        testCase.prepare = [prepare = testCase.prepare](World &world) {
            prepare(world);
            world.limitFileSize(LIMIT);
        };
        testCase.check = [](World &world) { world.liftLimit(); };
        return testCase;
    };
    return {
        cut("temporary file of a zip is cut",
            [] {
                return packed(
                    FILES + QList<TarEntry>{{.path = TOP + "noise", .content = noise(8 * LIMIT)}},
                    ARCHIVE_FORMAT_ZIP,
                    ARCHIVE_FILTER_NONE);
            }),
        cut("temporary file of a tar is cut between two entries",
            [] {
                const TarBuilder tar = project();
                const qsizetype room = LIMIT - tar.unfinished().size() - BLOCK_SIZE;
                return TarBuilder(tar)
                    .file(TOP + "fits", noise(room))
                    .file(TOP + "does not", noise(LIMIT))
                    .tar();
            }),
        cut("temporary file of a gzipped tar is cut",
            [] { return project().file(TOP + "noise", noise(8 * LIMIT)).tarGz(); }),
    };
}

QList<Case> localeCases()
{
    const QByteArray letters = QByteArray("\xc3\xa4\xe6\x97\xa5").repeated(30);
    const auto installed = [](const QString &name, const std::function<TarBuilder()> &make) {
        return Case{.name = name, .prepare = [](World &world) { world.setToolLocale("C"); }, .tar = make};
    };
    return {
        installed("long name of other letters in C", [=] { return project().file(TOP + letters); }),
        installed(
            "long target of other letters in C", [=] { return project().symbolicLink(TOP + "l", letters); }),
        installed(
            "long name that is not UTF-8 in C", [] { return project().file(TOP + QByteArray(150, '\xe4')); }),
    };
}

} // namespace

QList<Case> readerCases()
{
    return twoFormatsCases() + programCases() + otherFormatCases() + globalRecordCases()
           + withoutCmake(globalRecordCases()) + costCases() + fullDiskCases() + localeCases();
}

} // namespace Varnel::Test
