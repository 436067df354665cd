// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/apiclient.h"

#include "client/answers.h"
#include "client/clientlink.h"
#include "client/downloadpool.h"
#include "client/handover.h"
#include "client/requestpolicy.h"
#include "client/transfer.h"
#include "plugin/constants.h"
#include "plugin/logging.h"

#include <QCoreApplication>
#include <QJsonDocument>
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

QString withoutOuterSlashes(QString path)
{
    if (path.startsWith(u'/'))
        path.remove(0, 1);
    if (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// A project's number as the server sent it. One that no 64-bit integer can hold names no project.
qint64 projectId(const Example &example)
{
    constexpr double LIMIT = 9223372036854775808.0; // 2^63, the first that does not fit
    const double id = example.project().value(u"id").toDouble();
    return id >= -LIMIT && id < LIMIT ? static_cast<qint64>(id) : 0;
}

// As the server sent it.
QString pictureAddress(const Example &example)
{
    return example.project().value(u"avatar_url").toString();
}

// The transfer belongs to the calling worker. Nobody else deletes it once the application quits.
void waitFor(DownloadWait &wait, const QPointer<Transfer> &transfer)
{
    if (!wait.exec())
        delete transfer.data();
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
    if (!emitStatusChanged(QObject::tr("Searching examples")))
        return;
    const QUrl url(m_apiUrl.toString() + QString::fromUtf8(SEARCH_PATH).arg(m_group), QUrl::TolerantMode);
    makeRequest(
        url,
        {JSON_TYPE, m_bodyBounds.json, m_listingTimeout},
        [this](const QByteArray &body) { onGroupFound(parseAnswer(body)); },
        [] {});
}

void ApiClient::onGroupFound(const QJsonDocument &document)
{
    if (!emitStatusChanged({}))
        return;
    const GroupAnswer answer = readGroup(document);
    if (!answer.fault.isEmpty()) {
        emitStatusChanged(answer.fault);
        return;
    }
    m_groupId = answer.id;
    if (m_groupId != 0 && emitStatusChanged(QObject::tr("API client is ready")))
        emit ready();
}

void ApiClient::fetch()
{
    if (m_groupId == 0) {
        emitStatusChanged(QObject::tr("Repository error: group id not found - unable to fetch examples"));
        return;
    }
    if (!emitStatusChanged(QObject::tr("Fetch examples")))
        return;
    const QUrl url(m_apiUrl.toString() + QString::fromUtf8(FETCH_PATH).arg(m_groupId), QUrl::TolerantMode);
    makeRequest(
        url,
        {JSON_TYPE, m_bodyBounds.json, m_listingTimeout},
        [this](const QByteArray &body) { onFetched(parseAnswer(body)); },
        [] {});
}

void ApiClient::onFetched(const QJsonDocument &document)
{
    if (!emitStatusChanged({}))
        return;
    const ListingAnswer answer = readListing(document);
    if (answer.fault.isEmpty())
        emit fetched(answer.examples);
    else
        emitStatusChanged(answer.fault);
}

QUrl ApiClient::archiveUrl(const Example &example) const
{
    const QString path = QString::fromUtf8(DOWNLOAD_PATH)
                             .arg(projectId(example))
                             .arg(QString::fromUtf8(Constants::ARCHIVE_EXTENSION));
    return QUrl(m_apiUrl.toString() + path, QUrl::TolerantMode);
}

QUrl ApiClient::pictureUrl(const Example &example)
{
    return addressOf(pictureAddress(example));
}

void ApiClient::download(const Repository::Examples &examples)
{
    for (const Repository::ExamplePtr &example : examples) {
        // The client may be replaced while the job waits for its turn: then there is nobody to download for.
        startOnDownloadPool([link = m_link, example] {
            const auto wait = std::make_shared<DownloadWait>();
            QPointer<Transfer> transfer;
            if (link->withClient([&](ApiClient &client) { transfer = client.startDownload(example, wait); }))
                waitFor(*wait, transfer);
        });
    }
}

void ApiClient::download(const Repository::ExamplePtr &example)
{
    const auto wait = std::make_shared<DownloadWait>();
    waitFor(*wait, startDownload(example, wait));
}

QPointer<Transfer>
ApiClient::startDownload(const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait)
{
    if (!emitStatusChanged(QObject::tr("Downloading example: %1").arg(example->displayName())))
        return {};
    const auto onArchive = [this, example, wait](const QByteArray &body) {
        example->setData(body);
        requestPicture(example, wait);
    };
    return makeRequest(
        archiveUrl(*example), {ARCHIVE_TYPE, m_bodyBounds.archive, m_downloadTimeout}, onArchive, [wait] {
            wait->finish();
        });
}

void ApiClient::requestPicture(
    const Repository::ExamplePtr &example, const std::shared_ptr<DownloadWait> &wait)
{
    const auto onImage = [this, example, wait](const QByteArray &body) {
        example->setImage(body);
        if (announce(example))
            emitStatusChanged({});
        wait->finish();
    };
    const auto onNoImage = [this, example, wait] {
        if (announce(example))
            emitStatusChanged(QObject::tr("Unable to download image: %1").arg(pictureAddress(*example)));
        wait->finish();
    };
    makeRequest(
        pictureUrl(*example), {IMAGE_TYPE, m_bodyBounds.picture, m_downloadTimeout}, onImage, onNoImage);
}

QPointer<Transfer> ApiClient::makeRequest(
    const QUrl &url, const Expectation &expectation, const OnSuccess &onSuccess, const OnFailure &onFailure)
{
    if (isQuitting())
        return {};
    qCDebug(Log::api) << "Requesting:" << url.toString();
    if (const QString fault = faultOfAddress(url); !fault.isNull()) {
        failLater(url, fault, onFailure);
        return {};
    }
    auto transfer = new Transfer(
        url, expectation.contentType, {.body = expectation.largestBody, .stall = expectation.stall});
    passResultOn(url, transfer, onSuccess, onFailure);
    tieToItsOwners(transfer);
    transfer->start();
    return transfer;
}

void ApiClient::failLater(const QUrl &url, const QString &error, const OnFailure &onFailure)
{
    const auto failNow = [this, url, error, onFailure, handover = Handover()] {
        handover.take();
        if (isQuitting())
            return;
        observe(url, {.error = error});
        fail(error, onFailure);
    };
    QMetaObject::invokeMethod(this, failNow, Qt::QueuedConnection);
}

void ApiClient::passResultOn(
    const QUrl &url, Transfer *transfer, const OnSuccess &onSuccess, const OnFailure &onFailure)
{
    const auto onFinished
        = [this, url, onSuccess, onFailure, handover = Handover()](const TransferResult &result) {
              const auto held = handover.hold();
              result.handover.take();
              if (isQuitting())
                  return;
              observe(url, result);
              if (result.hasSucceeded)
                  onSuccess(result.body);
              else
                  fail(result.error, onFailure);
          };
    // With the context this runs on our thread, and never after we are gone.
    connect(transfer, &Transfer::finished, this, onFinished);
}

void ApiClient::observe(const QUrl &url, const TransferResult &result) const
{
    if (m_observer)
        m_observer(url, result);
}

// A transfer goes with its client, as it would have nobody to answer to, and no transfer outlives the event
// loop of its thread. A worker that is let go of takes its own along.
void ApiClient::tieToItsOwners(Transfer *transfer)
{
    connect(this, &QObject::destroyed, transfer, &QObject::deleteLater);
    if (transfer->thread() == thread())
        connect(qApp, &QCoreApplication::aboutToQuit, transfer, &QObject::deleteLater);
}

void ApiClient::fail(const QString &error, const OnFailure &onFailure)
{
    if (emitStatusChanged(QObject::tr("Network error: %1").arg(error)))
        onFailure();
}

bool ApiClient::emitStatusChanged(const QString &status)
{
    if (!status.isEmpty())
        qCDebug(Log::api) << "Status:" << status;
    const QPointer<ApiClient> self(this);
    emit statusChanged(status);
    return self && !isQuitting();
}

bool ApiClient::announce(const Repository::ExamplePtr &example)
{
    const QPointer<ApiClient> self(this);
    emit downloaded(example);
    return self && !isQuitting();
}

} // namespace Varnel::Internal
