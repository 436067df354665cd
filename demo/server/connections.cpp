// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/connections.h"

#include <QRegularExpression>
#include <QSslServer>
#include <QSslSocket>

#include <sys/socket.h>

namespace Varnel::Demo {

namespace {

constexpr qint64 LONGEST_REQUEST_LINE = 65536; // bytes

class PlainServer final : public QTcpServer
{
    Q_OBJECT

Q_SIGNALS:
    void accepted(QTcpSocket *socket);

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        Q_EMIT accepted(socket);
        addPendingConnection(socket);
    }
};

} // namespace

std::unique_ptr<QTcpServer>
Connections::listen(quint16 port, const std::optional<QSslConfiguration> &configuration, QString *error)
{
    std::unique_ptr<QTcpServer> server;
    if (configuration) {
        auto encrypted = std::make_unique<QSslServer>();
        encrypted->setSslConfiguration(*configuration);
        connect(encrypted.get(), &QSslServer::startedEncryptionHandshake, this, &Connections::remember);
        server = std::move(encrypted);
    } else {
        auto plain = std::make_unique<PlainServer>();
        connect(plain.get(), &PlainServer::accepted, this, &Connections::remember);
        server = std::move(plain);
    }
    if (!server->listen(QHostAddress::LocalHost, port)) {
        *error = server->errorString();
        return nullptr;
    }
    return server;
}

// Connected before the HTTP module is, this looks at the bytes while they are still there.
void Connections::remember(QTcpSocket *socket)
{
    m_sockets.insert(socket->peerPort(), socket);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readTarget(socket); });
}

void Connections::readTarget(QTcpSocket *socket)
{
    static const QRegularExpression requestLine(QStringLiteral("^[A-Z]+ (\\S+) HTTP/1"));
    const QByteArray bytes = socket->peek(LONGEST_REQUEST_LINE);
    const auto match = requestLine.match(QString::fromLatin1(bytes));
    if (match.hasMatch())
        m_targets.insert(socket->peerPort(), match.captured(1).toLatin1());
}

void resetConnection(QTcpSocket &socket)
{
    socket.flush();
    const linger immediately{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &immediately, sizeof(immediately));
    socket.abort();
}

} // namespace Varnel::Demo

#include "connections.moc"
