// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QApplication>

#include <chrono>

namespace Varnel::Test {

/**
 * An application that watches how long single events hold its main loop. Time in which the thread waited for a
 * processor does not count, so that a busy machine deceives nobody; time in which it slept or waited for a disk does.
 * Events of the test's own server, which lives on the same thread, are left out.
 */
class WatchedApplication final : public QApplication
{
    Q_OBJECT

public:
    WatchedApplication(int &argc, char **argv);
    ~WatchedApplication() override;

    bool notify(QObject *receiver, QEvent *event) override;

    struct Hold
    {
        std::chrono::nanoseconds time{};
        QByteArray receiver; ///< class of the object that got the event
        int eventType = 0;
    };
    /** Since the last call of forgetHolds(). */
    [[nodiscard]] static Hold longestHold() { return s_longestHold; }
    static void forgetHolds();

private:
    [[nodiscard]] std::chrono::nanoseconds busyTime() const;

    int m_statistics = -1; // of the main thread, open file
    int m_depth = 0;       // of events that are handled within the handling of another
    static Hold s_longestHold;
};

} // namespace Varnel::Test
