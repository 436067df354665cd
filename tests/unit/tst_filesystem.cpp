// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Removing, listing and exchanging what a server's archives brought.

#include "service/filesystem.h"

#include "common/testfiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QByteArray RAW_NAME = "caf\xe9"; // no UTF-8

} // namespace

class tst_FileSystem final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void plainNamesAreOneHarmlessComponent_data();
    void plainNamesAreOneHarmlessComponent();

    void aTreeIsRemovedWhole();
    void removingNothingIsASuccess();
    void aFileIsRemoved();
    void aLinkIsRemovedAndItsTargetStays();
    void linksInsideAreNotFollowed();
    void namesThatAreNotUtf8AreRemovedToo();
    void directoriesWithoutRightsAreRemovedToo();

    void listingsLeaveHiddenAndRawNamesOut();
    void aListingOfNothingIsEmpty();
    void aWalkVisitsDirectoriesBeforeTheirContents();
    void aWalkDoesNotFollowLinks();
    void aWalkEndsWhenItIsTold();
    void aRequestToStopEndsARemoval();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_directory->filePath(name); }
    [[nodiscard]] QByteArray rawPath(const QByteArray &name) const
    {
        return QFile::encodeName(m_directory->path()) + '/' + name;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_FileSystem::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void tst_FileSystem::cleanup()
{
    std::ignore = removeTree(m_directory->path());
    m_directory.reset();
}

void tst_FileSystem::plainNamesAreOneHarmlessComponent_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isPlain");

    QTest::newRow("ordinary") << "hello-qml" << true;
    QTest::newRow("beginning with a dot") << ".hidden" << true;
    QTest::newRow("three dots") << "..." << true;
    QTest::newRow("dots inside") << "a..b" << true;
    QTest::newRow("space") << "a b" << true;
    QTest::newRow("other letters") << "käse" << true;
    QTest::newRow("marker") << "a%1" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("this directory") << "." << false;
    QTest::newRow("the one above") << ".." << false;
    QTest::newRow("separator") << "a/b" << false;
    QTest::newRow("climbing") << "../a" << false;
    QTest::newRow("absolute") << "/a" << false;
    QTest::newRow("closing separator") << "a/" << false;
    QTest::newRow("separator of the IDE's file paths") << "a\\b" << false;
    QTest::newRow("NUL") << QString::fromLatin1("a\0b", 3) << false;
    QTest::newRow("any text") << "*" << false;
    QTest::newRow("any letter") << "a?" << false;
    QTest::newRow("opening set") << "a[" << false;
    QTest::newRow("closing set") << "a]" << false;
}

void tst_FileSystem::plainNamesAreOneHarmlessComponent()
{
    QFETCH(const QString, name);
    QFETCH(const bool, isPlain);

    QCOMPARE(isPlainName(name), isPlain);
}

void tst_FileSystem::aTreeIsRemovedWhole()
{
    writeFile(path("tree/a/b/file"), "x");
    writeFile(path("tree/.hidden/file"), "x");
    makeLink(path("tree/dangling"), "nowhere");
    writeFile(path("beside"), "x");

    QVERIFY(removeTree(path("tree")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"beside"});
}

void tst_FileSystem::removingNothingIsASuccess()
{
    QVERIFY(removeTree(path("nothing")));
}

