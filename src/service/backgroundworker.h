// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QPointer>
#include <QRunnable>
#include <QSet>
#include <QString>
#include <QThreadPool>

#include <stop_token>

namespace Varnel::Internal {

/**
 * One thread for what would hold the main loop: judging archives, looking through projects, removing trees.
 * It is one thread only, as an archive may need much memory. All members are for the main thread.
 */
class BackgroundWorker final : public QObject
{
    Q_OBJECT

public:
    /** Placing comes first, then removal, then vetting; each in the order of arrival. */
    enum Priority { Vetting, Removal, Placing };

    explicit BackgroundWorker(QObject *parent = nullptr);
    /** Does what stop() does. */
    ~BackgroundWorker() override;

    /**
     * Runs @p task with a stop token, which it has to heed, and then @p onDone with its result: later, from
     * the event loop, and only if @p context still lives.
     */
    template<typename Task, typename OnDone>
    void run(Priority priority, QObject *context, Task task, OnDone onDone)
    {
        const auto runTask
            = [this, token = m_stop.get_token(), context = QPointer<QObject>(context), task, onDone] {
                  const auto deliver = [context, onDone, result = task(token)] {
                      if (context)
                          onDone(result);
                  };
                  // By way of the worker, which outlives its thread.
                  QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
              };
        m_pool.start(QRunnable::create(runTask), priority);
    }

    /**
     * Removes a directory, a file or a link in the background; a directory's manifest goes at once. stop()
     * may leave a part of it undone.
     */
    void removeTree(const QString &path);
    /** True as long as removeTree() has not come to the end of this path. */
    [[nodiscard]] bool isRemoving(const QString &path) const { return m_removals.contains(path); }

    /** Ends what runs, drops what waits, and waits for the thread. */
    void stop();

private:
    QThreadPool m_pool;
    std::stop_source m_stop;
    QSet<QString> m_removals;
};

} // namespace Varnel::Internal
