// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which archives are let through to the unarchiver.

#include "service/archivevetting.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"

#include <archive.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 PLENTY = Q_INT64_C(100) * 1024 * 1024 * 1024;

ArchiveVerdict vet(const QByteArray &archive)
{
    const QTemporaryDir directory;
    return vetArchive(archive, directory.filePath("archive.tar.gz"), PLENTY, {});
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

bool writeRaw(const QByteArray &path, const QByteArray &content)
{
    FILE *file = fopen(path.constData(), "wb");
    return file && fwrite(content.constData(), 1, size_t(content.size()), file) == size_t(content.size())
           && fclose(file) == 0;
}

} // namespace

class tst_ArchiveVetting final : public QObject
{
    Q_OBJECT

private slots:
    void honestArchivesAreAccepted_data();
    void honestArchivesAreAccepted();
    void archiveOfARealRepositoryIsAccepted();
    void onlyTopDirectoriesHaveToBeUtf8();
    void hostileEntriesAreRefused_data();
    void hostileEntriesAreRefused();
    void withoutATopDirectoryLinksMustStayInside_data();
    void withoutATopDirectoryLinksMustStayInside();
    void withoutATopDirectoryTheGoalsOfLinksAreReported();
    void inTheZipDirectoryHiddenLinksAreSeen();
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
    QTest::newRow("long name") << TarBuilder().file("demo-main-1/" + QByteArray(255, 'n')).tarGz() << top;
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
    QCOMPARE(verdict.topDirectory, QString::fromUtf8(topDirectory));
}

void tst_ArchiveVetting::archiveOfARealRepositoryIsAccepted()
{
    const RawDirectory directory;
    const QString path = directory.path();
    const QByteArray base = path.toLocal8Bit() + '/';
    git(path, {QStringLiteral("init"), QStringLiteral("-q")});
    QVERIFY(QDir(path).mkpath(QString(120, u'd') + u'/' + QString(120, u'e')));
    QVERIFY(writeRaw(base + QByteArray(120, 'd') + '/' + QByteArray(120, 'e') + "/file", "deep"));
    QVERIFY(writeRaw(base + "CMakeLists.txt", "project(demo)\n"));
    QVERIFY(writeRaw(base + "caf\xe9.txt", "latin 1\n"));
    QVERIFY(writeRaw(base + "caf\xc3\xa9.txt", "utf-8\n"));
    QVERIFY(writeRaw(base + "empty", ""));
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
    QCOMPARE(verdict.topDirectory, "demo-main-1");
}

void tst_ArchiveVetting::onlyTopDirectoriesHaveToBeUtf8()
{
    const auto reasonOf = [](const QByteArray &path) { return vet(TarBuilder().file(path).tarGz()).reason; };

    QCOMPARE(reasonOf("demo/caf\xe9"), QString());
    QCOMPARE(reasonOf("demo/" + QByteArray(150, '\xff')), QString());
    QVERIFY(reasonOf("caf\xe9/x").startsWith("top directory that is not UTF-8"));
    QVERIFY(!reasonOf(QByteArray(150, '\xe9') + "/x").isEmpty());
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
    QTest::newRow("below a hard link to a hard link to a link")
        << example()
               .symbolicLink("demo-main-1/l", "/tmp")
               .hardLink("demo-main-1/h1", "demo-main-1/l")
               .hardLink("demo-main-1/h2", "demo-main-1/h1")
               .file("demo-main-1/h2/evil")
               .tarGz();
    QTest::newRow("hard link before what it names")
        << TarBuilder().hardLink("demo/h", "demo/a").file("demo/a").tarGz();
    QTest::newRow("hard link to itself") << example().hardLink("demo-main-1/h", "demo-main-1/h").tarGz();
    QTest::newRow("hard link to a directory")
        << example().directory("demo-main-1/d/").hardLink("demo-main-1/h", "demo-main-1/d").tarGz();
    QTest::newRow("hard link to what is left out")
        << example()
               .file("demo-main-1/examples-manifest.xml")
               .hardLink("demo-main-1/h", "demo-main-1/examples-manifest.xml")
               .tarGz();
    QTest::newRow("over a hard link to a link") << example()
                                                       .symbolicLink("demo-main-1/l", "/tmp/evil")
                                                       .hardLink("demo-main-1/h", "demo-main-1/l")
                                                       .file("demo-main-1/h")
                                                       .tarGz();

    QTest::newRow("character device") << example().add({.path = "demo-main-1/d", .type = '3'}).tarGz();
    QTest::newRow("block device") << example().add({.path = "demo-main-1/d", .type = '4'}).tarGz();
    QTest::newRow("pipe") << example().add({.path = "demo-main-1/d", .type = '6'}).tarGz();
    QTest::newRow("link to nothing") << example().symbolicLink("demo-main-1/l", "").tarGz();
}

void tst_ArchiveVetting::hostileEntriesAreRefused()
{
    QFETCH(const QByteArray, archive);
    const QTemporaryDir directory;
    const QString file = directory.filePath("archive.tar.gz");
    writeFile(file, "as it was");

    const ArchiveVerdict verdict = vetArchive(archive, file, PLENTY, {});

    QVERIFY(!verdict.isAccepted);
    QVERIFY(!verdict.reason.isEmpty());
    QCOMPARE(verdict.topDirectory, QString());
    QCOMPARE(readFile(file), "as it was");
    QCOMPARE(entriesOf(directory.path()), QStringList{"archive.tar.gz"});
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
    QTest::newRow("in place of a top directory") << with("l", "a") << false;
    QTest::newRow("beside the top directories") << with("l", "a/x") << false;
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
    QCOMPARE(verdict.topDirectory, QString());
}

void tst_ArchiveVetting::withoutATopDirectoryTheGoalsOfLinksAreReported()
{
    const ArchiveVerdict several = vet(TarBuilder().file("./a//x").symbolicLink("b/l", "../a/y/z").tarGz());

    QVERIFY(several.isAccepted);
    for (const char *path : {"a/x", "b/l", "a/y/z"})
        QVERIFY2(several.paths->find(path), path);
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

QTEST_GUILESS_MAIN(tst_ArchiveVetting)
#include "tst_archivevetting.moc"
