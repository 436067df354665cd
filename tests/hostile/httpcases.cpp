// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What goes wrong below the content: connections, framing, statuses, redirects.

#include "case.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"

#include "plugin/constants.h"

#include <QLocalServer>
#include <QTest>

namespace Varnel::Test {

namespace {

using Demo::Fault;
using Demo::Reply;

constexpr qint64 MEGABYTE = 1024 * 1024;

struct Route
{
    QString name;
    QString path;
    End end; // when nothing usable comes
};

const QList<Route> &routes()
{
    static const QList<Route> ALL{
        {"search", World::SEARCH_ROUTE, End::NotAnswered},
        {"listing", World::LISTING_ROUTE, End::NotAnswered},
        {"archive", World::ARCHIVE_ROUTE, End::NotDownloaded},
        {"picture", World::PICTURE_ROUTE, End::Installed}};
    return ALL;
}

void setHonestPicture(World &world)
{
    world.setPicture(encodedPicture({16, 16}), "image/png");
}

/** @p archiveEnd is where a project ends whose archive does not come. */
QList<Case> onEveryRoute(
    const QString &name,
    const std::function<void(World &, const QString &route)> &prepare,
    End archiveEnd = End::NotDownloaded)
{
    QList<Case> cases;
    for (const Route &route : routes()) {
        cases.append(
            {.name = route.name + ": " + name,
             .end = route.path == World::ARCHIVE_ROUTE ? archiveEnd : route.end,
             .prepare = [route, prepare](World &world) {
                 setHonestPicture(world);
                 prepare(world, route.path);
             }});
    }
    return cases;
}

std::function<void(World &, const QString &)> fault(const Fault &fault)
{
    return [fault](World &world, const QString &route) { world.server().addFault(route, fault); };
}

std::function<void(World &, const QString &)> bytes(const QByteArray &bytes)
{
    return fault({.bytes = bytes});
}

std::function<void(World &, const QString &)> answer(const Reply &reply)
{
    return [reply](World &world, const QString &route) { world.server().answer(route, reply); };
}

QList<Case> connectionCases()
{
    const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    const QByteArray flood = "HTTP/1.1 200 OK\r\n" + QByteArray("X-Flood: water\r\n").repeated(100'000)
                             + "Content-Length: 0\r\n\r\n";
    return onEveryRoute("reset before the answer", fault({.cutAfter = Fault::BEFORE_HEAD}))
           + onEveryRoute(
               "closed before the answer", fault({.cutAfter = Fault::BEFORE_HEAD, .end = Fault::End::Close}))
           + onEveryRoute("no HTTP at all", bytes("220 mail.example.org ESMTP\r\n"), End::NotReceived)
           + onEveryRoute(
               "endless line in place of a head", bytes(QByteArray(3 * MEGABYTE, 'x')), End::NotReceived)
           + onEveryRoute(
               "head that does not end", bytes("HTTP/1.1 200 OK\r\nContent-Type: x"), End::NotReceived)
           + onEveryRoute("100,000 headers", bytes(flood), End::NotReceived)
           + onEveryRoute("broken chunks", bytes(chunked + "zz\r\nxx\r\n"), End::NotReceived)
           + onEveryRoute(
               "chunk larger than all numbers",
               bytes(chunked + "ffffffffffffffffff\r\nxx\r\n"),
               End::NotReceived)
           + QList<Case>{
               // The network layer waits for the rest of such a chunk, although the connection is closed.
               {.name = "search: chunk of negative length",
                .end = End::NotReady,
                .prepare = [chunked](World &world) {
                    world.setSetting(Constants::SERVICE_RESTART_TIMEOUT, 1);
                    world.server().addFault(World::SEARCH_ROUTE, {.bytes = chunked + "-5\r\nxx\r\n"});
                }}};
}

QList<Case> statusCases()
{
    return onEveryRoute(
               "401",
               answer(Reply::make(
                   401, R"({"message":"401 Unauthorized"})", {{"WWW-Authenticate", "Basic realm=\"x\""}})))
           + onEveryRoute("403 page of a front", answer(Reply::make(403, "<html>challenge</html>")))
           + onEveryRoute("404", answer(Reply::make(404, R"({"message":"404 Not Found"})")))
           + onEveryRoute(
               "429 of the application",
               answer(Reply::make(429, R"({"message":{"error":"too many times"}})", {{"Retry-After", "60"}})))
           + onEveryRoute(
               "429 of the throttle",
               answer(Reply::make(429, "Retry later\n", {{"Content-Type", "text/plain"}})))
           + onEveryRoute("500", answer(Reply::make(500, R"({"message":"500 Internal Server Error"})")))
           + onEveryRoute(
               "502 page",
               answer(Reply::make(502, "<html><head><title>502 Bad Gateway</title></head></html>")))
           + onEveryRoute("304 that nobody asked for", answer(Reply::make(304, "")))
           + onEveryRoute("unknown status", bytes("HTTP/1.1 999 Strange\r\nContent-Length: 2\r\n\r\n[]"))
           + onEveryRoute(
               "proxy asks for a password",
               answer(Reply::make(407, "", {{"Proxy-Authenticate", "Basic realm=\"x\""}})));
}

QList<Case> redirectCases()
{
    return onEveryRoute("redirect to a file", answer(Reply::redirect("file:///etc/passwd")))
           + onEveryRoute("redirect to another service", answer(Reply::redirect("ftp://127.0.0.1:1/x")))
           + onEveryRoute("redirect to a resource", answer(Reply::redirect("qrc:/examples-manifest.xml")))
           + onEveryRoute("redirect to inline data", answer(Reply::redirect("data:application/json,[]")))
           + onEveryRoute("redirect nowhere", answer(Reply::redirect("")))
           + onEveryRoute("redirect to where nobody answers", answer(Reply::redirect("http://127.0.0.1:1/")))
           + onEveryRoute("redirect in a circle", [](World &world, const QString &route) {
                 world.server().answer(route, Reply::redirect(route.toUtf8()));
             });
}

// The host of such an address names a socket in the directory for temporary files.
QList<Case> localSocketCases()
{
    QList<Case> cases = onEveryRoute("redirect to a local socket", [](World &world, const QString &route) {
        auto service = new QLocalServer(&world.server());
        if (!service->listen("local-service"))
            qFatal("cannot listen: %s", qPrintable(service->errorString()));
        world.server().answer(route, Reply::redirect("unix+http://local-service/"));
    });
    for (Case &socketCase : cases) {
        socketCase.check = [](World &world) {
            QVERIFY(!world.server().findChild<QLocalServer *>()->hasPendingConnections());
        };
    }
    return cases;
}

/** A body a little beyond what the route may answer with, whatever else comes with it. */
Case tooLarge(const QString &name, const QString &route, End end, qint64 size, const Reply &reply)
{
    return {
        .name = name,
        .end = end,
        .prepare =
            [route, size, reply](World &world) {
                setHonestPicture(world);
                Reply large = reply;
                large.body = QByteArray(size + 1, ' ');
                world.server().answer(route, large);
            },
        .memory = 800 * MEGABYTE + 2 * size};
}

QList<Case> tooLargeCases()
{
    constexpr qint64 JSON = 256 * MEGABYTE;
    constexpr qint64 PICTURE = 64 * MEGABYTE;
    const auto tooLargePicture = [](const QString &name, const Reply &reply) {
        Case result = tooLarge(
            "picture: larger than may be, " + name, World::PICTURE_ROUTE, End::Installed, PICTURE, reply);
        result.check = [](World &world) {
            QVERIFY(world.hasLogged("Network error: Operation canceled"));
            QCOMPARE(world.server().requestCount("/elsewhere"), 0);
        };
        return result;
    };
    return {
        tooLarge(
            "search: larger than may be", World::SEARCH_ROUTE, End::NotAnswered, JSON, Reply::make(200, {})),
        tooLarge(
            "listing: larger than may be",
            World::LISTING_ROUTE,
            End::NotAnswered,
            JSON,
            Reply::make(404, {})),
        tooLargePicture("of a success", Reply::make(200, {})),
        tooLargePicture("of a failure", Reply::make(404, {})),
        tooLargePicture("of a redirect", Reply::redirect("/elsewhere")),
    };
}

QByteArray archive()
{
    QByteArray noise;
    for (quint32 i = 0, x = 1; i < 100'000; ++i)
        noise.append(char((x = x * 1664525 + 1013904223) >> 24));
    return TarBuilder().file("subject-main-1/CMakeLists.txt").file("subject-main-1/noise", noise).tarGz();
}

Case archiveCase(const QString &name, End end, const std::function<void(World &)> &prepare)
{
    return {.name = "archive: " + name, .end = end, .prepare = [prepare](World &world) {
                world.subject().archive = archive();
                prepare(world);
            }};
}

Case cutArchive(const QString &name, End end, const Fault &fault)
{
    return archiveCase(
        name, end, [fault](World &world) { world.server().addFault(World::ARCHIVE_ROUTE, fault); });
}

Case answeredArchive(
    const QString &name, End end, const QByteArray &body, const Demo::DemoServer::Headers &headers)
{
    return archiveCase(name, end, [body, headers](World &world) {
        world.server().answer(World::ARCHIVE_ROUTE, 200, body, headers);
    });
}

QList<Case> bodyCases()
{
    using Demo::Framing;
    const QByteArray body = archive();
    return {
        cutArchive("reset in the middle", End::NotReceived, {.cutAfter = 5000, .framing = Framing::Length}),
        cutArchive(
            "closed in the middle",
            End::NotReceived,
            {.cutAfter = 5000, .end = Fault::End::Close, .framing = Framing::Length}),
        cutArchive(
            "chunks reset in the middle", End::NotReceived, {.cutAfter = 5000, .framing = Framing::Chunked}),
        cutArchive(
            "chunks closed in the middle",
            End::NotReceived,
            {.cutAfter = 5000, .end = Fault::End::Close, .framing = Framing::Chunked}),
        cutArchive(
            "chunks ended early, as if whole",
            End::NotUnpacked,
            {.cutAfter = 5000, .end = Fault::End::Finish, .framing = Framing::Chunked}),
        cutArchive(
            "chunks ended before the first",
            End::NoData,
            {.cutAfter = 0, .end = Fault::End::Finish, .framing = Framing::Chunked}),
        answeredArchive("length too small", End::NotUnpacked, body, {{"Content-Length", "100"}}),
        // Whether a connection that closes too early is an error depends on when the network layer sees it.
        answeredArchive(
            "length too large", End::NotReceived, body.chopped(1), {{"Content-Length", "99999999"}}),
        answeredArchive("length negative", End::Installed, body, {{"Content-Length", "-1"}}),
        answeredArchive(
            "length beyond all numbers",
            End::Installed,
            body,
            {{"Content-Length", "99999999999999999999999"}}),
        answeredArchive(
            "length and chunks",
            End::NotReceived,
            body,
            {{"Content-Length", "10"}, {"Transfer-Encoding", "chunked"}}),
        answeredArchive("unknown encoding", End::Installed, body, {{"Content-Encoding", "strange"}}),
        answeredArchive(
            "decoded on the way, to a plain tar", End::Installed, body, {{"Content-Encoding", "gzip"}}),
        answeredArchive(
            "said to be gzip, which it is not",
            End::NotDownloaded,
            "no gzip at all",
            {{"Content-Encoding", "gzip"}}),
        answeredArchive("said to be html", End::Installed, body, {{"Content-Type", "text/html"}}),
        answeredArchive(
            "named like another file",
            End::Installed,
            body,
            {{"Content-Disposition", "attachment; filename=\"../../evil\""}}),
        answeredArchive(
            "cookies and promises",
            End::Installed,
            body,
            {{"Set-Cookie", "evil=1; Path=/"},
             {"Strict-Transport-Security", "max-age=99999999"},
             {"Alt-Svc", "h2=\"127.0.0.1:1\""},
             {"Refresh", "0; url=file:///etc/passwd"}}),
        archiveCase(
            "status 204",
            End::NoData,
            [](World &world) { world.server().answer(World::ARCHIVE_ROUTE, 204); }),
        archiveCase(
            "preliminary answer before the answer",
            End::Installed,
            [body](World &world) {
                world.server().addFault(
                    World::ARCHIVE_ROUTE,
                    {.bytes = "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: "
                              + QByteArray::number(body.size()) + "\r\n\r\n" + body});
            }),
        archiveCase(
            "redirect to the honest archive",
            End::Installed,
            [body](World &world) {
                world.server().answer("/elsewhere", 200, body);
                world.server().answer(World::ARCHIVE_ROUTE, Reply::redirect("/elsewhere"));
            }),
        archiveCase(
            "answered late",
            End::Installed,
            [](World &world) {
                world.server().addFault(World::ARCHIVE_ROUTE, {.delay = std::chrono::milliseconds(300)});
            }),
        {.name = "listing: bomb of 1 GB",
         .end = End::NotAnswered,
         .prepare =
             [](World &world) {
                 world.server().answer(
                     World::LISTING_ROUTE,
                     200,
                     gzipped(QByteArray(8 * MEGABYTE, '\0')).repeated(128),
                     {{"Content-Encoding", "gzip"}});
             }},
        {.name = "search: stalled, then asked again",
         .end = End::Installed,
         .prepare =
             [](World &world) {
                 world.setSetting(Constants::SERVICE_RESTART_TIMEOUT, 1);
                 world.server().addFault(
                     World::SEARCH_ROUTE, {.cutAfter = 5, .end = Fault::End::Stall, .times = 1});
             }},
    };
}

} // namespace

QList<Case> httpCases()
{
    return connectionCases() + statusCases() + redirectCases() + localSocketCases() + tooLargeCases()
           + bodyCases();
}

} // namespace Varnel::Test
