// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which files are opened for reading, and how far they are read.

#include "service/nativefiles.h"

#include "common/files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

QByteArray readAll(const QString &path, qint64 piece)
{
    RegularFile file(path);
    QByteArray content;
    QByteArray buffer(piece, '\0');
    while (const qint64 size = file.read(buffer.data(), piece))
        content += buffer.first(size);
    return content;
}

} // namespace

class tst_RegularFile final : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void aFileIsReadToItsEnd_data();
    void aFileIsReadToItsEnd();
    void aFileIsOpenedInADirectory();
    void onlyRegularFilesAreOpened_data();
    void onlyRegularFilesAreOpened();
    void aFileIsReadAsFarAsItWasWhenItWasOpened();
    void holesAreSkipped();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_RegularFile::aFileIsReadToItsEnd_data()
{
    QTest::addColumn<qint64>("piece");

    for (const qint64 piece : {1, 3, 7, 100})
        QTest::addRow("pieces of %lld", piece) << piece;
}

void tst_RegularFile::aFileIsReadToItsEnd()
{
    QFETCH(const qint64, piece);
    writeFile(path("file"), "content");
    makeLink(path("link"), path("file"));

    QCOMPARE(readAll(path("file"), piece), "content");
    QCOMPARE(readAll(path("link"), piece), "content");
}

void tst_RegularFile::aFileIsOpenedInADirectory()
{
    writeFile(path("a/file"), "content");
    makeLink(path("a/link"), "file");
    QCOMPARE(::mkfifo(QFile::encodeName(path("a/pipe")), 0600), 0);
    const Directory directory(path("a"));

    for (const char *name : {"file", "link"}) {
        RegularFile file(directory, QString::fromLatin1(name));
        QByteArray buffer(100, '\0');
        QCOMPARE(buffer.first(file.read(buffer.data(), buffer.size())), "content");
    }
    QVERIFY(!RegularFile(directory, "pipe").isOpen());
    QVERIFY(!RegularFile(directory, "nothing").isOpen());
    QVERIFY(!RegularFile(Directory(path("nothing")), "file").isOpen());
    QVERIFY(!RegularFile(Directory(path("a/file")), "file").isOpen());
}

void tst_RegularFile::onlyRegularFilesAreOpened_data()
{
    QTest::addColumn<QString>("target");

    QTest::newRow("device") << "/dev/zero";
    QTest::newRow("directory") << "/tmp";
    QTest::newRow("nothing") << "/nowhere";
    QTest::newRow("pipe") << "";
}

void tst_RegularFile::onlyRegularFilesAreOpened()
{
    QFETCH(const QString, target);
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")), 0600), 0);
    makeLink(path("link"), target.isEmpty() ? path("pipe") : target);

    QVERIFY(!RegularFile(path("link")).isOpen());
    QCOMPARE(readAll(path("link"), 10), QByteArray());
}

void tst_RegularFile::aFileIsReadAsFarAsItWasWhenItWasOpened()
{
    writeFile(path("file"), "content");
    RegularFile file(path("file"));
    writeFile(path("file"), "content and more");
    QByteArray buffer(100, '\0');

    QCOMPARE(file.read(buffer.data(), 100), 7);
    QCOMPARE(file.read(buffer.data(), 100), 0);
    // A file of the process system has text, but no size.
    QCOMPARE(readAll("/proc/self/status", 100), QByteArray());
}

void tst_RegularFile::holesAreSkipped()
{
    constexpr off_t HOLE = off_t(1) << 30;
    writeFile(path("file"), "x");
    QCOMPARE(::truncate(QFile::encodeName(path("file")), HOLE), 0);
    RegularFile file(path("file"));
    QByteArray buffer(1 << 20, '\0');
    int reads = 0;

    while (file.read(buffer.data(), buffer.size()) > 0) {
        ++reads;
        file.skipHole();
    }

    QVERIFY2(reads < 10, qPrintable(QString::number(reads)));
}

QTEST_GUILESS_MAIN(tst_RegularFile)
#include "tst_regularfile.moc"
