// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Reading with libarchive, in two passes: the entries, then the decompressed stream to its very end.

#include "service/archivereader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>

namespace Varnel::Internal {

namespace {

constexpr qsizetype MAXIMUM_ENTRIES = 100'000;
// The longest path that the system opens; what is longer could be unpacked step by step, but not used.
constexpr size_t MAXIMUM_NAME_SIZE = 4096;
// All names together: 100,000 of the longest would fill the IDE's memory.
constexpr quint64 MAXIMUM_NAMES_SIZE = 64ULL * 1024 * 1024;
// What a stream may hold beside the contents of the entries: headers and records for long names.
constexpr quint64 MAXIMUM_OVERHEAD = 512ULL * 1024 * 1024;
// What may follow the end marker of a tar: packers fill up their last record, of a megabyte at most. Without a
// bound a few megabytes of archive decompress to an hour of zeros.
constexpr qint64 MAXIMUM_PADDING = 64LL * 1024 * 1024;
// A small piece of hostile input decompresses to a large one, and only between pieces can reading be stopped.
constexpr qsizetype PIECE_SIZE = 4096;
// gzip in gzip is what a meddling proxy makes of an honest archive; each layer more multiplies the work of one piece.
constexpr int MAXIMUM_FILTERS = 2;
constexpr qint64 TAR_BLOCK_SIZE = 512;

struct ReaderDeleter
{
    void operator()(archive *reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, ReaderDeleter>;

/** An archive's bytes as libarchive asks for them. */
class Source
{
public:
    Source(const QByteArray &bytes, const std::stop_token &stop)
        : m_bytes(bytes)
        , m_stop(stop)
    {
    }
    Q_DISABLE_COPY_MOVE(Source)

    void attachTo(archive *reader)
    {
        archive_read_set_callback_data(reader, this);
        archive_read_set_read_callback(reader, &Source::read);
        archive_read_set_skip_callback(reader, &Source::skip);
        archive_read_set_seek_callback(reader, &Source::seek);
    }

private:
    static la_ssize_t read(archive *reader, void *source, const void **piece)
    {
        auto self = static_cast<Source *>(source);
        if (self->m_stop.stop_requested()) {
            archive_set_error(reader, ECANCELED, "stopped");
            return ARCHIVE_FATAL;
        }
        const qsizetype size = std::min(PIECE_SIZE, self->m_bytes.size() - self->m_position);
        *piece = self->m_bytes.constData() + self->m_position;
        self->m_position += size;
        return size;
    }

    static la_int64_t skip(archive *, void *source, la_int64_t request)
    {
        auto self = static_cast<Source *>(source);
        const qsizetype size = std::clamp<qsizetype>(request, 0, self->m_bytes.size() - self->m_position);
        self->m_position += size;
        return size;
    }

    static la_int64_t seek(archive *, void *source, la_int64_t offset, int whence)
    {
        auto self = static_cast<Source *>(source);
        const qint64 base = whence == SEEK_CUR   ? self->m_position
                            : whence == SEEK_END ? self->m_bytes.size()
                                                 : 0;
        qint64 position = 0;
        if (qAddOverflow<qint64>(base, offset, &position) || position < 0 || position > self->m_bytes.size())
            return ARCHIVE_FATAL;
        self->m_position = position;
        return position;
    }

    const QByteArray m_bytes;
    const std::stop_token m_stop;
    qsizetype m_position = 0;
};

// Some decoders are external programs where libarchive lacks the library; it says so with a warning when such
// a decoder is switched on. What a server sends must not start programs, so those are left out.
void supportBuiltInFilters(archive *reader)
{
    using Support = int (*)(archive *);
    constexpr Support ALL[] = {
        archive_read_support_filter_bzip2,
        archive_read_support_filter_compress,
        archive_read_support_filter_grzip,
        archive_read_support_filter_gzip,
        archive_read_support_filter_lrzip,
        archive_read_support_filter_lz4,
        archive_read_support_filter_lzip,
        archive_read_support_filter_lzma,
        archive_read_support_filter_lzop,
        archive_read_support_filter_rpm,
        archive_read_support_filter_uu,
        archive_read_support_filter_xz,
        archive_read_support_filter_zstd,
    };
    for (const Support support : ALL) {
        const Reader trial(archive_read_new());
        if (support(trial.get()) == ARCHIVE_OK)
            support(reader);
    }
}

Reader newReader()
{
    Reader reader(archive_read_new());
    supportBuiltInFilters(reader.get());
    return reader;
}

// Every format that libarchive reads, with two exceptions. "empty" would accept a file without a byte. A zip is read
// by its directory only: without it a truncated one looks whole, and a link in it like a file.
void supportFormats(archive *reader)
{
    archive_read_support_format_7zip(reader);
    archive_read_support_format_ar(reader);
    archive_read_support_format_cab(reader);
    archive_read_support_format_cpio(reader);
    archive_read_support_format_iso9660(reader);
    archive_read_support_format_lha(reader);
    archive_read_support_format_mtree(reader);
    archive_read_support_format_rar(reader);
    archive_read_support_format_rar5(reader);
    archive_read_support_format_tar(reader);
    archive_read_support_format_warc(reader);
    archive_read_support_format_xar(reader);
    archive_read_support_format_zip_seekable(reader);
}

QString errorOf(archive *reader)
{
    const char *text = archive_error_string(reader);
    return text ? QString::fromUtf8(text) : QStringLiteral("unknown error");
}

bool isTar(archive *reader)
{
    return (archive_format(reader) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_TAR;
}

// A target that cannot be converted is null in one of the forms, but then not in all of them.
bool isHardLink(archive_entry *entry)
{
    return archive_entry_hardlink(entry) || archive_entry_hardlink_utf8(entry)
           || archive_entry_hardlink_w(entry);
}

ArchiveEntry::Kind kindOf(archive_entry *entry)
{
    using Kind = ArchiveEntry::Kind;
    if (isHardLink(entry))
        return Kind::HardLink;
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return Kind::File;
    case AE_IFDIR:
        return Kind::Directory;
    case AE_IFLNK:
        return Kind::SymbolicLink;
    default:
        return Kind::Special;
    }
}

const char *targetOf(archive_entry *entry, ArchiveEntry::Kind kind)
{
    switch (kind) {
    case ArchiveEntry::Kind::HardLink:
        return archive_entry_hardlink(entry);
    case ArchiveEntry::Kind::SymbolicLink:
        return archive_entry_symlink(entry);
    default:
        return "";
    }
}

/** The first pass: what the entries are, and that each one's content is there. */
class EntryPass
{
public:
    EntryPass(quint64 maximumSize, const std::stop_token &stop)
        : m_maximumSize(maximumSize)
        , m_stop(stop)
    {
    }

    ArchiveListing run(const QByteArray &bytes)
    {
        Source source(bytes, m_stop);
        const Reader reader = newReader();
        m_reader = reader.get();
        supportFormats(m_reader);
        source.attachTo(m_reader);
        if (archive_read_open1(m_reader) != ARCHIVE_OK)
            fail(errorOf(m_reader));
        else if (archive_filter_count(m_reader) > MAXIMUM_FILTERS + 1) // the bytes themselves count as one
            fail(QStringLiteral("compressed too many times"));
        else
            readEntries();
        return std::move(m_listing);
    }

    /** Where a tar's end marker ends in the decompressed stream; nothing for an archive of another format. */
    [[nodiscard]] std::optional<qint64> tarEnd() const { return m_tarEnd; }

private:
    void readEntries()
    {
        qint64 contentEnd = 0;
        archive_entry *entry = nullptr;
        int result = ARCHIVE_OK;
        // A warning comes with a long name that is not in the locale's encoding: it is there, as raw bytes.
        while ((result = archive_read_next_header(m_reader, &entry)) == ARCHIVE_OK
               || result == ARCHIVE_WARN) {
            if (!readEntry(entry))
                return;
            contentEnd = position();
        }
        if (result != ARCHIVE_EOF) {
            fail(errorOf(m_reader));
            return;
        }
        if (isTar(m_reader)) {
            m_tarEnd = position();
            if (m_tarEnd == contentEnd)
                fail(QStringLiteral("no end marker"));
        }
    }

    bool readEntry(archive_entry *entry)
    {
        if (m_stop.stop_requested())
            return fail(QStringLiteral("stopped"));
        if (m_listing.entries.size() == MAXIMUM_ENTRIES)
            return fail(QStringLiteral("too many entries"));
        return readHeader(entry) && readContent(entry);
    }

    bool readHeader(archive_entry *entry)
    {
        const ArchiveEntry::Kind kind = kindOf(entry);
        const char *path = archive_entry_pathname(entry);
        const char *target = targetOf(entry, kind);
        if (!path || !*path || !target)
            return fail(QStringLiteral("entry without a name"));
        const size_t pathSize = qstrlen(path);
        const size_t targetSize = qstrlen(target);
        m_namesSize += pathSize + targetSize;
        if (std::max(pathSize, targetSize) >= MAXIMUM_NAME_SIZE || m_namesSize > MAXIMUM_NAMES_SIZE)
            return fail(QStringLiteral("names too long"));
        m_listing.entries.append({QByteArray(path), kind, QByteArray(target)});
        return true;
    }

    // A declared size may be smaller than what really comes, and larger: holes are declared, but not sent.
    bool readContent(archive_entry *entry)
    {
        const qint64 declared = archive_entry_size_is_set(entry) ? archive_entry_size(entry) : 0;
        if (declared < 0 || isTooLarge(declared))
            return fail(QStringLiteral("too large"));
        quint64 size = declared;
        const void *block = nullptr;
        size_t blockSize = 0;
        la_int64_t offset = 0;
        int result = ARCHIVE_OK;
        while ((result = archive_read_data_block(m_reader, &block, &blockSize, &offset)) == ARCHIVE_OK) {
            if (m_stop.stop_requested())
                return fail(QStringLiteral("stopped"));
            if (offset < 0 || blockSize > m_maximumSize)
                return fail(QStringLiteral("too large"));
            size = std::max(size, quint64(offset) + blockSize);
            if (isTooLarge(size))
                return fail(QStringLiteral("too large"));
        }
        if (result != ARCHIVE_EOF)
            return fail(errorOf(m_reader));
        m_contentsSize += size;
        return true;
    }

    [[nodiscard]] bool isTooLarge(quint64 size) const
    {
        return size > m_maximumSize - m_contentsSize
               || quint64(position()) > m_maximumSize + MAXIMUM_OVERHEAD;
    }

    [[nodiscard]] qint64 position() const { return archive_filter_bytes(m_reader, 0); }

    bool fail(const QString &error)
    {
        m_listing.error = error;
        return false;
    }

    const quint64 m_maximumSize;
    const std::stop_token m_stop;
    archive *m_reader = nullptr;
    ArchiveListing m_listing;
    quint64 m_contentsSize = 0; // never above m_maximumSize
    quint64 m_namesSize = 0;
    std::optional<qint64> m_tarEnd;
};

/**
 * The second pass: the decompressed stream is complete. The first one stops at a tar's end marker, and takes a
 * tar that ends between two entries without one for a whole one; that is what a server sends whose packing
 * broke off.
 */
class StreamPass
{
public:
    StreamPass(qint64 maximumSize, std::optional<qint64> tarEnd, const std::stop_token &stop)
        : m_limit(tarEnd ? *tarEnd + MAXIMUM_PADDING : maximumSize)
        , m_markerBegin(tarEnd ? *tarEnd - TAR_BLOCK_SIZE : -TAR_BLOCK_SIZE)
        , m_stop(stop)
    {
    }

    /** Returns the error. */
    [[nodiscard]] QString run(const QByteArray &bytes)
    {
        Source source(bytes, m_stop);
        const Reader reader = newReader();
        archive_read_support_format_raw(reader.get());
        source.attachTo(reader.get());
        archive_entry *entry = nullptr;
        if (archive_read_open1(reader.get()) != ARCHIVE_OK
            || archive_read_next_header(reader.get(), &entry) != ARCHIVE_OK) {
            return errorOf(reader.get());
        }
        return drain(reader.get());
    }

private:
    [[nodiscard]] QString drain(archive *reader) const
    {
        const void *block = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        int result = ARCHIVE_OK;
        while ((result = archive_read_data_block(reader, &block, &size, &offset)) == ARCHIVE_OK) {
            if (m_stop.stop_requested())
                return QStringLiteral("stopped");
            if (offset > m_limit)
                return QStringLiteral("endless");
            if (!isMarkerIntact(QByteArrayView(static_cast<const char *>(block), qsizetype(size)), offset))
                return QStringLiteral("no end marker");
        }
        return result == ARCHIVE_EOF ? QString() : errorOf(reader);
    }

    // Looks at the part of the marker that lies in this block.
    [[nodiscard]] bool isMarkerIntact(QByteArrayView block, qint64 offset) const
    {
        const qint64 begin = std::clamp<qint64>(m_markerBegin - offset, 0, block.size());
        const qint64 end = std::clamp<qint64>(m_markerBegin + TAR_BLOCK_SIZE - offset, 0, block.size());
        return std::all_of(block.begin() + begin, block.begin() + end, [](char c) { return c == 0; });
    }

    const qint64 m_limit;
    const qint64 m_markerBegin; // such that no byte is part of it if there is none
    const std::stop_token m_stop;
};

} // namespace

ArchiveListing readArchive(const QByteArray &archive, quint64 maximumSize, const std::stop_token &stop)
{
    EntryPass entryPass(maximumSize, stop);
    ArchiveListing listing = entryPass.run(archive);
    if (listing.error.isEmpty()) {
        const auto maximumStream = qint64(maximumSize + MAXIMUM_OVERHEAD);
        listing.error = StreamPass(maximumStream, entryPass.tarEnd(), stop).run(archive);
    }
    return listing;
}

} // namespace Varnel::Internal
