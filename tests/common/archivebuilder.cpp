// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "archivebuilder.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace Varnel::Test {

namespace {

constexpr qsizetype BLOCK_SIZE = 512;
constexpr qsizetype RECORD_SIZE = 20 * BLOCK_SIZE;
constexpr qsizetype NAME_SIZE = 100;
constexpr qint64 COMMIT_TIME = 1'700'000'000; // seconds since 1970

void put(QByteArray &header, qsizetype offset, qsizetype size, const QByteArray &text)
{
    header.replace(offset, std::min(size, text.size()), text.first(std::min(size, text.size())));
}

QByteArray octal(qint64 number, int digits)
{
    return QByteArray::number(number, 8).rightJustified(digits, '0');
}

// What does not fit into eleven octal digits is written in binary, as GNU tar does.
QByteArray sizeField(qint64 size)
{
    if (size >= 0 && size < (qint64(1) << 33))
        return octal(size, 11);
    QByteArray field(12, size < 0 ? '\xff' : '\0');
    field[0] = char(field[0] | 0x80);
    for (int i = 0; i < 8; ++i)
        field[11 - i] = char(size >> (8 * i));
    return field;
}

QByteArray header(const TarEntry &entry)
{
    QByteArray block(BLOCK_SIZE, '\0');
    put(block, 0, NAME_SIZE, entry.path);
    put(block, 100, 7, octal(entry.mode, 7));
    put(block, 108, 7, octal(0, 7));
    put(block, 116, 7, octal(0, 7));
    put(block, 124, 12, sizeField(entry.declaredSize.value_or(entry.content.size())));
    put(block, 136, 11, octal(COMMIT_TIME, 11));
    put(block, 148, 8, QByteArray(8, ' '));
    block[156] = entry.type;
    put(block, 157, NAME_SIZE, entry.target);
    put(block, 257, 8, QByteArray("ustar\00000", 8));
    const int sum
        = std::accumulate(block.begin(), block.end(), 0, [](int s, char c) { return s + uchar(c); });
    put(block, 148, 7, octal(sum, 6) + '\0');
    return block;
}

QByteArray padded(QByteArray bytes, qsizetype unit)
{
    bytes.append((unit - bytes.size() % unit) % unit, '\0');
    return bytes;
}

// A record counts its own length in.
QByteArray record(const QByteArray &key, const QByteArray &value)
{
    const QByteArray text = ' ' + key + '=' + value + '\n';
    qsizetype size = text.size();
    while (size != text.size() + QByteArray::number(size).size())
        size = text.size() + QByteArray::number(size).size();
    return QByteArray::number(size) + text;
}

struct WriterDeleter
{
    void operator()(archive *writer) const { archive_write_free(writer); }
};
using Writer = std::unique_ptr<archive, WriterDeleter>;

la_ssize_t append(archive *, void *bytes, const void *piece, size_t size)
{
    static_cast<QByteArray *>(bytes)->append(static_cast<const char *>(piece), qsizetype(size));
    return la_ssize_t(size);
}

Writer newWriter(QByteArray *bytes, int format, int filter)
{
    Writer writer(archive_write_new());
    archive_write_add_filter(writer.get(), filter);
    if (filter == ARCHIVE_FILTER_GZIP)
        archive_write_set_filter_option(writer.get(), "gzip", "timestamp", nullptr);
    archive_write_set_format(writer.get(), format);
    archive_write_set_bytes_in_last_block(writer.get(), 1);
    if (archive_write_open(writer.get(), bytes, nullptr, &append, nullptr) != ARCHIVE_OK)
        qFatal("no archive writer: %s", archive_error_string(writer.get()));
    return writer;
}

unsigned fileType(char type)
{
    switch (type) {
    case '2':
        return AE_IFLNK;
    case '5':
        return AE_IFDIR;
    case '6':
        return AE_IFIFO;
    default:
        return AE_IFREG;
    }
}

void write(archive *writer, const TarEntry &description)
{
    archive_entry *entry = archive_entry_new2(writer);
    archive_entry_set_pathname(entry, description.path.constData());
    archive_entry_set_filetype(entry, fileType(description.type));
    archive_entry_set_perm(entry, description.mode);
    archive_entry_set_size(entry, description.content.size());
    archive_entry_set_mtime(entry, COMMIT_TIME, 0);
    if (description.type == '1')
        archive_entry_set_hardlink(entry, description.target.constData());
    if (description.type == '2')
        archive_entry_set_symlink(entry, description.target.constData());
    if (archive_write_header(writer, entry) != ARCHIVE_OK)
        qFatal("cannot pack: %s", archive_error_string(writer));
    archive_write_data(writer, description.content.constData(), size_t(description.content.size()));
    archive_entry_free(entry);
}

} // namespace

TarBuilder &TarBuilder::add(const TarEntry &entry)
{
    QList<std::pair<QByteArray, QByteArray>> longNames;
    if (entry.path.size() > NAME_SIZE)
        longNames.append({"path", entry.path});
    if (entry.target.size() > NAME_SIZE)
        longNames.append({"linkpath", entry.target});
    if (!longNames.isEmpty())
        records(longNames);
    m_bytes += header(entry) + padded(entry.content, BLOCK_SIZE);
    return *this;
}

TarBuilder &TarBuilder::file(const QByteArray &path, const QByteArray &content)
{
    return add({.path = path, .content = content});
}

TarBuilder &TarBuilder::directory(const QByteArray &path)
{
    return add({.path = path, .type = '5', .mode = 0755});
}

TarBuilder &TarBuilder::symbolicLink(const QByteArray &path, const QByteArray &target)
{
    return add({.path = path, .type = '2', .target = target, .mode = 0777});
}

TarBuilder &TarBuilder::hardLink(const QByteArray &path, const QByteArray &target)
{
    return add({.path = path, .type = '1', .target = target});
}

TarBuilder &TarBuilder::records(const QList<std::pair<QByteArray, QByteArray>> &records, char type)
{
    QByteArray content;
    for (const auto &[key, value] : records)
        content += record(key, value);
    return add({.path = type == 'g' ? "pax_global_header" : "pax_header", .type = type, .content = content});
}

TarBuilder &TarBuilder::raw(const QByteArray &bytes)
{
    m_bytes += bytes;
    return *this;
}

QByteArray TarBuilder::tar() const
{
    return padded(m_bytes + QByteArray(2 * BLOCK_SIZE, '\0'), RECORD_SIZE);
}

QByteArray TarBuilder::tarGz() const
{
    return gzipped(tar());
}

QByteArray compressed(const QByteArray &bytes, int filter)
{
    QByteArray result;
    {
        const Writer writer = newWriter(&result, ARCHIVE_FORMAT_RAW, filter);
        write(writer.get(), {.path = "data", .content = bytes});
    }
    return result;
}

QByteArray gzipped(const QByteArray &bytes)
{
    return compressed(bytes, ARCHIVE_FILTER_GZIP);
}

QByteArray packed(const QList<TarEntry> &entries, int format, int filter)
{
    QByteArray result;
    {
        const Writer writer = newWriter(&result, format, filter);
        for (const TarEntry &entry : entries)
            write(writer.get(), entry);
    }
    return result;
}

} // namespace Varnel::Test
