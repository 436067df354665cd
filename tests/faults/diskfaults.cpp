// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Stands before the C library's functions: what an executable defines is found first by all libraries.

#include "faults/diskfaults.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnel::Test {

namespace {

std::mutex lock;
QList<DiskFault> faults; // guarded by it
std::atomic<bool> hasFaults = false;
std::atomic<int> failed = 0;
std::atomic<long> clockShift = 0; // seconds

/** Sets errno and is true if the step is to fail. */
bool fails(DiskStep step, const char *path)
{
    if (!hasFaults || !path)
        return false;
    const std::lock_guard guard(lock);
    for (const DiskFault &fault : faults) {
        if (fault.step == step
            && std::string_view(path).find(fault.pathPart.constData()) != std::string::npos) {
            ++failed;
            errno = fault.error;
            return true;
        }
    }
    return false;
}

std::string pathOf(int descriptor)
{
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
    return size > 0 ? std::string(path, size_t(size)) : std::string();
}

std::string pathIn(int directory, const char *path)
{
    if (!path) // the descriptor itself is meant
        return pathOf(directory);
    return directory == AT_FDCWD || path[0] == '/' ? std::string(path) : pathOf(directory) + '/' + path;
}

template<typename Function>
Function *original(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

} // namespace

void setDiskFaults(const QList<DiskFault> &list)
{
    const std::lock_guard guard(lock);
    faults = list;
    failed = 0;
    hasFaults = !list.isEmpty();
}

int failedSteps()
{
    return failed;
}

void shiftClock(std::chrono::seconds shift)
{
    clockShift = shift.count();
}

} // namespace Varnel::Test

using namespace Varnel::Test;

#define VISIBLE extern "C" __attribute__((visibility("default")))

namespace {

mode_t modeFrom(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

bool openFails(int directory, const char *path, int flags)
{
    if (!hasFaults || (flags & O_ACCMODE) == O_RDONLY)
        return false;
    const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
    return fails(DiskStep::Open, (pathIn(directory, path) + (isNameless ? "/#" : "")).c_str());
}

bool renameFails(DiskStep step, int fromDirectory, const char *from, int toDirectory, const char *to)
{
    return hasFaults
           && (fails(step, pathIn(fromDirectory, from).c_str())
               || fails(step, pathIn(toDirectory, to).c_str()));
}

} // namespace

VISIBLE int open(const char *path, int flags, ...)
{
    static const auto next = original<int(const char *, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFails(AT_FDCWD, path, flags) ? -1 : next(path, flags, mode);
}

VISIBLE int open64(const char *path, int flags, ...)
{
    static const auto next = original<int(const char *, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFails(AT_FDCWD, path, flags) ? -1 : next(path, flags, mode);
}

VISIBLE int openat(int directory, const char *path, int flags, ...)
{
    static const auto next = original<int(int, const char *, int, ...)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFails(directory, path, flags) ? -1 : next(directory, path, flags, mode);
}

VISIBLE int openat64(int directory, const char *path, int flags, ...)
{
    static const auto next = original<int(int, const char *, int, ...)>("openat64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFails(directory, path, flags) ? -1 : next(directory, path, flags, mode);
}

VISIBLE int mkostemp64(char *pattern, int flags)
{
    static const auto next = original<int(char *, int)>("mkostemp64");
    return fails(DiskStep::Open, pattern) ? -1 : next(pattern, flags);
}

VISIBLE int mkostemp(char *pattern, int flags)
{
    static const auto next = original<int(char *, int)>("mkostemp");
    return fails(DiskStep::Open, pattern) ? -1 : next(pattern, flags);
}

VISIBLE ssize_t write(int descriptor, const void *bytes, size_t size)
{
    static const auto next = original<ssize_t(int, const void *, size_t)>("write");
    if (hasFaults && fails(DiskStep::Write, pathOf(descriptor).c_str()))
        return -1;
    return next(descriptor, bytes, size);
}

VISIBLE int linkat(int fromDirectory, const char *from, int toDirectory, const char *to, int flags) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *, int)>("linkat");
    if (hasFaults && fails(DiskStep::Link, pathIn(toDirectory, to).c_str()))
        return -1;
    return next(fromDirectory, from, toDirectory, to, flags);
}

VISIBLE int rename(const char *from, const char *to) noexcept
{
    static const auto next = original<int(const char *, const char *)>("rename");
    return renameFails(DiskStep::Rename, AT_FDCWD, from, AT_FDCWD, to) ? -1 : next(from, to);
}

VISIBLE int renameat(int fromDirectory, const char *from, int toDirectory, const char *to) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *)>("renameat");
    return renameFails(DiskStep::Rename, fromDirectory, from, toDirectory, to)
               ? -1
               : next(fromDirectory, from, toDirectory, to);
}

VISIBLE int
renameat2(int fromDirectory, const char *from, int toDirectory, const char *to, unsigned flags) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *, unsigned)>("renameat2");
    const DiskStep step = (flags & RENAME_EXCHANGE) != 0 ? DiskStep::Exchange : DiskStep::Rename;
    return renameFails(step, fromDirectory, from, toDirectory, to)
               ? -1
               : next(fromDirectory, from, toDirectory, to, flags);
}

VISIBLE int unlink(const char *path) noexcept
{
    static const auto next = original<int(const char *)>("unlink");
    return fails(DiskStep::Delete, path) ? -1 : next(path);
}

VISIBLE int remove(const char *path) noexcept
{
    static const auto next = original<int(const char *)>("remove");
    return fails(DiskStep::Delete, path) ? -1 : next(path);
}

VISIBLE int unlinkat(int directory, const char *path, int flags) noexcept
{
    static const auto next = original<int(int, const char *, int)>("unlinkat");
    if (hasFaults && fails(DiskStep::Delete, pathIn(directory, path).c_str()))
        return -1;
    return next(directory, path, flags);
}

VISIBLE int utimensat(int directory, const char *path, const timespec times[2], int flags) noexcept
{
    static const auto next = original<int(int, const char *, const timespec *, int)>("utimensat");
    if (hasFaults && fails(DiskStep::SetTime, pathIn(directory, path).c_str()))
        return -1;
    return next(directory, path, times, flags);
}

VISIBLE int futimens(int descriptor, const timespec times[2]) noexcept
{
    static const auto next = original<int(int, const timespec *)>("futimens");
    if (hasFaults && fails(DiskStep::SetTime, pathOf(descriptor).c_str()))
        return -1;
    return next(descriptor, times);
}

VISIBLE int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    static const auto next = original<int(clockid_t, timespec *)>("clock_gettime");
    const int result = next(clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += clockShift;
    return result;
}
