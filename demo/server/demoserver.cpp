// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/demoserver.h"

#include "server/connections.h"
#include "server/exchange.h"

#include <QAbstractHttpServer>
#include <QHttpServerRequest>
#include <QMetaEnum>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

bool matches(const QString &route, const QString &path)
{
    return route.endsWith(u'*') ? path.startsWith(QStringView(route).chopped(1)) : path == route;
}

QByteArray methodName(QHttpServerRequest::Method method)
{
    return QByteArray(QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(int(method))).toUpper();
}

} // namespace

/** Hands every request to the demo server, whatever its route. */
class HttpServer final : public QAbstractHttpServer
{
public:
    explicit HttpServer(DemoServer &owner)
        : m_owner(owner)
    {
    }

protected:
    bool handleRequest(const QHttpServerRequest &request, QHttpServerResponder &responder) override
    {
        const Connections &connections = *m_owner.m_connections;
        const Request copy{
            .method = methodName(request.method()),
            .target = connections.target(request.remotePort()),
            .headers = request.headers(),
            .body = request.body()};
        m_owner.begin(
            std::make_shared<Exchange>(copy, std::move(responder), connections.socket(request.remotePort())));
        return true;
    }

    void missingHandler(const QHttpServerRequest &, QHttpServerResponder &) override { Q_UNREACHABLE(); }

private:
    DemoServer &m_owner;
};

DemoServer::DemoServer()
    : DemoServer(Setup())
{
}

DemoServer::DemoServer(const Setup &setup, QObject *parent)
    : QObject(parent)
    , m_gitlab(setup.group)
    , m_isEncrypted(setup.encryption.has_value())
    , m_connections(std::make_unique<Connections>())
    , m_http(std::make_unique<HttpServer>(*this))
{
    QTcpServer *server = m_connections->listen(setup.port, setup.encryption, m_http.get(), &m_errorString);
    if (server && m_http->bind(server))
        m_gitlab.setBaseUrl(url());
}

DemoServer::~DemoServer() = default;

bool DemoServer::isListening() const
{
    return !m_http->servers().isEmpty();
}

quint16 DemoServer::port() const
{
    return m_http->serverPorts().value(0);
}

QUrl DemoServer::url(const QString &path) const
{
    return QUrl(u"%1://127.0.0.1:%2%3"_s.arg(m_isEncrypted ? u"https"_s : u"http"_s).arg(port()).arg(path));
}

QUrl DemoServer::groupUrl() const
{
    return url(u'/' + m_gitlab.group().path);
}

void DemoServer::answer(const QString &route, int status, const QByteArray &body, const Headers &headers)
{
    answer(route, Reply::make(status, body, headers));
}

void DemoServer::answer(const QString &route, const Reply &reply)
{
    handle(route, [reply](const Request &) { return reply; });
}

void DemoServer::handle(const QString &route, const Handler &handler)
{
    m_handlers.prepend({route, handler});
}

void DemoServer::restore()
{
    m_handlers.clear();
    m_faults.clear();
    release(u"*"_s);
}

void DemoServer::addFault(const QString &route, const Fault &fault)
{
    m_faults.prepend({route, fault});
}

void DemoServer::hold(const QString &route)
{
    m_holds.append(route);
}

void DemoServer::release(const QString &route)
{
    m_holds.removeIf([&](const QString &hold) { return matches(route, hold); });
    for (const ExchangePtr &exchange : held(route)) {
        if (!isHeld(exchange->request().path()))
            proceed(exchange);
    }
}

bool DemoServer::releaseNext(const QString &route)
{
    const QList<ExchangePtr> waiting = held(route);
    if (waiting.isEmpty())
        return false;
    proceed(waiting.first());
    return true;
}

void DemoServer::resetHeld(const QString &route)
{
    for (const ExchangePtr &exchange : held(route)) {
        exchange->reset();
        finish(exchange);
    }
}

int DemoServer::heldCount(const QString &route) const
{
    return int(held(route).size());
}

