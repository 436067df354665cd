// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "commands.h"

#include <QLocalServer>
#include <QObject>

class QLocalSocket;

namespace Varnel::Driver {

/**
 * Takes commands from a local socket: one JSON object a line, with the "command" and its arguments, each
 * answered by a line with a "value" or an "error". Works on while a dialog or menu runs an event loop of its
 * own.
 */
class CommandServer final : public QObject
{
    Q_OBJECT

public:
    explicit CommandServer(const Commands &commands);

    bool listen(const QString &path, QString *errorString);

private:
    void read(QLocalSocket *socket);
    void execute(QLocalSocket *socket, const QByteArray &line);
    [[nodiscard]] Answer answer(const QByteArray &line) const;

    const Commands m_commands;
    QLocalServer m_server;
};

} // namespace Varnel::Driver
