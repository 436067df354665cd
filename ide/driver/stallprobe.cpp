// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "stallprobe.h"

#include <algorithm>
#include <utility>

#include <time.h>

namespace Varnel::Driver {

namespace {

double milliseconds(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace

StallProbe::StallProbe(QObject *parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &StallProbe::tick);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.start(std::chrono::milliseconds(1));
    tick();
    m_longest = {};
}

StallProbe::Stall StallProbe::takeLongest()
{
    tick();
    return std::exchange(m_longest, {});
}

void StallProbe::tick()
{
    const double time = milliseconds(CLOCK_MONOTONIC);
    const double processorTime = milliseconds(CLOCK_THREAD_CPUTIME_ID);
    m_longest.time = std::max(m_longest.time, time - std::exchange(m_tickTime, time));
    m_longest.processorTime = std::max(
        m_longest.processorTime, processorTime - std::exchange(m_tickProcessorTime, processorTime));
}

} // namespace Varnel::Driver
