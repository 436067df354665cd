// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/mainloopwatch.h"

#include "server/demoserver.h"

#include <QEvent>
#include <QThread>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace Varnel::Test {

namespace {

using std::chrono::nanoseconds;

bool isOfServer(const QObject *object)
{
    for (; object; object = object->parent()) {
        if (qobject_cast<const Demo::DemoServer *>(object) || object->inherits("QAbstractHttpServer"))
            return true;
    }
    return false;
}

} // namespace

WatchedApplication::Hold WatchedApplication::s_longestWork;
WatchedApplication::Hold WatchedApplication::s_longestSleep;

WatchedApplication::WatchedApplication(int &argc, char **argv)
    : QApplication(argc, argv)
    , m_statistics(::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC))
{
    if (m_statistics < 0)
        qFatal("this system does not tell how long a thread waits for a processor");
}

WatchedApplication::~WatchedApplication()
{
    ::close(m_statistics);
}

void WatchedApplication::forgetHolds()
{
    s_longestWork = {};
    s_longestSleep = {};
}

WatchedApplication::Times WatchedApplication::times() const
{
    char text[128]{};
    if (::pread(m_statistics, text, sizeof text - 1, 0) <= 0)
        qFatal("cannot read how long the thread waited");
    char *rest = nullptr;
    const nanoseconds working(std::strtoull(text, &rest, 10));
    const nanoseconds waiting(std::strtoull(rest, nullptr, 10));
    return {working, std::chrono::steady_clock::now().time_since_epoch() - working - waiting};
}

bool WatchedApplication::notify(QObject *receiver, QEvent *event)
{
    if (m_depth > 0 || QThread::currentThread() != thread() || isOfServer(receiver))
        return QApplication::notify(receiver, event);

    const QByteArray name = receiver->metaObject()->className(); // before the event may delete it
    const int type = event->type();
    const Times before = times();
    ++m_depth;
    const bool result = QApplication::notify(receiver, event);
    --m_depth;
    const Times after = times();
    if (after.working - before.working > s_longestWork.time)
        s_longestWork = {after.working - before.working, name, type};
    if (after.asleep - before.asleep > s_longestSleep.time)
        s_longestSleep = {after.asleep - before.asleep, name, type};
    return result;
}

} // namespace Varnel::Test
