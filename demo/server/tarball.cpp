// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/tarball.h"

#include <archive.h>
#include <archive_entry.h>

#include <QDateTime>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

namespace fs = std::filesystem;

constexpr qsizetype BLOCK_SIZE = 512;    // bytes
constexpr qsizetype RECORD_SIZE = 10240; // bytes, to a multiple of which a tar is filled up
constexpr int FILE_MODE = 0664;
constexpr int EXECUTABLE_MODE = 0775;
constexpr int LINK_MODE = 0777;
constexpr int PAX_MODE = 0666;

struct Header // the fields of a ustar header, as they lie in its block
{
    char name[100];
    char mode[8];
    char uid[8];
    char gid[8];
    char size[12];
    char mtime[12];
    char checksum[8];
    char type;
    char target[100];
    char magic[6];
    char version[2];
    char user[32];
    char group[32];
    char major[8];
    char minor[8];
    char prefix[155];
    char padding[12];
};
static_assert(sizeof(Header) == BLOCK_SIZE);

template<size_t Size>
void setText(char (&field)[Size], const QByteArray &text)
{
    std::copy_n(text.constData(), std::min<qsizetype>(text.size(), Size), field);
}

template<size_t Size>
void setNumber(char (&field)[Size], qint64 number)
{
    setText(field, QByteArray::number(number, 8).rightJustified(Size - 1, '0'));
}

QByteArray padded(const QByteArray &data, qsizetype unit)
{
    const qsizetype excess = data.size() % unit;
    return excess == 0 ? data : data + QByteArray(unit - excess, '\0');
}

/** Where a name is split that is too long for its field, or -1 if it need not or cannot be. */
qsizetype splitPosition(const QByteArray &name)
{
    if (name.size() <= qsizetype(sizeof(Header::name)))
        return -1;
    const qsizetype end = name.endsWith('/') ? name.size() - 1 : name.size();
    const qsizetype slash = name.lastIndexOf('/', std::min<qsizetype>(end, sizeof(Header::prefix)) - 1);
    const bool fits = slash > 0 && name.size() - slash - 1 <= qsizetype(sizeof(Header::name));
    return fits ? slash : -1;
}

bool isTooLong(const QByteArray &name)
{
    return name.size() > qsizetype(sizeof(Header::name)) && splitPosition(name) < 0;
}

QByteArray member(
    char type,
    int mode,
    const QByteArray &name,
    const QByteArray &target,
    const QByteArray &body,
    qint64 time)
{
    Header header;
    std::memset(&header, 0, sizeof(header));
    const qsizetype slash = splitPosition(name);
    setText(header.prefix, name.first(std::max<qsizetype>(slash, 0)));
    setText(header.name, name.sliced(slash + 1));
    setNumber(header.mode, mode);
    setNumber(header.uid, 0);
    setNumber(header.gid, 0);
    setNumber(header.size, body.size());
    setNumber(header.mtime, std::max<qint64>(time, 0)); // git, too, knows nothing before 1970
    header.type = type;
    setText(header.target, target);
    setText(header.magic, QByteArrayLiteral("ustar\0"));
    setText(header.version, "00"_ba);
    setText(header.user, "root"_ba);
    setText(header.group, "root"_ba);
    setNumber(header.major, 0);
    setNumber(header.minor, 0);

    std::memset(header.checksum, ' ', sizeof(header.checksum)); // as it counts for the sum itself
    const auto bytes = QByteArray(reinterpret_cast<const char *>(&header), BLOCK_SIZE);
    uint sum = 0;
    for (const char byte : bytes)
        sum += static_cast<uchar>(byte);
    setNumber(header.checksum, sum);
    header.checksum[sizeof(header.checksum) - 1] = '\0';

    return QByteArray(reinterpret_cast<const char *>(&header), BLOCK_SIZE) + padded(body, BLOCK_SIZE);
}

// The number in front of a pax record is the length of the whole record, its own digits included.
QByteArray paxRecord(const QByteArray &key, const QByteArray &value)
{
    const QByteArray rest = ' ' + key + '=' + value + '\n';
    qsizetype length = rest.size();
    while (QByteArray::number(length).size() + rest.size() != length)
        length = QByteArray::number(length).size() + rest.size();
    return QByteArray::number(length) + rest;
}

