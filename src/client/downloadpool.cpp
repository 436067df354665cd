// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/downloadpool.h"

#include "client/handover.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThreadPool>

#include <set>

namespace Varnel::Internal {

namespace {

// Quitting and the beginning of a wait exclude each other: whoever ends all waits sees the wait, or the wait
// sees that it is too late to begin.
struct Workers
{
    std::mutex lock; // guards the next two; not a QMutex, which the thread sanitizer cannot see
    std::set<QEventLoop *> loops;
    bool isQuitting = false;
    QThreadPool pool; // the last, so that it joins them before the rest goes when the library is unloaded
};

Workers &workers()
{
    static Workers workers;
    return workers;
}

// An event also ends a loop that does not run yet. The caller holds the lock, which keeps the loop alive.
void end(QEventLoop *loop)
{
    QCoreApplication::postEvent(loop, new QEvent(QEvent::Quit));
}

void endDownloads()
{
    {
        const std::lock_guard guard(workers().lock);
        workers().isQuitting = true;
        workers().pool.clear();
        for (QEventLoop *loop : workers().loops)
            end(loop);
    }
    // An event ends a worker's loop, and without an application object events are dropped. So the workers are
    // awaited while there is one. They need nothing of the main thread to end.
    workers().pool.waitForDone();
}

} // namespace

void watchForQuit()
{
    static const QMetaObject::Connection connection
        = QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, &endDownloads);
    Q_UNUSED(connection)
}

bool isQuitting()
{
    const std::lock_guard guard(workers().lock);
    return workers().isQuitting;
}

void startOnDownloadPool(const std::function<void()> &job)
{
    const std::lock_guard guard(workers().lock);
    if (workers().isQuitting) // the workers have been awaited: nobody would wait for this one
        return;
    workers().pool.setMaxThreadCount(QThreadPool::globalInstance()->maxThreadCount());
    QRunnable *runnable = QRunnable::create([job, handover = Handover()] {
        handover.take();
        job();
    });
    workers().pool.start(runnable); // which deletes it
}

bool DownloadWait::exec()
{
    QEventLoop loop;
    if (enter(&loop))
        loop.exec();
    return leave(&loop);
}

bool DownloadWait::enter(QEventLoop *loop)
{
    const std::lock_guard guard(workers().lock);
    if (m_isFinished || workers().isQuitting)
        return false;
    m_loop = loop;
    workers().loops.insert(loop);
    return true;
}

bool DownloadWait::leave(QEventLoop *loop)
{
    const std::lock_guard guard(workers().lock);
    m_loop = nullptr;
    workers().loops.erase(loop);
    return m_isFinished;
}

void DownloadWait::finish()
{
    const std::lock_guard guard(workers().lock);
    m_isFinished = true;
    if (m_loop)
        end(m_loop);
}

} // namespace Varnel::Internal
