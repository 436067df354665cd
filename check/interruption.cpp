// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "interruption.h"

#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace Varnel::Check {

namespace {

constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP};

int toEvent = -1; // what the handler, which is no object's, writes to
std::array<struct sigaction, SIGNALS.size()> before;

void onSignal(int /*number*/)
{
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(toEvent, &one, sizeof one);
    errno = error;
}

} // namespace

// Handlers, and no blocked signals: those would be blocked in the unarchiver, too, which must end as well.
Interruption::Interruption()
    : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    toEvent = m_event;
    auto notifier = new QSocketNotifier(m_event, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        emit came();
    });
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < SIGNALS.size(); ++i) {
        ::sigaction(SIGNALS[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN)
            ::sigaction(SIGNALS[i], &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (std::size_t i = 0; i < SIGNALS.size(); ++i)
        ::sigaction(SIGNALS[i], &before[i], nullptr);
    ::close(m_event);
}

bool Interruption::hasCome() const
{
    pollfd waiting{.fd = m_event, .events = POLLIN, .revents = 0};
    return ::poll(&waiting, 1, 0) > 0;
}

// A pipe that can be written to takes at least so many bytes without waiting.
bool Interruption::write(int descriptor, const QByteArray &bytes) const
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        std::array<pollfd, 2> waiting{
            {{.fd = descriptor, .events = POLLOUT, .revents = 0},
             {.fd = m_event, .events = POLLIN, .revents = 0}}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR)
            return false;
        if (waiting[1].revents != 0)
            return false;
        if (waiting[0].revents == 0)
            continue;
        const auto size = std::min<qsizetype>(bytes.size() - done, PIPE_BUF);
        const auto written = ::write(descriptor, bytes.constData() + done, std::size_t(size));
        if (written >= 0)
            done += written;
        else if (errno != EINTR && errno != EAGAIN)
            return false;
    }
    return true;
}

} // namespace Varnel::Check
