// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The whole road of an archive, from the server's bytes to the disk: what is accepted is unpacked from the
// fresh archive by both tools that the IDE knows. Both make the same of it, below its directory, and nothing
// around that changes.

#include "common/tarchecksums.h"
#include "hostile/tree.h"
#include "service/archivevetting.h"

#include <QByteArrayList>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maximumSize);

namespace {

constexpr qint64 FREE = Q_INT64_C(16) * 1024 * 1024; // bytes, so that no input takes long

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

void makeDirectory(const QString &path)
{
    if (::mkdir(QFile::encodeName(path), 0755) != 0)
        qFatal("cannot make %s", qPrintable(path));
}

/** What both tools unpack into, with files around that are nobody's to touch. */
class Yard
{
public:
    Yard()
    {
        ::umask(0); // else only one of the two tools takes some off the rights
        for (const QString &name : {path("home"), path("cmake"), path("tar"), path("beside")}) {
            makeDirectory(name);
            writeFile(name + "/canary", "canary");
        }
        writeFile(path("canary"), "canary");
        settle();
        qputenv("HOME", QFile::encodeName(path("home")));
        qputenv("LC_ALL", "C"); // the narrowest of all
    }

    [[nodiscard]] QString path(const QString &name) const { return m_directory.filePath(name); }
    [[nodiscard]] QString archive() const { return path("archive.tar.gz"); }

    /** Sets the times of the directories in which the tools' own come and go: they tell nothing. */
    void settle() const
    {
        const timespec times[]{{1, 0}, {1, 0}};
        for (const char *tool : {"cmake", "tar"})
            ::utimensat(AT_FDCWD, QFile::encodeName(path(QString::fromLatin1(tool))), times, 0);
    }

    /** Runs a tool in an empty directory; true if it succeeded. */
    bool unpack(const QByteArrayList &command, const QString &directory)
    {
        makeDirectory(directory);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, QFile::encodeName(directory));
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        std::vector<char *> arguments;
        for (const QByteArray &argument : command)
            arguments.push_back(const_cast<char *>(argument.constData()));
        arguments.push_back(nullptr);
        pid_t process = -1;
        int status = -1;
        if (::posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
            qFatal("cannot run %s", arguments[0]);
        pid_t ended = -1;
        do { // the fuzzer's clock interrupts it
            ended = ::waitpid(process, &status, 0);
        } while (ended < 0 && errno == EINTR);
        if (ended != process)
            qFatal("cannot wait for %s", arguments[0]);
        posix_spawn_file_actions_destroy(&actions);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    const QTemporaryDir m_directory;
};

mode_t modeOf(const QByteArray &description)
{
    return mode_t(description.split(' ').value(1).toUInt(nullptr, 8));
}

bool isMadeJustNow(const QByteArray &description, qint64 begin)
{
    return description.split(' ').value(3).toLongLong() >= begin;
}

// A directory that no entry names gets the time at which it is made, and the rights that the tool likes. GNU
// tar also forgets the time of one that it has left and comes back to.
Tree withoutWhims(Tree tree, const Tree &other, qint64 begin)
{
    for (auto it = tree.begin(); it != tree.end(); ++it) {
        const QByteArray twin = other.value(it.key());
        if (!S_ISDIR(modeOf(*it)) || !S_ISDIR(modeOf(twin)))
            continue;
        const bool isImplied = isMadeJustNow(*it, begin) && isMadeJustNow(twin, begin);
        *it = isImplied ? QByteArray("implied") : "mode " + QByteArray::number(modeOf(*it), 8);
    }
    return tree;
}

void checkKinds(const Tree &tree)
{
    for (auto it = tree.cbegin(); it != tree.cend(); ++it) {
        const mode_t mode = modeOf(*it);
        if (!S_ISREG(mode) && !S_ISDIR(mode) && !S_ISLNK(mode))
            qFatal("neither file, directory nor link: %s", it.key().constData());
        if ((mode & (S_ISUID | S_ISGID | S_ISVTX)) != 0)
            qFatal("more than permissions: %s", it.key().constData());
        const mode_t own = S_ISDIR(mode) ? S_IRWXU : S_IRUSR | S_IWUSR;
        if ((mode & own) != own)
            qFatal("not the owner's: %s", it.key().constData());
    }
}

void checkTop(const Tree &tree, const QByteArray &top)
{
    for (auto it = tree.cbegin(); it != tree.cend(); ++it) {
        if (!top.isEmpty() && it.key() != top && !it.key().startsWith(top + '/'))
            qFatal("beside the top directory: %s", it.key().constData());
    }
}

void unpackAndCompare(Yard &yard, const ArchiveVerdict &verdict)
{
    const Tree before = readTree(yard.path(QString()));
    const qint64 begin = ::time(nullptr) - 1;
    const QString byCmake = yard.path("cmake/here");
    const QString byTar = yard.path("tar/here");
    const QByteArray archive = QFile::encodeName(yard.archive());

    // Either may stop at a file in the way of a directory; then what there is gets removed.
    const bool isCmakeDone = yard.unpack({"cmake", "-E", "tar", "xvzf", archive}, byCmake);
    const bool isTarDone = yard.unpack({"tar", "xvzf", archive}, byTar);
    const bool areBothDone = isCmakeDone && isTarDone;

    const Tree tree = readTree(byCmake);
    const Tree treeOfTar = readTree(byTar);
    const QStringList between
        = differences(withoutWhims(tree, treeOfTar, begin), withoutWhims(treeOfTar, tree, begin));
    if (areBothDone && !between.isEmpty())
        qFatal("the tools differ:\n%s", qPrintable(between.join('\n')));
    for (const Tree &either : {tree, treeOfTar}) {
        checkTop(either, QFile::encodeName(verdict.topDirectory));
        if (areBothDone)
            checkKinds(either);
    }

    std::filesystem::remove_all(byCmake.toStdString());
    std::filesystem::remove_all(byTar.toStdString());
    yard.settle();
    const QStringList around = differences(before, readTree(yard.path(QString())));
    if (!around.isEmpty())
        qFatal("something outside has changed:\n%s", qPrintable(around.join('\n')));
}

} // namespace

// Most changes of a tar spoil a checksum, and would get no further.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maximumSize, unsigned)
{
    const size_t newSize = LLVMFuzzerMutate(data, size, maximumSize);
    mendTarChecksums(data, newSize);
    return newSize;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Yard &yard = *new Yard; // the fuzzer exits from within
    const QByteArray archive(reinterpret_cast<const char *>(data), qsizetype(size));
    writeFile(yard.archive(), archive);

    const ArchiveVerdict verdict = vetArchive(archive, yard.archive(), FREE, {});

    if (verdict.isAccepted)
        unpackAndCompare(yard, verdict);
    QFile::remove(yard.archive());
    return 0;
}
