// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of an archive that is let through, and how large it may be.

#include "service/archivevetting.h"

#include "service/archivereader.h"

#include "common/archivebuilder.h"
#include "common/filesizelimit.h"
#include "common/testfiles.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

#include <zlib.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 PLENTY = Q_INT64_C(100) * 1024 * 1024 * 1024;
constexpr qint64 MEGABYTE = 1024 * 1024;

ArchiveVerdict vet(const QByteArray &archive, qint64 freeBytes = PLENTY)
{
    const QTemporaryDir directory;
    return vetArchive(archive, directory.filePath("archive.tar.gz"), freeBytes, {});
}

TarBuilder example()
{
    return TarBuilder().directory("demo-main-1/").file("demo-main-1/CMakeLists.txt");
}

QList<ArchiveEntry> entriesIn(const QByteArray &archive)
{
    QList<ArchiveEntry> entries;
    ArchiveReader reader(archive, {});
    while (const std::optional<ArchiveEntry> entry = reader.nextEntry()) {
        entries.append(*entry);
        while (reader.nextPiece()) {
        }
    }
    return entries;
}

/** A zip of one file as it is, written field by field. */
QByteArray storedZip(const QByteArray &path, const QByteArray &content)
{
    const auto number = [](quint32 value, int size) {
        QByteArray bytes;
        for (int i = 0; i < size; ++i)
            bytes.append(char(value >> (8 * i)));
        return bytes;
    };
    const auto checksum
        = quint32(crc32(0, reinterpret_cast<const Bytef *>(content.constData()), uInt(content.size())));
    const auto size = quint32(content.size());
    const QByteArray common = number(10, 2) + number(0, 2) + number(0, 2) + number(0, 4) + number(checksum, 4)
                              + number(size, 4) + number(size, 4) + number(quint32(path.size()), 2)
                              + number(0, 2);
    const QByteArray entry = "PK\x03\x04" + common + path + content;
    const QByteArray directory = "PK\x01\x02" + number(10, 2) + common + number(0, 2) + number(0, 2)
                                 + number(0, 2) + number(0, 4) + number(0, 4) + path;
    return entry + directory + "PK\x05\x06" + number(0, 4) + number(1, 2) + number(1, 2)
           + number(quint32(directory.size()), 4) + number(quint32(entry.size()), 4) + number(0, 2);
}

} // namespace

class tst_FreshArchive final : public QObject
{
    Q_OBJECT

private slots:
    void sizesAreLimited_data();
    void sizesAreLimited();
    void entriesAreLimited();
    void topDirectoriesAreLimited();
    void impliedDirectoriesCount();
    void namesAreLimited_data();
    void namesAreLimited();
    void namesInAllAreLimited();
    void theFreshArchiveHoldsWhatWasAccepted();
    void whatTheRegistrationWritesIsLeftOut_data();
    void whatTheRegistrationWritesIsLeftOut();
    void timesAreWhatFileSystemsHold_data();
    void timesAreWhatFileSystemsHold();
    void holesBecomeZeros();
    void storedContentsOfAZipAreKept();
    void largeContentsAreCompressed();
    void whatCannotBeWrittenIsRefused();
    void aFullDiskRefuses();
    void requestToStopIsHeeded();
};

void tst_FreshArchive::sizesAreLimited_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<qint64>("freeBytes");
    QTest::addColumn<bool>("isAccepted");

    const QByteArray megabyte = example().file("demo-main-1/m", QByteArray(MEGABYTE, 'm')).tarGz();
    QTest::newRow("fits") << megabyte << 2 * MEGABYTE << true;
    QTest::newRow("disk too full") << megabyte << MEGABYTE << false;
    QTest::newRow("disk full") << megabyte << qint64(0) << false;
    QTest::newRow("free space unknown") << megabyte << qint64(-1) << true;

    const auto declaring = [](qint64 size) {
        return example().add({.path = "demo-main-1/big", .declaredSize = size}).tarGz();
    };
    QTest::newRow("declares more than 4 GiB") << declaring((Q_INT64_C(4) << 30) + 1) << PLENTY << false;
    QTest::newRow("declares the largest number")
        << declaring(std::numeric_limits<qint64>::max()) << PLENTY << false;
    QTest::newRow("declares a negative number") << declaring(-1'000'000'000'000) << PLENTY << false;

    const auto sparse = [](const QByteArray &size) {
        return TarBuilder()
            .records(
                {{"GNU.sparse.major", "1"},
                 {"GNU.sparse.minor", "0"},
                 {"GNU.sparse.name", "demo/holes"},
                 {"GNU.sparse.realsize", size}})
            .file("demo/GNUSparseFile.0/holes", QByteArray("1\n0\n0\n").leftJustified(512, '\0'))
            .tarGz();
    };
    QTest::newRow("holes") << sparse("1000000") << PLENTY << true;
    QTest::newRow("holes of more than 4 GiB") << sparse("8000000000000") << PLENTY << false;
    QTest::newRow("holes larger than the disk") << sparse("3000000") << 2 * MEGABYTE << false;

    TarBuilder many;
    for (int i = 0; i < 5; ++i) {
        many.records(
                {{"GNU.sparse.major", "1"}, {"GNU.sparse.minor", "0"}, {"GNU.sparse.realsize", "1000000000"}})
            .file("demo/holes", QByteArray("1\n0\n0\n").leftJustified(512, '\0'));
    }
    QTest::newRow("sum beyond 4 GiB") << many.tarGz() << PLENTY << false;
}

