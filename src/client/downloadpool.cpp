// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/downloadpool.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSet>
#include <QThreadPool>

namespace Varnel::Internal {

namespace {

QThreadPool &downloadPool()
{
    static QThreadPool pool;
    return pool;
}

/** The waits of all workers, to be ended together. Any thread. */
class OpenWaits
{
public:
    /** False if it is too late to wait: quitting is announced only once. */
    bool add(DownloadWait *wait)
    {
        const QMutexLocker locker(&m_lock);
        if (!m_isClosed)
            m_waits.insert(wait);
        return !m_isClosed;
    }

    void remove(DownloadWait *wait)
    {
        const QMutexLocker locker(&m_lock);
        m_waits.remove(wait);
    }

    void close()
    {
        const QMutexLocker locker(&m_lock);
        m_isClosed = true;
        for (DownloadWait *wait : std::as_const(m_waits))
            wait->finish();
    }

private:
    QMutex m_lock; // guards both members
    QSet<DownloadWait *> m_waits;
    bool m_isClosed = false;
};

OpenWaits &openWaits()
{
    static OpenWaits waits;
    return waits;
}

// A worker's loop is ended by an event, and without an application object events are dropped. So the workers are
// awaited while there is one: they need nothing of the main thread to end.
void endDownloads()
{
    downloadPool().clear();
    openWaits().close();
    downloadPool().waitForDone();
}

} // namespace

void watchForQuit()
{
    static const QMetaObject::Connection connection
        = QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, &endDownloads);
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
    if (openWaits().add(this) && enter(&loop))
        loop.exec();
    openWaits().remove(this);

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
