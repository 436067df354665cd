// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "finding.h"

#include <stop_token>

namespace Varnel::Internal {
class PathTree;
} // namespace Varnel::Internal

namespace Varnel::Check {

/**
 * The symbolic links of an archive that was accepted which lead out of their top directory, or nowhere, once
 * it is unpacked. @p path is the example's. Looks at nothing on disk. Any thread; may take seconds, unless @p
 * stop is requested.
 */
[[nodiscard]] Findings
judgeLinks(const QString &path, const Internal::PathTree &tree, const std::stop_token &stop);

} // namespace Varnel::Check
