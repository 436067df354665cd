// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which archives are let through to the unarchiver.

#include "service/archivevetting.h"

#include "common/archivebuilder.h"

#include <archive.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 PLENTY = Q_INT64_C(100) * 1024 * 1024 * 1024;
constexpr qint64 MEGABYTE = 1024 * 1024;

ArchiveVerdict vet(const QByteArray &archive, qint64 freeBytes = PLENTY)
{
    return vetArchive(archive, freeBytes, {});
}

TarBuilder example()
{
    return TarBuilder().directory("demo-main-1/").file("demo-main-1/CMakeLists.txt");
}

QByteArray run(const QString &directory, const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("GIT_CONFIG_GLOBAL"), QStringLiteral("/dev/null"));
    environment.insert(QStringLiteral("GIT_CONFIG_NOSYSTEM"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    const bool isFinished = process.waitForFinished();
    if (!isFinished || process.exitCode() != 0)
        qWarning() << program << arguments << process.errorString() << process.readAllStandardError();
    return process.readAllStandardOutput();
}

void git(const QString &directory, const QStringList &arguments)
{
    run(directory, QStringLiteral("git"), arguments);
}

/** Can hold names that are not UTF-8, which QTemporaryDir leaves behind. */
class RawDirectory
{
public:
    RawDirectory() { m_directory.setAutoRemove(false); }
    ~RawDirectory() { std::filesystem::remove_all(m_directory.path().toStdString()); }
    Q_DISABLE_COPY_MOVE(RawDirectory)

    [[nodiscard]] QString path() const { return m_directory.path(); }

private:
    QTemporaryDir m_directory;
};

bool writeFile(const QByteArray &path, const QByteArray &content)
{
    FILE *file = fopen(path.constData(), "wb");
    return file && fwrite(content.constData(), 1, size_t(content.size()), file) == size_t(content.size())
           && fclose(file) == 0;
}

} // namespace

class tst_ArchiveVetting final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void honestArchivesAreAccepted_data();
    void honestArchivesAreAccepted();
    void archiveOfARealRepositoryIsAccepted();
    void everyCompressionAndFormatIsRead_data();
    void everyCompressionAndFormatIsRead();
    void namesThatAreNotUtf8AreKept();

    void hostileEntriesAreRefused_data();
    void hostileEntriesAreRefused();
    void withoutATopDirectoryLinksMustStayInside_data();
    void withoutATopDirectoryLinksMustStayInside();
    void withoutATopDirectoryThePathsAreReported();
    void inTheZipDirectoryHiddenLinksAreSeen();

    void anyTruncationIsRefused_data();
    void anyTruncationIsRefused();
    void tarCutBetweenEntriesIsRefused_data();
    void tarCutBetweenEntriesIsRefused();
    void tarEndsOfAllHonestPackersAreAccepted_data();
    void tarEndsOfAllHonestPackersAreAccepted();
    void whatIsNoArchiveIsRefused_data();
    void whatIsNoArchiveIsRefused();

    void sizesAreLimited_data();
    void sizesAreLimited();
    void entriesAreLimited();
    void namesAreLimited();
    void endlessStreamsAreRefused();
    void noProgramIsStarted_data();
    void noProgramIsStarted();
    void requestToStopIsHeeded();

    void linksOnDiskAreFound_data();
    void linksOnDiskAreFound();
    void linksOnDiskOfRawNamesAreFound();
};

