// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/requestpolicy.h"

#include <QCoreApplication>
#include <QUrl>

namespace Varnel::Internal {

namespace {

constexpr qsizetype MAXIMUM_ADDRESS_SIZE = 4096;

bool isWeb(const QUrl &url)
{
    return url.scheme() == u"http" || url.scheme() == u"https";
}

// Not with tr(): a translation of ours would replace the network layer's text in the whole IDE.
QString networkLayerText(const char *context, const char *text)
{
    return QCoreApplication::translate(context, text);
}

} // namespace

QUrl addressOf(const QString &text)
{
    return text.size() <= MAXIMUM_ADDRESS_SIZE ? QUrl(text, QUrl::TolerantMode) : QUrl();
}

QString faultOfAddress(const QUrl &url)
{
    if (url.isEmpty() || isWeb(url))
        return {};
    return networkLayerText("QNetworkReply", "Protocol \"%1\" is unknown").arg(url.scheme());
}

bool isRedirect(int status)
{
    switch (status) {
    case 301:
    case 302:
    case 303:
    case 305:
    case 307:
    case 308:
        return true;
    default:
        return false;
    }
}

QUrl redirectTarget(const QUrl &from, const QByteArray &location)
{
    const QUrl url = location.size() <= MAXIMUM_ADDRESS_SIZE ? QUrl::fromEncoded(location) : QUrl();
    return url.isValid() && url.isRelative() ? from.resolved(url) : url;
}

QString faultOfRedirect(const QUrl &from, const QUrl &to, int count)
{
    if (!to.isValid())
        return networkLayerText("QHttp", "Unknown protocol specified");
    if (count >= MAXIMUM_REDIRECTS)
        return networkLayerText("QHttp", "Too many redirects");
    // The network layer would follow a redirect to a local socket, too.
    if (!isWeb(to))
        return networkLayerText("QHttp", "Unknown protocol specified");
    if (from.scheme() == u"https" && to.scheme() == u"http")
        return networkLayerText("QHttp", "Insecure redirect");
    return {};
}

} // namespace Varnel::Internal
