// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/answers.h"

#include "plugin/logging.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace Varnel::Internal {

namespace {

// The server answers a search with an array and a look-up with an object; either is taken for both.
QJsonObject groupObject(const QJsonDocument &document, const char *manyObjectsMessage)
{
    if (!document.isArray())
        return document.object();
    const QJsonArray groups = document.array();
    if (groups.size() > 1)
        qCDebug(Log::api) << manyObjectsMessage;
    return groups.at(0).toObject();
}

} // namespace

QJsonDocument parseAnswer(const QByteArray &body)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError) {
        qCDebug(Log::api) << "Json response:" << body;
        qCDebug(Log::api) << "Json parse error: " << error.errorString();
    }
    return document;
}

GroupAnswer readGroup(const QJsonDocument &document)
{
    if (document.isNull())
        return {.fault = QObject::tr("Search error: request return null object")};
    const QJsonObject group
        = groupObject(document, "Search request return more than 1 object - taking first");
    if (!group.contains(u"id"))
        return {.fault = QObject::tr("Search error: request return wrong data - no id field")};
    return {.id = group.value(u"id").toInt()};
}

ListingAnswer readListing(const QJsonDocument &document)
{
    if (document.isNull())
        return {.fault = QObject::tr("Fetch error: request return null object")};
    const QJsonObject group = groupObject(document, "Fetch request return more than 1 object - taking first");
    if (!group.contains(u"projects"))
        return {.fault = QObject::tr("Fetch error: request return wrong data - no projects field")};

    ListingAnswer answer;
    const QJsonArray projects = group.value(u"projects").toArray();
    for (const QJsonValue project : projects) {
        const auto example = Repository::ExamplePtr::create(project.toObject());
        if (example->isValid())
            answer.examples.append(example);
    }
    return answer;
}

} // namespace Varnel::Internal
