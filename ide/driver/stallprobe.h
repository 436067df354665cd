// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace Varnel::Driver {

/** Notes how long the event loop of its thread lets a timer wait that is due all the time. */
class StallProbe final : public QObject
{
    Q_OBJECT

public:
    explicit StallProbe(QObject *parent);

    /** The longest wait since the last call, in milliseconds; what this very call ends is included. */
    [[nodiscard]] double takeLongest();

private:
    void tick();

    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0; // ns
};

} // namespace Varnel::Driver
