// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// The listening sockets of the server and the connections that came in through them.
#pragma once

#include <QHash>
#include <QPointer>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>

#include <optional>

namespace Varnel::Demo {

/**
 * Remembers each connection by its peer's port, together with the address that it last asked for. The HTTP
 * module shows its users neither the socket nor the bytes of the request line.
 */
class Connections final : public QObject
{
    Q_OBJECT

public:
    /** A listening socket on the loopback address, encrypted if a configuration is given; null on failure. */
    [[nodiscard]] QTcpServer *listen(
        quint16 port, const std::optional<QSslConfiguration> &configuration, QObject *parent, QString *error);

    [[nodiscard]] QTcpSocket *socket(quint16 peerPort) const { return m_sockets.value(peerPort); }
    /** Path and query of the last request of the connection, as they came over the wire. */
    [[nodiscard]] QByteArray target(quint16 peerPort) const { return m_targets.value(peerPort); }

private:
    void remember(QTcpSocket *socket);
    void readTarget(QTcpSocket *socket);

    QHash<quint16, QPointer<QTcpSocket>> m_sockets;
    QHash<quint16, QByteArray> m_targets;
};

/** Ends a connection with a reset in place of an orderly close. */
void resetConnection(QTcpSocket &socket);

} // namespace Varnel::Demo
