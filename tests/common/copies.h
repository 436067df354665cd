// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Copies of examples in the directory of the repository "Demo", as unpacking leaves them.

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace Varnel::Test {

/** Noon of a day of January 2024. */
[[nodiscard]] QDateTime at(int day, int milliseconds = 0);

/** The directory of a name in that of the repository. */
[[nodiscard]] QString pathOf(const QString &name);

/** A copy of a project that can be registered, with a file that tells it from others. */
void makeCopy(const QString &name, const QDateTime &time, const QByteArray &content = "content");

} // namespace Varnel::Test
