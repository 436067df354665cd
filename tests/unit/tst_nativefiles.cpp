// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is asked of the operating system itself.

#include "service/nativefiles.h"

#include "service/filesystem.h"

#include "common/files.h"
#include "common/filesizelimit.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <limits>

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

enum class Exchange { Works, IsUnknown };
Exchange exchangeOfFileSystem = Exchange::Works;

bool keepsKinds = true; // the file system, in its directories

std::optional<quint64> blocksOfVolume; // what the volume says of itself

int modeOf(const QString &path)
{
    struct stat status;
    return ::lstat(QFile::encodeName(path), &status) == 0 ? int(status.st_mode & 07777) : -1;
}

} // namespace

// In place of the system library's, so that a file system which cannot exchange is at hand.
extern "C" Q_DECL_EXPORT int
renameat2(int fromDirectory, const char *from, int toDirectory, const char *to, unsigned flags) noexcept
{
    if (flags == RENAME_EXCHANGE && exchangeOfFileSystem == Exchange::IsUnknown) {
        errno = EINVAL;
        return -1;
    }
    return int(::syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}

// Not every file system tells the kinds of files.
extern "C" Q_DECL_EXPORT dirent *readdir(DIR *directory)
{
    static const auto original = reinterpret_cast<dirent *(*) (DIR *)>(::dlsym(RTLD_NEXT, "readdir"));
    dirent *const entry = original(directory);
    if (entry && !keepsKinds)
        entry->d_type = DT_UNKNOWN;
    return entry;
}

// Tells what a test wants of a volume.
extern "C" Q_DECL_EXPORT int statvfs(const char *path, struct statvfs *status) noexcept
{
    if (::syscall(SYS_access, path, F_OK) != 0)
        return -1;
    *status = {};
    status->f_frsize = 4096;
    status->f_blocks = fsblkcnt_t(blocksOfVolume.value_or(1000));
    status->f_bavail = fsblkcnt_t(blocksOfVolume.value_or(1000));
    return 0;
}

class tst_NativeFiles final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void directoriesAreExchanged_data();
    void directoriesAreExchanged();
    void withoutATargetTheSourceIsMoved_data();
    void withoutATargetTheSourceIsMoved();
    void withoutASourceNothingChanges_data();
    void withoutASourceNothingChanges();
    void aLinkIsExchangedItself_data();
    void aLinkIsExchangedItself();

    void aFileIsWrittenInPlaceOfTheOldOne();
    void aLinkIsReplacedAndItsTargetStays();
    void aPipeIsReplaced();
    void nothingIsWrittenThroughALinkedDirectory();
    void aDirectoryInThePlaceOfTheFileStays();
    void theDirectoryIsMadeTheOwnersToWrite_data();
    void theDirectoryIsMadeTheOwnersToWrite();
    void whatDoesNotFitLeavesTheOldFile();

    void modificationTimesAreThoseOfLinksThemselves();

    void entriesComeWithTheirKinds_data();
    void entriesComeWithTheirKinds();
    void nothingHasNoEntries();

    void freeBytesAreThoseOfTheNearestDirectory();
    void aVolumeWithoutACapacityIsUnknown();
    void aVolumeOfAnySizeIsNotNegative();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_NativeFiles::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    exchangeOfFileSystem = Exchange::Works;
    keepsKinds = true;
    blocksOfVolume.reset();
}

void tst_NativeFiles::cleanup()
{
    std::ignore = removeTree(m_directory->path());
    m_directory.reset();
}

namespace {

void addFileSystems()
{
    QTest::addColumn<int>("fileSystem");

    QTest::newRow("in one step") << int(Exchange::Works);
    QTest::newRow("where that is unknown") << int(Exchange::IsUnknown);
}

} // namespace

void tst_NativeFiles::directoriesAreExchanged_data()
{
    addFileSystems();
}

void tst_NativeFiles::directoriesAreExchanged()
{
    QFETCH(const int, fileSystem);
    exchangeOfFileSystem = Exchange(fileSystem);
    writeFile(path("new/file"), "new");
    writeFile(path("old/file"), "old");

    QVERIFY(exchange(path("new"), path("old"), path("aside")));

    QCOMPARE(readFile(path("old/file")), "new");
    QCOMPARE(readFile(path("new/file")), "old");
    QCOMPARE(entriesOf(m_directory->path()), (QStringList{"new", "old"}));
}

