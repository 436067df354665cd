// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>

#include <optional>
#include <utility>

/** Archives for tests, honest ones and such as no honest packer writes. */
namespace Varnel::Test {

struct TarEntry
{
    QByteArray path = {};
    char type = '0';
    QByteArray content = {};
    QByteArray target = {};                  ///< of links
    std::optional<qint64> declaredSize = {}; ///< by default that of the content
    int mode = 0644;
};

/**
 * Writes a tar block by block, so that every lie is possible. Names beyond the header's 100 bytes get a pax
 * record, as git writes them; nothing else is corrected or checked.
 */
class TarBuilder
{
public:
    TarBuilder &add(const TarEntry &entry);
    TarBuilder &file(const QByteArray &path, const QByteArray &content = "content\n");
    TarBuilder &directory(const QByteArray &path);
    TarBuilder &symbolicLink(const QByteArray &path, const QByteArray &target);
    TarBuilder &hardLink(const QByteArray &path, const QByteArray &target);
    /** Pax records for the next entry, or with type 'g' for all that follow. */
    TarBuilder &records(const QList<std::pair<QByteArray, QByteArray>> &records, char type = 'x');
    TarBuilder &raw(const QByteArray &bytes);

    /** Without an end marker. */
    [[nodiscard]] QByteArray unfinished() const { return m_bytes; }
    /** With the two zero blocks of the end, padded to a whole record of 10 KiB. */
    [[nodiscard]] QByteArray tar() const;
    [[nodiscard]] QByteArray tarGz() const;

private:
    QByteArray m_bytes;
};

/** Compresses with one of libarchive's filters, ARCHIVE_FILTER_..., gzip without name and time. */
[[nodiscard]] QByteArray compressed(const QByteArray &bytes, int filter);
[[nodiscard]] QByteArray gzipped(const QByteArray &bytes);

/** Packs with libarchive in another format, ARCHIVE_FORMAT_..., and with a filter. */
[[nodiscard]] QByteArray packed(const QList<TarEntry> &entries, int format, int filter);

} // namespace Varnel::Test
