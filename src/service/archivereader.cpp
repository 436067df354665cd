// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Reading with libarchive: one reader takes the compression off, a second one reads what was compressed.

#include "service/archivereader.h"

#include "service/nativefiles.h"

#include <archive.h>
#include <archive_entry.h>

#include <QDir>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Varnel::Internal {

namespace {

// What a stream may hold beside the contents of its files: headers, and records for long names.
constexpr qint64 MAXIMUM_OVERHEAD = 512LL * 1024 * 1024;
// What may follow the end marker of a tar: packers fill up their last record, of a megabyte at most. Without
// a bound a few megabytes of archive decompress to an hour of zeros.
constexpr qint64 MAXIMUM_PADDING = 64LL * 1024 * 1024;
// Sparse maps and records are read and kept before the library returns with an entry.
constexpr qint64 MAXIMUM_HEADER_SIZE = 8LL * 1024 * 1024;
// The directory of a zip is read as a whole with its first entry. A hundred thousand entries of usual names
// need less.
constexpr qint64 MAXIMUM_ZIP_DIRECTORY_SIZE = 32LL * 1024 * 1024;
// A zip that had to be decompressed lies in a temporary file, as it is read from its end.
constexpr qint64 MAXIMUM_SPOOLED_SIZE = 4LL * 1024 * 1024 * 1024;
// gzip in gzip is what a meddling proxy makes of an honest archive; each layer more multiplies the work of
// one piece.
constexpr int MAXIMUM_LAYERS = 2;
constexpr qsizetype PIECE_SIZE = 64LL * 1024;
constexpr qsizetype TAR_BLOCK_SIZE = 512;
// The library looks at most two blocks ahead of what it has consumed.
constexpr qsizetype HISTORY_SIZE = 8 * TAR_BLOCK_SIZE;

struct ReaderDeleter
{
    void operator()(archive *reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, ReaderDeleter>;

QString errorOf(archive *reader)
{
    const char *text = archive_error_string(reader);
    return text ? QString::fromUtf8(text) : QStringLiteral("unknown error");
}

int fail(archive *reader, const char *text)
{
    archive_set_error(reader, ECANCELED, "%s", text);
    return ARCHIVE_FATAL;
}

/** Bytes in memory as libarchive asks for them. */
class MemorySource final
{
public:
    MemorySource(const QByteArray &bytes, const std::stop_token &stop)
        : m_bytes(bytes)
        , m_stop(stop)
    {
    }
    Q_DISABLE_COPY_MOVE(MemorySource)

    void attachTo(archive *reader)
    {
        archive_read_set_callback_data(reader, this);
        archive_read_set_read_callback(reader, &MemorySource::read);
        archive_read_set_skip_callback(reader, &MemorySource::skip);
        archive_read_set_seek_callback(reader, &MemorySource::seek);
    }

    /** Lets so many more bytes be read until the next call. */
    void allow(qint64 size) { m_allowance = size; }

private:
    static la_ssize_t read(archive *reader, void *source, const void **piece)
    {
        auto self = static_cast<MemorySource *>(source);
        if (self->m_stop.stop_requested())
            return fail(reader, "stopped");
        const qsizetype size = std::min(PIECE_SIZE, self->m_bytes.size() - self->m_position);
        self->m_allowance -= size;
        if (self->m_allowance < 0)
            return fail(reader, "header too large");
        *piece = self->m_bytes.constData() + self->m_position;
        self->m_position += size;
        return size;
    }

    static la_int64_t skip(archive *, void *source, la_int64_t request)
    {
        auto self = static_cast<MemorySource *>(source);
        const qsizetype size = std::clamp<qsizetype>(request, 0, self->m_bytes.size() - self->m_position);
        self->m_position += size;
        return size;
    }

    static la_int64_t seek(archive *, void *source, la_int64_t offset, int whence)
    {
        auto self = static_cast<MemorySource *>(source);
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
    qint64 m_allowance = std::numeric_limits<qint64>::max();
};

/** The bytes of an archive without their compression, piece by piece. */
class Decompressor final
{
public:
    Decompressor(const QByteArray &bytes, const std::stop_token &stop)
        : m_source(bytes, stop)
        , m_reader(archive_read_new())
    {
        archive_read_support_filter_gzip(m_reader.get());
        archive_read_support_filter_bzip2(m_reader.get());
        archive_read_support_format_raw(m_reader.get());
        m_source.attachTo(m_reader.get());
        archive_entry *entry = nullptr;
        if (archive_read_open1(m_reader.get()) != ARCHIVE_OK
            || archive_read_next_header(m_reader.get(), &entry) != ARCHIVE_OK)
            m_fault = errorOf(m_reader.get());
        else if (
            archive_filter_count(m_reader.get()) > MAXIMUM_LAYERS + 1) // the bytes themselves count as one
            m_fault = QStringLiteral("compressed too many times");
    }

    /** Empty at the end and after a fault. Valid until the next call. */
    [[nodiscard]] QByteArrayView next()
    {
        if (!m_fault.isEmpty() || m_isAtEnd)
            return {};
        const void *bytes = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        const int result = archive_read_data_block(m_reader.get(), &bytes, &size, &offset);
        m_isAtEnd = result == ARCHIVE_EOF;
        if (result != ARCHIVE_OK && !m_isAtEnd)
            m_fault = errorOf(m_reader.get());
        return result == ARCHIVE_OK ? QByteArrayView(static_cast<const char *>(bytes), qsizetype(size))
                                    : QByteArrayView();
    }

    [[nodiscard]] QString fault() const { return m_fault; }

private:
    MemorySource m_source;
    const Reader m_reader;
    bool m_isAtEnd = false;
    QString m_fault;
};

/** A decompressed stream as libarchive asks for it. Remembers what it handed out last. */
class StreamSource final
{
public:
    explicit StreamSource(const QByteArray &bytes, const std::stop_token &stop)
        : m_decompressor(bytes, stop)
        , m_stop(stop)
        , m_piece(m_decompressor.next())
    {
    }
    Q_DISABLE_COPY_MOVE(StreamSource)

    void attachTo(archive *reader)
    {
        archive_read_set_callback_data(reader, this);
        archive_read_set_read_callback(reader, &StreamSource::read);
    }

    void allow(qint64 size) { m_allowance = size; }

    /** The beginning of the stream, before anything was handed out. */
    [[nodiscard]] QByteArrayView beginning() const { return m_piece; }
    [[nodiscard]] QString fault() const { return m_decompressor.fault(); }
    [[nodiscard]] qint64 handedOut() const { return m_handedOut; }

    /** The next piece; empty at the end. */
    [[nodiscard]] QByteArrayView take()
    {
        if (std::exchange(m_isFirstTaken, true)) {
            m_history.append(m_piece.last(std::min(m_piece.size(), HISTORY_SIZE)));
            m_history = m_history.last(std::min(m_history.size(), HISTORY_SIZE));
            m_piece = m_decompressor.next();
        }
        m_handedOut += m_piece.size();
        return m_piece;
    }

    /** What was handed out last from @p begin on, a position in the stream. */
    [[nodiscard]] QByteArrayView from(qint64 begin) const
    {
        return m_piece.last(std::clamp<qsizetype>(m_handedOut - begin, 0, m_piece.size()));
    }

    /**
     * Bytes that were handed out shortly before @p end, a position in the stream; fewer where not so many
     * were.
     */
    [[nodiscard]] QByteArray before(qint64 end, qsizetype size) const
    {
        const QByteArray recent = m_history + m_piece;
        const qsizetype last = recent.size() - qsizetype(m_handedOut - end);
        return last < 0 ? QByteArray() : recent.first(last).last(std::min(size, last));
    }

private:
    static la_ssize_t read(archive *reader, void *source, const void **piece)
    {
        auto self = static_cast<StreamSource *>(source);
        if (self->m_stop.stop_requested())
            return fail(reader, "stopped");
        const QByteArrayView next = self->take();
        if (!self->fault().isEmpty())
            return fail(reader, qPrintable(self->fault()));
        self->m_allowance -= next.size();
        if (self->m_allowance < 0)
            return fail(reader, "header too large");
        *piece = next.data();
        return next.size();
    }

    Decompressor m_decompressor;
    const std::stop_token m_stop;
    QByteArrayView m_piece;
    QByteArray m_history; // the end of what came before the piece
    qint64 m_handedOut = 0;
    qint64 m_allowance = std::numeric_limits<qint64>::max();
    bool m_isFirstTaken = false;
};

// A zip is read by its directory only, from its end: read as a stream it is another archive, in which a
// truncated one looks whole and a link like a file.
bool looksLikeZip(QByteArrayView bytes)
{
    return bytes.startsWith("PK\x03\x04") || bytes.startsWith("PK\x05\x06");
}

// Other methods come with dictionaries of any size.
bool isZipMethodAllowed(archive *reader)
{
    const QByteArrayView name = archive_format_name(reader);
    return name.endsWith("(uncompressed)") || name.endsWith("(deflation)");
}

bool isZero(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

// The library returns null for a form that it cannot convert the target to, but never for all forms.
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

} // namespace

class ArchiveReader::Private
{
public:
    Private(const QByteArray &archive, const std::stop_token &stop)
        : m_stop(stop)
    {
        m_stream = std::make_unique<StreamSource>(archive, stop);
        const StreamSource &stream = *m_stream;
        if (!stream.fault().isEmpty())
            m_fault = stream.fault();
        else if (looksLikeZip(archive))
            openZip(archive);
        else if (looksLikeZip(stream.beginning()))
            openSpooledZip();
        else
            openTar();
    }

    std::optional<ArchiveEntry> nextEntry()
    {
        if (!m_fault.isEmpty() || m_isAtEnd)
            return {};
        allowHeader();
        m_position = archive_filter_bytes(m_reader.get(), 0);
        archive_entry *entry = nullptr;
        const int result = archive_read_next_header(m_reader.get(), &entry);
        // A warning comes with records that the library passes over.
        if (result == ARCHIVE_OK || result == ARCHIVE_WARN)
            return read(entry);
        if (result == ARCHIVE_EOF)
            checkEnd();
        else
            setFault(errorOf(m_reader.get()));
        return {};
    }

    std::optional<ContentPiece> nextPiece()
    {
        if (!m_fault.isEmpty())
            return {};
        if (m_stop.stop_requested()) {
            setFault(QStringLiteral("stopped"));
            return {};
        }
        allow(std::numeric_limits<qint64>::max());
        const void *bytes = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        const int result = archive_read_data_block(m_reader.get(), &bytes, &size, &offset);
        if (result == ARCHIVE_OK) {
            m_contentsSize += qint64(size);
            return ContentPiece{offset, {static_cast<const char *>(bytes), qsizetype(size)}};
        }
        if (result != ARCHIVE_EOF)
            setFault(errorOf(m_reader.get()));
        return {};
    }

    [[nodiscard]] QString fault() const { return m_fault; }

private:
    void openZip(const QByteArray &bytes)
    {
        m_stream.reset();
        m_memory = std::make_unique<MemorySource>(bytes, m_stop);
        m_memory->allow(MAXIMUM_ZIP_DIRECTORY_SIZE);
        m_reader.reset(archive_read_new());
        archive_read_support_format_zip_seekable(m_reader.get());
        m_memory->attachTo(m_reader.get());
        open();
    }

    // The file is this reader's alone, and mapped, so that it takes no memory from others.
    void openSpooledZip()
    {
        const qint64 room = freeBytes(QDir::tempPath());
        qint64 size = 0;
        if (!m_spool.open()) {
            setFault(QStringLiteral("no temporary file"));
            return;
        }
        for (QByteArrayView piece = m_stream->take(); !piece.isEmpty(); piece = m_stream->take()) {
            size += piece.size();
            if (size > MAXIMUM_SPOOLED_SIZE || (room >= 0 && size > room)
                || m_spool.write(piece.data(), piece.size()) != piece.size()) {
                setFault(QStringLiteral("too large"));
                return;
            }
        }
        const uchar *bytes = m_spool.flush() ? m_spool.map(0, size) : nullptr;
        if (!m_stream->fault().isEmpty() || !bytes)
            setFault(bytes ? m_stream->fault() : QStringLiteral("temporary file cannot be read"));
        else
            openZip(QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), qsizetype(size)));
    }

    void openTar()
    {
        m_reader.reset(archive_read_new());
        archive_read_support_format_tar(m_reader.get());
        m_stream->attachTo(m_reader.get());
        m_stream->allow(MAXIMUM_HEADER_SIZE);
        open();
    }

    void open()
    {
        // Names as they are: they need not be in the encoding of the locale, nor in any.
        archive_read_set_options(m_reader.get(), "hdrcharset=BINARY");
        if (archive_read_open1(m_reader.get()) != ARCHIVE_OK)
            setFault(errorOf(m_reader.get()));
    }

    void allow(qint64 size)
    {
        if (m_stream)
            m_stream->allow(size);
        else
            m_memory->allow(size);
    }

    void allowHeader() { allow(m_stream ? MAXIMUM_HEADER_SIZE : MAXIMUM_ZIP_DIRECTORY_SIZE); }

    std::optional<ArchiveEntry> read(archive_entry *entry)
    {
        const ArchiveEntry::Kind kind = kindOf(entry);
        const char *path = archive_entry_pathname(entry);
        const char *target = targetOf(entry, kind);
        if (!path || !*path || !target)
            return setFault(QStringLiteral("entry without a name"));
        if (m_stream && m_stream->handedOut() - m_contentsSize > MAXIMUM_OVERHEAD)
            return setFault(QStringLiteral("too many headers"));
        if (m_memory && !isZipMethodAllowed(m_reader.get()))
            return setFault(QStringLiteral("unknown compression"));
        m_hasEntry = true;
        return ArchiveEntry{
            .path = path,
            .kind = kind,
            .target = target,
            .permissions = int(archive_entry_perm(entry) & 0777),
            .time = archive_entry_mtime(entry),
            .size = archive_entry_size_is_set(entry) ? archive_entry_size(entry) : 0,
        };
    }

    // The library stops at a tar's end marker. A tar that ends between two entries without a marker passes
    // for a whole one, but that is what a server sends whose packing broke off. A zip has been read from its
    // end.
    void checkEnd()
    {
        m_isAtEnd = true;
        if (!m_stream)
            return;
        const qint64 end = archive_filter_bytes(m_reader.get(), 0);
        const QByteArray marker = m_stream->before(end, TAR_BLOCK_SIZE);
        if (end - m_position < TAR_BLOCK_SIZE || marker.size() < TAR_BLOCK_SIZE || !isZero(marker)) {
            setFault(QStringLiteral("no end marker"));
            return;
        }
        readPadding(end);
    }

    void readPadding(qint64 begin)
    {
        QByteArrayView padding = m_stream->from(begin);
        do {
            if (m_stop.stop_requested())
                setFault(QStringLiteral("stopped"));
            else if (!m_hasEntry && !isZero(padding)) // the first block of other formats, too, may be zeros
                setFault(QStringLiteral("no tar"));
            else if (m_stream->handedOut() - begin > MAXIMUM_PADDING)
                setFault(QStringLiteral("endless"));
            if (!m_fault.isEmpty())
                return;
            padding = m_stream->take();
        } while (!padding.isEmpty());
        m_fault = m_stream->fault();
    }

    std::nullopt_t setFault(const QString &fault)
    {
        m_fault = fault;
        return std::nullopt;
    }

    const std::stop_token m_stop;
    QTemporaryFile m_spool;
    std::unique_ptr<StreamSource> m_stream; // of a tar
    std::unique_ptr<MemorySource> m_memory; // of a zip
    Reader m_reader;
    QString m_fault;
    bool m_hasEntry = false;
    bool m_isAtEnd = false;
    qint64 m_position = 0;     // in the stream, behind the content read last
    qint64 m_contentsSize = 0; // read so far
};

ArchiveReader::ArchiveReader(const QByteArray &archive, const std::stop_token &stop)
    : d(std::make_unique<Private>(archive, stop))
{
}

ArchiveReader::~ArchiveReader() = default;

std::optional<ArchiveEntry> ArchiveReader::nextEntry()
{
    return d->nextEntry();
}

std::optional<ContentPiece> ArchiveReader::nextPiece()
{
    return d->nextPiece();
}

QString ArchiveReader::fault() const
{
    return d->fault();
}

} // namespace Varnel::Internal
