// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the measuring programs share: clocks, the process's own accounts, and one line of JSON as the result.
#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

#include <sys/resource.h>
#include <time.h>

namespace Varnel::Bench {

class Stopwatch
{
public:
    Stopwatch() { m_timer.start(); }
    [[nodiscard]] double seconds() const { return double(m_timer.nsecsElapsed()) / 1e9; }

private:
    QElapsedTimer m_timer;
};

/** Seconds of processor time of the calling thread. */
inline double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/**
 * Seconds of processor time of this process, RUSAGE_SELF, or of those that it has awaited, RUSAGE_CHILDREN.
 */
inline double processorSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/** The most memory that this process ever had, in bytes. */
inline qint64 peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

inline void print(const QJsonObject &result)
{
    std::fputs(QJsonDocument(result).toJson(QJsonDocument::Compact).append('\n').constData(), stdout);
    std::fflush(stdout);
}

} // namespace Varnel::Bench
