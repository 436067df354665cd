// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <functional>
#include <mutex>

QT_BEGIN_NAMESPACE
class QEventLoop;
QT_END_NAMESPACE

namespace Varnel::Internal {

/**
 * Runs @p job on the download pool, which all clients share and which is at most as large as the IDE's global
 * pool. It is not the global pool itself: a download waits for the main thread, and the IDE's main thread
 * sometimes waits for a job of the global pool. From aboutToQuit() on the job is dropped. Any thread.
 */
void startOnDownloadPool(const std::function<void()> &job);

/**
 * Ends all downloads when the application is about to quit, and waits for their workers; to be called on the
 * main thread before that.
 */
void watchForQuit();

/** True from aboutToQuit() on. Any thread. */
[[nodiscard]] bool isQuitting();

/**
 * Keeps a worker waiting, in an event loop of its own, for what the main thread will tell it. Shared by the
 * worker and the callbacks, because either may be gone when the other still holds it.
 */
class DownloadWait final
{
public:
    /**
     * Blocks the calling thread until finish() or the application's aboutToQuit(), either of which may have
     * come before. False if nothing but quitting ended the wait.
     */
    [[nodiscard]] bool exec();
    /** Ends the wait from any thread; later calls do nothing. */
    void finish();

private:
    [[nodiscard]] bool enter(QEventLoop *loop);
    [[nodiscard]] bool leave(QEventLoop *loop);

    // Both are guarded by the lock that all waits share.
    QEventLoop *m_loop = nullptr; // set while the worker is in it
    bool m_isFinished = false;
};

} // namespace Varnel::Internal
