// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/downloadpool.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThreadPool>

#include <atomic>

namespace Varnel::Internal {

namespace {

QThreadPool &downloadPool()
{
    static QThreadPool pool; // joins its workers when the library is unloaded
    return pool;
}

// aboutToQuit() comes once; a worker that starts to wait after it must know.
std::atomic<bool> isQuitting = false;

} // namespace

void watchForQuit()
{
    static const QMetaObject::Connection connection = QObject::connect(
        QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [] { isQuitting = true; });
    Q_UNUSED(connection)
}

void startOnDownloadPool(const std::function<void()> &job)
{
    downloadPool().setMaxThreadCount(QThreadPool::globalInstance()->maxThreadCount());
    downloadPool().start(job);
}

void DownloadWait::exec()
{
    QEventLoop loop;
    // Runs on the main thread, maybe while this function returns: hence the shared ownership.
    QObject::connect(
        QCoreApplication::instance(),
        &QCoreApplication::aboutToQuit,
        &loop,
        [self = shared_from_this()] { self->finish(); },
        Qt::DirectConnection);
    if (!isQuitting && enter(&loop))
        loop.exec();

    const QMutexLocker locker(&m_lock);
    m_loop = nullptr;
    m_isFinished = true;
}

bool DownloadWait::enter(QEventLoop *loop)
{
    const QMutexLocker locker(&m_lock);
    if (m_isFinished)
        return false;
    m_loop = loop;
    return true;
}

void DownloadWait::finish()
{
    const QMutexLocker locker(&m_lock);
    m_isFinished = true;
    // Queued, so that it also ends a loop that has not begun to run yet.
    if (m_loop)
        QMetaObject::invokeMethod(m_loop, &QEventLoop::quit, Qt::QueuedConnection);
}

ClientLink::ClientLink(ApiClient *client)
    : m_client(client)
{
}

bool ClientLink::withClient(const std::function<void(ApiClient &)> &use)
{
    const QMutexLocker locker(&m_lock);
    if (!m_client)
        return false;
    use(*m_client);
    return true;
}

void ClientLink::cut()
{
    const QMutexLocker locker(&m_lock);
    m_client = nullptr;
}

} // namespace Varnel::Internal