QList<Request> DemoServer::requests(const QString &route) const
{
    QList<Request> result;
    for (const LogEntry &entry : m_log) {
        if (matches(route, entry.request.path()))
            result.append(entry.request);
    }
    return result;
}

int DemoServer::requestCount(const QString &route) const
{
    return int(requests(route).size());
}

int DemoServer::peakConcurrency(const QString &route) const
{
    qsizetype peak = 0;
    for (const LogEntry &entry : m_log) {
        const auto isOfRoute = [&](const QString &path) { return matches(route, path); };
        peak = std::max<qsizetype>(peak, std::ranges::count_if(entry.unanswered, isOfRoute));
    }
    return int(peak);
}

void DemoServer::clearRequests()
{
    m_log.clear();
}

void DemoServer::begin(const ExchangePtr &exchange)
{
    m_exchanges.append(exchange);
    QStringList unanswered;
    for (const ExchangePtr &other : std::as_const(m_exchanges))
        unanswered.append(other->request().path());
    m_log.append({exchange->request(), unanswered});

    // Queued, as the HTTP module, too, is in the middle of something when a connection ends.
    const std::weak_ptr<Exchange> weak = exchange;
    connect(
        exchange->socket(),
        &QTcpSocket::disconnected,
        this,
        [this, weak] {
            if (const ExchangePtr gone = weak.lock())
                finish(gone);
        },
        Qt::QueuedConnection);

    const QString path = exchange->request().path();
    emit requestReceived(exchange->request());
    exchange->setFault(takeFault(path));
    if (isHeld(path))
        exchange->setState(Exchange::State::Held);
    else
        proceed(exchange);
}

/** The step after waiting, of whatever kind the waiting was. */
void DemoServer::proceed(const ExchangePtr &exchange)
{
    if (exchange->state() == Exchange::State::Stalled) {
        exchange->sendRest();
        finish(exchange);
    } else if (exchange->fault().delay.count() > 0) {
        exchange->setState(Exchange::State::Delayed);
        const std::weak_ptr<Exchange> weak = exchange;
        QTimer::singleShot(exchange->fault().delay, this, [this, weak] {
            if (const ExchangePtr delayed = weak.lock())
                answer(delayed);
        });
    } else {
        answer(exchange);
    }
}

void DemoServer::answer(const ExchangePtr &exchange)
{
    if (exchange->socket()) {
        exchange->send(replyTo(exchange->request()));
        if (exchange->state() != Exchange::State::Done)
            return; // the release or the end of the connection finishes it
    }
    finish(exchange);
}

void DemoServer::finish(const ExchangePtr &exchange)
{
    m_exchanges.removeOne(exchange);
}

/** Those that wait for a release, in the order in which they came. */
QList<DemoServer::ExchangePtr> DemoServer::held(const QString &route) const
{
    QList<ExchangePtr> result;
    for (const ExchangePtr &exchange : m_exchanges) {
        const bool waits
            = exchange->state() == Exchange::State::Held || exchange->state() == Exchange::State::Stalled;
        if (waits && matches(route, exchange->request().path()))
            result.append(exchange);
    }
    return result;
}

bool DemoServer::isHeld(const QString &path) const
{
    return std::ranges::any_of(m_holds, [&](const QString &hold) { return matches(hold, path); });
}

Fault DemoServer::takeFault(const QString &path)
{
    const auto found
        = std::ranges::find_if(m_faults, [&](const auto &entry) { return matches(entry.first, path); });
    if (found == m_faults.end())
        return {};
    const Fault taken = found->second;
    if (std::optional<int> &times = found->second.times; times && --*times <= 0)
        m_faults.erase(found);
    return taken;
}

Reply DemoServer::replyTo(const Request &request)
{
    for (const auto &[route, handler] : std::as_const(m_handlers)) {
        if (matches(route, request.path()))
            return Handler(handler)(request); // a copy: the handler may replace itself
    }
    return m_gitlab.reply(request);
}

} // namespace Varnel::Demo
