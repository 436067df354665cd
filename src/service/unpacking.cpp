// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/unpacking.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/archivevetting.h"
#include "service/backgroundworker.h"
#include "service/filesystem.h"
#include "service/manifest.h"
#include "service/nativefiles.h"
#include "service/placement.h"

#include <utils/filepath.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <chrono>

namespace Varnel::Internal {

struct UnpackQueue::Entry
{
    enum class State { Vetting, Waiting, Clearing, Unpacking, Placing };

    UnpackJob job;
    QString path; // the example's
    State state = State::Vetting;
    QString topDirectory = {};                   // empty if there is not exactly one
    std::shared_ptr<const PathTree> paths = {};  // that unpacking creates
    QPointer<Utils::Unarchiver> unarchiver = {}; // while it runs
    bool hasWarned = false;                      // the unarchiver
    QString copy = {};                           // what was unpacked, under its new name
    std::shared_ptr<DirectoryLock> lock = {};    // of the repository's directory, once it is under way

    [[nodiscard]] bool isUnderWay() const { return state > State::Waiting; }
    [[nodiscard]] bool takesProcessor() const { return isUnderWay() && state < State::Placing; }
};

namespace {

// On a full disk cmake writes files of the right size without their contents, says no more than this, and
// succeeds.
constexpr QLatin1StringView WARNING("cmake -E tar: warning");

// A file may be named like one, but the tools put its directory in front of that.
bool holdsWarning(const QString &output)
{
    return output.startsWith(WARNING) || output.contains(u'\n' + WARNING);
}

/** What is in the way of an archive, looked at just before it is unpacked. */
struct Way
{
    QString repositoryName;
    QString topDirectory;
    std::shared_ptr<const PathTree> paths;
    QStringList repositoryNames;

    [[nodiscard]] QString directoryOf(const QByteArray &top) const
    {
        return exampleDirectory(repositoryName, QFile::decodeName(top));
    }

    [[nodiscard]] bool leadsIntoRepository() const
    {
        const auto &tops = paths->root().children;
        return std::any_of(tops.cbegin(), tops.cend(), [this](const auto &top) {
            return holdsRepository(directoryOf(top.first), repositoryNames);
        });
    }

    // What a kill has left may hold a manifest, too, but under the name that the archive gave it.
    [[nodiscard]] bool isInstalledExample(const QString &target) const
    {
        return !endsInCommit(topDirectory) && !QFileInfo(target).isSymLink()
               && holdsManifest(target, repositoryName);
    }
};

// A link that an earlier archive left where this one is unpacked would lead its files astray. Returns what
// keeps the archive from being unpacked, for the log; empty if nothing does.
QString clear(const Way &way, const std::stop_token &stop)
{
    if (way.leadsIntoRepository())
        return QStringLiteral("it leads into the directory of a repository");
    if (way.topDirectory.isEmpty())
        return leadsThroughLink(repositoryDirectory(way.repositoryName), *way.paths)
                   ? QStringLiteral("it leads through a link that is there")
                   : QString();
    const QString target = exampleDirectory(way.repositoryName, way.topDirectory);
    if (way.isInstalledExample(target))
        return QStringLiteral("its directory is an installed example");
    return removeTree(target, stop) ? QString() : QStringLiteral("its directory cannot be cleared");
}

// Writes nothing for a path that is no plain name: the file would lie somewhere else. What tells an archive's
// kind is at its beginning. All of it would hold the main thread, and nobody would read it: the fresh archive
// is made from memory.
void write(QTemporaryFile *file, const Repository::ExamplePtr &example)
{
    constexpr qsizetype BEGINNING = 64LL * 1024;
    if (!isPlainName(example->name()) || !file->open())
        return;
    file->write(example->data().first(std::min(example->data().size(), BEGINNING)));
    file->flush();
    file->close();
}

QString archiveTemplate(const QString &path)
{
    return QStringLiteral("%1%2%3-XXXXXX%4")
        .arg(QDir::tempPath())
        .arg(QChar(u'/'))
        .arg(path)
        .arg(QString::fromUtf8(Constants::ARCHIVE_EXTENSION));
}

} // namespace

std::optional<ArchiveFile> saveArchive(const Repository::ExamplePtr &example)
{
    QTemporaryFile file(archiveTemplate(example->name()));
    write(&file, example);
    qCDebug(Log::service) << "Saved temp file:" << file.fileName();
    const auto source = Utils::Unarchiver::sourceAndCommand(Utils::FilePath::fromString(file.fileName()));
    if (!source)
        return {};
    file.setAutoRemove(false); // the unarchiver reads it after we have returned
    return ArchiveFile{.path = file.fileName(), .source = *source};
}

UnpackQueue::UnpackQueue(BackgroundWorker &worker, const RepositoryLookup &repositories, QObject *parent)
    : QObject(parent)
    , m_worker(worker)
    , m_repositories(repositories)
{
    constexpr auto RETRY_INTERVAL = std::chrono::milliseconds(250);
    m_retry.setInterval(RETRY_INTERVAL);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &UnpackQueue::startWaiting);
}

