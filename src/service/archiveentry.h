// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace Varnel::Internal {

/** One entry of an archive, as its packer meant it. */
struct ArchiveEntry
{
    enum class Kind { File, Directory, SymbolicLink, HardLink, Special };

    QByteArray path; ///< raw bytes, never empty
    Kind kind = Kind::File;
    QByteArray target;   ///< of a link of either kind, raw bytes
    int permissions = 0; ///< the nine bits of owner, group and others
    qint64 time = 0;     ///< of the last modification, in seconds since 1970
    qint64 size = 0; ///< of a file's content in bytes, holes included; may be negative in a dishonest archive

    friend bool operator==(const ArchiveEntry &, const ArchiveEntry &) = default;
};

} // namespace Varnel::Internal