void tst_FreshArchive::sizesAreLimited()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const qint64, freeBytes);
    QFETCH(const bool, isAccepted);

    QCOMPARE(vet(archive, freeBytes).isAccepted, isAccepted);
}

void tst_FreshArchive::entriesAreLimited()
{
    const QByteArray entry = TarBuilder().file("f", {}).unfinished();
    const QByteArray entries = gzipped(entry.repeated(1000)).repeated(100);
    const QByteArray end = TarBuilder().tarGz();

    QCOMPARE(vet(entries + end).reason, QString());
    QVERIFY(vet(entries + gzipped(entry) + end).reason.startsWith("too many entries"));
}

void tst_FreshArchive::topDirectoriesAreLimited()
{
    TarBuilder builder;
    for (int i = 0; i < 1'000; ++i)
        builder.file(QByteArray::number(i) + "/f");

    QCOMPARE(vet(builder.tarGz()).reason, QString());
    QVERIFY(vet(builder.file("one/more").tarGz()).reason.startsWith("too many top directories"));
}

void tst_FreshArchive::impliedDirectoriesCount()
{
    const auto implying = [](int files) {
        TarBuilder builder;
        for (int i = 0; i < files; ++i)
            builder.file("d/" + QByteArray::number(i) + QByteArray("/d").repeated(98));
        return builder.tarGz();
    };

    QCOMPARE(vet(implying(1'000)).reason, QString());
    QVERIFY(vet(implying(1'100)).reason.startsWith("too many entries"));
}

void tst_FreshArchive::namesAreLimited_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<bool>("isAccepted");

    const QByteArray level = QByteArray(199, 'd') + '/';
    QTest::newRow("200 levels") << QByteArray("d/").repeated(199) + 'd' << QByteArray("t") << true;
    QTest::newRow("201 levels") << QByteArray("d/").repeated(200) + 'd' << QByteArray("t") << false;
    QTest::newRow("path of 1,999 bytes") << level.repeated(10).first(1999) << QByteArray("t") << true;
    QTest::newRow("path of 2,000 bytes") << level.repeated(10).first(1999) + 'd' << QByteArray("t") << false;
    QTest::newRow("name of 255 bytes") << "d/" + QByteArray(255, 'n') << QByteArray("t") << true;
    QTest::newRow("name of 256 bytes") << "d/" + QByteArray(256, 'n') << QByteArray("t") << false;
    QTest::newRow("target of 1,999 bytes") << QByteArray("d/l") << QByteArray(1999, 't') << true;
    QTest::newRow("target of 2,000 bytes") << QByteArray("d/l") << QByteArray(2000, 't') << false;
}

void tst_FreshArchive::namesAreLimited()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, target);
    QFETCH(const bool, isAccepted);

    QCOMPARE(vet(TarBuilder().symbolicLink(path, target).tarGz()).isAccepted, isAccepted);
}

void tst_FreshArchive::namesInAllAreLimited()
{
    const QByteArray path = "d/" + QByteArray(120, 'd') + '/' + QByteArray(200, 'd');
    const QByteArray thousand = gzipped(TarBuilder().file(path, {}).unfinished().repeated(1000));
    const QByteArray end = TarBuilder().tarGz();

    QCOMPARE(vet(thousand.repeated(99) + end).reason, QString());

    const QByteArray longPath = path + ('/' + QByteArray(200, 'd')).repeated(4);
    const QByteArray longThousand = gzipped(TarBuilder().file(longPath, {}).unfinished().repeated(1000));
    QVERIFY(vet(longThousand.repeated(66) + end).reason.startsWith("names too long"));
}

void tst_FreshArchive::theFreshArchiveHoldsWhatWasAccepted()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");
    const QByteArray name = "demo/" + QByteArray(120, 'n') + "\xe9/" + QByteArray(120, 'm');
    const QByteArray archive = TarBuilder()
                                   .records({{"comment", "c"}}, 'g')
                                   .directory("./")
                                   .directory("./demo/")
                                   .add({.path = "demo/tool", .content = "tool", .mode = 06755})
                                   .add({.path = "demo/secret", .content = "s", .mode = 0})
                                   .add({.path = "demo/locked", .type = '5', .mode = 0555})
                                   .file(name, "long")
                                   .symbolicLink("demo/link", "../outside")
                                   .hardLink("demo/second", "./demo/tool")
                                   .tarGz();

    QCOMPARE(vetArchive(archive, file, PLENTY, {}).reason, QString());

    using Kind = ArchiveEntry::Kind;
    const auto entry
        = [](const QByteArray &path,
             Kind kind,
             int permissions,
             const QByteArray &target = {},
             qint64 size = 0) { return ArchiveEntry{path, kind, target, permissions, 1'700'000'000, size}; };
    QCOMPARE(
        entriesIn(readFile(file)),
        (QList<ArchiveEntry>{
            entry("demo/", Kind::Directory, 0755),
            entry("demo/tool", Kind::File, 0755, {}, 4),
            entry("demo/secret", Kind::File, 0600, {}, 1),
            entry("demo/locked/", Kind::Directory, 0755),
            entry(name, Kind::File, 0644, {}, 4),
            entry("demo/link", Kind::SymbolicLink, 0777, "../outside"),
            entry("demo/second", Kind::HardLink, 0644, "demo/tool"),
        }));
    QCOMPARE(entriesOf(directory.path()), QStringList{"archive.tar.gz"});
}

void tst_FreshArchive::whatTheRegistrationWritesIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<bool>("isLeftOut");

    const auto row = [](const char *name, const TarBuilder &builder, bool isLeftOut) {
        QTest::newRow(name) << builder.tarGz() << isLeftOut;
    };
    const QByteArray manifest = "demo-main-1/examples-manifest.xml";
    const QByteArray picture = "demo-main-1/example-icon.png";
    row("manifest", example().file(manifest), true);
    row("manifest, a link", example().symbolicLink(manifest, "/etc/passwd"), true);
    row("manifest, a hard link", example().hardLink(manifest, "demo-main-1/CMakeLists.txt"), true);
    row("manifest, a directory", example().directory(manifest), true);
    row("manifest, a directory with a file", example().file(manifest + "/x"), true);
    row("the Welcome screen's other manifest", example().file("demo-main-1/demos-manifest.xml"), true);
    row("manifest in capitals", example().file("demo-main-1/Examples-Manifest.XML"), true);
    row("manifest with a long s", example().file("demo-main-1/example\xc5\xbf-manifest.xml"), true);
    row("other manifest with a long s", example().file("demo-main-1/demo\xc5\xbf-manifest.xml"), true);
    row("a name that ends like a manifest's", example().file("demo-main-1/my-manifest.xml"), false);
    row("manifest further down", example().file("demo-main-1/sub/examples-manifest.xml"), false);
    row("picture", example().file(picture), false);
    row("picture, a link", example().symbolicLink(picture, "/etc/passwd"), true);
    row("picture, a directory", example().directory(picture), true);
    row("picture, a directory with a file", example().file(picture + "/x"), true);
}

void tst_FreshArchive::whatTheRegistrationWritesIsLeftOut()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const bool, isLeftOut);
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");

    const ArchiveVerdict verdict = vetArchive(archive, file, PLENTY, {});

    QCOMPARE(verdict.reason, QString());
    QCOMPARE(verdict.topDirectory, "demo-main-1");
    QCOMPARE(entriesIn(readFile(file)).size(), isLeftOut ? 2 : 3);
}

void tst_FreshArchive::timesAreWhatFileSystemsHold_data()
{
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<qint64>("written");

    QTest::newRow("1970") << QByteArray("0") << qint64(0);
    QTest::newRow("2100") << QByteArray("4102444800") << Q_INT64_C(4102444800);
    QTest::newRow("before 1970") << QByteArray("-1") << qint64(0);
    QTest::newRow("part of a second") << QByteArray("1700000000.9") << Q_INT64_C(1700000000);
    QTest::newRow("end of time") << QByteArray("9223372036854775807") << Q_INT64_C(8589934591);
}

void tst_FreshArchive::timesAreWhatFileSystemsHold()
{
    QFETCH(const QByteArray, time);
    QFETCH(const qint64, written);
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");

    QVERIFY(
        vetArchive(TarBuilder().records({{"mtime", time}}).file("d/x").tarGz(), file, PLENTY, {}).isAccepted);

    QCOMPARE(entriesIn(readFile(file)).value(0).time, written);
}

void tst_FreshArchive::holesBecomeZeros()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");
    const QByteArray sparse = TarBuilder()
                                  .records(
                                      {{"GNU.sparse.major", "1"},
                                       {"GNU.sparse.minor", "0"},
                                       {"GNU.sparse.name", "demo/holes"},
                                       {"GNU.sparse.realsize", "200000"}})
                                  .file(
                                      "demo/GNUSparseFile.0/holes",
                                      QByteArray("1\n100000\n4\n").leftJustified(512, '\0') + "data")
                                  .tarGz();

    QCOMPARE(vetArchive(sparse, file, PLENTY, {}).reason, QString());

    ArchiveReader reader(readFile(file), {});
    QCOMPARE(reader.nextEntry()->path, QByteArray("demo/holes"));
    QByteArray content;
    while (const std::optional<ContentPiece> piece = reader.nextPiece())
        content += piece->bytes;
    QCOMPARE(content.size(), 200'000);
    QVERIFY(content == QByteArray(100'000, '\0') + "data" + QByteArray(99'996, '\0'));
}

// Packers store in a zip what does not get smaller.
void tst_FreshArchive::storedContentsOfAZipAreKept()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");
    const QByteArray zip = storedZip("demo/CMakeLists.txt", "content");

    QCOMPARE(vetArchive(zip, file, PLENTY, {}).reason, QString());

    QCOMPARE(entriesIn(readFile(file)).value(0).size, 7);
}

void tst_FreshArchive::largeContentsAreCompressed()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");
    const QByteArray archive = example().file("demo-main-1/zeros", QByteArray(100 * MEGABYTE, '\0')).tarGz();

    QCOMPARE(vetArchive(archive, file, PLENTY, {}).reason, QString());

    QVERIFY(QFileInfo(file).size() > 30 * MEGABYTE);
    QVERIFY(QFileInfo(file).size() < 40 * MEGABYTE);
    QCOMPARE(entriesIn(readFile(file)).size(), 3);
}