void tst_ArchiveVetting::honestArchivesAreAccepted_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QByteArray>("topDirectory");

    const QByteArray top = "demo-main-1";
    QTest::newRow("one file") << example().tarGz() << top;
    QTest::newRow("directory entries missing") << TarBuilder().file("demo-main-1/a/b/c.txt").tarGz() << top;
    QTest::newRow("top directory only") << TarBuilder().directory("demo-main-1/").tarGz() << top;
    QTest::newRow("top directory last")
        << TarBuilder().file("demo-main-1/a").directory("demo-main-1").tarGz() << top;
    QTest::newRow("leading dot") << TarBuilder().directory("./").file("./demo-main-1/./a//b").tarGz() << top;
    QTest::newRow("global header")
        << TarBuilder().records({{"comment", "4f0c1d6a"}}, 'g').file("demo-main-1/a").tarGz() << top;
    QTest::newRow("name in the global header, which means nothing")
        << TarBuilder().records({{"path", "../evil"}}, 'g').file("demo-main-1/a").tarGz() << top;
    QTest::newRow("two dots in a name") << TarBuilder().file("demo-main-1/..a/b../...").tarGz() << top;
    QTest::newRow("long name") << TarBuilder().file("demo-main-1/" + QByteArray(250, 'n')).tarGz() << top;
    QTest::newRow("same file twice") << example().file("demo-main-1/CMakeLists.txt").tarGz() << top;
    QTest::newRow("setuid file") << example().add({.path = "demo-main-1/tool", .mode = 04755}).tarGz() << top;

    QTest::newRow("link inside") << example().symbolicLink("demo-main-1/l", "CMakeLists.txt").tarGz() << top;
    QTest::newRow("dangling link") << example().symbolicLink("demo-main-1/l", "nowhere").tarGz() << top;
    QTest::newRow("link out") << example().symbolicLink("demo-main-1/l", "../../../etc").tarGz() << top;
    QTest::newRow("absolute link") << example().symbolicLink("demo-main-1/l", "/etc/passwd").tarGz() << top;
    QTest::newRow("link beside a longer name") << example()
                                                      .symbolicLink("demo-main-1/l", "/etc")
                                                      .file("demo-main-1/l.txt")
                                                      .file("demo-main-1/l0/x")
                                                      .tarGz()
                                               << top;
    QTest::newRow("hard link") << example().hardLink("demo-main-1/h", "demo-main-1/CMakeLists.txt").tarGz()
                               << top;
    QTest::newRow("hard link to a link") << example()
                                                .symbolicLink("demo-main-1/l", "/etc")
                                                .hardLink("demo-main-1/h", "./demo-main-1/l")
                                                .tarGz()
                                         << top;

    QTest::newRow("several top directories") << TarBuilder().file("a/x").file("b/x").tarGz() << QByteArray();
    QTest::newRow("file at the top") << TarBuilder().file("readme").tarGz() << QByteArray();
    QTest::newRow("no entry") << TarBuilder().tarGz() << QByteArray();
}

void tst_ArchiveVetting::honestArchivesAreAccepted()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QByteArray, topDirectory);

    const ArchiveVerdict verdict = vet(archive);

    QCOMPARE(verdict.reason, QString());
    QVERIFY(verdict.isAccepted);
    QCOMPARE(verdict.topDirectory, topDirectory);
}

void tst_ArchiveVetting::archiveOfARealRepositoryIsAccepted()
{
    const RawDirectory directory;
    const QString path = directory.path();
    const QByteArray base = path.toLocal8Bit() + '/';
    git(path, {QStringLiteral("init"), QStringLiteral("-q")});
    QVERIFY(QDir(path).mkpath(QString(120, u'd') + u'/' + QString(120, u'e')));
    QVERIFY(writeFile(base + QByteArray(120, 'd') + '/' + QByteArray(120, 'e') + "/file", "deep"));
    QVERIFY(writeFile(base + "CMakeLists.txt", "project(demo)\n"));
    QVERIFY(writeFile(base + "caf\xe9.txt", "latin 1\n"));
    QVERIFY(writeFile(base + "caf\xc3\xa9.txt", "utf-8\n"));
    QVERIFY(writeFile(base + "empty", ""));
    QVERIFY(QFile::link(QStringLiteral("../outside"), path + QStringLiteral("/link")));
    QVERIFY(QFile::link(QString(150, u't'), path + QStringLiteral("/longlink")));
    git(path, {QStringLiteral("add"), QStringLiteral(".")});
    git(path,
        {QStringLiteral("-c"),
         QStringLiteral("user.name=n"),
         QStringLiteral("-c"),
         QStringLiteral("user.email=e"),
         QStringLiteral("commit"),
         QStringLiteral("-q"),
         QStringLiteral("-m"),
         QStringLiteral("m")});

    const QByteArray archive = run(
        path,
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("git archive --prefix=demo-main-1/ HEAD | gzip -n")});
    const ArchiveVerdict verdict = vet(archive);

    QVERIFY(archive.size() > 200);
    QCOMPARE(verdict.reason, QString());
    QVERIFY(verdict.isAccepted);
    QCOMPARE(verdict.topDirectory, QByteArray("demo-main-1"));
}

