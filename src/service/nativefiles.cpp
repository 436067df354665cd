// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/nativefiles.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Varnel::Internal {

namespace {

constexpr mode_t NEW_FILE_MODE = 0666; // less the user's mask

/** Closes a descriptor; negative is none. */
class Descriptor final
{
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int get() const { return m_descriptor; }
    /** Some file systems tell only now that a write has failed. */
    [[nodiscard]] bool close() { return ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
};

bool rename(const QByteArray &from, const QByteArray &to)
{
    return ::rename(from, to) == 0;
}

// Gives back what an archive or a user has taken away. Another user's directory keeps its rights.
void giveOwnerAccess(const QByteArray &directory)
{
    struct stat status;
    if (::lstat(directory, &status) != 0 || !S_ISDIR(status.st_mode) || (status.st_mode & S_IRWXU) == S_IRWXU)
        return;
    ::fchmodat(AT_FDCWD, directory, (status.st_mode & ALLPERMS) | S_IRWXU, AT_SYMLINK_NOFOLLOW);
}

bool writeAll(int descriptor, const QByteArray &content)
{
    for (qsizetype written = 0; written < content.size();) {
        const ssize_t size
            = ::write(descriptor, content.constData() + written, size_t(content.size() - written));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return false;
        written += size;
    }
    return true;
}

struct DirectoryDeleter
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};

FileKind kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileKind::File;
    case S_IFDIR:
        return FileKind::Directory;
    case S_IFLNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

// Not every file system keeps the kinds of files in its directories.
FileKind kindOf(DIR *directory, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return kindOf(DTTOIF(entry.d_type));
    struct stat status;
    const int descriptor = ::dirfd(directory);
    const bool isKnown
        = descriptor >= 0 && ::fstatat(descriptor, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    return isKnown ? kindOf(status.st_mode) : FileKind::Other;
}

// Through no link.
Descriptor openToChange(const QString &directory)
{
    const QByteArray native = QFile::encodeName(directory);
    giveOwnerAccess(native);
    return Descriptor(::open(native, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool writeNewFile(int directory, const QByteArray &name, const QByteArray &content)
{
    Descriptor file(
        ::openat(directory, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, NEW_FILE_MODE));
    return file.isOpen() && writeAll(file.get(), content) && file.close();
}

} // namespace

bool exchange(const QString &source, const QString &target, const QString &aside)
{
    const QByteArray nativeSource = QFile::encodeName(source);
    const QByteArray nativeTarget = QFile::encodeName(target);
    if (::renameat2(AT_FDCWD, nativeSource, AT_FDCWD, nativeTarget, RENAME_EXCHANGE) == 0)
        return true;
    const QFileInfo present(target);
    if (!present.exists() && !present.isSymLink())
        return rename(nativeSource, nativeTarget);

    // Not every file system can exchange. Between these two steps the example is absent, never half there.
    const QByteArray nativeAside = QFile::encodeName(aside);
    if (!rename(nativeTarget, nativeAside))
        return false;
    if (!rename(nativeSource, nativeTarget)) {
        rename(nativeAside, nativeTarget);
        return false;
    }
    return rename(nativeAside, nativeSource);
}

bool setModificationTime(const QString &path, const QDateTime &time)
{
    const timespec access{0, UTIME_OMIT};
    const timespec modification{
        time.toSecsSinceEpoch(), (time.toMSecsSinceEpoch() - time.toSecsSinceEpoch() * 1000) * 1'000'000};
    const timespec times[]{access, modification};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path), times, AT_SYMLINK_NOFOLLOW) == 0;
}

qint64 freeBytes(const QString &path)
{
    struct statvfs volume;
    QByteArray native = QFile::encodeName(path);
    while (::statvfs(native, &volume) != 0) {
        if (native.size() <= 1)
            return -1;
        native.truncate(std::max<qsizetype>(native.lastIndexOf('/'), 1));
    }
    if (volume.f_blocks == 0)
        return -1;
    quint64 bytes = 0;
    constexpr quint64 LIMIT = std::numeric_limits<qint64>::max();
    if (qMulOverflow<quint64>(volume.f_bavail, volume.f_frsize, &bytes))
        return LIMIT;
    return qint64(std::min(bytes, LIMIT));
}

bool writeFileInto(const QString &directory, const QString &name, const QByteArray &content)
{
    const Descriptor place = openToChange(directory);
    if (!place.isOpen())
        return false;
    const QByteArray nativeName = QFile::encodeName(name);
    const QByteArray newName = nativeName + '.' + QUuid::createUuid().toByteArray(QUuid::Id128);
    if (writeNewFile(place.get(), newName, content)
        && ::renameat(place.get(), newName, place.get(), nativeName) == 0)
        return true;
    ::unlinkat(place.get(), newName, 0);
    return false;
}

bool removeFileFrom(const QString &directory, const QString &name)
{
    const Descriptor place = openToChange(directory);
    return place.isOpen() && ::unlinkat(place.get(), QFile::encodeName(name), 0) == 0;
}

// The standard library makes a path of every entry, which costs more than all else of a listing.
void visitEntries(
    const QString &directory, const std::function<void(QByteArrayView name, FileKind kind)> &visit)
{
    const std::unique_ptr<DIR, DirectoryDeleter> listing(::opendir(QFile::encodeName(directory)));
    while (const dirent *entry = listing ? ::readdir(listing.get()) : nullptr) {
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            visit(name, kindOf(listing.get(), *entry));
    }
}

Directory::Directory(const QString &path)
    : m_descriptor(::open(QFile::encodeName(path), O_PATH | O_DIRECTORY | O_CLOEXEC))
{
}

Directory::~Directory()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

RegularFile::RegularFile(const QString &path)
    : RegularFile(AT_FDCWD, QFile::encodeName(path))
{
}

RegularFile::RegularFile(const Directory &directory, const QString &name)
    : RegularFile(directory.m_descriptor, QFile::encodeName(name))
{
}

// Looked at before it is opened: the writer at the other end of a pipe would see its reader come and go.
RegularFile::RegularFile(int directory, const QByteArray &path)
{
    struct stat status;
    if (::fstatat(directory, path, &status, 0) != 0 || !S_ISREG(status.st_mode))
        return;
    m_descriptor = ::openat(directory, path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (m_descriptor < 0)
        return;
    if (::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        m_size = status.st_size;
        m_identity = {status.st_dev, status.st_ino};
        m_hasOtherNames = status.st_nlink > 1;
        return;
    }
    ::close(m_descriptor);
    m_descriptor = -1;
}

RegularFile::~RegularFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

qint64 RegularFile::read(char *buffer, qint64 size)
{
    const qint64 wanted = std::min(size, m_size - m_position);
    if (wanted <= 0)
        return 0;
    ssize_t count = 0;
    do {
        count = ::pread(m_descriptor, buffer, size_t(wanted), m_position);
    } while (count < 0 && errno == EINTR);
    if (count <= 0)
        return 0;
    m_position += count;
    return count;
}

// A file system that does not know its holes skips nothing. If the rest of the file is one hole, all of it is
// skipped.
bool RegularFile::skipHole()
{
    const off_t data = ::lseek(m_descriptor, m_position, SEEK_DATA);
    const qint64 next = data >= 0 ? qint64(data) : errno == ENXIO ? m_size : m_position;
    return std::exchange(m_position, next) != next;
}

// The directory itself is what is locked: a file for it could be left behind, or be another user's.
DirectoryLock::DirectoryLock(const QString &directory)
    : m_descriptor(::open(QFile::encodeName(directory), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    , m_isTaken(m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
{
}

DirectoryLock::~DirectoryLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace Varnel::Internal
