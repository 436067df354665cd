// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// A request whose answer is not complete yet, and how answers get onto the wire.
#pragma once

#include "server/http.h"

#include <QHttpServerResponder>
#include <QPointer>
#include <QTcpSocket>

namespace Varnel::Demo {

/**
 * Ordinary answers go through the HTTP module's responder. What it cannot do, breaking off above all, is
 * written to the connection itself; the responder then only keeps the module from reading the next request.
 */
class Exchange final
{
public:
    enum class State {
        New,
        Held,    // until its release
        Delayed, // for a while
        Stalled, // in the middle of its answer, until its release
        Closing, // until the connection has ended: it must not be let go before all bytes are out
        Done,
    };

    Exchange(const Request &request, QHttpServerResponder &&responder, QTcpSocket *socket);
    Q_DISABLE_COPY_MOVE(Exchange)

    [[nodiscard]] const Request &request() const { return m_request; }
    [[nodiscard]] QTcpSocket *socket() const { return m_socket; }
    [[nodiscard]] State state() const { return m_state; }
    void setState(State state) { m_state = state; }
    [[nodiscard]] const Fault &fault() const { return m_fault; }
    void setFault(const Fault &fault) { m_fault = fault; }

    /** Sends @p reply as far as the fault lets it; the state is then stalled, closing or done. */
    void send(Reply reply);
    /** Sends the rest after a stall. */
    void sendRest();
    void reset();

private:
    void sendOrdinarily(const Reply &reply);
    void sendRaw(const Reply &reply, bool hasOwnFraming);
    void sendCut(const Reply &reply, qint64 length);
    void write(const QByteArray &bytes);
    void close();

    const Request m_request;
    QHttpServerResponder m_responder;
    const QPointer<QTcpSocket> m_socket;
    State m_state = State::New;
    Fault m_fault;
    QByteArray m_rest; // of a stalled answer, framing included
};

} // namespace Varnel::Demo