void tst_ArchiveVetting::everyCompressionAndFormatIsRead_data()
{
    QTest::addColumn<QByteArray>("archive");

    const QByteArray tar = example().tar();
    QTest::newRow("plain tar") << tar;
    QTest::newRow("bzip2") << compressed(tar, ARCHIVE_FILTER_BZIP2);
    QTest::newRow("xz") << compressed(tar, ARCHIVE_FILTER_XZ);
    QTest::newRow("zstd") << compressed(tar, ARCHIVE_FILTER_ZSTD);
    QTest::newRow("lz4") << compressed(tar, ARCHIVE_FILTER_LZ4);
    QTest::newRow("compress") << compressed(tar, ARCHIVE_FILTER_COMPRESS);
    QTest::newRow("gzip twice") << gzipped(gzipped(tar));
    QTest::newRow("gzip of two members") << gzipped(tar.first(700)) + gzipped(tar.mid(700));
    QTest::newRow("bytes behind gzip") << gzipped(tar) + "trailing";

    const QList<TarEntry> entries = {{.path = "demo-main-1/a", .content = "content"}};
    QTest::newRow("zip") << packed(entries, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
    QTest::newRow("7zip") << packed(entries, ARCHIVE_FORMAT_7ZIP, ARCHIVE_FILTER_NONE);
    QTest::newRow("cpio") << packed(entries, ARCHIVE_FORMAT_CPIO_SVR4_NOCRC, ARCHIVE_FILTER_GZIP);
    QTest::newRow("gnu tar") << packed(entries, ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_GZIP);
    QTest::newRow("pax") << packed(entries, ARCHIVE_FORMAT_TAR_PAX_INTERCHANGE, ARCHIVE_FILTER_GZIP);
}

void tst_ArchiveVetting::everyCompressionAndFormatIsRead()
{
    QFETCH(const QByteArray, archive);

    const ArchiveVerdict verdict = vet(archive);

    QCOMPARE(verdict.reason, QString());
    QCOMPARE(verdict.topDirectory, QByteArray("demo-main-1"));
}

void tst_ArchiveVetting::namesThatAreNotUtf8AreKept()
{
    const QByteArray top = "caf\xe9";

    const ArchiveVerdict header = vet(TarBuilder().file(top + "/\xff\xfe").tarGz());
    const ArchiveVerdict record = vet(TarBuilder().file(top + "/\xff\xfe" + QByteArray(150, '\xe9')).tarGz());
    const ArchiveVerdict link = vet(
        TarBuilder().file(top + "/x").hardLink(top + "/h", "else\xff" + QByteArray(150, '\xe9')).tarGz());

    QCOMPARE(header.topDirectory, top);
    QCOMPARE(record.topDirectory, top);
    QVERIFY(!link.isAccepted);
}

void tst_ArchiveVetting::hostileEntriesAreRefused_data()
{
    QTest::addColumn<QByteArray>("archive");

    QTest::newRow("climbing") << example().file("../evil").tarGz();
    QTest::newRow("climbing from below") << example().file("demo-main-1/a/../../../evil").tarGz();
    QTest::newRow("climbing within") << example().file("demo-main-1/a/../b").tarGz();
    QTest::newRow("climbing at the end") << example().directory("demo-main-1/..").tarGz();
    QTest::newRow("absolute") << example().file("/tmp/evil").tarGz();
    QTest::newRow("two slashes") << example().file("//tmp/evil").tarGz();
    QTest::newRow("climbing by a record")
        << example().records({{"path", "../evil"}}).file("demo-main-1/innocent").tarGz();
    QTest::newRow("climbing by a GNU long name")
        << example()
               .add({.path = "././@LongLink", .type = 'L', .content = QByteArray("../evil\0", 8)})
               .file("demo-main-1/innocent")
               .tarGz();
    QTest::newRow("climbing by the prefix field") << packed(
        {{.path = "../" + QByteArray(90, 'd') + "/" + QByteArray(90, 'f')}},
        ARCHIVE_FORMAT_TAR_USTAR,
        ARCHIVE_FILTER_GZIP);
    QTest::newRow("nameless file")
        << example().file("./").add({.path = ".", .type = '2', .target = "x"}).tarGz();
    QTest::newRow("empty name") << example().file("").tarGz();

    QTest::newRow("below a link")
        << example().symbolicLink("demo-main-1/l", "/tmp").file("demo-main-1/l/evil").tarGz();
    QTest::newRow("below a link that comes later")
        << example().file("demo-main-1/l/evil").symbolicLink("demo-main-1/l", "/tmp").tarGz();
    QTest::newRow("far below a link")
        << example().symbolicLink("demo-main-1/l", "/tmp").file("demo-main-1/l/a/b/c/evil").tarGz();
    QTest::newRow("below a link, spelled otherwise")
        << example().symbolicLink("demo-main-1/./l/", "/tmp").file("./demo-main-1//l/evil").tarGz();
    QTest::newRow("below a link, a similar name between") << example()
                                                                 .symbolicLink("demo-main-1/l", "/tmp")
                                                                 .file("demo-main-1/l-x")
                                                                 .file("demo-main-1/l!/y")
                                                                 .file("demo-main-1/l/evil")
                                                                 .tarGz();
    QTest::newRow("over a link")
        << example().symbolicLink("demo-main-1/l", "/tmp/evil").file("demo-main-1/l").tarGz();
    QTest::newRow("link over a file")
        << example().file("demo-main-1/l").symbolicLink("demo-main-1/l", "/tmp/evil").tarGz();
    QTest::newRow("link over a link")
        << example().symbolicLink("demo-main-1/l", "a").symbolicLink("demo-main-1/l", "/tmp").tarGz();
    QTest::newRow("top directory a link, entries below")
        << TarBuilder().symbolicLink("demo-main-1", "/tmp").file("demo-main-1/evil").tarGz();

    QTest::newRow("hard link out") << example().hardLink("demo-main-1/h", "../victim").tarGz();
    QTest::newRow("hard link to an absolute path")
        << example().hardLink("demo-main-1/h", "/etc/passwd").tarGz();
    QTest::newRow("hard link to a neighbour") << example().hardLink("demo-main-1/h", "other/file").tarGz();
    QTest::newRow("hard link to a similar neighbour")
        << example().hardLink("demo-main-1/h", "demo-main-10/file").tarGz();
    QTest::newRow("hard link to the top itself")
        << example().hardLink("demo-main-1/h", "demo-main-1").tarGz();
    QTest::newRow("hard link through a link") << example()
                                                     .symbolicLink("demo-main-1/l", "/etc")
                                                     .hardLink("demo-main-1/h", "demo-main-1/l/passwd")
                                                     .tarGz();
    QTest::newRow("below a hard link to a link") << example()
                                                        .symbolicLink("demo-main-1/l", "/tmp")
                                                        .hardLink("demo-main-1/h", "demo-main-1/l")
                                                        .file("demo-main-1/h/evil")
                                                        .tarGz();
    QTest::newRow("below a hard link to a hard link to a link, backwards")
        << example()
               .file("demo-main-1/h2/evil")
               .hardLink("demo-main-1/h2", "demo-main-1/h1")
               .hardLink("demo-main-1/h1", "demo-main-1/l")
               .symbolicLink("demo-main-1/l", "/tmp")
               .tarGz();
    QTest::newRow("over a hard link to a link") << example()
                                                       .symbolicLink("demo-main-1/l", "/tmp/evil")
                                                       .hardLink("demo-main-1/h", "demo-main-1/l")
                                                       .file("demo-main-1/h")
                                                       .tarGz();

    QTest::newRow("character device") << example().add({.path = "demo-main-1/d", .type = '3'}).tarGz();
    QTest::newRow("block device") << example().add({.path = "demo-main-1/d", .type = '4'}).tarGz();
    QTest::newRow("pipe") << example().add({.path = "demo-main-1/d", .type = '6'}).tarGz();
    QTest::newRow("socket in cpio") << [] {
        QByteArray cpio = packed({{.path = "demo/d"}}, ARCHIVE_FORMAT_CPIO_SVR4_NOCRC, ARCHIVE_FILTER_NONE);
        return cpio.replace(14, 8, "0000c1a4"); // the mode field of the first header
    }();
}

void tst_ArchiveVetting::hostileEntriesAreRefused()
{
    QFETCH(const QByteArray, archive);

    const ArchiveVerdict verdict = vet(archive);

    QVERIFY(!verdict.isAccepted);
    QVERIFY(!verdict.reason.isEmpty());
    QCOMPARE(verdict.topDirectory, QByteArray());
}

void tst_ArchiveVetting::withoutATopDirectoryLinksMustStayInside_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<bool>("isAccepted");

    const TarBuilder two = TarBuilder().file("a/x").file("b/x");
    const auto with = [&two](const QByteArray &link, const QByteArray &target) {
        return TarBuilder(two).symbolicLink(link, target).tarGz();
    };
    QTest::newRow("to a neighbour") << with("a/l", "x") << true;
    QTest::newRow("to the other directory") << with("a/l", "../b/x") << true;
    QTest::newRow("dangling inside") << with("a/l", "nothing") << true;
    QTest::newRow("at the top, inside") << with("l", "a/x") << true;
    QTest::newRow("to its own directory") << with("a/l", ".") << true;
    QTest::newRow("absolute") << with("a/l", "/etc") << false;
    QTest::newRow("one too many up") << with("a/l", "../../x") << false;
    QTest::newRow("up from the top") << with("l", "..") << false;
    QTest::newRow("to the directory of all") << with("a/l", "..") << false;
    QTest::newRow("to what the archive has not brought") << with("a/l", "../c/x") << false;
    QTest::newRow("down and up again") << with("a/l", "../b/../../x") << false;
    QTest::newRow("up behind a dot") << with("a/l", "./../../x") << false;
    QTest::newRow("up behind two slashes") << with("a/l", "..//../x") << false;
    QTest::newRow("link as the only entry") << TarBuilder().symbolicLink("demo", "/tmp").tarGz() << false;
    QTest::newRow("top both link and directory")
        << TarBuilder().directory("demo").symbolicLink("demo", "/tmp").tarGz() << false;
    QTest::newRow("second name of a link out")
        << TarBuilder(two).symbolicLink("a/b/c/l", "../../x").hardLink("l", "a/b/c/l").tarGz() << false;
    QTest::newRow("hard link inside") << TarBuilder(two).hardLink("b/h", "a/x").tarGz() << true;
    QTest::newRow("hard link to what the archive has not brought")
        << TarBuilder(two).hardLink("b/h", "a/y").tarGz() << false;
}

