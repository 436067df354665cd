// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/http.h"

#include <QJsonDocument>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

QByteArray Request::rawPath() const
{
    return target.split('?').first();
}

QString Request::path() const
{
    return QString::fromUtf8(QByteArray::fromPercentEncoding(rawPath()));
}

QByteArray Request::rawQuery() const
{
    const qsizetype mark = target.indexOf('?');
    return mark < 0 ? QByteArray() : target.sliced(mark + 1);
}

QString Request::queryItem(const QString &key) const
{
    // In a query a plus sign is a blank, which QUrlQuery leaves to its users.
    const QUrlQuery query(QString::fromUtf8(rawQuery().replace('+', "%20")));
    return query.queryItemValue(key, QUrl::FullyDecoded);
}

QByteArray Request::header(QByteArrayView name) const
{
    return headers.combinedValue(name);
}

Reply Reply::make(int status, const QByteArray &body, const QList<std::pair<QByteArray, QByteArray>> &headers)
{
    Reply reply{.status = status, .body = body};
    for (const auto &[name, value] : headers)
        reply.headers.append(QLatin1StringView(name), QLatin1StringView(value));
    return reply;
}

Reply Reply::json(const QJsonDocument &document, int status)
{
    return make(status, document.toJson(QJsonDocument::Compact), {{"Content-Type", "application/json"}});
}

Reply Reply::redirect(const QByteArray &location, int status)
{
    const QByteArray body
        = "<html><body>You are being <a href=\"" + location + "\">redirected</a>.</body></html>";
    return make(status, body, {{"Content-Type", "text/html"}, {"Location", location}});
}

} // namespace Varnel::Demo