void tst_FileSystem::aFileIsRemoved()
{
    writeFile(path("file"), "x");

    QVERIFY(removeTree(path("file")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList());
}

void tst_FileSystem::aLinkIsRemovedAndItsTargetStays()
{
    writeFile(path("target/file"), "x");
    makeLink(path("link"), path("target"));

    QVERIFY(removeTree(path("link")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"target"});
    QCOMPARE(entriesOf(path("target")), QStringList{"file"});
}

void tst_FileSystem::linksInsideAreNotFollowed()
{
    writeFile(path("target/file"), "x");
    makeLink(path("tree/a/link"), path("target"));
    makeLink(path("tree/up"), "..");

    QVERIFY(removeTree(path("tree")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"target"});
    QCOMPARE(entriesOf(path("target")), QStringList{"file"});
}

void tst_FileSystem::namesThatAreNotUtf8AreRemovedToo()
{
    makeDirectory(path("tree"));
    const QByteArray raw = rawPath("tree/" + RAW_NAME);
    QCOMPARE(::mkdir(raw, 0755), 0);
    QCOMPARE(::symlink("x", QByteArray(raw + '/' + RAW_NAME)), 0);

    QVERIFY(removeTree(path("tree")));

    QVERIFY(!existsRaw(rawPath("tree")));
}

void tst_FileSystem::directoriesWithoutRightsAreRemovedToo()
{
    // Not much of a hindrance for root, but for users.
    writeFile(path("tree/a/b/file"), "x");
    QCOMPARE(::chmod(rawPath("tree/a/b"), 0), 0);
    QCOMPARE(::chmod(rawPath("tree/a"), 0500), 0);

    QVERIFY(removeTree(path("tree")));

    QVERIFY(!existsRaw(rawPath("tree")));
}

void tst_FileSystem::listingsLeaveHiddenAndRawNamesOut()
{
    writeFile(path("file"), "x");
    writeFile(path(".hidden"), "x");
    makeDirectory(path("directory"));
    makeLink(path("dangling"), "nowhere");
    makeLink(path("link"), path("directory"));
    for (int i = 0; i < 20; ++i)
        QCOMPARE(::mkdir(rawPath(RAW_NAME + QByteArray::number(i)), 0755), 0);

    QStringList names;
    const QList<FileEntry> entries = visibleEntries(m_directory->path());
    for (const FileEntry &entry : entries)
        names.append(entry.name);

    names.sort();
    QCOMPARE(names, (QStringList{"dangling", "directory", "file", "link"}));
    const auto link
        = std::ranges::find_if(entries, [](const FileEntry &entry) { return entry.name == "link"; });
    QVERIFY(!link->isDirectory);
    QVERIFY(link->isLink);
}

void tst_FileSystem::aListingOfNothingIsEmpty()
{
    writeFile(path("file"), "x");

    QVERIFY(visibleEntries(path("nothing")).isEmpty());
    QVERIFY(visibleEntries(path("file")).isEmpty());
}

void tst_FileSystem::aWalkVisitsDirectoriesBeforeTheirContents()
{
    writeFile(path("a/b/file"), "x");
    writeFile(path("c/file"), "x");
    writeFile(path(".hidden/file"), "x");
    QStringList visited;

    walk(m_directory->path(), [&](const FileEntry &info) {
        visited.append(info.path().sliced(m_directory->path().size()));
        return true;
    });

    QVERIFY(visited.indexOf("/a") < visited.indexOf("/a/b"));
    QVERIFY(visited.indexOf("/a/b") < visited.indexOf("/a/b/file"));
    visited.sort();
    QCOMPARE(visited, (QStringList{"/a", "/a/b", "/a/b/file", "/c", "/c/file"}));
}

void tst_FileSystem::aWalkDoesNotFollowLinks()
{
    writeFile(path("a/file"), "x");
    makeLink(path("a/up"), "..");
    makeLink(path("a/root"), "/");
    QStringList visited;

    walk(m_directory->path(), [&visited](const FileEntry &info) {
        visited.append(info.name);
        return visited.size() < 100;
    });

    visited.sort();
    QCOMPARE(visited, (QStringList{"a", "file", "root", "up"}));
}

void tst_FileSystem::aWalkEndsWhenItIsTold()
{
    for (int i = 0; i < 5; ++i)
        writeFile(path(QString("%1/file").arg(i)), "x");
    int visits = 0;

    walk(m_directory->path(), [&visits](const FileEntry &) { return ++visits < 3; });

    QCOMPARE(visits, 3);
}

void tst_FileSystem::aRequestToStopEndsARemoval()
{
    writeFile(path("tree/file"), "x");
    std::stop_source stop;
    stop.request_stop();

    QVERIFY(!removeTree(path("tree"), stop.get_token()));

    QCOMPARE(entriesOf(path("tree")), QStringList{"file"});
}

QTEST_GUILESS_MAIN(tst_FileSystem)
#include "tst_filesystem.moc"
