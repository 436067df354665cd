// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is made of the table of options and the catalogue of findings, beside the help.

#pragma once

#include <QString>

namespace Varnel::Check {

/** The manual page, for man. */
[[nodiscard]] QString manualPage();

[[nodiscard]] QString bashCompletion();
[[nodiscard]] QString zshCompletion();
[[nodiscard]] QString fishCompletion();

} // namespace Varnel::Check
