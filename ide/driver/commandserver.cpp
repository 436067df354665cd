// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "commandserver.h"

#include <QJsonDocument>
#include <QLocalSocket>

namespace Varnel::Driver {

CommandServer::CommandServer(const Commands &commands)
    : m_commands(commands)
{
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        QLocalSocket *socket = m_server.nextPendingConnection();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    });
}

bool CommandServer::listen(const QString &path, QString *errorString)
{
    if (m_server.listen(path))
        return true;
    *errorString = m_server.errorString();
    return false;
}

void CommandServer::read(QLocalSocket *socket)
{
    while (socket->canReadLine()) {
        // A socket does not announce data while a handler of it still runs, and a command may open a dialog.
        QMetaObject::invokeMethod(
            socket,
            [this, socket, line = socket->readLine()] { execute(socket, line); },
            Qt::QueuedConnection);
    }
}

void CommandServer::execute(QLocalSocket *socket, const QByteArray &line)
{
    const Answer result = answer(line);
    const QJsonObject object = result.error.isEmpty() ? QJsonObject{{"value", result.value}}
                                                      : QJsonObject{{"error", result.error}};
    socket->write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
    socket->flush();
    if (result.afterwards)
        result.afterwards();
}

Answer CommandServer::answer(const QByteArray &line) const
{
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    const QString name = request.value("command").toString();
    const Command command = m_commands.value(name);
    return command ? command(request) : Answer::failure("there is no command \"" + name + '"');
}

} // namespace Varnel::Driver
