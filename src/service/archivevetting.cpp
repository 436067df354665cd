// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/archivevetting.h"

#include "service/archivereader.h"
#include "service/archivewriter.h"
#include "service/filesystem.h"
#include "service/nativefiles.h"

#include <zlib.h>

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <optional>

namespace Varnel::Internal {

namespace {

using Kind = ArchiveEntry::Kind;

constexpr quint64 MAXIMUM_SIZE = Q_UINT64_C(4) * 1024 * 1024 * 1024;
constexpr qsizetype ZEROS_SIZE = 64LL * 1024;

quint64 maximumSize(qint64 freeBytes)
{
    return freeBytes < 0 ? MAXIMUM_SIZE : std::min(MAXIMUM_SIZE, quint64(freeBytes));
}

/**
 * Tells whether two archives have the same entries with the same contents. An attacker might craft headers,
 * but only chance the contents: they went through no reader.
 */
class Digest final
{
public:
    void add(const ArchiveEntry &entry)
    {
        for (const qint64 number : {qint64(entry.kind), qint64(entry.permissions), entry.time, entry.size})
            m_headers.addData(QByteArray::number(number).append('\0'));
        // Each with its NUL, which no name holds.
        m_headers.addData({entry.path.constData(), entry.path.size() + 1});
        m_headers.addData({entry.target.constData(), entry.target.size() + 1});
    }

    // Without bytes there may be no address either, and that would start the checksum anew.
    void add(QByteArrayView content)
    {
        if (content.isEmpty())
            return;
        m_contents
            = crc32_z(m_contents, reinterpret_cast<const Bytef *>(content.data()), z_size_t(content.size()));
    }

    [[nodiscard]] QByteArray result() const
    {
        return m_headers.result() + QByteArray::number(qulonglong(m_contents));
    }

private:
    QCryptographicHash m_headers{QCryptographicHash::Sha256};
    uLong m_contents = 0;
};

/** Moves one archive's entries past the judge into a fresh archive. */
class Remaking final
{
public:
    Remaking(
        const QByteArray &archive, const QString &freshFile, qint64 freeSize, const std::stop_token &stop)
        : m_stop(stop)
        , m_reader(archive, stop)
        , m_judge(maximumSize(freeSize))
        , m_writer(freshFile, freeBytes(freshFile))
    {
    }

    ArchiveVerdict run()
    {
        while (std::optional<ArchiveEntry> entry = m_reader.nextEntry()) {
            const ArchiveJudge::Ruling ruling = m_judge.judge(*entry);
            if (ruling == ArchiveJudge::Ruling::Refuse)
                return m_judge.verdict();
            if (ruling == ArchiveJudge::Ruling::Accept && !add(*entry))
                return {.reason = QStringLiteral("fresh archive cannot be written")};
            if (!copyContent(*entry, ruling == ArchiveJudge::Ruling::Accept && entry->kind == Kind::File))
                return {.reason = m_fault};
        }
        if (!m_reader.fault().isEmpty())
            return {.reason = m_reader.fault()};
        ArchiveVerdict verdict = m_judge.verdict();
        if (verdict.isAccepted && !m_writer.finish())
            return {.reason = QStringLiteral("fresh archive cannot be written")};
        return verdict;
    }

    [[nodiscard]] QByteArray digest() const { return m_digest.result(); }

private:
    bool add(const ArchiveEntry &entry)
    {
        m_digest.add(ArchiveWriter::written(entry));
        return m_writer.addEntry(entry);
    }

    // What an entry declares and what it brings may differ, in a dishonest archive.
    bool copyContent(const ArchiveEntry &entry, bool isKept)
    {
        qint64 position = 0;
        while (const std::optional<ContentPiece> piece = m_reader.nextPiece()) {
            const qint64 size = piece->bytes.size();
            if (piece->offset < position || piece->offset > entry.size || size > entry.size - piece->offset)
                return fail(QStringLiteral("content beyond its size"));
            if (isKept && (!addZeros(piece->offset - position) || !addContent(piece->bytes)))
                return false;
            position = piece->offset + size;
        }
        if (!m_reader.fault().isEmpty())
            return fail(m_reader.fault());
        return !isKept || addZeros(entry.size - position);
    }

    bool addZeros(qint64 size)
    {
        static const QByteArray ZEROS(ZEROS_SIZE, '\0');
        for (; size > 0; size -= ZEROS_SIZE) {
            if (m_stop.stop_requested())
                return fail(QStringLiteral("stopped"));
            if (!addContent(QByteArrayView(ZEROS).first(std::min<qint64>(size, ZEROS_SIZE))))
                return false;
        }
        return true;
    }

    bool addContent(QByteArrayView bytes)
    {
        m_digest.add(bytes);
        return m_writer.addContent(bytes) || fail(QStringLiteral("fresh archive cannot be written"));
    }

    bool fail(const QString &fault)
    {
        m_fault = fault;
        return false;
    }

    const std::stop_token m_stop;
    ArchiveReader m_reader;
    ArchiveJudge m_judge;
    ArchiveWriter m_writer;
    Digest m_digest;
    QString m_fault;
};

// Empty if the file cannot be read.
QByteArray digestOf(const QString &path, const std::stop_token &stop)
{
    QFile file(path);
    const uchar *bytes = file.open(QIODevice::ReadOnly) ? file.map(0, file.size()) : nullptr;
    if (!bytes)
        return {};
    ArchiveReader reader(
        QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), qsizetype(file.size())), stop);
    Digest digest;
    while (std::optional<ArchiveEntry> entry = reader.nextEntry()) {
        if (entry->kind == Kind::Directory && entry->path.endsWith('/'))
            entry->path.chop(1);
        digest.add(*entry);
        while (const std::optional<ContentPiece> piece = reader.nextPiece())
            digest.add(piece->bytes);
    }
    return reader.fault().isEmpty() ? digest.result() : QByteArray();
}

} // namespace

ArchiveVerdict
vetArchive(const QByteArray &archive, const QString &file, qint64 freeBytes, const std::stop_token &stop)
{
    const QString freshFile = file + QStringLiteral(".fresh");
    Remaking remaking(archive, freshFile, freeBytes, stop);
    ArchiveVerdict verdict = remaking.run();
    if (!verdict.isAccepted)
        return verdict;
    if (digestOf(freshFile, stop) != remaking.digest())
        verdict = {.reason = QStringLiteral("fresh archive cannot be read back")};
    else if (!move(freshFile, file))
        verdict = {.reason = QStringLiteral("fresh archive cannot be put in place")};
    if (!verdict.isAccepted)
        QFile::remove(freshFile);
    return verdict;
}

} // namespace Varnel::Internal
