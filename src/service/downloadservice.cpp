// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/downloadservice.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/filesystem.h"
#include "service/placement.h"
#include "service/registration.h"

#include <coreplugin/helpmanager.h>
#include <coreplugin/icore.h>
#include <utils/filepath.h>
#include <utils/unarchiver.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>

namespace Varnel::Internal {

namespace {

// Fixed while the library loads, so it stays untranslated.
const QString ERROR_MESSAGE = QObject::tr("Unable to cast repository from: %1");

QString castError()
{
    return ERROR_MESSAGE.arg(QLatin1String(QObject::staticMetaObject.className()));
}

// Writes nothing for a path that is no plain name: the file would lie somewhere else.
void saveArchive(QTemporaryFile *file, const Repository::ExamplePtr &example)
{
    if (!isPlainName(example->name()) || !file->open())
        return;
    file->write(example->data());
    file->flush();
    file->close();
}

QSet<QString> paths(const Repository::Examples &examples)
{
    QSet<QString> result;
    for (const Repository::ExamplePtr &example : examples)
        result.insert(example->name());
    return result;
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

DownloadService::DownloadService(QObject *parent)
    : QObject(parent)
{
    m_settings.load(Core::ICore::settings());
    for (const Settings::RepositoryInfo &info : std::as_const(m_settings.repositories))
        addRepository(info.url);
    startWatchdog();
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
    m_unpackQueue.stop();
}

QSharedPointer<Repository> DownloadService::findRepository(const QString &name) const
{
    const QUrl url = m_settings.repositories.value(name).url;
    if (url.isEmpty())
        return {};
    for (const QSharedPointer<Repository> &repository : m_repositories) {
        if (repository->url() == url)
            return repository;
    }
    return {};
}

Repository::Examples DownloadService::examples(const QString &name) const
{
    const QSharedPointer<Repository> repository = findRepository(name);
    return repository ? repository->examples() : Repository::Examples();
}

void DownloadService::save(const QString &name, const QSet<QString> &examples)
{
    if (const QSharedPointer<Repository> repository = findRepository(name)) {
        repository->download(examples);
        return;
    }
    emitStatusChanged(tr("Skip downloading examples - unable to find repository for name: %1").arg(name));
}

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
    const QString name = m_settings.findName(repository->url());
    if (!isUpdateDue(name))
        return;

    qCDebug(Log::service) << "Updating examples:" << repository->examples().size();
    const QDate lastChecked = m_settings.lastCheckedDates.value(name);
    // Also under an empty name: the entry shows that an unknown repository was checked.
    m_settings.lastCheckedDates.insert(name, QDate::currentDate());
    m_settings.save(Core::ICore::settings());
    if (name.isEmpty()) {
        emitStatusChanged(tr("Skip downloading examples - unable to find repository for url: %1")
                              .arg(repository->url().toString()));
        return;
    }
    removeLeftOverCopies(name, paths(repository->examples()));
    repository->download(findOutdated(*repository, name, lastChecked));
}

bool DownloadService::isUpdateDue(const QString &name) const
{
    const QDate lastChecked = m_settings.lastCheckedDates.value(name);
    return !lastChecked.isValid()
           || m_settings.updatesCheckTimeoutDays < lastChecked.daysTo(QDate::currentDate());
}

QSet<QString> DownloadService::findOutdated(
    const Repository &repository, const QString &name, const QDate &lastChecked) const
{
    const QSet<QString> removed = m_settings.repositories.value(name).examples;
    const QDateTime lastCheckedDay = lastChecked.startOfDay();
    QSet<QString> outdated;
    const Repository::Examples &examples = repository.examples();
    for (const Repository::ExamplePtr &example : examples) {
        const QString path = example->name();
        // No second between two times also means that one of them is invalid: better once too often.
        const bool isChanged = example->lastActivity().secsTo(lastCheckedDay) <= 0;
        if (!removed.contains(path) && (isChanged || !QDir(exampleDirectory(name, path)).exists()))
            outdated.insert(path);
        else
            qCDebug(Log::service) << "Skip example:" << example->displayName();
    }
    return outdated;
}

void DownloadService::onDownloaded(const Repository::ExamplePtr &example)
{
    const QString title = example->displayName();
    if (example->data().isEmpty()) {
        emitStatusChanged(tr("The data is not downloaded for example: %1").arg(title));
        return;
    }
    const auto repository = qobject_cast<Repository *>(sender());
    if (!repository) {
        emitStatusChanged(castError());
        return;
    }
    const QString name = m_settings.findName(repository->url());
    if (name.isEmpty()) {
        emitStatusChanged(tr("Skip saving example %1 - unable to find repository name for url: %2")
                              .arg(title)
                              .arg(repository->url().toString()));
        return;
    }
    emitStatusChanged(tr("Unpacking example: %1").arg(title));

    QTemporaryFile file(archiveTemplate(example->name()));
    saveArchive(&file, example);
    qCDebug(Log::service) << "Saved temp file:" << file.fileName();
    const auto source = Utils::Unarchiver::sourceAndCommand(Utils::FilePath::fromString(file.fileName()));
    if (!source) {
        emitStatusChanged(tr("Downloaded file is not an archive"));
        return;
    }
    file.setAutoRemove(false); // the unarchiver reads it after we have returned

    auto unarchiver = new Utils::Unarchiver;
    unarchiver->setSourceAndCommand(*source);
    unarchiver->setDestDir(Utils::FilePath::fromString(repositoryDirectory(name)));
    unarchiver->setParent(this);
    connect(unarchiver, &Utils::Unarchiver::outputReceived, this, [](const QString &output) {
        qCDebug(Log::arch) << "Unpacking output:" << output;
    });
    m_unpackQueue.add(
        {.unarchiver = unarchiver,
         .archiveFile = file.fileName(),
         .archive = example->data(),
         .directory = repositoryDirectory(name),
         .repositoryName = name,
         .examplePath = example->name(),
         .onDone = [this, name, example](const UnpackResult &result) { onUnpacked(name, example, result); },
         .verdict = {}});
}

void DownloadService::onUnpacked(
    const QString &repositoryName, const Repository::ExamplePtr &example, const UnpackResult &result)
{
    const bool isPlaced
        = result.isSuccess
          && (result.topDirectory.isEmpty()
              || markAsNewestCopy(
                  repositoryName, example->name(), result.topDirectory, examples(repositoryName)));
    if (!isPlaced) {
        emitStatusChanged(tr("There was an error while unarchiving"));
        return;
    }
    registerExample(repositoryName, example);
}

void DownloadService::registerExample(const QString &repositoryName, const Repository::ExamplePtr &example)
{
    const QSharedPointer<Repository> repository = findRepository(repositoryName);
    if (!repository) {
        emitStatusChanged(QObject::tr("Skip registering example %1 - unable to find repository for name: %2")
                              .arg(example->displayName())
                              .arg(repositoryName));
        return;
    }
    if (!Registration(repositoryName, example, repository->examples()).run())
        emitStatusChanged(QObject::tr("There was an error while creating example mainfest"));
    emit updated();
    emit Core::HelpManager::Signals::instance() -> documentationChanged();
}

void DownloadService::emitStatusChanged(const QString &message)
{
    if (!message.isEmpty())
        qCDebug(Log::service) << "Status:" << message;
    emit statusChanged(message);
}

} // namespace Varnel::Internal
