// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// A listing from the client's readiness until it is announced; the same bytes by the network layer alone; and
// their parsing alone.
// Usage: bench_listing GROUP-URL LISTING-URL

#include "client/apiclient.h"
#include "measure.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>

using namespace Varnel;
using Varnel::Internal::ApiClient;
using Varnel::Internal::Repository;

namespace {

struct Listing
{
    double seconds = 0;
    qsizetype examples = 0;
};

Listing list(const QUrl &group)
{
    Listing result;
    ApiClient client(group, nullptr);
    Bench::Stopwatch watch;
    QObject::connect(&client, &ApiClient::ready, &client, [&] {
        watch = {};
        client.fetch();
    });
    QObject::connect(&client, &ApiClient::fetched, &client, [&](const Repository::Examples &examples) {
        result = {watch.seconds(), examples.size()};
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    return result;
}

QByteArray transfer(const QUrl &url, double *seconds)
{
    QByteArray bytes;
    QNetworkAccessManager manager;
    const Bench::Stopwatch watch;
    const auto reply = manager.get(QNetworkRequest(url));
    QObject::connect(reply, &QNetworkReply::finished, reply, [&] {
        bytes = reply->readAll();
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    *seconds = watch.seconds();
    delete reply;
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();

    double transferSeconds = 0;
    transfer(QUrl(arguments.value(2)), &transferSeconds); // the network layer sets itself up
    const QByteArray bytes = transfer(QUrl(arguments.value(2)), &transferSeconds);
    const Bench::Stopwatch watch;
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    const double parseSeconds = watch.seconds();
    const Listing listing = list(QUrl(arguments.value(1)));

    Bench::print(
        {{"seconds", listing.seconds},
         {"examples", listing.examples},
         {"transfer", transferSeconds},
         {"parse", parseSeconds},
         {"bytes", bytes.size()}});
    return document.isObject() ? EXIT_SUCCESS : EXIT_FAILURE;
}
