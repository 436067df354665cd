// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pagedlisting.h"
#include "pictureprobe.h"
#include "report.h"

#include "client/apiclient.h"
#include "client/repository.h"
#include "service/backgroundworker.h"
#include "service/unpacking.h"

#include <QHash>
#include <QJsonArray>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <chrono>
#include <memory>

namespace Varnel::Internal {
class PathTree;
struct ArchiveVerdict;
struct TransferResult;
} // namespace Varnel::Internal

namespace Varnel::Check {

struct Progress
{
    qsizetype done = 0;
    qsizetype all = 0; ///< 0 until the listing is there
    qint64 bytes = 0;  ///< of archives, downloaded
};

/**
 * Takes a group's projects the way that they take in the IDE, by the plug-in's own client, queue and
 * registration, and notes what happens to each. Main thread only; needs an event loop.
 */
class Checker final : public QObject
{
    Q_OBJECT

public:
    struct Setup
    {
        QUrl url;
        QString name;
        QString only; ///< a pattern of paths; empty: all
        int jobs = 1;
        std::chrono::seconds timeout{60};
        bool keepsExamples = false; ///< what is installed stays
    };

    /** Unpacks into the directory that setRepositoryDirectory() was given. */
    explicit Checker(const Setup &setup);
    ~Checker() override;

    void start();
    /** Ends everything that runs, at once. To be called when the application is about to quit. */
    void stop();

    [[nodiscard]] const Report &report() const { return m_report; }
    /** What archives that were accepted have at their top: unpacking, or a part of it, may have left them. */
    [[nodiscard]] const QSet<QString> &topNames() const { return m_topNames; }

signals:
    void progressed(const Varnel::Check::Progress &progress);
    void listed(const QStringList &paths);
    void finished();

private:
    using ExamplePtr = Internal::Repository::ExamplePtr;
    using Examples = Internal::Repository::Examples;
    enum class Stage { Searching, Listing, Downloading };

    /** One example on its way. */
    struct Job
    {
        ExamplePtr example;
        qsizetype index = 0; // in the report
        bool hasArrived = false;
        bool hasFailed = false; // and why is said
    };
    using JobPtr = std::shared_ptr<Job>;

    // The group
    void onResult(const QUrl &url, const Internal::TransferResult &result);
    void onSearched(const QUrl &url, const Internal::TransferResult &result);
    void onListing(const QUrl &url, const Internal::TransferResult &result);
    void onFetched(const Examples &examples);
    void onCompared();
    void giveUp(const Finding &finding);

    // The examples
    void startNext();
    void onReturned(const JobPtr &job);
    void unpack(const JobPtr &job);
    void lookAtLinks(const JobPtr &job, const std::shared_ptr<const Internal::PathTree> &paths);
    void lookAtCommit(const JobPtr &job, const QByteArray &archive);
    void onVetted(const JobPtr &job, const Internal::ArchiveVerdict &verdict);
    void onUnpacked(const JobPtr &job, const std::optional<Internal::UnpackedCopy> &copy);
    void install(const JobPtr &job, const Internal::UnpackedCopy &copy);
    void lookAtPicture(const JobPtr &job, const Internal::UnpackedCopy *copy);
    void finishJob();
    void finishWhenAllIsDone();

    [[nodiscard]] ExampleReport &reportOf(const Job &job) { return m_report.examples[job.index]; }
    /** Begun by the first who asks. */
    [[nodiscard]] ArchiveReport &archiveReportOf(const Job &job);
    void add(const JobPtr &job, QLatin1StringView id, const QString &text);
    void sortFindings();
    [[nodiscard]] std::optional<FailedRequest> failureOf(const QUrl &url) const;

    const Setup m_setup;
    Report m_report;
    Stage m_stage = Stage::Searching;
    Internal::ApiClient m_client;
    Examples m_listed;
    QJsonArray m_projects; // of the listing, valid or not
    PagedListing m_paged;
    bool m_isComparing = false;
    QHash<QUrl, FailedRequest> m_failures; // the last one of each address
    QSet<QUrl> m_pictureUrls;
    QHash<QUrl, QSize> m_pictureSizes;
    QList<JobPtr> m_waiting;
    QHash<const Internal::Example *, JobPtr> m_downloading;
    qsizetype m_unfinished = 0; // that have been started
    qsizetype m_all = 0;
    qint64 m_bytes = 0;
    QSet<QString> m_topNames;
    QThreadPool m_downloads;
    Internal::BackgroundWorker m_worker;
    Internal::UnpackQueue m_queue;
    bool m_isStopped = false;
};

} // namespace Varnel::Check