UnpackQueue::~UnpackQueue() = default;

void UnpackQueue::add(const UnpackJob &job)
{
    const auto entry = std::make_shared<Entry>(Entry{.job = job, .path = job.example->name()});
    m_entries.append(entry);
    // The free space is looked up as late as can be, since the archives before it take some.
    const auto vet = [archive = job.example->data(),
                      file = job.archiveFile,
                      directory = repositoryDirectory(job.repositoryName)](const std::stop_token &stop) {
        return vetArchive(archive, file, freeBytes(directory), stop);
    };
    m_worker.run(BackgroundWorker::Vetting, this, vet, [this, entry](const ArchiveVerdict &verdict) {
        onVetted(entry, verdict);
    });
}

std::shared_ptr<DirectoryLock> UnpackQueue::lockRepository(const QString &repositoryName)
{
    std::shared_ptr<DirectoryLock> lock = m_locks.value(repositoryName).lock();
    if (lock)
        return lock;
    lock = std::make_shared<DirectoryLock>(repositoryDirectory(repositoryName));
    if (lock->isTaken())
        return {};
    m_locks.insert(repositoryName, lock);
    return lock;
}

bool UnpackQueue::isInUse(const QString &directory) const
{
    return std::any_of(m_entries.cbegin(), m_entries.cend(), [&directory](const EntryPtr &entry) {
        return entry->copy == directory;
    });
}

void UnpackQueue::stop()
{
    m_isStopped = true;
    m_retry.stop();
    const QList<EntryPtr> entries = std::exchange(m_entries, {});
    for (const EntryPtr &entry : entries) {
        delete entry->unarchiver.data();
        QFile::remove(entry->job.archiveFile);
    }
}

void UnpackQueue::onVetted(const EntryPtr &entry, const ArchiveVerdict &verdict)
{
    if (m_isStopped)
        return;
    if (entry->job.onVetted)
        entry->job.onVetted(verdict);
    if (!verdict.isAccepted) {
        qCDebug(Log::arch) << "Archive refused:" << verdict.reason;
        finish(entry, {});
        return;
    }
    entry->topDirectory = verdict.topDirectory;
    entry->paths = verdict.paths;
    entry->state = Entry::State::Waiting;
    startWaiting();
}

// A burst of unarchivers would starve the IDE, and be no faster.
void UnpackQueue::startWaiting()
{
    qsizetype free = QThread::idealThreadCount()
                     - std::count_if(m_entries.cbegin(), m_entries.cend(), [](const EntryPtr &entry) {
                           return entry->takesProcessor();
                       });
    for (const EntryPtr &entry : std::as_const(m_entries)) {
        if (free <= 0)
            return;
        if (entry->state != Entry::State::Waiting || isBlocked(*entry))
            continue;
        QDir().mkpath(repositoryDirectory(entry->job.repositoryName)); // the unarchiver would, but too late
        entry->lock = lockRepository(entry->job.repositoryName);
        if (!entry->lock) {
            m_retry.start();
            continue;
        }
        clearTheWay(entry);
        --free;
    }
}

// Without one top directory an archive may write anywhere in the repository's, so it is alone there. The
// archives of one example are unpacked in the order of their arrival, so that the last one stays. A
// registration clears directories that are named like copies of its example.
bool UnpackQueue::isBlocked(const Entry &entry) const
{
    bool isEarlier = true;
    for (const EntryPtr &other : m_entries) {
        if (other.get() == &entry) {
            isEarlier = false;
            continue;
        }
        if (other->job.repositoryName != entry.job.repositoryName)
            continue;
        if (isEarlier && other->path == entry.path)
            return true;
        if (other->isUnderWay()
            && (entry.topDirectory.isEmpty() || other->topDirectory.isEmpty()
                || entry.topDirectory == other->topDirectory
                || isNamedLikeCopy(entry.topDirectory, other->path)
                || isNamedLikeCopy(other->topDirectory, entry.path)))
            return true;
    }
    return false;
}

