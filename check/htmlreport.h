// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "report.h"

namespace Varnel::Check {

/** The report as a page of its own: no script, nothing from elsewhere, pictures within. */
[[nodiscard]] QString htmlReport(const Report &report);

} // namespace Varnel::Check
