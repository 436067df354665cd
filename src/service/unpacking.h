// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archivevetting.h"

#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <stop_token>

namespace Utils {
class Unarchiver;
}

namespace Varnel::Internal {

struct UnpackResult
{
    bool isSuccess = false;
    QString
        topDirectory; ///< name of the one directory that everything was unpacked into, empty if there is none
};

/** One archive on its way to the disk. */
struct UnpackJob
{
    QPointer<Utils::Unarchiver> unarchiver; ///< set up but not started; has an owner of its own
    QString archiveFile; ///< the temporary file that the unarchiver reads; removed when the job ends
    QByteArray archive;  ///< the same bytes, for the vetting
    QString directory;   ///< where to unpack, with a trailing "/"
    QString repositoryName;
    QString examplePath; ///< whose registration follows, which clears directories that begin with it
    std::function<void(const UnpackResult &)> onDone; ///< not called after UnpackQueue::stop()
    ArchiveVerdict verdict;
};

/**
 * Vets archives one after the other off the main thread and unpacks those that pass, several at a time. Two archives
 * that would meet on the disk wait for each other: an archive's links must not serve another archive, and what is being
 * unpacked is not to be cleared away as an old copy of another example.
 */
class UnpackQueue final : public QObject
{
    Q_OBJECT

public:
    explicit UnpackQueue(QObject *parent = nullptr);
    ~UnpackQueue() override;

    void add(UnpackJob job);

    /** Ends what runs, removes its temporary files and takes nothing more. */
    void stop();

private:
    using JobPtr = std::shared_ptr<UnpackJob>;

    void onVetted(const JobPtr &job, const ArchiveVerdict &verdict);
    void startWaiting();
    [[nodiscard]] bool isBlocked(const UnpackJob &job) const;
    [[nodiscard]] bool clearTheWay(const UnpackJob &job) const;
    void start(const JobPtr &job);
    void finish(const JobPtr &job, bool isSuccess);

    QThreadPool m_vettingPool; // of one thread: an archive may need much memory
    std::stop_source m_stopVetting;
    QList<JobPtr> m_jobs;    // all of them, in the order of their arrival
    QList<JobPtr> m_waiting; // vetted, not started
    QList<JobPtr> m_running;
    bool m_isStopped = false;
};

} // namespace Varnel::Internal
