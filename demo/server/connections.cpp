// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/connections.h"

#include <QRegularExpression>
#include <QSslServer>
#include <QSslSocket>

#include <functional>
#include <sys/socket.h>

namespace Varnel::Demo {

namespace {

constexpr qint64 LONGEST_REQUEST_LINE = 65536; // bytes

class PlainServer final : public QTcpServer
{
public:
    using OnAccepted = std::function<void(QTcpSocket *)>;

    PlainServer(const OnAccepted &onAccepted, QObject *parent)
        : QTcpServer(parent)
        , m_onAccepted(onAccepted)
    {
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        m_onAccepted(socket);
        addPendingConnection(socket);
    }

private:
    const OnAccepted m_onAccepted;
};

} // namespace

QTcpServer *Connections::listen(
    quint16 port, const std::optional<QSslConfiguration> &configuration, QObject *parent, QString *error)
{
    QTcpServer *server = nullptr;
    if (configuration) {
        auto encrypted = new QSslServer(parent);
        encrypted->setSslConfiguration(*configuration);
        connect(encrypted, &QSslServer::startedEncryptionHandshake, this, &Connections::remember);
        server = encrypted;
    } else {
        server = new PlainServer([this](QTcpSocket *socket) { remember(socket); }, parent);
    }
    if (!server->listen(QHostAddress::LocalHost, port)) {
        *error = server->errorString();
        delete server;
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
