// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "report.h"

namespace Varnel::Check {

/** The report as report.schema.json describes it. */
[[nodiscard]] QByteArray jsonReport(const Report &report, int exitCode);

} // namespace Varnel::Check