void tst_ArchiveVetting::withoutATopDirectoryLinksMustStayInside()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const bool, isAccepted);

    const ArchiveVerdict verdict = vet(archive);

    QCOMPARE(verdict.isAccepted, isAccepted);
    QCOMPARE(verdict.topDirectory, QByteArray());
}

void tst_ArchiveVetting::withoutATopDirectoryThePathsAreReported()
{
    const ArchiveVerdict several = vet(TarBuilder().file("./a//x").symbolicLink("b/l", "../a/y/z").tarGz());
    const ArchiveVerdict one = vet(example().tarGz());

    QCOMPARE(several.entries, (QList<QByteArray>{"a/x", "b/l", "a/y/z"}));
    QCOMPARE(one.entries, QList<QByteArray>());
}

// A zip tells only in its directory, at the end, that an entry is a link.
void tst_ArchiveVetting::inTheZipDirectoryHiddenLinksAreSeen()
{
    const QByteArray archive = packed(
        {{.path = "demo/l", .type = '2', .target = "/tmp"}, {.path = "demo/l/evil", .content = "x"}},
        ARCHIVE_FORMAT_ZIP,
        ARCHIVE_FILTER_NONE);

    QVERIFY(!vet(archive).isAccepted);
}

void tst_ArchiveVetting::anyTruncationIsRefused_data()
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
    QTest::newRow("xz") << compressed(builder.tar(), ARCHIVE_FILTER_XZ);
    QTest::newRow("zstd") << compressed(builder.tar(), ARCHIVE_FILTER_ZSTD);
    QTest::newRow("gzip in gzip") << gzipped(gzipped(builder.tar()));
    QTest::newRow("zip") << packed(
        {{.path = "a/b", .content = "content"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
}

void tst_ArchiveVetting::anyTruncationIsRefused()
{
    QFETCH(const QByteArray, archive);
    QVERIFY(vet(archive).isAccepted);

    QList<qsizetype> accepted;
    for (qsizetype size = 0; size < archive.size(); size += size < archive.size() - 64 ? 7 : 1) {
        if (vet(archive.first(size)).isAccepted)
            accepted.append(size);
    }

    QCOMPARE(accepted, QList<qsizetype>());
}

void tst_ArchiveVetting::tarCutBetweenEntriesIsRefused_data()
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

void tst_ArchiveVetting::tarCutBetweenEntriesIsRefused()
{
    QFETCH(const QByteArray, tar);

    QVERIFY(!vet(gzipped(tar)).isAccepted);
    QVERIFY(!vet(tar).isAccepted);
    QVERIFY(!vet(compressed(tar, ARCHIVE_FILTER_XZ)).isAccepted);
}

void tst_ArchiveVetting::tarEndsOfAllHonestPackersAreAccepted_data()
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

void tst_ArchiveVetting::tarEndsOfAllHonestPackersAreAccepted()
{
    QFETCH(const QByteArray, tar);

    QCOMPARE(vet(gzipped(tar)).reason, QString());
    QCOMPARE(vet(tar).reason, QString());
}

void tst_ArchiveVetting::whatIsNoArchiveIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("nothing, gzipped") << gzipped({});
    QTest::newRow("html") << QByteArray("<!DOCTYPE html><html><body>Sign in</body></html>");
    QTest::newRow("json") << QByteArray(R"({"message":"404 File Not Found"})");
    QTest::newRow("text, gzipped") << gzipped("Retry later\n");
    QTest::newRow("zeros") << QByteArray(300, '\0');
    QTest::newRow("zip without its directory, as in a stream")
        << gzipped(packed({{.path = "a/b", .content = "c"}}, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE));
    QTest::newRow("gzip thrice") << gzipped(gzipped(gzipped(example().tar())));
    QTest::newRow("broken header behind a good entry")
        << gzipped(example().unfinished() + QByteArray(512, 'x') + QByteArray(1024, '\0'));
}

void tst_ArchiveVetting::whatIsNoArchiveIsRefused()
{
    QFETCH(const QByteArray, bytes);

    QVERIFY(!vet(bytes).isAccepted);
}

void tst_ArchiveVetting::sizesAreLimited_data()
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

void tst_ArchiveVetting::sizesAreLimited()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const qint64, freeBytes);
    QFETCH(const bool, isAccepted);

    QCOMPARE(vet(archive, freeBytes).isAccepted, isAccepted);
}