void UnpackQueue::clearTheWay(const EntryPtr &entry)
{
    entry->state = Entry::State::Clearing;
    const Way way{
        entry->job.repositoryName,
        entry->topDirectory,
        std::exchange(entry->paths, {}),
        m_repositories.names()};
    const auto task = [way](const std::stop_token &stop) { return clear(way, stop); };
    m_worker.run(BackgroundWorker::Placing, this, task, [this, entry](const QString &obstacle) {
        if (m_isStopped)
            return;
        if (obstacle.isEmpty()) {
            unpack(entry);
            return;
        }
        qCDebug(Log::arch) << "Archive refused:" << obstacle;
        if (entry->job.onObstacle)
            entry->job.onObstacle(obstacle);
        finish(entry, {});
    });
}

void UnpackQueue::unpack(const EntryPtr &entry)
{
    entry->state = Entry::State::Unpacking;
    auto unarchiver = new Utils::Unarchiver;
    unarchiver->setSourceAndCommand(entry->job.source);
    unarchiver->setDestDir(Utils::FilePath::fromString(repositoryDirectory(entry->job.repositoryName)));
    unarchiver->setParent(this);
    connect(unarchiver, &Utils::Unarchiver::outputReceived, this, [entry](const QString &output) {
        qCDebug(Log::arch) << "Unpacking output:" << output;
        entry->hasWarned = entry->hasWarned || holdsWarning(output);
    });
    connect(
        unarchiver, &Utils::Unarchiver::done, this, [this, entry, unarchiver](Tasking::DoneResult result) {
            unarchiver->deleteLater();
            onUnpacked(entry, result == Tasking::DoneResult::Success && !entry->hasWarned);
        });
    entry->unarchiver = unarchiver;
    unarchiver->start();
}

void UnpackQueue::onUnpacked(const EntryPtr &entry, bool isSuccess)
{
    entry->state = Entry::State::Placing;
    const std::optional<UnpackedCopy> copy = isSuccess ? place(*entry) : std::nullopt;
    if (copy) {
        entry->copy = copy->directory;
        prepare(entry, *copy);
        startWaiting();
    } else {
        finish(entry, {});
    }
}

std::optional<UnpackedCopy> UnpackQueue::place(const Entry &entry) const
{
    const QString &repository = entry.job.repositoryName;
    const Repository::Examples examples = m_repositories.examples(repository);
    if (entry.topDirectory.isEmpty()) {
        const QStringList copies = findDirNames(repository, entry.path, examples);
        return copies.isEmpty() ? UnpackedCopy()
                                : UnpackedCopy{.directory = exampleDirectory(repository, copies.constLast())};
    }
    if (!isNamedLikeCopy(entry.topDirectory, entry.path))
        return UnpackedCopy{.isPathOnly = true, .directory = exampleDirectory(repository, entry.path)};
    const QString name = markAsNewestCopy(repository, entry.path, entry.topDirectory, examples);
    if (name.isEmpty())
        return {};
    return UnpackedCopy{.directory = exampleDirectory(repository, name)};
}

void UnpackQueue::prepare(const EntryPtr &entry, const UnpackedCopy &copy)
{
    const auto task = [copy, image = entry->job.example->image()](const std::stop_token &stop) {
        UnpackedCopy prepared = copy;
        if (!QFileInfo(copy.directory).isSymLink())
            prepared.files = findProjectFiles(copy.directory, stop);
        prepared.picture = encodePicture(image);
        return prepared;
    };
    const auto onDone = [this, entry](const UnpackedCopy &prepared) {
        if (!m_isStopped)
            finish(entry, prepared);
    };
    m_worker.run(BackgroundWorker::Placing, this, task, onDone);
}

void UnpackQueue::finish(const EntryPtr &entry, const std::optional<UnpackedCopy> &copy)
{
    m_entries.removeOne(entry);
    QFile::remove(entry->job.archiveFile);
    entry->job.onDone(copy);
    if (!m_isStopped)
        startWaiting();
}

} // namespace Varnel::Internal