QByteArray
entryMember(const QByteArray &name, const Tree::Entry &entry, const QByteArray &commitId, qint64 time)
{
    QByteArray records;
    if (isTooLong(name))
        records += paxRecord("path", name);
    const QByteArray target = entry.type == Tree::Entry::Link ? entry.content : QByteArray();
    if (target.size() > qsizetype(sizeof(Header::target)))
        records += paxRecord("linkpath", target);

    QByteArray result;
    if (!records.isEmpty())
        result += member('x', PAX_MODE, commitId + ".paxheader", {}, records, time);
    switch (entry.type) {
    case Tree::Entry::Directory:
        return result + member('5', EXECUTABLE_MODE, name, {}, {}, time);
    case Tree::Entry::Link:
        return result + member('2', LINK_MODE, name, target, {}, time);
    case Tree::Entry::File:
        return result + member('0', FILE_MODE, name, {}, entry.content, time);
    case Tree::Entry::Executable:
        return result + member('0', EXECUTABLE_MODE, name, {}, entry.content, time);
    }
    Q_UNREACHABLE_RETURN(result);
}

std::optional<QString> addOne(Tree &tree, const fs::directory_entry &found, const QByteArray &path)
{
    std::error_code error;
    if (found.is_symlink()) {
        const fs::path target = fs::read_symlink(found.path(), error);
        tree.add(path, {Tree::Entry::Link, QByteArray::fromStdString(target.string())});
    } else if (found.is_directory()) {
        tree.add(path, {Tree::Entry::Directory, {}});
    } else {
        QFile file(found.path());
        if (!file.open(QIODevice::ReadOnly))
            return u"%1: %2"_s.arg(file.fileName(), file.errorString());
        const bool isExecutable = file.permissions().testFlag(QFile::ExeOwner);
        tree.add(path, {isExecutable ? Tree::Entry::Executable : Tree::Entry::File, file.readAll()});
    }
    if (error)
        return u"%1: %2"_s.arg(
            QString::fromStdString(found.path().string()), QString::fromStdString(error.message()));
    return std::nullopt;
}

} // namespace

void Tree::add(const QByteArray &path, const Entry &entry)
{
    for (qsizetype slash = path.indexOf('/'); slash >= 0; slash = path.indexOf('/', slash + 1))
        m_entries.insert({path.first(slash + 1), {Entry::Directory, {}}});
    m_entries.insert_or_assign(entry.type == Entry::Directory ? path + '/' : path, entry);
}

std::optional<QString> Tree::addFrom(const QString &directory)
{
    const fs::path root(directory.toStdString());
    std::error_code error;
    for (fs::recursive_directory_iterator found(root, error), end; !error && found != end;
         found.increment(error)) {
        const fs::path path = found->path().lexically_relative(root);
        if (const auto problem = addOne(*this, *found, QByteArray::fromStdString(path.string())))
            return problem;
    }
    if (error)
        return u"%1: %2"_s.arg(directory, QString::fromStdString(error.message()));
    return std::nullopt;
}

QByteArray
tarball(const Tree &tree, const QByteArray &topDirectory, const QByteArray &commitId, const QDateTime &time)
{
    const qint64 seconds = time.toSecsSinceEpoch();
    QByteArray tar = member('g', PAX_MODE, "pax_global_header", {}, paxRecord("comment", commitId), seconds);
    tar += entryMember(topDirectory + '/', {Tree::Entry::Directory, {}}, commitId, seconds);
    for (const auto &[path, entry] : tree.entries())
        tar += entryMember(topDirectory + '/' + path, entry, commitId, seconds);
    return padded(tar + QByteArray(2 * BLOCK_SIZE, '\0'), RECORD_SIZE);
}

QByteArray gzip(const QByteArray &data)
{
    // The format adds nothing to the one entry's content; the filter is all that is wanted here.
    const std::unique_ptr<archive, decltype(&archive_write_free)> writer(
        archive_write_new(), archive_write_free);
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(
        archive_entry_new(), archive_entry_free);
    archive_write_set_format_raw(writer.get());
    archive_write_add_filter_gzip(writer.get());
    archive_write_set_options(writer.get(), "gzip:!timestamp");
    archive_write_set_bytes_in_last_block(writer.get(), 1);
    archive_entry_set_filetype(entry.get(), AE_IFREG);

    const auto append = [](archive *, void *result, const void *bytes, size_t size) -> la_ssize_t {
        static_cast<QByteArray *>(result)->append(static_cast<const char *>(bytes), qsizetype(size));
        return la_ssize_t(size);
    };
    QByteArray result;
    archive_write_open2(writer.get(), &result, nullptr, append, nullptr, nullptr);
    archive_write_header(writer.get(), entry.get());
    archive_write_data(writer.get(), data.constData(), size_t(data.size()));
    archive_write_close(writer.get());
    return result;
}

} // namespace Varnel::Demo
