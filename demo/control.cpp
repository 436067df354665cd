// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "control.h"

#include "server/demoserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

constexpr char PREFIX[] = "/control/";

std::optional<Fault::End> faultEnd(const QString &name)
{
    static const QHash<QString, Fault::End> ends{
        {u"reset"_s, Fault::End::Reset},
        {u"close"_s, Fault::End::Close},
        {u"stall"_s, Fault::End::Stall},
        {u"finish"_s, Fault::End::Finish}};
    const auto found = ends.constFind(name);
    return found == ends.cend() ? std::nullopt : std::optional(*found);
}

Reply success(const QJsonObject &object = {})
{
    return Reply::json(QJsonDocument(object));
}

} // namespace

Control::Control(DemoServer &server)
    : m_server(server)
{
    install();
}

void Control::install()
{
    m_server.handle(QLatin1StringView(PREFIX) + u'*', [this](const Request &request) {
        return reply(request).value_or(Reply::make(400, "This is not a command of the demo server.\n"));
    });
}

std::optional<Reply> Control::reply(const Request &request)
{
    const QString command = request.path().sliced(qsizetype(sizeof(PREFIX)) - 1);
    const QString asked = request.queryItem(u"route"_s);
    const QString route = asked.isEmpty() ? u"*"_s : asked;

    if (request.method == "GET")
        return look(command, route);
    if (request.method == "DELETE" && command == "requests"_L1) {
        m_server.clearRequests();
        return success();
    }
    if (request.method == "POST" && change(command, route, request))
        return success();
    return std::nullopt;
}

std::optional<Reply> Control::look(const QString &command, const QString &route) const
{
    if (command == "held"_L1)
        return success({{u"count"_s, m_server.heldCount(route)}});
    if (command != "requests"_L1)
        return std::nullopt;

    QJsonArray requests;
    for (const Request &request : m_server.requests(route)) {
        if (!request.path().startsWith(QLatin1StringView(PREFIX))) {
            requests.append(QJsonObject{
                {u"method"_s, QString::fromUtf8(request.method)},
                {u"path"_s, request.path()},
                {u"query"_s, QString::fromUtf8(request.rawQuery())},
                {u"contentType"_s, QString::fromUtf8(request.header("Content-Type"))}});
        }
    }
    return success(
        {{u"count"_s, requests.size()},
         {u"peak"_s, m_server.peakConcurrency(route)},
         {u"requests"_s, requests}});
}

bool Control::change(const QString &command, const QString &route, const Request &request)
{
    const QString project = request.queryItem(u"project"_s);
    if (command == "commit"_L1) {
        const QString time = request.queryItem(u"time"_s);
        const QDateTime commitTime
            = time.isEmpty() ? QDateTime::currentDateTimeUtc() : QDateTime::fromString(time, Qt::ISODate);
        return commitTime.isValid() && m_server.gitlab().commit(project, commitTime);
    }
    if (command == "remove"_L1)
        return m_server.gitlab().removeProject(project);
    if (command == "fault"_L1)
        return addFault(route, request);

    if (command == "hold"_L1) {
        m_server.hold(route);
    } else if (command == "release"_L1) {
        m_server.release(route);
    } else if (command == "answer"_L1) {
        const QString status = request.queryItem(u"status"_s);
        const QByteArray type = request.queryItem(u"type"_s).toUtf8();
        m_server.answer(
            route,
            status.isEmpty() ? 200 : status.toInt(),
            request.body,
            {{"Content-Type", type.isEmpty() ? "application/octet-stream"_ba : type}});
    } else if (command == "restore"_L1) {
        m_server.restore();
        install();
    } else {
        return false;
    }
    return true;
}

bool Control::addFault(const QString &route, const Request &request)
{
    Fault fault;
    fault.delay = std::chrono::milliseconds(request.queryItem(u"delay"_s).toInt());
    const QString cut = request.queryItem(u"cut"_s);
    if (!cut.isEmpty()) {
        const auto end = faultEnd(request.queryItem(u"end"_s));
        if (!end)
            return false;
        fault.cutAfter = cut.toLongLong();
        fault.end = *end;
    }
    m_server.addFault(route, fault);
    return true;
}

} // namespace Varnel::Demo
