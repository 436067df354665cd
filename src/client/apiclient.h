// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QJsonDocument;
class QNetworkReply;
QT_END_NAMESPACE

namespace Varnel::Internal {

class ClientLink;
class DownloadWait;

/**
 * Talks to one GitLab group over REST v4, without authentication.
 *
 * Construction only queues the group lookup, so that the owner can connect first; ready() follows once the
 * group's id is known. A failed lookup leaves the client not ready for good: the owner replaces the client.
 * Failures end in a status text and are not retried. Lives on the main thread; every signal but
 * statusChanged() is emitted there.
 */
class ApiClient final : public QObject
{
    Q_OBJECT

public:
    ApiClient(const QUrl &url, QObject *parent);
    ~ApiClient() override;

    /** True once the group's id is known. */
    [[nodiscard]] bool isReady() const { return m_groupId != 0; }

    /**
     * Blocks the calling worker until @p example arrived, failed, or the application quits; if the client is
     * destroyed meanwhile, until the application quits.
     */
    void download(const Repository::ExamplePtr &example);
    /** Downloads @p examples on the download pool and returns at once. */
    void download(const Repository::Examples &examples);

    /** How long archives and pictures may stall before they fail. */
    [[nodiscard]] std::chrono::milliseconds downloadTimeout() const { return m_downloadTimeout; }
    /** For tests that cannot wait for the default. */
    void setDownloadTimeout(std::chrono::milliseconds timeout) { m_downloadTimeout = timeout; }

signals:
    void ready();
    /** Progress or failure as one translated line, from any thread; empty clears the last one. */
    void statusChanged(const QString &status);
    /** The valid projects of the group, maybe none. */
    void fetched(const Repository::Examples &examples);
    /** The archive is in the example, and so is the picture unless it failed. In order of completion. */
    void downloaded(const Repository::ExamplePtr &example);

public slots:
    /** Lists the group's projects. */
    void fetch();

private:
    using OnSuccess = std::function<void(QNetworkReply &)>;
    using OnFailure = std::function<void()>;

    void findGroup();
    void onGroupFound(const QJsonDocument &document);
    void onFetched(const QJsonDocument &document);

    QPointer<QNetworkAccessManager>
    startDownload(const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait);
    void onArchiveDownloaded(
        QNetworkReply &reply,
        const Repository::ExamplePtr &example,
        const std::shared_ptr<DownloadWait> &wait);

    /** False if a receiver destroyed the client. */
    [[nodiscard]] bool announce(const Repository::ExamplePtr &example);

    /**
     * Issues one GET from any thread that runs an event loop. Exactly one of the callbacks runs later, on the
     * client's thread, unless the client is destroyed or the application quits first. Both must be set.
     * Returns the request's manager, which goes by itself unless the application quits; null if it has none.
     */
    QPointer<QNetworkAccessManager> makeRequest(
        const QUrl &url,
        const QByteArray &contentType,
        const OnSuccess &onSuccess,
        const OnFailure &onFailure,
        std::chrono::milliseconds stallTimeout = {}); // zero: none
    void onReplyFinished(QNetworkReply *reply, const OnSuccess &onSuccess, const OnFailure &onFailure);
    void emitStatusChanged(const QString &status);

    QUrl m_apiUrl;
    QString m_group;
    // Asked for nothing: the first manager of a process sets up what all of them share, back ends and meta-types, and
    // that is to happen on the main thread, not on one of the workers, whose requests have a manager each.
    QNetworkAccessManager m_networkAccessManager;
    qint64 m_groupId = 0; // 0 until the lookup succeeded
    std::chrono::milliseconds m_downloadTimeout = std::chrono::seconds(300);
    std::shared_ptr<ClientLink> m_link;
};

} // namespace Varnel::Internal