void tst_NativeFiles::withoutATargetTheSourceIsMoved_data()
{
    addFileSystems();
}

void tst_NativeFiles::withoutATargetTheSourceIsMoved()
{
    QFETCH(const int, fileSystem);
    exchangeOfFileSystem = Exchange(fileSystem);
    writeFile(path("new/file"), "new");

    QVERIFY(exchange(path("new"), path("old"), path("aside")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"old"});
    QCOMPARE(readFile(path("old/file")), "new");
}

void tst_NativeFiles::withoutASourceNothingChanges_data()
{
    addFileSystems();
}

void tst_NativeFiles::withoutASourceNothingChanges()
{
    QFETCH(const int, fileSystem);
    exchangeOfFileSystem = Exchange(fileSystem);
    writeFile(path("old/file"), "old");

    QVERIFY(!exchange(path("new"), path("old"), path("aside")));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"old"});
    QCOMPARE(readFile(path("old/file")), "old");
}

void tst_NativeFiles::aLinkIsExchangedItself_data()
{
    addFileSystems();
}

void tst_NativeFiles::aLinkIsExchangedItself()
{
    QFETCH(const int, fileSystem);
    exchangeOfFileSystem = Exchange(fileSystem);
    writeFile(path("new/file"), "new");
    makeLink(path("old"), "nowhere");

    QVERIFY(exchange(path("new"), path("old"), path("aside")));

    QCOMPARE(readFile(path("old/file")), "new");
    QCOMPARE(QFile::symLinkTarget(path("new")), path("nowhere"));
}

void tst_NativeFiles::aFileIsWrittenInPlaceOfTheOldOne()
{
    writeFile(path("file"), "old and longer");

    QVERIFY(writeFileInto(m_directory->path(), "file", "new"));
    QVERIFY(writeFileInto(m_directory->path(), "other", ""));

    QCOMPARE(readFile(path("file")), "new");
    QCOMPARE(entriesOf(m_directory->path()), (QStringList{"file", "other"}));
}

void tst_NativeFiles::aLinkIsReplacedAndItsTargetStays()
{
    writeFile(path("target"), "precious");
    makeLink(path("directory/link"), path("target"));
    makeLink(path("directory/dangling"), path("nothing"));

    QVERIFY(writeFileInto(path("directory"), "link", "new"));
    QVERIFY(writeFileInto(path("directory"), "dangling", "new"));

    QCOMPARE(readFile(path("target")), "precious");
    QVERIFY(!QFile::exists(path("nothing")));
    QCOMPARE(readFile(path("directory/link")), "new");
    QVERIFY(!QFileInfo(path("directory/link")).isSymLink());
}

void tst_NativeFiles::aPipeIsReplaced()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")), 0600), 0);

    QVERIFY(writeFileInto(m_directory->path(), "pipe", "new"));

    QCOMPARE(readFile(path("pipe")), "new");
}

void tst_NativeFiles::nothingIsWrittenThroughALinkedDirectory()
{
    makeDirectory(path("directory"));
    makeLink(path("link"), path("directory"));

    QVERIFY(!writeFileInto(path("link"), "file", "x"));

    QCOMPARE(entriesOf(path("directory")), QStringList());
}

void tst_NativeFiles::aDirectoryInThePlaceOfTheFileStays()
{
    writeFile(path("file/inner"), "x");

    QVERIFY(!writeFileInto(m_directory->path(), "file", "new"));

    QCOMPARE(entriesOf(m_directory->path()), QStringList{"file"});
    QCOMPARE(entriesOf(path("file")), QStringList{"inner"});
}

void tst_NativeFiles::theDirectoryIsMadeTheOwnersToWrite_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("modeAfterwards");

    QTest::newRow("0555") << 0555 << 0755;
    QTest::newRow("0511") << 0511 << 0711;
    QTest::newRow("0000") << 0 << 0700;
    QTest::newRow("02775") << 02775 << 02775;
}

void tst_NativeFiles::theDirectoryIsMadeTheOwnersToWrite()
{
    QFETCH(const int, mode);
    QFETCH(const int, modeAfterwards);
    writeFile(path("target"), "precious");
    makeLink(path("directory/link"), path("target"));
    QCOMPARE(::chmod(QFile::encodeName(path("directory")), mode_t(mode)), 0);

    QVERIFY(writeFileInto(path("directory"), "link", "new"));

    QCOMPARE(modeOf(path("directory")), modeAfterwards);
    QCOMPARE(readFile(path("target")), "precious");
    QCOMPARE(readFile(path("directory/link")), "new");
}

