// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "stallprobe.h"

#include <algorithm>
#include <utility>

namespace Varnel::Driver {

StallProbe::StallProbe(QObject *parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &StallProbe::tick);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.start(std::chrono::milliseconds(1));
    m_sinceTick.start();
}

double StallProbe::takeLongest()
{
    tick();
    return double(std::exchange(m_longest, 0)) / 1e6;
}

void StallProbe::tick()
{
    m_longest = std::max(m_longest, m_sinceTick.nsecsElapsed());
    m_sinceTick.start();
}

} // namespace Varnel::Driver
