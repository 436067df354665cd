// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What a server's answers about its group say, whatever they look like.

#pragma once

#include "client/repository.h"

QT_BEGIN_NAMESPACE
class QJsonDocument;
QT_END_NAMESPACE

namespace Varnel::Internal {

/** The answer to a search for the group. */
struct GroupAnswer
{
    qint64 id = 0;      // 0: no usable number
    QString fault = {}; // a translated status; empty also if only the number is bad
};

/** The group's details. */
struct ListingAnswer
{
    Repository::Examples examples = {}; // the valid ones in the server's order, maybe none
    QString fault = {};                 // a translated status; empty: the listing counts
};

/** Null if the body is no JSON; that is logged. */
[[nodiscard]] QJsonDocument parseAnswer(const QByteArray &body);

[[nodiscard]] GroupAnswer readGroup(const QJsonDocument &document);
[[nodiscard]] ListingAnswer readListing(const QJsonDocument &document);

} // namespace Varnel::Internal
