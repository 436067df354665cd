// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The archives of the demo repository's server are those that git makes.

#include "server/tarball.h"

#include "common/demofixture.h"
#include "common/files.h"

#include <archive.h>
#include <archive_entry.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;
using namespace Varnel::Test;

namespace {

struct ArchiveEntry
{
    QByteArray name;
    QByteArray content; // of a link: its target
    QByteArray owner;
    qint64 time = 0; // seconds since 1970
};

QList<ArchiveEntry> entriesIn(const QByteArray &bytes)
{
    const std::unique_ptr<archive, decltype(&archive_read_free)> reader(
        archive_read_new(), archive_read_free);
    archive_read_support_filter_gzip(reader.get());
    archive_read_support_format_tar(reader.get());
    archive_read_open_memory(reader.get(), bytes.constData(), size_t(bytes.size()));
    QList<ArchiveEntry> result;
    for (archive_entry *entry = nullptr; archive_read_next_header(reader.get(), &entry) == ARCHIVE_OK;) {
        QByteArray content(qsizetype(archive_entry_size(entry)), '\0');
        archive_read_data(reader.get(), content.data(), size_t(content.size()));
        const char *target = archive_entry_symlink(entry);
        result.append(
            {archive_entry_pathname(entry),
             target ? QByteArray(target) : content,
             QByteArray(archive_entry_uname(entry)) + '/' + archive_entry_gname(entry),
             archive_entry_mtime(entry)});
    }
    return result;
}

QString runProgram(const QString &program, const QStringList &arguments, const QString &directory)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qWarning() << program << arguments << process.errorString() << process.readAllStandardError();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

} // namespace

class tst_DemoArchive final : public DemoFixture
{
    Q_OBJECT

private slots:
    void theArchiveHasOneTopDirectoryAndTheTimeOfTheCommit();
    void theCompressionTellsNoNameAndNoTime();
    void theTarIsTheOneThatGitMakes();
    void veryLongNamesAndTargetsAreKept();
    void theFirstArchiveIsChunkedAndTheNextHasALength();
    void aCommitGivesANewTopDirectoryAndActivity();
};

void tst_DemoArchive::theArchiveHasOneTopDirectoryAndTheTimeOfTheCommit()
{
    DemoServer server;
    Project slashed = project(42, u"hello"_s);
    slashed.branch = u"release/1.0"_s;
    slashed.tree.addFile("src/main.cpp", "int main() {}\n");
    server.gitlab().addProject(slashed);

    const Result result = get(server.url(archivePath(42)));

    QCOMPARE(result.status, 200);
    QCOMPARE(result.headers.value("content-type"), "application/octet-stream"_ba);
    const QByteArray top = "hello-release-1.0-" + slashed.commitId();
    QCOMPARE(slashed.commitId().size(), 40);
    QVERIFY(result.headers.combinedValue("content-disposition").contains(QByteArray(top + ".tar.gz")));
    QByteArrayList names;
    for (const ArchiveEntry &entry : entriesIn(result.body)) {
        names.append(entry.name);
        QCOMPARE(entry.time, slashed.commitTime.toSecsSinceEpoch());
        QCOMPARE(entry.owner, "root/root"_ba);
    }
    QCOMPARE(
        names, QByteArrayList({top + '/', top + "/CMakeLists.txt", top + "/src/", top + "/src/main.cpp"}));
}

void tst_DemoArchive::theCompressionTellsNoNameAndNoTime()
{
    const QByteArray header = gzip("content").first(8);

    QCOMPARE(header, QByteArray("\x1f\x8b\x08\0\0\0\0\0", 8)); // method, then no flags and no time
}

