// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "report.h"

namespace Varnel::Check {

struct TableStyle
{
    bool isColoured = false; ///< with a terminal's control sequences
    bool isQuiet = false;    ///< findings only
};

/** The report as text for people, ending in a line break. */
[[nodiscard]] QString tableReport(const Report &report, const TableStyle &style);

} // namespace Varnel::Check
