// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/demofixture.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;

namespace Varnel::Test {

using namespace Demo;

QJsonObject DemoFixture::Result::object() const
{
    return QJsonDocument::fromJson(body).object();
}

QJsonArray DemoFixture::Result::array() const
{
    return QJsonDocument::fromJson(body).array();
}

std::unique_ptr<QNetworkReply> DemoFixture::start(const QUrl &url, const DemoServer::Headers &headers)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto &[name, value] : headers)
        request.setRawHeader(name, value);
    return std::unique_ptr<QNetworkReply>(m_network.get(request));
}

DemoFixture::Result DemoFixture::get(const QUrl &url, const DemoServer::Headers &headers)
{
    const std::unique_ptr<QNetworkReply> reply = start(url, headers);
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!finished.wait())
        return {};
    return {
        reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
        reply->readAll(),
        reply->headers(),
        reply->error()};
}

QByteArray DemoFixture::bytesFrom(const DemoServer &server, const QByteArray &target, const QByteArray &end)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    socket.write("GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QByteArray bytes;
    const auto isDone = [&] {
        bytes += socket.readAll();
        return end.isEmpty() ? socket.state() == QAbstractSocket::UnconnectedState : bytes.endsWith(end);
    };
    return QTest::qWaitFor(isDone) ? bytes : "timed out after: " + bytes;
}

Project DemoFixture::project(qint64 id, const QString &path)
{
    Project result;
    result.id = id;
    result.path = path;
    result.name = path.toUpper();
    result.tree.addFile("CMakeLists.txt", "project(x)\n");
    return result;
}

QString DemoFixture::archivePath(qint64 id)
{
    return u"/api/v4/projects/%1/repository/archive.tar.gz"_s.arg(id);
}

} // namespace Varnel::Test