void tst_DemoArchive::theTarIsTheOneThatGitMakes()
{
    const QTemporaryDir directory;
    const QByteArray longName = QByteArray(60, 'd') + '/' + QByteArray(80, 'f');
    writeFile(directory.filePath(u"a/b.txt"_s), "text\n");
    writeFile(directory.filePath(u"a.txt"_s), "dot before slash\n");
    writeFile(directory.filePath(u"a0"_s), "slash before zero\n");
    writeFile(directory.filePath(u"tool.sh"_s), "#!/bin/sh\n");
    writeFile(directory.filePath(QString::fromLatin1(longName)), "long\n");
    writeFile(directory.filePath(u"größe.txt"_s), "ß\n");
    QVERIFY(QFile::setPermissions(directory.filePath(u"tool.sh"_s), QFile::Permissions(0x7755)));
    QVERIFY(QFile::link(u"nowhere/at/all"_s, directory.filePath(u"link"_s)));
    const auto git = [&](const QString &arguments) {
        return runProgram(u"git"_s, arguments.split(u' '), directory.path());
    };
    git(u"init -q -b main"_s);
    git(u"add ."_s);
    qputenv("GIT_COMMITTER_DATE", "2019-03-04T05:06:07Z");
    git(u"-c user.name=n -c user.email=e commit -q -m m"_s);
    qunsetenv("GIT_COMMITTER_DATE");
    const QString id = git(u"rev-parse HEAD"_s);
    git(u"archive --prefix=top-%1/ --output=made.tar HEAD"_s.arg(id));
    const QByteArray expected = readFile(directory.filePath(u"made.tar"_s));
    QVERIFY(QFile::remove(directory.filePath(u"made.tar"_s)));
    QVERIFY(QDir(directory.filePath(u".git"_s)).removeRecursively());

    Tree tree;
    QCOMPARE(tree.addFrom(directory.path()), std::nullopt);
    const QByteArray made = tarball(
        tree,
        "top-" + id.toLatin1(),
        id.toLatin1(),
        QDateTime::fromString(u"2019-03-04T05:06:07Z"_s, Qt::ISODate));

    QVERIFY(!expected.isEmpty());
    QVERIFY2(made == expected, "the archives differ");
}

void tst_DemoArchive::veryLongNamesAndTargetsAreKept()
{
    const QByteArray longName(300, 'n');
    const QByteArray longTarget(200, 't');
    Tree tree;
    tree.addFile(longName, "content");
    tree.add("link", {Tree::Entry::Link, longTarget});

    const QList<ArchiveEntry> entries
        = entriesIn(tarball(tree, "top", QByteArray(40, '0'), QDateTime::fromSecsSinceEpoch(0)));

    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries.at(1).content, longTarget);
    QCOMPARE(entries.at(2).name, QByteArray("top/" + longName));
    QCOMPARE(entries.at(2).content, "content"_ba);
}

void tst_DemoArchive::theFirstArchiveIsChunkedAndTheNextHasALength()
{
    DemoServer server;
    server.gitlab().addProject(project(42, u"hello"_s));

    const Result fresh = get(server.url(archivePath(42)));
    const Result cached = get(server.url(archivePath(42)));

    QCOMPARE(fresh.headers.value("transfer-encoding"), "chunked"_ba);
    QVERIFY(!fresh.headers.contains("content-length"));
    QCOMPARE(cached.headers.value("content-length"), QByteArray::number(cached.body.size()));
    QCOMPARE(cached.headers.value("accept-ranges"), "bytes"_ba);
    QCOMPARE(cached.body, fresh.body);
}

void tst_DemoArchive::aCommitGivesANewTopDirectoryAndActivity()
{
    DemoServer server;
    server.gitlab().addProject(project(42, u"hello"_s));
    const QByteArray before = server.gitlab().project(u"hello"_s)->topDirectory();
    const QDateTime old = QDateTime::fromSecsSinceEpoch(1'000'000'000, QTimeZone::UTC);
    const QDateTime now = QDateTime::currentDateTimeUtc();

    QVERIFY(server.gitlab().commit(u"hello"_s, old));

    const QByteArray after = server.gitlab().project(u"hello"_s)->topDirectory();
    QVERIFY(after != before);
    QCOMPARE(entriesIn(get(server.url(archivePath(42))).body).first().name, after + '/');
    const QString activity
        = get(server.url(u"/api/v4/projects/42"_s)).object().value("last_activity_at"_L1).toString();
    QVERIFY(activity.endsWith(u'Z') && activity.contains(u'.'));
    QVERIFY(QDateTime::fromString(activity, Qt::ISODateWithMs) >= now);
    QVERIFY(!server.gitlab().commit(u"unknown"_s));
}

QTEST_MAIN(tst_DemoArchive)
#include "tst_demoarchive.moc"
