// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "signalwatcher.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace Varnel::Demo {

namespace {

sigset_t watchedSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

void SignalWatcher::block()
{
    const sigset_t set = watchedSignals();
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
}

SignalWatcher::SignalWatcher()
    : m_descriptor([] {
        const sigset_t set = watchedSignals();
        return ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    }())
{
    auto notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        emit finished();
    });
}

SignalWatcher::~SignalWatcher()
{
    ::close(m_descriptor);
}

} // namespace Varnel::Demo
