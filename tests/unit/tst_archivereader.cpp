// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which archives can be read, to their very end.

#include "service/archivereader.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"

#include <archive.h>

#include <QTemporaryDir>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 MEGABYTE = 1024 * 1024;

struct Reading
{
    QList<ArchiveEntry> entries;
    QByteArray contents; // of all, one after the other
    QString fault;
};

Reading read(const QByteArray &archive, const std::stop_token &stop = {})
{
    Reading reading;
    ArchiveReader reader(archive, stop);
    while (const std::optional<ArchiveEntry> entry = reader.nextEntry()) {
        reading.entries.append(*entry);
        while (const std::optional<ContentPiece> piece = reader.nextPiece())
            reading.contents += piece->bytes;
    }
    reading.fault = reader.fault();
    return reading;
}

TarBuilder example()
{
    return TarBuilder().directory("demo-main-1/").file("demo-main-1/CMakeLists.txt");
}

} // namespace

class tst_ArchiveReader final : public QObject
{
    Q_OBJECT

private slots:
    void everyCompressionAndFormatIsRead_data();
    void everyCompressionAndFormatIsRead();
    void otherCompressionsAndFormatsAreRefused_data();
    void otherCompressionsAndFormatsAreRefused();
    void contentsComeWhole();
    void namesComeAsTheyAre();
    void anyTruncationIsRefused_data();
    void anyTruncationIsRefused();
    void tarCutBetweenEntriesIsRefused_data();
    void tarCutBetweenEntriesIsRefused();
    void tarEndsOfAllHonestPackersAreAccepted_data();
    void tarEndsOfAllHonestPackersAreAccepted();
    void whatIsNoArchiveIsRefused_data();
    void whatIsNoArchiveIsRefused();
    void endlessStreamsAreRefused();
    void hugeHeadersAreRefused_data();
    void hugeHeadersAreRefused();
    void noProgramIsStarted_data();
    void noProgramIsStarted();
    void requestToStopIsHeeded();
};

