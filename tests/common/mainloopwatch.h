// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QApplication>

#include <chrono>

namespace Varnel::Test {

/**
 * An application that watches how long single events hold its main loop. The time on a processor tells even
 * on a busy machine. The time asleep is apart: in it the thread may have waited for another one that got no
 * processor. Events of the test's own server, which lives on the same thread, are left out.
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
    // Since the last call of forgetHolds():
    [[nodiscard]] static Hold longestWork() { return s_longestWork; }
    [[nodiscard]] static Hold longestSleep() { return s_longestSleep; }
    static void forgetHolds();

private:
    struct Times
    {
        std::chrono::nanoseconds working{}; ///< on a processor
        std::chrono::nanoseconds asleep{};  ///< neither on a processor nor waiting for one
    };
    [[nodiscard]] Times times() const;

    int m_statistics = -1; // of the main thread, open file
    int m_depth = 0;       // of events that are handled within the handling of another
    static Hold s_longestWork;
    static Hold s_longestSleep;
};

} // namespace Varnel::Test
