// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/transfer.h"

#include "client/requestpolicy.h"

#include <QNetworkReply>

namespace Varnel::Internal {

namespace {

// The network layer stops reading a little before its buffer is full, in case the next piece does not fit.
constexpr qint64 BUFFER_RESERVE = 16LL * 1024 * 1024; // bytes

int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isSuccess(int status)
{
    return status >= 200 && status <= 299;
}

} // namespace

Transfer::Transfer(const QUrl &url, const QByteArray &contentType, const Bounds &bounds)
    : m_bounds(bounds)
    , m_request(url)
{
    m_request.setRawHeader("Content-Type", contentType);
    m_request.setTransferTimeout(bounds.stall);
    // The network layer sets no bound to headers of HTTP/2, and one request a connection gains nothing by it.
    m_request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Redirects are followed here: the network layer would read the body of one without an end, and without a
    // signal.
    m_request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
}

void Transfer::start()
{
    get(m_request.url());
}

void Transfer::get(const QUrl &url)
{
    m_request.setUrl(url);
    QNetworkReply *reply = m_manager.get(m_request);
    watchBody(reply);
    connect(reply, &QNetworkReply::finished, this, [this, reply, handover = Handover()] {
        const auto held = handover.hold();
        onReplyFinished(reply);
    });
}

// Counts what is decompressed, whatever the status. The buffer has a bound, too: else the network layer's
// thread would run far ahead of this one.
void Transfer::watchBody(QNetworkReply *reply) const
{
    reply->setReadBufferSize(m_bounds.body + BUFFER_RESERVE);
    const auto look = [reply, largest = m_bounds.body, handover = Handover()] {
        const auto held = handover.hold();
        if (reply->bytesAvailable() > largest)
            reply->abort();
    };
    connect(reply, &QNetworkReply::readyRead, this, look);
}

void Transfer::onReplyFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    // The error comes first: an aborted transfer may still bear the status of an answer that had begun.
    if (reply->error() != QNetworkReply::NoError) {
        fail(*reply, reply->errorString());
        return;
    }
    const int status = statusOf(*reply);
    if (isRedirect(status))
        follow(*reply);
    else if (isSuccess(status))
        succeed(reply);
    else
        fail(*reply, reply->errorString());
}

void Transfer::follow(const QNetworkReply &reply)
{
    const QUrl target = redirectTarget(reply.url(), reply.rawHeader("Location"));
    const QString fault = faultOfRedirect(reply.url(), target, m_redirects++);
    if (!fault.isNull()) {
        fail(reply, fault);
        return;
    }
    // The kind of content goes with the first request only, as when the network layer follows.
    m_request.setRawHeader("Content-Type", {});
    get(target);
}

void Transfer::succeed(QNetworkReply *reply)
{
    deleteLater();
    emit finished(
        {.hasSucceeded = true, .body = reply->readAll(), .url = reply->url(), .status = statusOf(*reply)});
}

void Transfer::fail(const QNetworkReply &reply, const QString &error)
{
    deleteLater();
    emit finished({.error = error, .url = reply.url(), .status = statusOf(reply)});
}

} // namespace Varnel::Internal