void tst_ArchiveVetting::entriesAreLimited()
{
    const QByteArray entry = TarBuilder().file("demo/f", {}).unfinished();
    const QByteArray entries = gzipped(entry.repeated(1000)).repeated(100);
    const QByteArray end = TarBuilder().tarGz();

    QCOMPARE(vet(entries + end).reason, QString());
    QVERIFY(!vet(entries + gzipped(entry) + end).isAccepted);
}

void tst_ArchiveVetting::namesAreLimited()
{
    const auto nested
        = [](int depth) { return TarBuilder().file("demo/" + QByteArray("d/").repeated(depth) + "f"); };
    const QByteArray thousand = gzipped(nested(2000).unfinished().repeated(1000));

    QVERIFY(vet(nested(2000).tarGz()).isAccepted);
    QVERIFY(!vet(nested(2100).tarGz()).isAccepted);
    QVERIFY(!vet(thousand.repeated(20) + TarBuilder().tarGz()).isAccepted);
}

void tst_ArchiveVetting::endlessStreamsAreRefused()
{
    // 200 MiB of zeros behind the end marker, twenty times the same piece of 10 MiB.
    const QByteArray zeros = gzipped(QByteArray(10 * MEGABYTE, '\0'));

    QCOMPARE(vet(example().tarGz() + zeros.repeated(20)).reason, QStringLiteral("endless"));
}

