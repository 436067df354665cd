// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QTimer>

namespace Varnel::Driver {

/** Notes how long the event loop of its thread lets a timer wait that is due all the time. */
class StallProbe final : public QObject
{
    Q_OBJECT

public:
    /** In milliseconds. The longest processor time leaves out what other processes took. */
    struct Stall
    {
        double time = 0;
        double processorTime = 0;
    };

    explicit StallProbe(QObject *parent);

    /** The longest since the last call; what this very call ends is included. */
    [[nodiscard]] Stall takeLongest();

private:
    void tick();

    QTimer m_timer;
    double m_tickTime = 0;
    double m_tickProcessorTime = 0;
    Stall m_longest;
};

} // namespace Varnel::Driver