void tst_NativeFiles::whatDoesNotFitLeavesTheOldFile()
{
    writeFile(path("file"), "old");

    const bool isWritten = [&] {
        const FileSizeLimit limit(100);
        return writeFileInto(m_directory->path(), "file", QByteArray(200, 'n'));
    }();

    QVERIFY(!isWritten);
    QCOMPARE(entriesOf(m_directory->path()), QStringList{"file"});
    QCOMPARE(readFile(path("file")), "old");
}

void tst_NativeFiles::modificationTimesAreThoseOfLinksThemselves()
{
    const QDateTime time(QDate(2024, 1, 2), QTime(3, 4, 5, 678), QTimeZone::UTC);
    writeFile(path("target"), "x");
    makeLink(path("link"), path("target"));
    const QDateTime before = QFileInfo(path("target")).lastModified(QTimeZone::UTC);

    QVERIFY(setModificationTime(path("link"), time));

    struct stat status;
    QCOMPARE(::lstat(QFile::encodeName(path("link")), &status), 0);
    QCOMPARE(qint64(status.st_mtim.tv_sec), time.toSecsSinceEpoch());
    QCOMPARE(qint64(status.st_mtim.tv_nsec), Q_INT64_C(678'000'000));
    QCOMPARE(QFileInfo(path("target")).lastModified(QTimeZone::UTC), before);
    QVERIFY(!setModificationTime(path("nothing"), time));
}

void tst_NativeFiles::entriesComeWithTheirKinds_data()
{
    QTest::addColumn<bool>("isKept");

    QTest::newRow("that the directory keeps") << true;
    QTest::newRow("that the files are asked for") << false;
}

void tst_NativeFiles::entriesComeWithTheirKinds()
{
    QFETCH(const bool, isKept);
    keepsKinds = isKept;
    writeFile(path("file"), "");
    writeFile(path("..hidden"), "");
    makeDirectory(path("directory"));
    makeLink(path("link"), "directory");
    makeLink(path("dangling"), "nowhere");
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")), 0600), 0);
    const QByteArray raw = "caf\xe9"; // no UTF-8
    QCOMPARE(::mkdir(QFile::encodeName(m_directory->path()) + '/' + raw, 0700), 0);
    QMap<QByteArray, FileKind> kinds;

    visitEntries(m_directory->path(), [&kinds](QByteArrayView name, FileKind kind) {
        kinds.insert(name.toByteArray(), kind);
    });

    const QMap<QByteArray, FileKind> expected{
        {"..hidden", FileKind::File},
        {raw, FileKind::Directory},
        {"dangling", FileKind::Link},
        {"directory", FileKind::Directory},
        {"file", FileKind::File},
        {"link", FileKind::Link},
        {"pipe", FileKind::Other}};
    QCOMPARE(kinds, expected);
}

void tst_NativeFiles::nothingHasNoEntries()
{
    writeFile(path("file"), "");
    makeDirectory(path("empty"));
    int visits = 0;

    for (const char *name : {"file", "empty", "nowhere"})
        visitEntries(path(QString::fromLatin1(name)), [&visits](QByteArrayView, FileKind) { ++visits; });

    QCOMPARE(visits, 0);
}

void tst_NativeFiles::freeBytesAreThoseOfTheNearestDirectory()
{
    QCOMPARE(freeBytes(m_directory->path()), 4'096'000);
    QCOMPARE(freeBytes(path("not/yet/there/")), 4'096'000);
}

void tst_NativeFiles::aVolumeWithoutACapacityIsUnknown()
{
    blocksOfVolume = 0;

    QCOMPARE(freeBytes(m_directory->path()), -1);
}

void tst_NativeFiles::aVolumeOfAnySizeIsNotNegative()
{
    blocksOfVolume = std::numeric_limits<quint64>::max();

    QCOMPARE(freeBytes(m_directory->path()), std::numeric_limits<qint64>::max());
}

QTEST_GUILESS_MAIN(tst_NativeFiles)
#include "tst_nativefiles.moc"
