// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What lies below a directory, byte by byte.

#pragma once

#include <QByteArray>
#include <QMap>
#include <QStringList>

namespace Varnel::Test {

/** Path below the directory, and what is there: mode, time, content, target; times of directories, too. */
using Tree = QMap<QByteArray, QByteArray>;

/** What is below @p directory, which itself is left out. Ends the program if it cannot be read. */
[[nodiscard]] Tree readTree(const QString &directory);

/** What differs, one line each; empty if nothing does. */
[[nodiscard]] QStringList differences(const Tree &before, const Tree &after);

} // namespace Varnel::Test
