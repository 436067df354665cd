// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Project objects: all that is asked of an example, whatever the server sent for it.

#include "client/example.h"
#include "service/filesystem.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Varnel::Internal;

namespace {

void ask(const QJsonObject &project)
{
    const Example example(project);
    if (example.tags().isEmpty())
        qFatal("an example without tags");
    if (example.isValid() && example.displayName().isEmpty())
        qFatal("a valid example without a title");
    if (isPlainName(example.name()) && example.name().contains(u'/'))
        qFatal("a plain name with a separator");
    QString text;
    QDebug(&text) << example << example.lastActivity();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    ask(document.object());
    const QJsonArray projects = document.object().value(u"projects").toArray();
    for (const QJsonValue &project : projects)
        ask(project.toObject());
    return 0;
}