void tst_ArchiveReader::everyCompressionAndFormatIsRead_data()
{
    QTest::addColumn<QByteArray>("archive");

    const QByteArray tar = example().tar();
    QTest::newRow("plain tar") << tar;
    QTest::newRow("gzip") << gzipped(tar);
    QTest::newRow("bzip2") << compressed(tar, ARCHIVE_FILTER_BZIP2);
    QTest::newRow("gzip twice") << gzipped(gzipped(tar));
    QTest::newRow("bzip2 in gzip") << gzipped(compressed(tar, ARCHIVE_FILTER_BZIP2));
    QTest::newRow("gzip of two members") << gzipped(tar.first(700)) + gzipped(tar.mid(700));
    QTest::newRow("bytes behind gzip") << gzipped(tar) + "trailing";

    const QList<TarEntry> entries = {{.path = "demo-main-1/a", .content = "content"}};
    const QByteArray zip = packed(entries, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
    QTest::newRow("zip") << zip;
    QTest::newRow("zip in gzip") << gzipped(zip);
    QTest::newRow("zip in bzip2") << compressed(zip, ARCHIVE_FILTER_BZIP2);
    QTest::newRow("gnu tar") << packed(entries, ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_GZIP);
    QTest::newRow("pax") << packed(entries, ARCHIVE_FORMAT_TAR_PAX_INTERCHANGE, ARCHIVE_FILTER_GZIP);
    QTest::newRow("ustar") << packed(entries, ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP);
}

void tst_ArchiveReader::everyCompressionAndFormatIsRead()
{
    QFETCH(const QByteArray, archive);

    const Reading reading = read(archive);

    QCOMPARE(reading.fault, QString());
    QVERIFY(!reading.entries.isEmpty());
    QVERIFY(reading.entries.constLast().path.startsWith("demo-main-1/"));
    QVERIFY(reading.contents.startsWith("content"));
}

void tst_ArchiveReader::otherCompressionsAndFormatsAreRefused_data()
{
    QTest::addColumn<QByteArray>("archive");

    const QByteArray tar = example().tar();
    QTest::newRow("xz") << compressed(tar, ARCHIVE_FILTER_XZ);
    QTest::newRow("lzma") << compressed(tar, ARCHIVE_FILTER_LZMA);
    QTest::newRow("zstd") << compressed(tar, ARCHIVE_FILTER_ZSTD);
    QTest::newRow("lz4") << compressed(tar, ARCHIVE_FILTER_LZ4);
    QTest::newRow("compress") << compressed(tar, ARCHIVE_FILTER_COMPRESS);
    QTest::newRow("uuencode") << compressed(tar, ARCHIVE_FILTER_UU);
    QTest::newRow("xz in gzip") << gzipped(compressed(tar, ARCHIVE_FILTER_XZ));
    QTest::newRow("gzip in xz") << compressed(gzipped(tar), ARCHIVE_FILTER_XZ);
    QTest::newRow("gzip thrice") << gzipped(gzipped(gzipped(tar)));

    const QList<TarEntry> entries = {{.path = "demo-main-1/a", .content = "content"}};
    for (const auto &[name, format] : std::initializer_list<std::pair<const char *, int>>{
             {"7zip", ARCHIVE_FORMAT_7ZIP},
             {"cpio", ARCHIVE_FORMAT_CPIO_SVR4_NOCRC},
             {"cpio of old", ARCHIVE_FORMAT_CPIO_POSIX},
             {"iso", ARCHIVE_FORMAT_ISO9660},
             {"mtree", ARCHIVE_FORMAT_MTREE},
             {"warc", ARCHIVE_FORMAT_WARC},
             {"xar", ARCHIVE_FORMAT_XAR}}) {
        QTest::addRow("%s", name) << packed(entries, format, ARCHIVE_FILTER_NONE);
        QTest::addRow("%s, gzipped", name) << packed(entries, format, ARCHIVE_FILTER_GZIP);
    }

    QByteArray zip = packed(entries, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
    for (const char *signature : {"PK\x03\x04", "PK\x01\x02"}) // the method of LZMA, in both headers
        zip[zip.indexOf(signature) + (signature[2] == 3 ? 8 : 10)] = 14;
    QTest::newRow("zip with a method of its own") << zip;
    QTest::newRow("program in front of a zip")
        << QByteArray("#!/bin/sh\n") + packed(entries, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
}

void tst_ArchiveReader::otherCompressionsAndFormatsAreRefused()
{
    QFETCH(const QByteArray, archive);
    QVERIFY(archive.size() > 10);

    QVERIFY(!read(archive).fault.isEmpty());
}

void tst_ArchiveReader::contentsComeWhole()
{
    QByteArray large;
    for (int i = 0; large.size() < 3'000'000; ++i)
        large += QByteArray::number(i);
    const QList<TarEntry> entries
        = {{.path = "demo/a", .content = "first"}, {.path = "demo/b", .content = large}, {.path = "demo/c"}};

    for (const int format : {ARCHIVE_FORMAT_TAR_PAX_INTERCHANGE, ARCHIVE_FORMAT_ZIP}) {
        const Reading reading = read(packed(entries, format, ARCHIVE_FILTER_GZIP));

        QCOMPARE(reading.fault, QString());
        QCOMPARE(reading.entries.size(), 3);
        QCOMPARE(reading.entries.at(1).size, large.size());
        QVERIFY(reading.contents == "first" + large);
    }
}

void tst_ArchiveReader::namesComeAsTheyAre()
{
    const QByteArray raw = "demo/caf\xe9" + QByteArray(150, '\xff');

    const Reading reading
        = read(TarBuilder().file("demo/caf\xe9").file(raw).symbolicLink("demo/l", raw).tarGz());

    QCOMPARE(reading.fault, QString());
    QCOMPARE(reading.entries.at(0).path, QByteArray("demo/caf\xe9"));
    QCOMPARE(reading.entries.at(1).path, raw);
    QCOMPARE(reading.entries.at(2).target, raw);
}

void tst_ArchiveReader::anyTruncationIsRefused_data()
{
    QTest::addColumn<QByteArray>("archive");

    const TarBuilder builder = example().file("demo-main-1/noise", [] {
        QByteArray noise;
        for (quint32 i = 1, x = 1; i < 3000; ++i)
            noise.append(char((x = x * 1664525 + 1013904223) >> 24));
        return noise;
    }());
    QTest::newRow("gzip") << gzipped(builder.tar());
    QTest::newRow("bzip2") << compressed(builder.tar(), ARCHIVE_FILTER_BZIP2);
    QTest::newRow("gzip in gzip") << gzipped(gzipped(builder.tar()));
    QTest::newRow("zip") << packed(
        {{.path = "a/b", .content = "content"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
}

void tst_ArchiveReader::anyTruncationIsRefused()
{
    QFETCH(const QByteArray, archive);
    QCOMPARE(read(archive).fault, QString());

    QList<qsizetype> accepted;
    for (qsizetype size = 0; size < archive.size(); size += size < archive.size() - 64 ? 7 : 1) {
        if (read(archive.first(size)).fault.isEmpty())
            accepted.append(size);
    }

    QCOMPARE(accepted, QList<qsizetype>());
}

void tst_ArchiveReader::tarCutBetweenEntriesIsRefused_data()
{
    QTest::addColumn<QByteArray>("tar");

    const QByteArray zeros(1024, '\0');
    const TarBuilder global = TarBuilder().records({{"comment", "4f0c1d6a"}}, 'g');
    QTest::newRow("at the start") << QByteArray();
    QTest::newRow("behind the global header") << global.unfinished();
    QTest::newRow("behind a directory") << TarBuilder().directory("demo/").unfinished();
    QTest::newRow("behind a file") << example().unfinished();
    QTest::newRow("behind a file of zeros") << example().file("demo-main-1/zeros", zeros).unfinished();
    QTest::newRow("behind an empty file") << example().file("demo-main-1/empty", {}).unfinished();
    QTest::newRow("behind a link") << example().symbolicLink("demo-main-1/l", "x").unfinished();
    QTest::newRow("behind a record") << example().records({{"path", "demo-main-1/long"}}).unfinished();
    QTest::newRow("within the end marker") << example().unfinished() + QByteArray(100, '\0');
}

void tst_ArchiveReader::tarCutBetweenEntriesIsRefused()
{
    QFETCH(const QByteArray, tar);

    QVERIFY(!read(gzipped(tar)).fault.isEmpty());
    QVERIFY(!read(tar).fault.isEmpty());
    QVERIFY(!read(compressed(tar, ARCHIVE_FILTER_BZIP2)).fault.isEmpty());
}

void tst_ArchiveReader::tarEndsOfAllHonestPackersAreAccepted_data()
{
    QTest::addColumn<QByteArray>("tar");

    const QByteArray tar = example().unfinished();
    QTest::newRow("one zero block") << tar + QByteArray(512, '\0');
    QTest::newRow("two zero blocks") << tar + QByteArray(1024, '\0');
    QTest::newRow("padded to a record") << example().tar();
    QTest::newRow("padded to a megabyte") << tar + QByteArray(MEGABYTE - tar.size(), '\0');
    QTest::newRow("old buffer behind the marker") << tar + QByteArray(1024, '\0') + QByteArray(8000, 'b');
    QTest::newRow("file of zeros last")
        << example().file("demo-main-1/zeros", QByteArray(1024, '\0')).unfinished() + QByteArray(1024, '\0');
}

void tst_ArchiveReader::tarEndsOfAllHonestPackersAreAccepted()
{
    QFETCH(const QByteArray, tar);

    QCOMPARE(read(gzipped(tar)).fault, QString());
    QCOMPARE(read(tar).fault, QString());
}

void tst_ArchiveReader::whatIsNoArchiveIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("nothing, gzipped") << gzipped({});
    QTest::newRow("html") << QByteArray("<!DOCTYPE html><html><body>Sign in</body></html>");
    QTest::newRow("json") << QByteArray(R"({"message":"404 File Not Found"})");
    QTest::newRow("text, gzipped") << gzipped("Retry later\n");
    QTest::newRow("zeros") << QByteArray(300, '\0');
    const QByteArray zip = packed({{.path = "a/b", .content = "c"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
    QTest::newRow("zip without its directory, as in a stream") << zip.first(zip.indexOf("PK\x01\x02"));
    QTest::newRow("the same, gzipped") << gzipped(zip.first(zip.indexOf("PK\x01\x02")));
    QTest::newRow("broken header behind a good entry")
        << gzipped(example().unfinished() + QByteArray(512, 'x') + QByteArray(1024, '\0'));
}

void tst_ArchiveReader::whatIsNoArchiveIsRefused()
{
    QFETCH(const QByteArray, bytes);

    QVERIFY(!read(bytes).fault.isEmpty());
}

void tst_ArchiveReader::endlessStreamsAreRefused()
{
    // 200 MiB of zeros behind the end marker, twenty times the same piece of 10 MiB.
    const QByteArray zeros = gzipped(QByteArray(10 * MEGABYTE, '\0'));

    QCOMPARE(read(example().tarGz() + zeros.repeated(20)).fault, QStringLiteral("endless"));
}

void tst_ArchiveReader::hugeHeadersAreRefused_data()
{
    QTest::addColumn<QByteArray>("archive");

    const QByteArray value(9 * MEGABYTE, 'v');
    QTest::newRow("record") << example().records({{"comment", value}}).file("demo-main-1/a").tarGz();
    QTest::newRow("sparse map") << [] {
        QByteArray map = "2000000\n";
        for (int i = 0; i < 2'000'000; ++i)
            map += QByteArray::number(i) + "\n0\n";
        return TarBuilder()
            .records(
                {{"GNU.sparse.major", "1"}, {"GNU.sparse.minor", "0"}, {"GNU.sparse.realsize", "2000000"}})
            .file("demo/holes", map)
            .tarGz();
    }();
    TarBuilder many;
    for (int i = 0; i < 20'000; ++i)
        many.records({{"comment", "x"}}, 'g');
    QTest::newRow("many records") << many.file("demo/a").tarGz();
}

void tst_ArchiveReader::hugeHeadersAreRefused()
{
    QFETCH(const QByteArray, archive);

    QVERIFY(!read(archive).fault.isEmpty());
}

void tst_ArchiveReader::noProgramIsStarted_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QString>("program");

    QTest::newRow("lrzip") << QByteArray("LRZI\x00\x06", 6) << QStringLiteral("lrzip");
    QTest::newRow("grzip") << QByteArray("GRZipII\x00\x02\x04:)", 12) << QStringLiteral("grzip");
    QTest::newRow("lzop") << QByteArray("\x89LZO\x00\x0d\x0a\x1a\x0a", 9) << QStringLiteral("lzop");
}

void tst_ArchiveReader::noProgramIsStarted()
{
    QFETCH(const QByteArray, signature);
    QFETCH(const QString, program);
    const QTemporaryDir directory;
    const QByteArray trace = directory.filePath(QStringLiteral("started")).toLocal8Bit();
    const QString script = directory.filePath(program);
    writeFile(script, "#!/bin/sh\n: > " + trace + "\nexec cat\n");
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", QByteArray(directory.path().toLocal8Bit() + ':' + searchPath));

    const Reading reading = read(signature + example().tar());

    qputenv("PATH", searchPath);
    QVERIFY(!reading.fault.isEmpty());
    QVERIFY(!QFile::exists(QString::fromLocal8Bit(trace)));
}

void tst_ArchiveReader::requestToStopIsHeeded()
{
    std::stop_source stop;
    stop.request_stop();

    const Reading reading = read(example().tarGz(), stop.get_token());

    QCOMPARE(reading.entries.size(), 0);
    QCOMPARE(reading.fault, QStringLiteral("stopped"));
}

QTEST_GUILESS_MAIN(tst_ArchiveReader)
#include "tst_archivereader.moc"
