// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/apiclient.h"

#include "client/downloadpool.h"
#include "client/handover.h"
#include "plugin/constants.h"
#include "plugin/logging.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QScopeGuard>
#include <QSslSocket>

namespace Varnel::Internal {

namespace {

constexpr char API_PATH[] = "/api/v4";
constexpr char SEARCH_PATH[] = "/groups?search=\"%1\"";
constexpr char FETCH_PATH[] = "/groups/%1";
constexpr char DOWNLOAD_PATH[] = "/projects/%1/repository/archive%2";

constexpr char JSON_TYPE[] = "application/json";
constexpr char ARCHIVE_TYPE[] = "application/zip";
constexpr char IMAGE_TYPE[] = "image/png";

constexpr char REDIRECT_FAULT[] = "redirectFault"; // property of a reply that was refused one

bool isSuccess(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return reply.error() == QNetworkReply::NoError && status >= 200 && status <= 299;
}

QJsonDocument getReply(QNetworkReply *reply)
{
    const QByteArray body = reply->readAll();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError) {
        qCDebug(Log::api) << "Json response:" << body;
        qCDebug(Log::api) << "Json parse error: " << error.errorString();
    }
    return document;
}

// The server answers a search with an array and a look-up with an object; either is taken for both.
QJsonObject groupObject(const QJsonDocument &document, const char *manyObjectsMessage)
{
    if (!document.isArray())
        return document.object();
    const QJsonArray groups = document.array();
    if (groups.size() > 1)
        qCDebug(Log::api) << manyObjectsMessage;
    return groups.at(0).toObject();
}

// Only these schemes leave the machine in a way that a repository may ask for. An empty address names none and
// is left to the network layer, whose failure it is.
bool isAllowed(const QUrl &url)
{
    const QString scheme = url.scheme();
    return url.isEmpty() || scheme == u"http" || scheme == u"https";
}

// What the network layer says in such a case, in its own translation: none of ours may replace it in the whole IDE.
QString networkLayerText(const char *context, const char *text)
{
    return QCoreApplication::translate(context, text);
}

QString unknownProtocol(const QUrl &url)
{
    return networkLayerText("QNetworkReply", "Protocol \"%1\" is unknown").arg(url.scheme());
}

// Empty if the redirect may be followed.
QString faultOfRedirect(const QUrl &from, const QUrl &to)
{
    if (!isAllowed(to))
        return unknownProtocol(to);
    if (from.scheme() == u"https" && to.scheme() == u"http")
        return networkLayerText("QHttp", "Insecure redirect");
    return {};
}

// Left alone, the network layer would also follow to a socket of this machine's own services, and what it has begun
// to follow cannot be stopped. So it asks us, and the rest is what it does by default.
void judgeRedirects(QNetworkReply *reply)
{
    QObject::connect(
        reply,
        &QNetworkReply::redirected,
        reply,
        [reply, from = reply->url(), end = HandlerEnd()](const QUrl &to) mutable {
            const auto handBack = qScopeGuard([] { handedOver(Handover::Handler); });
            const QString fault = faultOfRedirect(from, to);
            from = to;
            if (fault.isEmpty()) {
                emit reply->redirectAllowed();
                return;
            }
            reply->setProperty(REDIRECT_FAULT, fault);
            reply->abort();
        });
    handedOver(Handover::Handler); // also if it never runs
}

QString errorText(const QNetworkReply &reply)
{
    const QVariant fault = reply.property(REDIRECT_FAULT);
    return fault.isValid() ? fault.toString() : reply.errorString();
}

QString withoutOuterSlashes(QString path)
{
    if (path.startsWith(u'/'))
        path.remove(0, 1);
    if (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// A project's number as the server sent it; what no 64-bit integer can hold names no project.
qint64 projectId(const Example &example)
{
    constexpr double LIMIT = 9223372036854775808.0; // 2^63, the first that does not fit
    const double id = example.project().value(u"id").toDouble();
    return id >= -LIMIT && id < LIMIT ? static_cast<qint64>(id) : 0;
}

// The manager belongs to the calling worker. Nobody else deletes it once the application quits.
void waitFor(DownloadWait &wait, const QPointer<QNetworkAccessManager> &manager)
{
    if (!wait.exec())
        delete manager.data();
}

} // namespace

ApiClient::ApiClient(const QUrl &url, QObject *parent)
    : QObject(parent)
    , m_apiUrl(url.adjusted(QUrl::RemovePath))
    , m_link(std::make_shared<ClientLink>(this))
{
    watchForQuit();
    m_apiUrl.setPath(QString::fromUtf8(API_PATH), QUrl::DecodedMode);
    if (!m_apiUrl.isValid() || m_apiUrl.isLocalFile() || m_apiUrl.isRelative()) {
        qCDebug(Log::api) << "Provided repository url is not valid:" << url.toString();
        return;
    }
    m_group = withoutOuterSlashes(url.path(QUrl::FullyDecoded));
    if (m_group.isEmpty()) {
        qCDebug(Log::api) << "Provided repository url has no group:" << url.toString();
        return;
    }
    if (!QSslSocket::supportsSsl()) {
        qCDebug(Log::api)
            << "Platform SSL support is not detected - connection to the repositories most likely "
               "will not be established!";
    }
    QMetaObject::invokeMethod(this, &ApiClient::findGroup, Qt::QueuedConnection);
}

ApiClient::~ApiClient()
{
    m_link->cut();
}

void ApiClient::findGroup()
{
    emitStatusChanged(QObject::tr("Searching examples"));
    const QUrl url(m_apiUrl.toString() + QString::fromUtf8(SEARCH_PATH).arg(m_group), QUrl::TolerantMode);
    makeRequest(url, JSON_TYPE, [this](QNetworkReply &reply) { onGroupFound(getReply(&reply)); }, [] {});
}

void ApiClient::onGroupFound(const QJsonDocument &document)
{
    emit statusChanged({});
    if (document.isNull()) {
        emitStatusChanged(QObject::tr("Search error: request return null object"));
        return;
    }
    const QJsonObject group
        = groupObject(document, "Search request return more than 1 object - taking first");
    if (!group.contains(u"id")) {
        emitStatusChanged(QObject::tr("Search error: request return wrong data - no id field"));
        return;
    }
    m_groupId = group.value(u"id").toInt();
    if (m_groupId != 0) {
        emitStatusChanged(QObject::tr("API client is ready"));
        emit ready();
    }
}

void ApiClient::fetch()
{
    if (m_groupId == 0) {
        emitStatusChanged(QObject::tr("Repository error: group id not found - unable to fetch examples"));
        return;
    }
    emitStatusChanged(QObject::tr("Fetch examples"));
    const QUrl url(m_apiUrl.toString() + QString::fromUtf8(FETCH_PATH).arg(m_groupId), QUrl::TolerantMode);
    makeRequest(url, JSON_TYPE, [this](QNetworkReply &reply) { onFetched(getReply(&reply)); }, [] {});
}

void ApiClient::onFetched(const QJsonDocument &document)
{
    emit statusChanged({});
    if (document.isNull()) {
        emitStatusChanged(QObject::tr("Fetch error: request return null object"));
        return;
    }
    const QJsonObject group = groupObject(document, "Fetch request return more than 1 object - taking first");
    if (!group.contains(u"projects")) {
        emitStatusChanged(QObject::tr("Fetch error: request return wrong data - no projects field"));
        return;
    }
    Repository::Examples examples;
    const QJsonArray projects = group.value(u"projects").toArray();
    for (const QJsonValue project : projects) {
        const auto example = Repository::ExamplePtr::create(project.toObject());
        if (example->isValid())
            examples.append(example);
    }
    emit fetched(examples);
}

void ApiClient::download(const Repository::Examples &examples)
{
    for (const Repository::ExamplePtr &example : examples) {
        // The client may be replaced while the job waits for its turn: then there is nobody to download for.
        startOnDownloadPool([link = m_link, example] {
            const auto wait = std::make_shared<DownloadWait>();
            QPointer<QNetworkAccessManager> manager;
            if (link->withClient([&](ApiClient &client) { manager = client.startDownload(example, wait); }))
                waitFor(*wait, manager);
        });
    }
}

void ApiClient::download(const Repository::ExamplePtr &example)
{
    const auto wait = std::make_shared<DownloadWait>();
    waitFor(*wait, startDownload(example, wait));
}

QPointer<QNetworkAccessManager>
ApiClient::startDownload(const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait)
{
    emitStatusChanged(QObject::tr("Downloading example: %1").arg(example->displayName()));
    const QString path = QString::fromUtf8(DOWNLOAD_PATH)
                             .arg(projectId(*example))
                             .arg(QString::fromUtf8(Constants::ARCHIVE_EXTENSION));
    return makeRequest(
        QUrl(m_apiUrl.toString() + path, QUrl::TolerantMode),
        ARCHIVE_TYPE,
        [this, example, wait](QNetworkReply &reply) { onArchiveDownloaded(reply, example, wait); },
        [wait] { wait->finish(); },
        m_downloadTimeout);
}

void ApiClient::onArchiveDownloaded(
    QNetworkReply &reply, const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait)
{
    example->setData(reply.readAll());

    const QString imageUrl = example->project().value(u"avatar_url").toString();
    const auto onImage = [this, example, wait](QNetworkReply &imageReply) {
        example->setImage(imageReply.readAll());
        if (announce(example))
            emit statusChanged({});
        wait->finish();
    };
    const auto onNoImage = [this, example, wait, imageUrl] {
        if (announce(example))
            emitStatusChanged(QObject::tr("Unable to download image: %1").arg(imageUrl));
        wait->finish();
    };
    makeRequest(QUrl(imageUrl, QUrl::TolerantMode), IMAGE_TYPE, onImage, onNoImage, m_downloadTimeout);
}

bool ApiClient::announce(const Repository::ExamplePtr &example)
{
    const QPointer<ApiClient> self(this);
    emit downloaded(example);
    return self;
}

QPointer<QNetworkAccessManager> ApiClient::makeRequest(
    const QUrl &url,
    const QByteArray &contentType,
    const OnSuccess &onSuccess,
    const OnFailure &onFailure,
    std::chrono::milliseconds stallTimeout)
{
    qCDebug(Log::api) << "Requesting:" << url.toString();
    if (!isAllowed(url)) {
        const auto fail = [this, url, onFailure] {
            emitStatusChanged(QObject::tr("Network error: %1").arg(unknownProtocol(url)));
            onFailure();
        };
        QMetaObject::invokeMethod(this, fail, Qt::QueuedConnection);
        return {};
    }

    QNetworkRequest request(url);
    request.setRawHeader("Content-Type", contentType);
    request.setAttribute(
        QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setTransferTimeout(stallTimeout);

    // A manager may be used only on the thread that made it, and archives are requested from pool threads;
    // one manager per request keeps those threads apart.
    auto manager = new QNetworkAccessManager;
    connect(
        manager,
        &QNetworkAccessManager::finished,
        this, // the context: runs on our thread, and never after we are gone
        [this, manager, onSuccess, onFailure, end = HandlerEnd()](QNetworkReply *reply) {
            received(Handover::Reply);
            const auto handBack = qScopeGuard([] { handedOver(Handover::Handler); });
            // A worker that has been let go of takes its manager along, and the reply with it.
            if (isQuitting())
                return;
            onReplyFinished(reply, onSuccess, onFailure);
            reply->close();
            reply->deleteLater();
            manager->deleteLater();
        });
    // A request without a client has nobody to answer to, and none may outlive the event loop of its thread.
    connect(this, &QObject::destroyed, manager, &QObject::deleteLater);
    if (manager->thread() == thread())
        connect(qApp, &QCoreApplication::aboutToQuit, manager, &QObject::deleteLater);
    handedOver(Handover::Reply); // which comes by the handler above
    QNetworkReply *reply = manager->get(request);
    judgeRedirects(reply);
    return manager;
}

void ApiClient::onReplyFinished(QNetworkReply *reply, const OnSuccess &onSuccess, const OnFailure &onFailure)
{
    if (isSuccess(*reply)) {
        onSuccess(*reply);
        return;
    }
    emitStatusChanged(QObject::tr("Network error: %1").arg(errorText(*reply)));
    onFailure();
}

void ApiClient::emitStatusChanged(const QString &status)
{
    if (!status.isEmpty())
        qCDebug(Log::api) << "Status:" << status;
    emit statusChanged(status);
}

} // namespace Varnel::Internal
