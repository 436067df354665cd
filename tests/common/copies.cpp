// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/copies.h"

#include "common/files.h"
#include "settings/settings.h"

#include <QTimeZone>

namespace Varnel::Test {

QDateTime at(int day, int milliseconds)
{
    return QDateTime(QDate(2024, 1, day), QTime(12, 0, 0, milliseconds), QTimeZone::UTC);
}

QString pathOf(const QString &name)
{
    return Internal::Settings::location().arg("Demo") + '/' + name;
}

void makeCopy(const QString &name, const QDateTime &time, const QByteArray &content)
{
    writeFile(pathOf(name) + "/app.pro", content);
    setTime(pathOf(name), time);
}

} // namespace Varnel::Test
