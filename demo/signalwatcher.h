// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace Varnel::Demo {

/**
 * Turns SIGINT and SIGTERM into one finished(), so that the program can end in an orderly way.
 *
 * block() comes first of all in main(): a thread that was started before it would still get the signals.
 */
class SignalWatcher final : public QObject
{
    Q_OBJECT

public:
    static void block();

    /** Needs an application object. */
    SignalWatcher();
    ~SignalWatcher() override;

signals:
    void finished();

private:
    const int m_descriptor;
};

} // namespace Varnel::Demo
