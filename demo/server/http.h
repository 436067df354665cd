// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// What passes between the server's parts: a request as it came in, a reply, and what goes wrong with one.
#pragma once

#include <QByteArray>
#include <QHttpHeaders>
#include <QMetaType>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

class QJsonDocument;

namespace Varnel::Demo {

struct Request
{
    QByteArray method;
    QByteArray target = {}; // path and query as they came over the wire
    QHttpHeaders headers = {};
    QByteArray body = {};

    /** As sent, without the query. */
    [[nodiscard]] QByteArray rawPath() const;
    /** Decoded, without the query. */
    [[nodiscard]] QString path() const;
    /** As sent, without the question mark. */
    [[nodiscard]] QByteArray rawQuery() const;
    /** The decoded value of a query item, empty if it is absent. */
    [[nodiscard]] QString queryItem(const QString &key) const;
    /** All values of a header, joined by ", "; empty if it is absent. */
    [[nodiscard]] QByteArray header(QByteArrayView name) const;
};

enum class Framing { Length, Chunked };

struct Reply
{
    int status = 200;
    QByteArray body = {};
    QHttpHeaders headers = {}; // a length or transfer encoding given here is sent as it is, right or wrong
    Framing framing = Framing::Length;

    /** A reply with these headers, each a name and a value. */
    [[nodiscard]] static Reply
    make(int status, const QByteArray &body, const QList<std::pair<QByteArray, QByteArray>> &headers = {});
    [[nodiscard]] static Reply json(const QJsonDocument &document, int status = 200);
    [[nodiscard]] static Reply redirect(const QByteArray &location, int status = 302);
};

/** What goes wrong on the way of a reply that is in itself whatever the route answers. */
struct Fault
{
    enum class End {
        Reset,  // the connection is reset
        Close,  // the connection is closed in an orderly way
        Stall,  // nothing more comes until the route is released, then the rest
        Finish, // the body is ended as if it were whole; only for chunked ones
    };
    static constexpr qint64 BEFORE_HEAD = -1;

    std::chrono::milliseconds delay{};   // before anything is sent
    std::optional<qint64> cutAfter = {}; // bytes of the body that are sent before the end, or BEFORE_HEAD
    End end = End::Reset;
    std::optional<Framing> framing = {};  // in place of the reply's own
    std::optional<QByteArray> bytes = {}; // sent in place of head and body, followed by an orderly close
    std::optional<int> times = {};        // how many requests it hits; all without a value
};

} // namespace Varnel::Demo

Q_DECLARE_METATYPE(Varnel::Demo::Request)
