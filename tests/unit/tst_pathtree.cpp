// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The paths of an archive, and links on the disk that are in their way.

#include "service/pathtree.h"

#include "service/filesystem.h"

#include "common/testfiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

PathTree treeOf(const QList<QByteArray> &paths)
{
    PathTree tree;
    for (const QByteArray &path : paths) {
        PathTree::Node *node = &tree.root();
        for (const QByteArray &name : path.split('/'))
            node = &tree.child(*node, name);
    }
    return tree;
}

} // namespace

class tst_PathTree final : public QObject
{
    Q_OBJECT

private slots:
    void everyDirectoryCountsOnce();
    void onlyWhatItHoldsIsFound();
    void linksOnDiskAreFound_data();
    void linksOnDiskAreFound();
    void linksOnDiskOfRawNamesAreFound();
};

void tst_PathTree::everyDirectoryCountsOnce()
{
    QCOMPARE(treeOf({}).size(), 0);
    QCOMPARE(treeOf({"a"}).size(), 1);
    QCOMPARE(treeOf({"a/b/c", "a/b/d", "a/b", "e"}).size(), 5);
}

void tst_PathTree::onlyWhatItHoldsIsFound()
{
    const PathTree tree = treeOf({"a/b", "c"});

    QVERIFY(tree.find("a"));
    QVERIFY(tree.find("a/b"));
    QCOMPARE(tree.find("a/b/c"), nullptr);
    QCOMPARE(tree.find("b"), nullptr);
}

void tst_PathTree::linksOnDiskAreFound_data()
{
    QTest::addColumn<QList<QByteArray>>("paths");
    QTest::addColumn<bool>("isFound");

    QTest::newRow("no entries") << QList<QByteArray>{} << false;
    QTest::newRow("new path") << QList<QByteArray>{"new/a/b"} << false;
    QTest::newRow("over a file") << QList<QByteArray>{"dir/file"} << false;
    QTest::newRow("over a link") << QList<QByteArray>{"dir/link"} << true;
    QTest::newRow("over a dangling link") << QList<QByteArray>{"dir/dangling"} << true;
    QTest::newRow("below a link") << QList<QByteArray>{"new", "dir/link/a/b"} << true;
    QTest::newRow("beside a link") << QList<QByteArray>{"dir/file", "dir/link2/a"} << false;
}

void tst_PathTree::linksOnDiskAreFound()
{
    QFETCH(const QList<QByteArray>, paths);
    QFETCH(const bool, isFound);
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkpath(QStringLiteral("real/dir")));
    QVERIFY(
        QFile::link(directory.filePath(QStringLiteral("real")), directory.filePath(QStringLiteral("data"))));
    writeFile(directory.filePath("real/dir/file"), "x");
    QVERIFY(QFile::link(QStringLiteral("/tmp"), directory.filePath(QStringLiteral("real/dir/link"))));
    QVERIFY(QFile::link(QStringLiteral("gone"), directory.filePath(QStringLiteral("real/dir/dangling"))));

    QCOMPARE(leadsThroughLink(directory.filePath("data"), treeOf(paths)), isFound);
}

void tst_PathTree::linksOnDiskOfRawNamesAreFound()
{
    const QTemporaryDir directory;
    const QByteArray link = directory.path().toLocal8Bit() + "/\xff";
    QCOMPARE(symlink("/tmp", link.constData()), 0);

    QVERIFY(leadsThroughLink(directory.path(), treeOf({"\xff/evil"})));
    QVERIFY(!leadsThroughLink(directory.path(), treeOf({"\xfe/evil"})));
    QVERIFY(removeTree(directory.path())); // which the directory itself could not
}

QTEST_GUILESS_MAIN(tst_PathTree)
#include "tst_pathtree.moc"