void tst_FreshArchive::whatCannotBeWrittenIsRefused()
{
    const QTemporaryDir directory;

    const ArchiveVerdict verdict
        = vetArchive(example().tarGz(), directory.filePath("missing/archive.tar.gz"), PLENTY, {});

    QCOMPARE(verdict.reason, "fresh archive cannot be written");
}

void tst_FreshArchive::aFullDiskRefuses()
{
    const QTemporaryDir directory;
    const QByteArray archive = example().file("demo-main-1/m", QByteArray(MEGABYTE, 'm')).tarGz();

    const ArchiveVerdict verdict = [&] {
        const FileSizeLimit limit(MEGABYTE / 2);
        return vetArchive(archive, directory.filePath("archive.tar.gz"), PLENTY, {});
    }();

    QCOMPARE(verdict.reason, "fresh archive cannot be written");
    QCOMPARE(entriesOf(directory.path()), QStringList());
}

void tst_FreshArchive::requestToStopIsHeeded()
{
    const QTemporaryDir directory;
    std::stop_source stop;
    stop.request_stop();

    const ArchiveVerdict verdict
        = vetArchive(example().tarGz(), directory.filePath("archive.tar.gz"), PLENTY, stop.get_token());

    QCOMPARE(verdict.reason, QStringLiteral("stopped"));
    QCOMPARE(entriesOf(directory.path()), QStringList());
}

QTEST_GUILESS_MAIN(tst_FreshArchive)
#include "tst_fresharchive.moc"
