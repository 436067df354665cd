// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLoggingCategory>

/**
 * The categories of all diagnostic output, silent below warnings unless the user's logging rules say
 * otherwise. Usable from any thread, from library load until the library's static objects are torn down.
 */
namespace Varnel::Log {

[[nodiscard]] const QLoggingCategory &main();
[[nodiscard]] const QLoggingCategory &api();
[[nodiscard]] const QLoggingCategory &arch(); // the archive tool's; its category is named in full
[[nodiscard]] const QLoggingCategory &repository();
[[nodiscard]] const QLoggingCategory &service();

} // namespace Varnel::Log
