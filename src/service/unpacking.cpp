// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/unpacking.h"

#include "plugin/logging.h"
#include "service/filesystem.h"
#include "service/manifest.h"

#include <utils/unarchiver.h>

#include <QFile>
#include <QFileInfo>
#include <QtConcurrentRun>

#include <filesystem>
#include <limits>

namespace Varnel::Internal {

namespace {

// Of the volume that the directory is on, or will be on; negative if unknown.
qint64 freeBytes(const QString &directory)
{
    namespace fs = std::filesystem;
    fs::path path = fs::path(QFile::encodeName(directory).toStdString());
    std::error_code error;
    fs::space_info space = fs::space(path, error);
    while (error && path.has_relative_path()) {
        path = path.parent_path();
        space = fs::space(path, error);
    }
    constexpr auto LIMIT = static_cast<std::uintmax_t>(std::numeric_limits<qint64>::max());
    return error ? -1 : static_cast<qint64>(std::min(space.available, LIMIT));
}

bool mayClear(const UnpackJob &job, const QByteArray &topDirectory)
{
    return QFile::decodeName(topDirectory).startsWith(job.examplePath, Qt::CaseInsensitive);
}

} // namespace

UnpackQueue::UnpackQueue(QObject *parent)
    : QObject(parent)
{
    m_vettingPool.setMaxThreadCount(1);
}

UnpackQueue::~UnpackQueue()
{
    m_stopVetting.request_stop();
    m_vettingPool.waitForDone();
}

void UnpackQueue::add(UnpackJob job)
{
    const auto shared = std::make_shared<UnpackJob>(std::move(job));
    m_jobs.append(shared);
    // The job itself stays on this thread: its unarchiver must not be let go of on another. The free space is looked
    // up as late as can be, since the archives before it take some.
    const auto vet
        = [archive = shared->archive, directory = shared->directory, stop = m_stopVetting.get_token()] {
              return vetArchive(archive, freeBytes(directory), stop);
          };
    QtConcurrent::run(&m_vettingPool, vet).then(this, [this, shared](const ArchiveVerdict &verdict) {
        onVetted(shared, verdict);
    });
}

void UnpackQueue::stop()
{
    m_isStopped = true;
    m_stopVetting.request_stop();
    const QList<JobPtr> jobs = std::exchange(m_jobs, {});
    m_waiting.clear();
    m_running.clear();
    for (const JobPtr &job : jobs) {
        delete job->unarchiver.data();
        QFile::remove(job->archiveFile);
    }
    m_vettingPool.waitForDone();
}

void UnpackQueue::onVetted(const JobPtr &job, const ArchiveVerdict &verdict)
{
    if (m_isStopped)
        return;
    job->verdict = verdict;
    job->archive.clear();
    if (!verdict.isAccepted) {
        qCDebug(Log::arch) << "Archive refused:" << verdict.reason;
        finish(job, false);
        return;
    }
    m_waiting.append(job);
    startWaiting();
}

void UnpackQueue::startWaiting()
{
    const QList<JobPtr> waiting = m_waiting;
    for (const JobPtr &job : waiting) {
        // A job that ends at once starts others of them meanwhile.
        if (!m_isStopped && !isBlocked(*job) && m_waiting.removeOne(job))
            start(job);
    }
}

// Without one top directory an archive may write anywhere in the repository's, so it is alone there. The archives of
// one example are unpacked in the order of their arrival, so that the last one stays.
bool UnpackQueue::isBlocked(const UnpackJob &job) const
{
    const auto isRival = [&job](const JobPtr &earlier) {
        return earlier->directory == job.directory && earlier->examplePath == job.examplePath;
    };
    const auto own = std::find_if(
        m_jobs.cbegin(), m_jobs.cend(), [&job](const JobPtr &other) { return other.get() == &job; });
    if (std::any_of(m_jobs.cbegin(), own, isRival))
        return true;

    const QByteArray top = job.verdict.topDirectory;
    return std::any_of(m_running.cbegin(), m_running.cend(), [&](const JobPtr &running) {
        const QByteArray runningTop = running->verdict.topDirectory;
        return running->directory == job.directory
               && (top.isEmpty() || runningTop.isEmpty() || top == runningTop || mayClear(*running, top)
                   || mayClear(job, runningTop));
    });
}

// A link that an earlier archive left where this one is unpacked would lead its files astray.
bool UnpackQueue::clearTheWay(const UnpackJob &job) const
{
    if (job.verdict.topDirectory.isEmpty()) {
        if (!leadsThroughLink(job.directory, job.verdict.entries))
            return true;
        qCDebug(Log::arch) << "Archive refused: it leads through a link that is there";
        return false;
    }
    const QString target = job.directory + QFile::decodeName(job.verdict.topDirectory);
    if (!QFileInfo(target).isSymLink() && holdsManifest(target, job.repositoryName)) {
        qCDebug(Log::arch) << "Archive refused: its directory is an installed example:" << target;
        return false;
    }
    return removeNativeTree(QFile::encodeName(job.directory) + job.verdict.topDirectory);
}

void UnpackQueue::start(const JobPtr &job)
{
    m_running.append(job);
    if (!job->unarchiver || !clearTheWay(*job)) {
        finish(job, false);
        return;
    }
    connect(job->unarchiver, &Utils::Unarchiver::done, this, [this, job](Tasking::DoneResult result) {
        finish(job, result == Tasking::DoneResult::Success);
    });
    job->unarchiver->start();
}

void UnpackQueue::finish(const JobPtr &job, bool isSuccess)
{
    if (!m_jobs.removeOne(job))
        return;
    m_running.removeOne(job);
    QFile::remove(job->archiveFile);
    job->onDone({isSuccess, QFile::decodeName(job->verdict.topDirectory)});
    if (job->unarchiver)
        job->unarchiver->deleteLater();
    startWaiting();
}

} // namespace Varnel::Internal
