// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>

QT_BEGIN_NAMESPACE
class QDateTime;
QT_END_NAMESPACE

/**
 * What Qt and the standard library cannot ask of the operating system. A port to another system replaces
 * nativefiles.cpp and nothing else. Every function may be called on any thread.
 */
namespace Varnel::Internal {

/**
 * Puts @p source in the place of @p target in one step where the file system can; what was there is then at
 * @p source. Where it cannot, @p aside is used meanwhile; nothing may be there.
 */
bool exchange(const QString &source, const QString &target, const QString &aside);

/** Sets the modification time of @p path itself, also of a link. The file system may round it. */
bool setModificationTime(const QString &path, const QDateTime &time);

/**
 * Bytes that this user may still write on the volume of @p path, or of the nearest directory above that
 * exists. Negative if the volume does not tell, as some network and process file systems do not.
 */
[[nodiscard]] qint64 freeBytes(const QString &path);

/**
 * Writes @p content to a new file in @p directory and then gives it the name @p name, in place of what had
 * it. Neither the directory nor the name may lead through a link; the directory is made the owner's to write.
 * False if the file is not there whole; then what had the name is untouched, and nothing of the new file
 * stays.
 */
bool writeFileInto(const QString &directory, const QString &name, const QByteArray &content);

/**
 * Removes the file or link @p name from @p directory, which is made the owner's to write. Neither leads
 * through a link. False if nothing was removed.
 */
bool removeFileFrom(const QString &directory, const QString &name);

enum class FileKind { File, Directory, Link, Other };

/**
 * Visits what is directly in @p directory, by its name in the bytes of the file system, in no order; of a
 * link it tells nothing but that. Asks nothing of a file where the directory knows its kind.
 */
void visitEntries(
    const QString &directory, const std::function<void(QByteArrayView name, FileKind kind)> &visit);

/** A directory in which many files are opened, without a look at each step of its path for each of them. */
class Directory final
{
public:
    /** Without such a directory no file is found in it. */
    explicit Directory(const QString &path);
    ~Directory();
    Q_DISABLE_COPY_MOVE(Directory)

private:
    friend class RegularFile;
    int m_descriptor = -1;
};

/** The same for all names of a file. */
struct FileIdentity
{
    quint64 device = 0;
    quint64 number = 0;

    [[nodiscard]] auto operator<=>(const FileIdentity &) const = default;
};

/** A regular file, or a link to one, that is open for reading. Never blocks on a pipe or a device. */
class RegularFile final
{
public:
    explicit RegularFile(const QString &path);
    RegularFile(const Directory &directory, const QString &name);
    ~RegularFile();
    Q_DISABLE_COPY_MOVE(RegularFile)

    /** False if the path is no regular file in the end or may not be read. */
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

    [[nodiscard]] FileIdentity identity() const { return m_identity; }
    /** True if other directories or names hold the file as well. */
    [[nodiscard]] bool hasOtherNames() const { return m_hasOtherNames; }

    /**
     * Reads on, at most @p size bytes and never beyond the size that the file had when it was opened. Returns
     * the number of bytes; 0 at the end and after a fault.
     */
    [[nodiscard]] qint64 read(char *buffer, qint64 size);

    /** Moves to the next data if the position is in a hole. True if it moved. */
    bool skipHole();

private:
    RegularFile(int directory, const QByteArray &path);

    int m_descriptor = -1;
    qint64 m_position = 0;
    qint64 m_size = 0; // when it was opened
    FileIdentity m_identity;
    bool m_hasOtherNames = false;
};

/**
 * Keeps other processes from a directory that they lock, too, as long as the object lives; a kill ends it.
 * Other objects of this process count as others do.
 */
class DirectoryLock final
{
public:
    /** Does not wait. */
    explicit DirectoryLock(const QString &directory);
    ~DirectoryLock();
    Q_DISABLE_COPY_MOVE(DirectoryLock)

    /** True if somebody else has it. A directory that cannot be locked at all counts as free. */
    [[nodiscard]] bool isTaken() const { return m_isTaken; }

private:
    int m_descriptor = -1;
    bool m_isTaken = false;
};

} // namespace Varnel::Internal
