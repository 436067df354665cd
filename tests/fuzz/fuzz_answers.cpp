// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Answers to the search and to the listing, over a real connection. The first byte says which of the two.

#include "client/apiclient.h"

#include "server/demoserver.h"

#include <QCoreApplication>

using namespace Varnel;
using namespace Varnel::Internal;

namespace {

/** Runs a client until it has judged @p answers answers. */
void judge(const QUrl &url, int answers)
{
    ApiClient client(url, nullptr);
    QObject::connect(&client, &ApiClient::ready, &client, &ApiClient::fetch);
    int judged = 0;
    QObject::connect(&client, &ApiClient::statusChanged, &client, [&](const QString &status) {
        if (status.isEmpty()) // an answer has come and is about to be judged
            ++judged;
        else if (status.contains("error"))
            judged = answers;
    });
    while (judged < answers)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argumentCount = 1;
    static char name[] = "fuzz_answers";
    static char *arguments[]{name, nullptr};
    // Never deleted: the fuzzer exits from within, when Qt's own static objects are already going.
    [[maybe_unused]] static const auto application = new QCoreApplication(argumentCount, arguments);
    static Demo::DemoServer &server = *new Demo::DemoServer;
    if (size < 1)
        return 0;

    const QByteArray body(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1);
    const bool isSearch = data[0] % 2 == 0;
    const QString route = isSearch ? QString("/api/v4/groups") : QString("/api/v4/groups/*");
    server.restore();
    server.clearRequests();
    server.answer(route, 200, body);
    judge(server.groupUrl(), isSearch ? 1 : 2);
    return 0;
}
