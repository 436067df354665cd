// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of the demo repository's server begin with.

#pragma once

#include "server/demoserver.h"

#include <QHttpHeaders>
#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>

#include <memory>

namespace Varnel::Test {

/** A client that follows no redirect, and the projects that a server is given. */
class DemoFixture : public QObject
{
    Q_OBJECT

protected:
    struct Result
    {
        int status = 0; // 0: none came
        QByteArray body = {};
        QHttpHeaders headers = {};
        QNetworkReply::NetworkError error = QNetworkReply::NoError;

        [[nodiscard]] QJsonObject object() const;
        [[nodiscard]] QJsonArray array() const;
    };

    std::unique_ptr<QNetworkReply> start(const QUrl &url, const Demo::DemoServer::Headers &headers = {});
    Result get(const QUrl &url, const Demo::DemoServer::Headers &headers = {});

    /** What a server sends until it ends the connection, or until @p end has come. */
    static QByteArray
    bytesFrom(const Demo::DemoServer &server, const QByteArray &target, const QByteArray &end = {});

    [[nodiscard]] static Demo::Project project(qint64 id, const QString &path);
    [[nodiscard]] static QString archivePath(qint64 id);

private:
    QNetworkAccessManager m_network;
};

} // namespace Varnel::Test
