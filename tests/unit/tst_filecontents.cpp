// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which files are looked into for a text, and how far.

#include "service/projectfiles.h"

#include "common/files.h"
#include "common/projectfixture.h"

#include <QFile>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 BLOCK = 1 << 20; // bytes; here, too, one of the pieces that are read at a time ends

} // namespace

class tst_FileContents final : public ProjectFixture
{
    Q_OBJECT

private slots:
    void aTextIsFoundWhereverItLies_data();
    void aTextIsFoundWhereverItLies();
    void aTextIsFoundAmongWhatLooksLikeIt_data();
    void aTextIsFoundAmongWhatLooksLikeIt();
    void textDoesNotGoOnInAnotherFile();
    void carriageReturnsDoNotCount_data();
    void carriageReturnsDoNotCount();
    void onlyRegularFilesAreRead_data();
    void onlyRegularFilesAreRead();
    void aHugeSparseFileNeedsLittle();
    void textBetweenHolesIsFound();
};

void tst_FileContents::aTextIsFoundWhereverItLies_data()
{
    QTest::addColumn<qint64>("offset");

    const qint64 size = sizeof(" main(") - 1;
    QTest::newRow("first") << qint64(0);
    QTest::newRow("last of a block") << BLOCK - size;
    for (qint64 part = 1; part < size; ++part)
        QTest::addRow("across two blocks, %lld bytes in the first", part) << BLOCK - part;
    QTest::newRow("first of the second block") << BLOCK;
    QTest::newRow("across later blocks") << 3 * BLOCK - 2;
}

void tst_FileContents::aTextIsFoundWhereverItLies()
{
    QFETCH(const qint64, offset);
    writeFile(path("file"), QByteArray(offset, 'x') + " main(");
    writeFile(path("other"), QByteArray(offset, 'x') + " main");

    QVERIFY(fileContains(path("file"), " main("));
    QVERIFY(!fileContains(path("other"), " main("));
}

void tst_FileContents::aTextIsFoundAmongWhatLooksLikeIt_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isFound");

    const auto row = [](const char *name, const QByteArray &content, const QByteArray &text, bool isFound) {
        QTest::newRow(name) << content << text << isFound;
    };
    row("one byte", "xyz", "z", true);
    row("one byte that is not there", "xyz", "a", false);
    row("all of the file", "abc", "abc", true);
    row("the end is missing", "abc", "abcd", false);
    row("the beginning is missing", "bcd", "abcd", false);
    row("the last byte comes often", "(((( main((", " main(", true);
    row("the beginning repeats itself", "ababac", "abac", true);
    row("all bytes are the same", "aaa", "aaa", true);
    row("one of them is missing", "aa", "aaa", false);
    row("zeros", QByteArray("\0\0a\0", 4), QByteArray("\0a", 2), true);
    row("nothing", "", "a", false);
}

void tst_FileContents::aTextIsFoundAmongWhatLooksLikeIt()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, text);
    QFETCH(const bool, isFound);
    writeFile(path("file"), content);

    QCOMPARE(fileContains(path("file"), text), isFound);
}

void tst_FileContents::textDoesNotGoOnInAnotherFile()
{
    writeFile(path("app.pro"), "");
    for (int i = 0; i < 10; ++i) {
        writeFile(path(QString("a%1.cpp").arg(i)), " ma");
        writeFile(path(QString("b%1.cpp").arg(i)), "in(");
    }

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "app.pro");
}

void tst_FileContents::carriageReturnsDoNotCount_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isFound");

    const auto across = [](qint64 bytesBefore, const QByteArray &text) {
        return QByteArray(BLOCK - bytesBefore, 'x') + text;
    };
    QTest::newRow("in the middle of a line") << QByteArray("int ma\rin(") << true;
    QTest::newRow("several") << QByteArray("int\r \r\rmain\r(") << true;
    QTest::newRow("line ends") << QByteArray("int\r\n main(\r\n") << true;
    QTest::newRow("last of a block") << across(4, " ma\rin(") << true;
    QTest::newRow("first of a block") << across(3, " ma\rin(") << true;
    QTest::newRow("around the border") << across(5, " ma\r\r\rin(") << true;
    QTest::newRow("a block of them") << QByteArray(" ma" + QByteArray(2 * BLOCK, '\r') + "in(") << true;
    QTest::newRow("a block of them around a letter")
        << QByteArray(" m" + QByteArray(BLOCK - 2, '\r') + 'a' + QByteArray(BLOCK - 1, '\r') + "in(") << true;
    QTest::newRow("a letter once, in a block of them, does not count twice")
        << QByteArray(" m" + QByteArray(BLOCK - 2, '\r') + 'a' + QByteArray(BLOCK - 1, '\r') + "ain(")
        << false;
    QTest::newRow("a line feed does count") << QByteArray("int ma\nin(") << false;
}

