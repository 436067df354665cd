// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is on the disk, before the archive or by it, and is looked at on the way: other directories'
// manifests, texts that never end, trees that resist being removed.

#include "subject.h"

#include "common/testfiles.h"
#include "plugin/constants.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnel::Test {

namespace {

constexpr qsizetype MEGABYTE = 1024 * 1024;

QString foreignManifest()
{
    return World::exampleDirectory("subject-of-the-user") + '/' + Constants::MANIFEST_FILE;
}

// A directory that might be a copy of the example, with a manifest that somebody has to look at.
Case besideManifest(const QString &name, const QByteArray &begin, char filler = ' ', qsizetype megabytes = 0)
{
    const auto prepare = [=](World &) {
        writeFile(foreignManifest(), begin);
        QFile file(foreignManifest());
        bool isWritten = file.open(QIODevice::Append);
        for (qsizetype i = 0; i < megabytes; ++i)
            isWritten = isWritten && file.write(QByteArray(MEGABYTE, filler)) == MEGABYTE;
        if (!isWritten)
            qFatal("cannot fill a manifest");
    };
    return {.name = "foreign manifest " + name, .prepare = prepare, .tar = &project};
}

Case stays(Case testCase)
{
    testCase.remains.append("subject-of-the-user");
    testCase.check = [](World &) { QVERIFY(QFileInfo::exists(foreignManifest())); };
    return testCase;
}

Case goes(Case testCase)
{
    testCase.clears.append("subject-of-the-user");
    return testCase;
}

QList<Case> manifestCases()
{
    const QByteArray root = "<instructionals module=\"hostile\">";
    QByteArray attributes = "<instructionals ";
    for (int i = 0; i < 400'000; ++i)
        attributes += 'a' + QByteArray::number(i) + "='' ";
    Case pipe = besideManifest("is a pipe", {});
    pipe.prepare = [](World &) {
        makeDirectory(QFileInfo(foreignManifest()).path());
        if (::mkfifo(QFile::encodeName(foreignManifest()), 0600) != 0)
            qFatal("cannot make a pipe");
    };
    Case link = besideManifest("is a link to a device", {});
    link.prepare = [](World &) { makeLink(foreignManifest(), "/dev/zero"); };
    Case forbidden = besideManifest("that nobody may read", root + "</instructionals>");
    forbidden.prepare = [prepare = forbidden.prepare](World &world) {
        prepare(world);
        ::chmod(QFile::encodeName(foreignManifest()), 0);
    };
    return {
        stays(besideManifest("of an example", root + "<examples/></instructionals>")),
        stays(besideManifest("with spaces behind its root", root, ' ', 200)),
        goes(besideManifest("without a root", {}, ' ', 200)),
        goes(besideManifest("within a comment", "<!--", 'x', 200)),
        goes(besideManifest("within an attribute", "<instructionals a='", 'x', 600)),
        goes(besideManifest("with 400,000 attributes", attributes + "module='hostile'/>")),
        goes(besideManifest(
            "with entities in entities",
            [] {
                QByteArray text = "<!DOCTYPE instructionals [<!ENTITY e0 'x'>";
                for (int i = 1; i < 30; ++i) {
                    text += "<!ENTITY e" + QByteArray::number(i) + " '"
                            + ("&e" + QByteArray::number(i - 1) + ';').repeated(10) + "'>";
                }
                return text + "]><instructionals module='&e29;'/>";
            }())),
        goes(besideManifest("of another repository", "<instructionals module='other'/>")),
        goes(besideManifest("that is empty", {})),
        goes(pipe),
        goes(link),
        ::geteuid() == 0 ? stays(forbidden) : goes(forbidden), // root reads it all the same
    };
}

Case searched(const QString &name, const std::function<TarBuilder()> &make)
{
    return {.name = "text to search " + name, .tar = make};
}

QByteArray zeros(qint64 size)
{
    return QByteArray(size, '\0');
}

QList<Case> textCases()
{
    // A main function would end the search before.
    const auto without
        = [] { return TarBuilder().directory(TOP).file(TOP + "CMakeLists.txt", "project(subject)\n"); };
    const auto linkingTo = [without](const QByteArray &target) {
        return searched("is a link to " + QString::fromLatin1(target), [=] {
            return without().symbolicLink(TOP + "a.qml", target).symbolicLink(TOP + "b", target);
        });
    };
    return {
        linkingTo("/proc/self/pagemap"),
        linkingTo("/proc/self/mem"),
        linkingTo("/proc/kmsg"),
        linkingTo("/proc/kcore"),
        linkingTo("/proc/self/clear_refs"),
        linkingTo("/proc/thread-self/comm"),
        linkingTo("/sys/kernel/notes"),
        linkingTo("/dev/tty"),
        searched("is 256 MB of zeros", [=] { return without().file(TOP + "a.qml", zeros(256 * MEGABYTE)); }),
        searched(
            "is 128 MB of carriage returns",
            [=] { return without().file(TOP + "a.qml", QByteArray(128 * MEGABYTE, '\r')); }),
        searched(
            "is 20,000 empty files",
            [=] {
                TarBuilder tar = without();
                for (int i = 0; i < 20'000; ++i)
                    tar.file(TOP + QByteArray::number(i), {});
                return tar;
            }),
        searched(
            "is one of 50 MB under 20,000 names",
            [=] {
                TarBuilder tar = without().file(TOP + "a.qml", zeros(50 * MEGABYTE));
                for (int i = 0; i < 10'000; ++i)
                    tar.hardLink(TOP + QByteArray::number(i) + ".qml", TOP + "a.qml")
                        .symbolicLink(TOP + 'l' + QByteArray::number(i), "a.qml");
                return tar;
            }),
        searched(
            "is 20,000 empty directories of icons",
            [=] {
                TarBuilder tar = without();
                for (int i = 0; i < 20'000; ++i)
                    tar.directory(TOP + QByteArray::number(i) + "/icons/");
                return tar;
            }),
    };
}

Case half(const QString &name, const std::function<TarBuilder()> &make)
{
    return {.name = "half unpacked: " + name, .end = End::NotUnpacked, .tar = make};
}

QList<Case> halfCases()
{
    return {
        half("last name of 300 letters", [] { return project().file(TOP + QByteArray(300, 'n')); }),
        half(
            "last directory of 300 letters",
            [] { return project().file(TOP + QByteArray(300, 'n') + "/x"); }),
        half(
            "last is a hard link before its target",
            [] { return project().hardLink(TOP + "h", TOP + "later").file(TOP + "later"); }),
        half("last is a hard link to itself", [] { return project().hardLink(TOP + "h", TOP + "h"); }),
        half(
            "last is a hard link to a directory",
            [] { return project().hardLink(TOP + "h", TOP + "d").directory(TOP + "d/"); }),
        half("last leads up", [] { return project().file("../evil"); }),
        half("last is a pipe", [] { return project().add({.path = TOP + "p", .type = '6'}); }),
    };
}

// With descriptors: the paths would be too long.
void makeDeepTree(const QString &path, int levels, mode_t mode)
{
    makeDirectory(path);
    int directory = ::open(QFile::encodeName(path), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < levels; ++i) {
        if (::mkdirat(directory, "dddddddd", 0700) != 0)
            qFatal("cannot make a tree of %d levels", i);
        const int child = ::openat(directory, "dddddddd", O_RDONLY | O_DIRECTORY);
        ::fchmod(directory, mode);
        ::close(directory);
        directory = child;
    }
    ::fchmod(directory, mode);
    ::close(directory);
}

// Every file has a path of more than a thousand bytes.
Case deepAndWide()
{
    constexpr int FILES = 50'000;
    return {
        .name = "in the way: 50,000 files below 190 levels",
        .prepare =
            [](World &) {
                QString path = World::exampleDirectory("subject");
                path += QString("/dddddd").repeated(190);
                makeDirectory(path);
                for (int i = 0; i < FILES; ++i)
                    QFile(path + '/' + QString::number(i)).open(QIODevice::WriteOnly);
            },
        .tar = &project};
}

Case inTheWay(const QString &name, int levels, mode_t mode)
{
    return {
        .name = "in the way: " + name,
        .prepare =
            [=](World &) {
                makeDeepTree(World::exampleDirectory(QString::fromLatin1(TOP.chopped(1))), levels, mode);
                makeDeepTree(World::exampleDirectory("subject"), levels, mode);
                makeDeepTree(World::exampleDirectory("subject-old"), levels, mode);
            },
        .tar = &project,
        .clears = {QString::fromLatin1(TOP.chopped(1)), "subject-old"}};
}

QList<Case> treeCases()
{
    return {
        inTheWay("trees of 1,900 levels", 1900, 0755),
        inTheWay("trees of 1,900 levels without rights", 1900, 0),
        inTheWay("trees of 10 levels without rights", 10, 0),
        inTheWay("trees of 10 levels to read only", 10, 0555),
        deepAndWide(),
    };
}

} // namespace

QList<Case> diskCases()
{
    return manifestCases() + textCases() + halfCases() + treeCases();
}

} // namespace Varnel::Test
