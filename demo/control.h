// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "server/http.h"

#include <QObject>

#include <optional>

namespace Varnel::Demo {

class DemoServer;

/**
 * Lets scripts look at a running server and change it, by requests below /control:
 *
 *     GET    requests?route=R              what came in: "count", "peak" (unanswered at a time), "requests"
 *     DELETE requests                      forgets them
 *     POST   commit?project=P&time=T       a push to a project, of a commit made now or at T
 *     POST   remove?project=P              removes a project
 *     POST   hold?route=R, release?route=R
 *     GET    held?route=R                  "count" of the requests that wait for their release
 *     POST   answer?route=R&status=N&type=T   answers a route with the request's body
 *     POST   fault?route=R&cut=N&end=E&delay=MS   E is reset, close, stall or finish
 *     POST   restore                       forgets answers, faults and holds
 *
 * Routes are those of DemoServer; without one, all are meant.
 */
class Control final : public QObject
{
    Q_OBJECT

public:
    explicit Control(DemoServer &server);

private:
    /** Null if there is no such command, or it is asked for in a wrong way. */
    std::optional<Reply> reply(const Request &request);
    std::optional<Reply> look(const QString &command, const QString &route) const;
    bool change(const QString &command, const QString &route, const Request &request);
    bool addFault(const QString &route, const Request &request);
    void install();

    DemoServer &m_server;
};

} // namespace Varnel::Demo
