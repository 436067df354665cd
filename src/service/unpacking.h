// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"
#include "service/registration.h"

#include <utils/unarchiver.h>

#include <QHash>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace Varnel::Internal {

class BackgroundWorker;
struct ArchiveVerdict;
class DirectoryLock;

/** A downloaded archive in a temporary file, which nobody removes, and what unpacks it. */
struct ArchiveFile
{
    QString path;
    Utils::Unarchiver::SourceAndCommand source;
};

/** Nothing if the unarchiver takes no such file; then none stays. */
[[nodiscard]] std::optional<ArchiveFile> saveArchive(const Repository::ExamplePtr &example);

/** One archive on its way to the disk. */
struct UnpackJob
{
    QString repositoryName;
    Repository::ExamplePtr example; ///< with its archive
    QString archiveFile; ///< the temporary file under the archive's name; removed when the job ends
    Utils::Unarchiver::SourceAndCommand source; ///< that file, and what unpacks it
    /** What was unpacked, or nothing if it failed. Not called after UnpackQueue::stop(). */
    std::function<void(const std::optional<UnpackedCopy> &)> onDone;
    /** For who reports on archives: the verdict on this one; may be empty. */
    std::function<void(const ArchiveVerdict &)> onVetted = {};
    /** The same for what else keeps it from being unpacked, untranslated. */
    std::function<void(const QString &obstacle)> onObstacle = {};
};

/** What the queue must know of the repositories when an archive has its turn. */
struct RepositoryLookup
{
    std::function<Repository::Examples(const QString &name)> examples;
    std::function<QStringList()> names;
};

/**
 * Takes archives through all that lies between the download and the registration. Each is vetted, waits for
 * archives that would write to the same place, and for other processes, has the left-over of its directory
 * removed, is unpacked, and its project looked through. The unarchiver runs at most once for each processor,
 * the rest on the background worker. Main thread only.
 */
class UnpackQueue final : public QObject
{
    Q_OBJECT

public:
    /** @p worker outlives the queue. */
    UnpackQueue(BackgroundWorker &worker, const RepositoryLookup &repositories, QObject *parent);
    ~UnpackQueue() override;

    void add(const UnpackJob &job);

    /**
     * Keeps other processes from unpacking into the repository as long as it lives; null while one of them
     * does. The queue holds it from the clearing of an archive's way to the end of its registration.
     */
    [[nodiscard]] std::shared_ptr<DirectoryLock> lockRepository(const QString &repositoryName);

    /** True for the full path of a copy that waits for its registration. */
    [[nodiscard]] bool isInUse(const QString &directory) const;

    /**
     * Ends what runs, removes its temporary files and takes nothing more. The worker is to be stopped before.
     */
    void stop();

private:
    struct Entry;
    using EntryPtr = std::shared_ptr<Entry>;

    void onVetted(const EntryPtr &entry, const ArchiveVerdict &verdict);
    void startWaiting();
    [[nodiscard]] bool isBlocked(const Entry &entry) const;
    void clearTheWay(const EntryPtr &entry);
    void unpack(const EntryPtr &entry);
    void onUnpacked(const EntryPtr &entry, bool isSuccess);
    /** Nothing if the disk does not allow it. */
    [[nodiscard]] std::optional<UnpackedCopy> place(const Entry &entry) const;
    /** Finds out for the registration what would hold the main thread. */
    void prepare(const EntryPtr &entry, const UnpackedCopy &copy);
    void finish(const EntryPtr &entry, const std::optional<UnpackedCopy> &copy);

    BackgroundWorker &m_worker;
    const RepositoryLookup m_repositories;
    QList<EntryPtr> m_entries; // in the order of their arrival
    QHash<QString, std::weak_ptr<DirectoryLock>> m_locks;
    QTimer m_retry; // as nobody tells when another process is done
    bool m_isStopped = false;
};

} // namespace Varnel::Internal
