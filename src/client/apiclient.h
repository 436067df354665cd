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
QT_END_NAMESPACE

namespace Varnel::Internal {

class ClientLink;
class DownloadWait;
class Transfer;
struct TransferResult;

/**
 * Talks to one GitLab group over REST v4, without authentication.
 *
 * Construction only queues the group lookup, so that the owner can connect first; ready() follows once the
 * group's id is known. A failed lookup leaves the client not ready for good: the owner replaces the client.
 * Failures end in a status text and are not retried. Lives on the main thread; every signal but
 * statusChanged() is emitted there. On the main thread a receiver of any signal may destroy the client or
 * quit the application; the client then does nothing more.
 */
class ApiClient final : public QObject
{
    Q_OBJECT

    static constexpr qint64 MEBIBYTE = 1024LL * 1024; // bytes

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

    /** Where the example's archive is. */
    [[nodiscard]] QUrl archiveUrl(const Example &example) const;
    /** Where its picture is; maybe empty or no address at all. */
    [[nodiscard]] static QUrl pictureUrl(const Example &example);

    /** Bytes that an answer may have, decompressed and whatever its status, before it fails. */
    struct BodyBounds
    {
        qint64 json = 256 * MEBIBYTE; // search and listing
        qint64 archive = 1024 * MEBIBYTE;
        qint64 picture = 64 * MEBIBYTE;
    };
    [[nodiscard]] const BodyBounds &bodyBounds() const { return m_bodyBounds; }
    /** For tests that cannot afford the defaults. */
    void setBodyBounds(const BodyBounds &bounds) { m_bodyBounds = bounds; }

    /**
     * Told of a request's result on the client's thread, before anything is done with it. Must not destroy
     * the client.
     */
    using Observer = std::function<void(const QUrl &url, const TransferResult &result)>;
    /** For programs that report on the server. To be called before the event loop runs. */
    void setObserver(const Observer &observer) { m_observer = observer; }

    /** How long search and listing may stall before they fail; for ever by default. */
    void setListingTimeout(std::chrono::milliseconds timeout) { m_listingTimeout = timeout; }

    /** How long archives and pictures may stall before they fail. */
    [[nodiscard]] std::chrono::milliseconds downloadTimeout() const { return m_downloadTimeout; }
    /** For tests and programs that cannot wait for the default. */
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
    using OnSuccess = std::function<void(const QByteArray &body)>;
    using OnFailure = std::function<void()>;

    /** What an answer should be, and how long it may take and become. */
    struct Expectation
    {
        const char *contentType;
        qint64 largestBody;                // bytes
        std::chrono::milliseconds stall{}; // zero: for ever
    };

    void findGroup();
    void onGroupFound(const QJsonDocument &document);
    void onFetched(const QJsonDocument &document);

    QPointer<Transfer>
    startDownload(const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait);
    void requestPicture(const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait);

    /**
     * Issues one GET from any thread that runs an event loop. Exactly one of the callbacks runs later, on the
     * client's thread, unless the client is destroyed or the application quits first. Both must be set.
     * Returns the transfer, which deletes itself when it ends, or with its client; a worker that is to end
     * before deletes its own. Null if there is none.
     */
    QPointer<Transfer> makeRequest(
        const QUrl &url,
        const Expectation &expectation,
        const OnSuccess &onSuccess,
        const OnFailure &onFailure);
    void failLater(const QUrl &url, const QString &error, const OnFailure &onFailure);
    void
    passResultOn(const QUrl &url, Transfer *transfer, const OnSuccess &onSuccess, const OnFailure &onFailure);
    void observe(const QUrl &url, const TransferResult &result) const;
    void tieToItsOwners(Transfer *transfer);
    void fail(const QString &error, const OnFailure &onFailure);

    // Both are false if nothing may follow: a receiver destroyed the client, or quit the application.
    bool emitStatusChanged(const QString &status);
    [[nodiscard]] bool announce(const Repository::ExamplePtr &example);

    QUrl m_apiUrl;
    QString m_group;
    // Never asked for anything: each request has a manager of its own. But the first manager of a process
    // sets up what all of them share, back ends and meta-types, and this one does so on the main thread.
    QNetworkAccessManager m_networkAccessManager;
    qint64 m_groupId = 0; // 0 until the lookup succeeded
    BodyBounds m_bodyBounds;
    std::chrono::milliseconds m_listingTimeout{}; // zero: for ever
    std::chrono::milliseconds m_downloadTimeout = std::chrono::seconds(300);
    Observer m_observer; // null: none
    std::shared_ptr<ClientLink> m_link;
};

} // namespace Varnel::Internal