void tst_FileContents::carriageReturnsDoNotCount()
{
    QFETCH(const QByteArray, text);
    QFETCH(const bool, isFound);
    writeFile(path("file"), text);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));

    QCOMPARE(fileContains(path("file"), " main("), isFound);
    QCOMPARE(file.readAll().contains(" main("), isFound); // read whole it is the same
}

void tst_FileContents::onlyRegularFilesAreRead_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("isRead");

    QTest::newRow("file") << "file" << true;
    QTest::newRow("link to a file") << "link" << true;
    QTest::newRow("link to a link to a file") << "links" << true;
    QTest::newRow("dangling link") << "dangling" << false;
    QTest::newRow("pipe") << "pipe" << false;
    QTest::newRow("link to a pipe") << "link to pipe" << false;
    QTest::newRow("link to an endless device") << "/dev/zero" << false;
    QTest::newRow("link to a terminal") << "/dev/tty" << false;
    QTest::newRow("directory") << "directory" << false;
}

void tst_FileContents::onlyRegularFilesAreRead()
{
    QFETCH(const QString, kind);
    QFETCH(const bool, isRead);
    const QString subject = path("main.cpp");
    writeFile(m_directory->filePath("real"), MAIN);
    makeLink(m_directory->filePath("second"), "real");
    QCOMPARE(::mkfifo(QFile::encodeName(m_directory->filePath("pipe")), 0644), 0);
    if (kind == "file")
        writeFile(subject, MAIN);
    else if (kind == "link")
        makeLink(subject, "../real");
    else if (kind == "links")
        makeLink(subject, "../second");
    else if (kind == "dangling")
        makeLink(subject, "../nowhere");
    else if (kind == "pipe")
        QCOMPARE(::mkfifo(QFile::encodeName(subject), 0644), 0);
    else if (kind == "link to pipe")
        makeLink(subject, "../pipe");
    else if (kind == "directory")
        makeDirectory(subject);
    else
        makeLink(subject, kind);

    QCOMPARE(fileContains(subject, " main("), isRead);
    QCOMPARE(findProjectFiles(m_project).fileToOpen, isRead ? "/main.cpp" : "");
}

void tst_FileContents::aHugeSparseFileNeedsLittle()
{
    QFile huge(path("huge"));
    QVERIFY(huge.open(QIODevice::WriteOnly));
    if (!huge.resize(Q_INT64_C(64) << 30))
        QSKIP("This file system has no files of 64 GiB");
    huge.close();
    writeFile(path("zzz.cpp"), MAIN);
    rusage before{};
    rusage after{};
    QCOMPARE(::getrusage(RUSAGE_SELF, &before), 0);

    const bool isFound = fileContains(path("huge"), " main(");

    QCOMPARE(::getrusage(RUSAGE_SELF, &after), 0);
    QVERIFY(!isFound);
    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/zzz.cpp");
    const long kibibytes = after.ru_maxrss - before.ru_maxrss;
    QVERIFY2(kibibytes < 64 * 1024, QByteArray::number(qlonglong(kibibytes)));
}

void tst_FileContents::textBetweenHolesIsFound()
{
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.seek(10 * BLOCK + 17));
    QCOMPARE(file.write(" main("), 6);
    QVERIFY(file.resize(20 * BLOCK));
    file.close();

    QVERIFY(fileContains(path("file"), " main("));
    QVERIFY(!fileContains(path("file"), " domain("));
}

QTEST_GUILESS_MAIN(tst_FileContents)
#include "tst_filecontents.moc"
