// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/handover.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QObject>
#include <QUrl>

#include <chrono>

namespace Varnel::Internal {

/** What became of a transfer. */
struct TransferResult
{
    bool hasSucceeded = false;
    QByteArray body = {};   // after a success only
    QString error = {};     // after a failure: the network layer's text
    QUrl url = {};          // what was asked for last, behind all redirects
    int status = 0;         // of the answer from there; 0: none came
    Handover handover = {}; // the last member, see Handover
};

/**
 * One GET with its redirects, by a network access manager of its own: a manager may be used only on the
 * thread that made it, and requests are issued from several. Lives on the thread that makes it, which must
 * run an event loop; deletes itself when it has finished. Whoever destroys it earlier hears nothing more of
 * it.
 */
class Transfer final : public QObject
{
    Q_OBJECT

public:
    struct Bounds
    {
        qint64 body;                       // bytes of each answer after decompression, redirects included
        std::chrono::milliseconds stall{}; // without a byte; zero: no bound
    };

    Transfer(const QUrl &url, const QByteArray &contentType, const Bounds &bounds);

    /** To be called once. */
    void start();

signals:
    /** Nothing follows it: a receiver may destroy what it likes. */
    void finished(const Varnel::Internal::TransferResult &result);

private:
    void get(const QUrl &url);
    void watchBody(QNetworkReply *reply) const;
    void onReplyFinished(QNetworkReply *reply);
    void follow(const QNetworkReply &reply);
    void succeed(QNetworkReply *reply);
    void fail(const QNetworkReply &reply, const QString &error);

    const Bounds m_bounds;
    QNetworkRequest m_request;
    QNetworkAccessManager m_manager;
    int m_redirects = 0;
};

} // namespace Varnel::Internal