void tst_ArchiveVetting::noProgramIsStarted_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QString>("program");

    QTest::newRow("lrzip") << QByteArray("LRZI\x00\x06", 6) << QStringLiteral("lrzip");
    QTest::newRow("grzip") << QByteArray("GRZipII\x00\x02\x04:)", 12) << QStringLiteral("grzip");
    QTest::newRow("lzop") << QByteArray("\x89LZO\x00\x0d\x0a\x1a\x0a", 9) << QStringLiteral("lzop");
}

void tst_ArchiveVetting::noProgramIsStarted()
{
    QFETCH(const QByteArray, signature);
    QFETCH(const QString, program);
    const QTemporaryDir directory;
    const QByteArray trace = directory.filePath(QStringLiteral("started")).toLocal8Bit();
    const QByteArray script = directory.filePath(program).toLocal8Bit();
    QVERIFY(writeFile(script, "#!/bin/sh\n: > " + trace + "\nexec cat\n"));
    QCOMPARE(chmod(script.constData(), 0755), 0);
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", QByteArray(directory.path().toLocal8Bit() + ':' + searchPath));

    const ArchiveVerdict verdict = vet(signature + example().tar());

    qputenv("PATH", searchPath);
    QVERIFY(!verdict.isAccepted);
    QVERIFY(!QFile::exists(QString::fromLocal8Bit(trace)));
}

