// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/exchange.h"

#include "server/connections.h"

#include <QMetaEnum>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

constexpr qsizetype CHUNK_SIZE = 65536; // bytes
constexpr char LAST_CHUNK[] = "0\r\n\r\n";

using StatusCode = QHttpServerResponder::StatusCode;

bool isKnown(int status)
{
    return QMetaEnum::fromType<StatusCode>().valueToKey(status) != nullptr;
}

QByteArray head(const Reply &reply)
{
    const char *name = QMetaEnum::fromType<StatusCode>().valueToKey(reply.status);
    QByteArray result
        = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + (name ? name : "Unknown") + "\r\n";
    for (const auto &[key, value] : reply.headers.toListOfPairs())
        result += key + ": " + value + "\r\n";
    return result;
}

QByteArray framingHeader(const Reply &reply)
{
    return reply.framing == Framing::Chunked
               ? "Transfer-Encoding: chunked\r\n"_ba
               : QByteArray("Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n");
}

QByteArray framed(const QByteArray &bytes, Framing framing)
{
    if (framing == Framing::Length || bytes.isEmpty())
        return bytes;
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

} // namespace

Exchange::Exchange(const Request &request, QHttpServerResponder &&responder, QTcpSocket *socket)
    : m_request(request)
    , m_responder(std::move(responder))
    , m_socket(socket)
{
}

void Exchange::send(Reply reply)
{
    m_state = State::Done;
    if (m_request.method == "HEAD")
        reply.body.clear();
    if (m_fault.framing)
        reply.framing = *m_fault.framing;

    const bool hasOwnFraming = reply.headers.contains(QHttpHeaders::WellKnownHeader::ContentLength)
                               || reply.headers.contains(QHttpHeaders::WellKnownHeader::TransferEncoding);
    if (m_fault.bytes) {
        write(*m_fault.bytes);
        close();
    } else if (m_fault.cutAfter) {
        sendCut(reply, *m_fault.cutAfter);
    } else if (hasOwnFraming || !isKnown(reply.status) || reply.body.isEmpty()) {
        sendRaw(reply, hasOwnFraming);
    } else {
        sendOrdinarily(reply);
    }
}

void Exchange::sendRest()
{
    m_state = State::Done;
    write(m_rest);
}

void Exchange::reset()
{
    m_state = State::Done;
    if (m_socket)
        resetConnection(*m_socket);
}

void Exchange::sendOrdinarily(const Reply &reply)
{
    const auto status = static_cast<StatusCode>(reply.status);
    if (reply.framing == Framing::Length) {
        m_responder.write(reply.body, reply.headers, status);
        return;
    }
    m_responder.writeBeginChunked(reply.headers, status);
    qsizetype start = 0;
    for (; reply.body.size() - start > CHUNK_SIZE; start += CHUNK_SIZE)
        m_responder.writeChunk(reply.body.mid(start, CHUNK_SIZE));
    m_responder.writeEndChunked(reply.body.mid(start));
}

void Exchange::sendRaw(const Reply &reply, bool hasOwnFraming)
{
    write(head(reply) + (hasOwnFraming ? QByteArray() : framingHeader(reply)) + "\r\n");
    if (hasOwnFraming) {
        write(reply.body);
        close(); // the length may be wrong, so nothing can follow
        return;
    }
    write(framed(reply.body, reply.framing));
    if (reply.framing == Framing::Chunked)
        write(LAST_CHUNK);
}

void Exchange::sendCut(const Reply &reply, qint64 length)
{
    const bool hasHead = length != Fault::BEFORE_HEAD;
    const QByteArray start = hasHead ? head(reply) + framingHeader(reply) + "\r\n" : QByteArray();
    const qsizetype cut = hasHead ? std::min<qsizetype>(length, reply.body.size()) : 0;
    const QByteArray end = reply.framing == Framing::Chunked ? QByteArray(LAST_CHUNK) : QByteArray();

    write(start + framed(reply.body.first(cut), reply.framing));
    switch (m_fault.end) {
    case Fault::End::Reset:
        reset();
        break;
    case Fault::End::Close:
        close();
        break;
    case Fault::End::Stall:
        m_state = State::Stalled;
        m_rest = (hasHead ? QByteArray() : head(reply) + framingHeader(reply) + "\r\n")
                 + framed(reply.body.sliced(cut), reply.framing) + end;
        break;
    case Fault::End::Finish:
        write(end);
        break;
    }
}

void Exchange::write(const QByteArray &bytes)
{
    if (m_socket)
        m_socket->write(bytes);
}

void Exchange::close()
{
    m_state = State::Closing;
    m_socket->disconnectFromHost();
}

} // namespace Varnel::Demo
