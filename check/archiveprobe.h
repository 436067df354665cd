// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What an archive, and what was unpacked of it, give reason to say.

#pragma once

#include "report.h"

#include <QByteArray>

#include <stop_token>

namespace Varnel::Internal {
class PathTree;
struct ArchiveVerdict;
} // namespace Varnel::Internal

namespace Varnel::Check {

/**
 * The time of the first entry, which is the commit's; invalid if there is none that can be read. Any thread;
 * may take seconds, unless @p stop is requested.
 */
[[nodiscard]] QDateTime commitTimeOf(const QByteArray &archive, const std::stop_token &stop);

/** @p path is the example's. */
[[nodiscard]] Findings
judgeArchive(const QString &path, qint64 size, const Internal::ArchiveVerdict &verdict);

/** The names in an archive that was accepted, which nothing was refused for. */
[[nodiscard]] Findings judgeNames(const QString &path, const Internal::PathTree &tree);

} // namespace Varnel::Check