void tst_ArchiveVetting::requestToStopIsHeeded()
{
    std::stop_source stop;
    stop.request_stop();

    const ArchiveVerdict verdict = vetArchive(example().tarGz(), PLENTY, stop.get_token());

    QVERIFY(!verdict.isAccepted);
    QCOMPARE(verdict.reason, QStringLiteral("stopped"));
}

void tst_ArchiveVetting::linksOnDiskAreFound_data()
{
    QTest::addColumn<QList<QByteArray>>("entries");
    QTest::addColumn<bool>("isFound");

    QTest::newRow("no entries") << QList<QByteArray>{} << false;
    QTest::newRow("new path") << QList<QByteArray>{"new/a/b"} << false;
    QTest::newRow("over a file") << QList<QByteArray>{"dir/file"} << false;
    QTest::newRow("over a link") << QList<QByteArray>{"dir/link"} << true;
    QTest::newRow("over a dangling link") << QList<QByteArray>{"dir/dangling"} << true;
    QTest::newRow("below a link") << QList<QByteArray>{"new", "dir/link/a/b"} << true;
    QTest::newRow("beside a link") << QList<QByteArray>{"dir/file", "dir/link2/a"} << false;
}

void tst_ArchiveVetting::linksOnDiskAreFound()
{
    QFETCH(const QList<QByteArray>, entries);
    QFETCH(const bool, isFound);
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkpath(QStringLiteral("real/dir")));
    QVERIFY(
        QFile::link(directory.filePath(QStringLiteral("real")), directory.filePath(QStringLiteral("data"))));
    QVERIFY(writeFile(directory.filePath(QStringLiteral("real/dir/file")).toLocal8Bit(), "x"));
    QVERIFY(QFile::link(QStringLiteral("/tmp"), directory.filePath(QStringLiteral("real/dir/link"))));
    QVERIFY(QFile::link(QStringLiteral("gone"), directory.filePath(QStringLiteral("real/dir/dangling"))));

    QCOMPARE(leadsThroughLink(directory.filePath(QStringLiteral("data")), entries), isFound);
}

void tst_ArchiveVetting::linksOnDiskOfRawNamesAreFound()
{
    const RawDirectory directory;
    const QByteArray link = directory.path().toLocal8Bit() + "/\xff";
    QCOMPARE(symlink("/tmp", link.constData()), 0);

    QVERIFY(leadsThroughLink(directory.path(), {"\xff/evil"}));
    QVERIFY(!leadsThroughLink(directory.path(), {"\xfe/evil"}));
}

QTEST_GUILESS_MAIN(tst_ArchiveVetting)
#include "tst_archivevetting.moc"
