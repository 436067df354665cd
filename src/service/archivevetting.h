// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "service/archivejudge.h"

#include <QByteArray>
#include <QString>

#include <stop_token>

namespace Varnel::Internal {

/**
 * Reads @p archive and writes what is accepted of it into a fresh archive, which takes the place of @p file.
 * Two readers can see different things in the same bytes, so the unarchiver is given none that a server sent.
 * A refused archive leaves @p file as it was. What is unpacked may have @p freeBytes in all (negative:
 * unknown), and never more than 4 GiB. Any thread; may take seconds, unless @p stop is requested.
 */
[[nodiscard]] ArchiveVerdict
vetArchive(const QByteArray &archive, const QString &file, qint64 freeBytes, const std::stop_token &stop);

} // namespace Varnel::Internal
