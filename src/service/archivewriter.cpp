// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// libarchive packs, zlib compresses: the one cannot change the level on the way, and how large the contents
// will be is not known at the start.

#include "service/archivewriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <zlib.h>

#include <QFile>

#include <algorithm>

namespace Varnel::Internal {

namespace {

using Kind = ArchiveEntry::Kind;

constexpr qint64 STORED_SIZE = 32LL * 1024 * 1024; // bytes of a tar; what comes behind them is compressed
constexpr int FAST_COMPRESSION = 1;
constexpr int GZIP_WINDOW_BITS = 15 + 16; // 16: with gzip's header and checksum
constexpr int MEMORY_LEVEL = 8;           // zlib's default
constexpr qsizetype BUFFER_SIZE = 256LL * 1024;
// The largest time in a tar's eleven octal digits, in 2242: within what today's file systems hold, too.
constexpr qint64 MAXIMUM_TIME = (Q_INT64_C(1) << 33) - 1;

/** A new file that is compressed while it is written. */
class GzipFile final
{
public:
    GzipFile(const QString &path, qint64 maximumSize)
        : m_file(path)
        , m_maximumSize(maximumSize)
        , m_buffer(BUFFER_SIZE, Qt::Uninitialized)
    {
        m_isGood = m_file.open(
            QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered,
            QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        begin(Z_NO_COMPRESSION);
    }
    ~GzipFile()
    {
        deflateEnd(&m_stream);
        if (m_file.isOpen())
            m_file.remove();
    }
    Q_DISABLE_COPY_MOVE(GzipFile)

    void write(QByteArrayView bytes)
    {
        if (!m_isGood)
            return;
        m_size += bytes.size();
        if (!m_isCompressing && m_size > STORED_SIZE) { // in a gzip member of its own
            m_isCompressing = true;
            deflateAll(Z_FINISH);
            deflateEnd(&m_stream);
            begin(FAST_COMPRESSION);
        }
        m_stream.next_in = reinterpret_cast<z_const Bytef *>(const_cast<char *>(bytes.data())); // only read
        m_stream.avail_in = uInt(bytes.size());
        deflateAll(Z_NO_FLUSH);
    }

    /** False once something could not be written; then nothing more is. */
    [[nodiscard]] bool isGood() const { return m_isGood; }
    void giveUp() { m_isGood = false; }

    bool finish()
    {
        deflateAll(Z_FINISH);
        flush();
        // Some file systems tell only on closing that a write has failed.
        m_isGood = m_isGood && m_file.flush();
        if (!m_isGood)
            return false;
        m_file.close();
        m_isGood = m_file.error() == QFileDevice::NoError;
        if (!m_isGood)
            m_file.remove();
        return m_isGood;
    }

private:
    void begin(int level)
    {
        m_stream = {};
        const int result
            = deflateInit2(&m_stream, level, Z_DEFLATED, GZIP_WINDOW_BITS, MEMORY_LEVEL, Z_DEFAULT_STRATEGY);
        m_isGood = m_isGood && result == Z_OK;
    }

    void deflateAll(int mode)
    {
        int result = Z_OK;
        do {
            if (m_used == m_buffer.size())
                flush();
            if (!m_isGood)
                return;
            m_stream.next_out = reinterpret_cast<Bytef *>(m_buffer.data() + m_used);
            m_stream.avail_out = uInt(m_buffer.size() - m_used);
            result = deflate(&m_stream, mode);
            m_used = m_buffer.size() - qsizetype(m_stream.avail_out);
        } while (mode == Z_FINISH ? result != Z_STREAM_END : m_stream.avail_in > 0);
    }

    void flush()
    {
        m_written += m_used;
        m_isGood = m_isGood && (m_maximumSize < 0 || m_written <= m_maximumSize)
                   && m_file.write(m_buffer.constData(), m_used) == m_used;
        m_used = 0;
    }

    QFile m_file;
    const qint64 m_maximumSize;
    bool m_isGood = false;
    z_stream m_stream = {};
    QByteArray m_buffer;
    qsizetype m_used = 0; // of the buffer
    qint64 m_written = 0; // to the file
    qint64 m_size = 0;    // before compression
    bool m_isCompressing = false;
};

struct WriterDeleter
{
    void operator()(archive *writer) const { archive_write_free(writer); }
};

struct EntryDeleter
{
    void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};

unsigned fileType(Kind kind)
{
    switch (kind) {
    case Kind::Directory:
        return AE_IFDIR;
    case Kind::SymbolicLink:
        return AE_IFLNK;
    default:
        return AE_IFREG;
    }
}

// Fails for the caller only, by isGood(): the library would not free all of a writer that failed.
la_ssize_t writeTo(archive *, void *file, const void *bytes, size_t size)
{
    static_cast<GzipFile *>(file)->write({static_cast<const char *>(bytes), qsizetype(size)});
    return la_ssize_t(size);
}

} // namespace

class ArchiveWriter::Private
{
public:
    Private(const QString &path, qint64 maximumSize)
        : m_file(path, maximumSize)
        , m_writer(archive_write_new())
        , m_entry(archive_entry_new())
    {
        archive_write_set_format_gnutar(m_writer.get());
        archive_write_set_bytes_per_block(m_writer.get(), 0); // the file has a buffer
        archive_write_open(m_writer.get(), &m_file, nullptr, &writeTo, nullptr);
    }

