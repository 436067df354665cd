// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/logrecorder.h"

#include "server/demoserver.h"

#include <utils/environment.h>

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>

namespace Varnel::Internal {
class DownloadService;
class Repository;
} // namespace Varnel::Internal

namespace Varnel::Test {

/**
 * What one case of hostile input runs in: the plug-in's download service, a server with one project,
 * "subject", and the test's own directories, in each of which lies a file that nobody may touch.
 *
 * One at a time; the process needs run-isolated.sh, whose directories it watches, and prepareProcess().
 */
class World final
{
public:
    static inline const QString SEARCH_ROUTE = "/api/v4/groups";
    static inline const QString LISTING_ROUTE = "/api/v4/groups/4711";
    static inline const QString ARCHIVE_ROUTE = "/api/v4/projects/7/repository/archive.tar.gz";
    static inline const QString PICTURE_ROUTE = "/picture";

    World();
    ~World();
    Q_DISABLE_COPY_MOVE(World)

    /** Once per process: the IDE's settings and its knowledge of file types. */
    static void prepareProcess();

    // Before the start
    [[nodiscard]] Demo::DemoServer &server() { return *m_server; }
    [[nodiscard]] Demo::Project &subject();
    /** The subject's picture is what PICTURE_ROUTE answers. */
    void setPicture(const QByteArray &bytes, const QByteArray &type);
    /** A second project of the same group. */
    [[nodiscard]] Demo::Project &other();
    /** Answers over TLS from here on; what the server was told before is forgotten. */
    void encrypt(const QSslConfiguration &configuration, const QString &host);
    /** One value of the plug-in's settings, in place of a sensible one. */
    void setSetting(const QString &key, const QVariant &value) { m_settings.insert(key, value); }
    /** The settings file's bytes, in place of all values. */
    void setSettingsFile(const QByteArray &bytes) { m_settingsFile = bytes; }
    /** The entry of the repository as the settings should have it. */
    [[nodiscard]] QString repositoryEntry() const;

    /** The IDE then unpacks with GNU tar. */
    void hideCmake();
    /** Whoever starts one of these programs does harm. */
    void baitPrograms(const QStringList &programs);
    /** What the unarchiver has for its locale. */
    void setToolLocale(const QString &locale);
    /** No file that the process writes from here on can be larger: as on a disk that fills up meanwhile. */
    void limitFileSize(qint64 bytes);
    void liftLimit();

    void start();
    /**
     * Downloads both projects again as they are on the server now, by the user's wish or because an update is
     * due after a restart, and waits until each is registered or has failed.
     */
    void updateAll(bool isRestarted);
    /** With honest settings, against a server without encryption. */
    void restartHonestly();
    /** Installs "good", an honest project that is new on the server, with the service that runs. */
    void installGood();
    void stop();

    /** False if it does not become true in time. */
    static bool waitFor(
        const std::function<bool()> &isTrue, std::chrono::milliseconds patience = std::chrono::seconds(60));

    /** A path below the directory of all the test's directories: "home", "data", "tmp" and others. */
    [[nodiscard]] static QString path(const QString &relative = {});
    [[nodiscard]] static QString repositoryDirectory();
    [[nodiscard]] static QString exampleDirectory(const QString &name);
    [[nodiscard]] static bool isInstalled(const QString &name);
    /** The way from the repository's directory up to path(). */
    [[nodiscard]] static QByteArray wayUp();

    [[nodiscard]] Internal::DownloadService *service() const { return m_service.get(); }
    [[nodiscard]] Internal::Repository *repository() const;
    /** True if a status text or debug line contains @p text. */
    [[nodiscard]] bool hasLogged(const QString &text) const;
    [[nodiscard]] QStringList log() const { return m_log.pluginLines(); }
    /** Nothing is being downloaded, vetted or unpacked, as far as can be seen from outside. */
    [[nodiscard]] bool isIdle() const;

    /** All that is outside the repository's directory, and the neighbouring example in it, by path. */
    [[nodiscard]] static QMap<QByteArray, QByteArray> everythingElse();
    /** What differs, one line each; empty if nothing does. */
    [[nodiscard]] static QStringList
    differences(const QMap<QByteArray, QByteArray> &before, const QMap<QByteArray, QByteArray> &after);
    /** What lies in the repository's directory. */
    [[nodiscard]] static QStringList repositoryEntries();

private:
    void makeServer(const Demo::DemoServer::Setup &setup);
    void writeSettings();
    [[nodiscard]] qsizetype updateCount() const;
    [[nodiscard]] qsizetype endCount() const;

    LogRecorder m_log;
    std::unique_ptr<Demo::DemoServer> m_server;
    std::unique_ptr<Internal::DownloadService> m_service;
    QMap<QString, QVariant> m_settings;
    std::optional<QByteArray> m_settingsFile;
    QString m_host;
    int m_updates = 0; // signals of the service that something has changed
    const QByteArray m_searchPath = qgetenv("PATH");
    const Utils::Environment m_environment = Utils::Environment::systemEnvironment();
};

} // namespace Varnel::Test
