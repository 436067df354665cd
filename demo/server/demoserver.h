// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "server/gitlab.h"
#include "server/http.h"

#include <QList>
#include <QObject>
#include <QSslConfiguration>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace Varnel::Demo {

class Connections;
class Exchange;
class HttpServer;

/**
 * A small GitLab server on the loopback address: the demo repository, and the server of the tests.
 *
 * Answers as gitlab() does, unless a route was given an answer of its own. Listens when constructed; without
 * success isListening() is false and errorString() says why. A route is an address's decoded path, without
 * the query; one that ends in "*" stands for all paths that begin with what precedes it. Whatever was set
 * last for a route counts. Needs an event loop; all members are for the thread that made the server.
 */
class DemoServer final : public QObject
{
    Q_OBJECT

public:
    struct Setup
    {
        QString group = QStringLiteral("samples"); // a path, maybe with parents
        quint16 port = 0;                          // 0: any free one
        std::optional<QSslConfiguration> encryption = {};
    };
    using Handler = std::function<Reply(const Request &)>;
    using Headers = QList<std::pair<QByteArray, QByteArray>>;

    DemoServer();
    explicit DemoServer(const Setup &setup, QObject *parent = nullptr);
    ~DemoServer() override;

    [[nodiscard]] bool isListening() const;
    [[nodiscard]] QString errorString() const { return m_errorString; }
    [[nodiscard]] quint16 port() const;
    [[nodiscard]] QUrl url(const QString &path = {}) const;
    /** The address of the examples' group, as a user would configure it. */
    [[nodiscard]] QUrl groupUrl() const;

    /** What is served where nothing else is said. */
    [[nodiscard]] Gitlab &gitlab() { return m_gitlab; }

    // What a route answers
    void answer(const QString &route, int status, const QByteArray &body = {}, const Headers &headers = {});
    void answer(const QString &route, const Reply &reply);
    void handle(const QString &route, const Handler &handler);
    /** Forgets answers, faults and holds; what is held is let go. */
    void restore();

    // What goes wrong on the way
    void addFault(const QString &route, const Fault &fault);
    /** From now on requests of the route wait for their answer, as it will be when they are released. */
    void hold(const QString &route);
    /** Answers what waits, ends stalls, and lets later requests of the route pass. */
    void release(const QString &route);
    /** Answers only the request that has waited longest, and goes on holding. False if none waits. */
    bool releaseNext(const QString &route);
    /** Resets every connection of the route that still waits for its answer or for the rest of it. */
    void resetHeld(const QString &route);
    [[nodiscard]] int heldCount(const QString &route = QStringLiteral("*")) const;

    // What came in
    [[nodiscard]] QList<Request> requests(const QString &route = QStringLiteral("*")) const;
    [[nodiscard]] int requestCount(const QString &route = QStringLiteral("*")) const;
    /** The most requests of the route that ever were unanswered at the same time. */
    [[nodiscard]] int peakConcurrency(const QString &route = QStringLiteral("*")) const;
    /** Forgets what came in; what waits still waits. */
    void clearRequests();

signals:
    /** After the request is counted, before it is answered. */
    void requestReceived(const Varnel::Demo::Request &request);

private:
    friend class HttpServer;
    struct LogEntry
    {
        Request request;
        QStringList unanswered; // the paths that waited for their answers when it came, its own included
    };
    using ExchangePtr = std::shared_ptr<Exchange>;

    void begin(const ExchangePtr &exchange);
    void proceed(const ExchangePtr &exchange);
    void answer(const ExchangePtr &exchange);
    void finish(const ExchangePtr &exchange);
    [[nodiscard]] QList<ExchangePtr> held(const QString &route) const;
    [[nodiscard]] bool isHeld(const QString &path) const;
    [[nodiscard]] Fault takeFault(const QString &path);
    [[nodiscard]] Reply replyTo(const Request &request);

    Gitlab m_gitlab;
    QString m_errorString;
    bool m_isEncrypted = false;
    QList<std::pair<QString, Handler>> m_handlers; // the first one that matches counts
    QList<std::pair<QString, Fault>> m_faults;     // likewise
    QStringList m_holds;
    QList<LogEntry> m_log;
    std::unique_ptr<Connections> m_connections;
    std::unique_ptr<HttpServer> m_http;
    QList<ExchangePtr>
        m_exchanges; // the unanswered ones; before the server goes, as they write to its sockets
};

} // namespace Varnel::Demo