    // The library completes what it has begun: the content of an archive that is given up could be padded
    // with gigabytes.
    ~Private()
    {
        if (!m_isFinished)
            m_file.giveUp();
    }
    Q_DISABLE_COPY_MOVE(Private)

    bool addEntry(const ArchiveEntry &entry)
    {
        const ArchiveEntry what = written(entry);
        archive_entry_clear(m_entry.get());
        archive_entry_copy_pathname(m_entry.get(), what.path);
        archive_entry_set_filetype(m_entry.get(), fileType(what.kind));
        archive_entry_set_perm(m_entry.get(), mode_t(what.permissions));
        archive_entry_set_mtime(m_entry.get(), what.time, 0);
        archive_entry_set_size(m_entry.get(), what.size);
        if (what.kind == Kind::HardLink)
            archive_entry_copy_hardlink(m_entry.get(), what.target);
        else if (what.kind == Kind::SymbolicLink)
            archive_entry_copy_symlink(m_entry.get(), what.target);
        return archive_write_header(m_writer.get(), m_entry.get()) == ARCHIVE_OK && m_file.isGood();
    }

    bool addContent(QByteArrayView bytes)
    {
        return archive_write_data(m_writer.get(), bytes.data(), size_t(bytes.size())) == bytes.size()
               && m_file.isGood();
    }

    bool finish()
    {
        m_isFinished = archive_write_close(m_writer.get()) == ARCHIVE_OK;
        return m_isFinished && m_file.finish();
    }

private:
    GzipFile m_file;
    bool m_isFinished = false;
    const std::unique_ptr<archive, WriterDeleter> m_writer;
    const std::unique_ptr<archive_entry, EntryDeleter> m_entry;
};

ArchiveWriter::ArchiveWriter(const QString &path, qint64 maximumSize)
    : d(std::make_unique<Private>(path, maximumSize))
{
}

ArchiveWriter::~ArchiveWriter() = default;

bool ArchiveWriter::addEntry(const ArchiveEntry &entry)
{
    return d->addEntry(entry);
}

bool ArchiveWriter::addContent(QByteArrayView bytes)
{
    return d->addContent(bytes);
}

bool ArchiveWriter::finish()
{
    return d->finish();
}

ArchiveEntry ArchiveWriter::written(const ArchiveEntry &entry)
{
    ArchiveEntry result = entry;
    result.time = std::clamp<qint64>(entry.time, 0, MAXIMUM_TIME);
    switch (entry.kind) {
    case Kind::Directory:
        result.permissions = (entry.permissions & 0777) | 0700;
        break;
    case Kind::SymbolicLink:
        result.permissions = 0777;
        break;
    default:
        result.permissions = (entry.permissions & 0777) | 0600;
    }
    if (entry.kind != Kind::File)
        result.size = 0;
    return result;
}

} // namespace Varnel::Internal
