// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/downloadservice.h"

#include "plugin/logging.h"
#include "service/filesystem.h"
#include "service/nativefiles.h"
#include "service/placement.h"
#include "service/registration.h"

#include <coreplugin/helpmanager.h>
#include <coreplugin/icore.h>

#include <QCoreApplication>
#include <QDir>

namespace Varnel::Internal {

namespace {

// Fixed while the library loads, so it stays untranslated.
const QString ERROR_MESSAGE = QObject::tr("Unable to cast repository from: %1");

QString castError()
{
    return ERROR_MESSAGE.arg(QLatin1String(QObject::staticMetaObject.className()));
}

QSet<QString> paths(const Repository::Examples &examples)
{
    QSet<QString> result;
    for (const Repository::ExamplePtr &example : examples)
        result.insert(example->name());
    return result;
}

} // namespace

DownloadService::DownloadService(QObject *parent)
    : QObject(parent)
{
    m_settings.load(Core::ICore::settings());
    for (const Settings::RepositoryInfo &info : std::as_const(m_settings.repositories))
        addRepository(info.url);
    startWatchdog();
    // Behind the clients, which have connected by now: their workers end before the service lets go.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &DownloadService::onAboutToQuit);
}

// Silent: by now the logging categories may be gone.
DownloadService::~DownloadService() = default;

void DownloadService::addRepository(const QUrl &url)
{
    const auto repository = QSharedPointer<Repository>::create(url, this);
    m_repositories.append(repository);
    connect(repository.get(), &Repository::downloaded, this, &DownloadService::onDownloaded);
    connect(repository.get(), &Repository::fetched, this, &DownloadService::onFetched);
}

void DownloadService::startWatchdog()
{
    constexpr quint32 MILLISECONDS = 1000;
    connect(&m_restartTimer, &QTimer::timeout, &m_restartTimer, [this] { restartRepositories(); });
    m_restartTimer.start(static_cast<int>(m_settings.serviceRestartTimeoutSeconds * MILLISECONDS));
}

void DownloadService::restartRepositories()
{
    bool areAllReady = true;
    const QList<QSharedPointer<Repository>> repositories = m_repositories;
    for (const QSharedPointer<Repository> &repository : repositories) {
        if (repository->isReady())
            continue;
        areAllReady = false;
        emitStatusChanged(QStringLiteral("%1 (%2)")
                              .arg(tr("API client is not ready - restarting"))
                              .arg(repository->url().toString()));
        repository->reset();
    }
    if (areAllReady)
        m_restartTimer.stop();
}

void DownloadService::onAboutToQuit()
{
    m_restartTimer.stop();
    for (const QSharedPointer<Repository> &repository : std::as_const(m_repositories))
        disconnect(repository.get(), nullptr, this, nullptr);
    m_worker.stop();
    m_unpackQueue.stop();
}

QSharedPointer<Repository> DownloadService::findRepository(const QString &repositoryName) const
{
    const QUrl url = m_settings.repositories.value(repositoryName).url;
    if (url.isEmpty())
        return {};
    for (const QSharedPointer<Repository> &repository : m_repositories) {
        if (repository->url() == url)
            return repository;
    }
    return {};
}

Repository::Examples DownloadService::examples(const QString &repositoryName) const
{
    const QSharedPointer<Repository> repository = findRepository(repositoryName);
    return repository ? repository->examples() : Repository::Examples();
}

void DownloadService::save(const QString &repositoryName, const QSet<QString> &examples)
{
    if (const QSharedPointer<Repository> repository = findRepository(repositoryName)) {
        repository->download(examples);
        return;
    }
    emitStatusChanged(
        tr("Skip downloading examples - unable to find repository for name: %1").arg(repositoryName));
}

// One slot serves all repositories, and the signal does not say whose it is: hence sender(), here and below.
void DownloadService::onFetched()
{
    const auto repository = qobject_cast<Repository *>(sender());
    if (!repository) {
        emitStatusChanged(castError());
        return;
    }
    emit updated();
    if (m_settings.updatesCheckTimeoutDays == 0) {
        qCDebug(Log::service) << "Automatic updates disabled";
        return;
    }
    const QString repositoryName = m_settings.findName(repository->url());
    if (!isUpdateDue(repositoryName))
        return;

    qCDebug(Log::service) << "Updating examples:" << repository->examples().size();
    const QDate lastChecked = m_settings.lastCheckedDates.value(repositoryName);
    // An unknown repository has its date, too, under an empty name: the entry shows that it was checked.
    m_settings.lastCheckedDates.insert(repositoryName, QDate::currentDate());
    m_settings.save(Core::ICore::settings());
    // On disk before the first request: an answer that ends the IDE must not come again at every start.
    Core::ICore::settings()->sync();
    if (repositoryName.isEmpty()) {
        emitStatusChanged(tr("Skip downloading examples - unable to find repository for url: %1")
                              .arg(repository->url().toString()));
        return;
    }
    removeLeftOvers(repositoryName, *repository);
    repository->download(findOutdated(*repository, repositoryName, lastChecked));
}

// An IDE that was killed leaves what it had unpacked. Another one that runs may still need it.
void DownloadService::removeLeftOvers(const QString &repositoryName, const Repository &repository)
{
    const std::shared_ptr<DirectoryLock> lock = m_unpackQueue.lockRepository(repositoryName);
    if (!lock)
        return;
    const QStringList copies = findMarkedCopies(repositoryName, paths(repository.examples()));
    for (const QString &copy : copies) {
        if (!m_unpackQueue.isInUse(copy) && !m_worker.isRemoving(copy)
            && !holdsRepository(copy, m_settings.repositories.keys()))
            m_worker.removeTree(copy);
    }
}

bool DownloadService::isUpdateDue(const QString &repositoryName) const
{
    const QDate lastChecked = m_settings.lastCheckedDates.value(repositoryName);
    return !lastChecked.isValid()
           || m_settings.updatesCheckTimeoutDays < lastChecked.daysTo(QDate::currentDate());
}

QSet<QString> DownloadService::findOutdated(
    const Repository &repository, const QString &repositoryName, const QDate &lastChecked) const
{
    const QSet<QString> removed = m_settings.repositories.value(repositoryName).examples;
    const QDateTime lastCheckedDay = lastChecked.startOfDay();
    QSet<QString> outdated;
    const Repository::Examples &examples = repository.examples();
    for (const Repository::ExamplePtr &example : examples) {
        const QString path = example->name();
        // Zero seconds may also mean that one of the two times is invalid: better update once too often.
        const bool isChanged = example->lastActivity().secsTo(lastCheckedDay) <= 0;
        if (!removed.contains(path) && (isChanged || !QDir(exampleDirectory(repositoryName, path)).exists()))
            outdated.insert(path);
        else
            qCDebug(Log::service) << "Skip example:" << example->displayName();
    }
    return outdated;
}

void DownloadService::onDownloaded(const Repository::ExamplePtr &example)
{
    if (example->data().isEmpty()) {
        emitStatusChanged(tr("The data is not downloaded for example: %1").arg(example->displayName()));
        return;
    }
    const QString repositoryName = repositoryOf(example, sender());
    if (repositoryName.isEmpty())
        return;
    emitStatusChanged(tr("Unpacking example: %1").arg(example->displayName()));
    unpack(repositoryName, example);
}

// Empty if the repository is not known; then a status says so.
QString DownloadService::repositoryOf(const Repository::ExamplePtr &example, const QObject *sender)
{
    const auto repository = qobject_cast<const Repository *>(sender);
    if (!repository) {
        emitStatusChanged(castError());
        return {};
    }
    const QString repositoryName = m_settings.findName(repository->url());
    if (repositoryName.isEmpty()) {
        emitStatusChanged(tr("Skip saving example %1 - unable to find repository name for url: %2")
                              .arg(example->displayName())
                              .arg(repository->url().toString()));
    }
    return repositoryName;
}

void DownloadService::unpack(const QString &repositoryName, const Repository::ExamplePtr &example)
{
    const std::optional<ArchiveFile> file = saveArchive(example);
    if (!file) {
        emitStatusChanged(tr("Downloaded file is not an archive"));
        return;
    }
    m_unpackQueue.add(
        {.repositoryName = repositoryName,
         .example = example,
         .archiveFile = file->path,
         .source = file->source,
         .onDone = [this, repositoryName, example](const std::optional<UnpackedCopy> &copy) {
             onUnpacked(repositoryName, example, copy);
         }});
}

void DownloadService::onUnpacked(
    const QString &repositoryName,
    const Repository::ExamplePtr &example,
    const std::optional<UnpackedCopy> &copy)
{
    if (!copy) {
        emitStatusChanged(tr("There was an error while unarchiving"));
        return;
    }
    registerCopy(
        example,
        {.repositoryName = repositoryName,
         .listed = examples(repositoryName),
         .repositoryNames = m_settings.repositories.keys(),
         .copy = *copy,
         .removeCopy = [this](const QString &directory) { m_worker.removeTree(directory); },
         .isBeingRemoved = [this](const QString &directory) { return m_worker.isRemoving(directory); }});
}

void DownloadService::registerExample(const QString &repositoryName, const Repository::ExamplePtr &example)
{
    registerCopy(
        example,
        {.repositoryName = repositoryName,
         .listed = examples(repositoryName),
         .repositoryNames = m_settings.repositories.keys(),
         .removeCopy = [](const QString &directory) { removeTree(directory); },
         .isBeingRemoved = [this](const QString &directory) { return m_worker.isRemoving(directory); }});
}

void DownloadService::registerCopy(const Repository::ExamplePtr &example, const RegistrationContext &context)
{
    if (!findRepository(context.repositoryName)) {
        // Translations know the texts of a registration in the context of QObject.
        emitStatusChanged(QObject::tr("Skip registering example %1 - unable to find repository for name: %2")
                              .arg(example->displayName())
                              .arg(context.repositoryName));
        return;
    }
    if (!Registration(example, context).run())
        emitStatusChanged(QObject::tr("There was an error while creating example mainfest"));
    emit updated();
    const auto helpSignals = Core::HelpManager::Signals::instance();
    emit helpSignals->documentationChanged();
}

void DownloadService::emitStatusChanged(const QString &message)
{
    if (!message.isEmpty())
        qCDebug(Log::service) << "Status:" << message;
    emit statusChanged(message);
}

} // namespace Varnel::Internal
