// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"
#include "service/backgroundworker.h"
#include "service/unpacking.h"
#include "settings/settings.h"

#include <QObject>
#include <QTimer>

namespace Varnel::Internal {

/**
 * Owns the configured repositories, decides after each listing what to download again, unpacks what arrives
 * and registers it with the IDE.
 *
 * The set of repositories is fixed for the service's life. Failures arrive as status texts. When the
 * application is about to quit the service lets go of everything that runs; the object itself may be
 * destroyed much later. Main thread only.
 */
class DownloadService final : public QObject
{
    Q_OBJECT

public:
    explicit DownloadService(QObject *parent);
    ~DownloadService() override;

    /** Null if no repository of this name is configured. */
    [[nodiscard]] QSharedPointer<Repository> findRepository(const QString &repositoryName) const;
    /** The current listing of a repository, empty if there is none. */
    [[nodiscard]] Repository::Examples examples(const QString &repositoryName) const;
    /** Installs the named examples of a repository, also those that are up to date. Returns at once. */
    void save(const QString &repositoryName, const QSet<QString> &examples);

    /**
     * Makes an installed example of the newest unpacked copy: gives it its place, manifest and picture, and
     * announces the change. A failure leaves no example directory.
     */
    void registerExample(const QString &repositoryName, const Repository::ExamplePtr &example);

signals:
    /** A repository has been listed, or an example has been registered or has failed to. */
    void updated();
    /** One translated line of progress or failure; empty clears the last one. */
    void statusChanged(const QString &message);

private slots:
    void onDownloaded(const Repository::ExamplePtr &example);
    void onFetched();

private:
    void addRepository(const QUrl &url);
    void startWatchdog();
    void restartRepositories();
    void onAboutToQuit();

    [[nodiscard]] bool isUpdateDue(const QString &repositoryName) const;
    [[nodiscard]] QSet<QString>
    findOutdated(const Repository &repository, const QString &repositoryName, const QDate &lastChecked) const;
    void removeLeftOvers(const QString &repositoryName, const Repository &repository);
    [[nodiscard]] QString repositoryOf(const Repository::ExamplePtr &example, const QObject *sender);
    void unpack(const QString &repositoryName, const Repository::ExamplePtr &example);
    void onUnpacked(
        const QString &repositoryName,
        const Repository::ExamplePtr &example,
        const std::optional<UnpackedCopy> &copy);
    void registerCopy(const Repository::ExamplePtr &example, const RegistrationContext &context);
    void emitStatusChanged(const QString &message);

    Settings m_settings;
    QTimer m_restartTimer;
    QList<QSharedPointer<Repository>>
        m_repositories; // children too; released before the base's destructor runs
    BackgroundWorker m_worker;
    UnpackQueue m_unpackQueue{
        m_worker,
        {[this](const QString &repositoryName) { return examples(repositoryName); },
         [this] { return m_settings.repositories.keys(); }},
        this};
};

} // namespace Varnel::Internal
