// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/hostilepictures.h"

#include <QtEndian>

namespace Varnel::Test {

namespace {

template<typename Number>
QByteArray littleEndian(Number number)
{
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(sizeof number, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

// CRC-32 as PNG has it.
quint32 checksum(const QByteArray &bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320 : 0);
    }
    return ~crc;
}

QByteArray chunk(const QByteArray &type, const QByteArray &content)
{
    return bigEndian(quint32(content.size())) + type + content + bigEndian(checksum(type + content));
}

/** Codes of three bits. The table is cleared before it would need wider ones. */
QByteArray gifPixels(qint64 count, int pixel)
{
    constexpr int CLEAR = 4;
    constexpr int END = 5;
    QList<int> codes;
    for (qint64 i = 0; i < count; ++i) {
        if (i % 2 == 0)
            codes.append(CLEAR);
        codes.append(pixel);
    }
    codes.append(CLEAR);
    codes.append(END);

    QByteArray packed((codes.size() * 3 + 7) / 8, '\0');
    for (qsizetype bit = 0; bit < codes.size() * 3; ++bit)
        packed[bit / 8] = char(packed[bit / 8] | ((codes.at(bit / 3) >> (bit % 3) & 1) << (bit % 8)));
    QByteArray blocks;
    for (qsizetype start = 0; start < packed.size(); start += 255) {
        const QByteArray block = packed.mid(start, 255);
        blocks += char(block.size()) + block;
    }
    return blocks + '\0';
}

} // namespace

QByteArray png(quint32 width, quint32 height, qint64 rows)
{
    const QByteArray head = bigEndian(width) + bigEndian(height) + QByteArray("\x01\x00\x00\x00\x00", 5);
    const QByteArray pixels(
        (rows < 0 ? qsizetype(height) : qsizetype(rows)) * (1 + (qsizetype(width) + 7) / 8), '\0');
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", head) + chunk("IDAT", qCompress(pixels).sliced(4))
           + chunk("IEND", {});
}

QByteArray withTexts(const QByteArray &png, int count)
{
    constexpr qsizetype BEHIND_HEAD = 8 + 25;
    const QByteArray text
        = chunk("zTXt", QByteArray("key\0\0", 5) + qCompress(QByteArray(7'900'000, 'x')).sliced(4));
    return png.first(BEHIND_HEAD) + text.repeated(count) + png.sliced(BEHIND_HEAD);
}

QByteArray gif(quint16 width, quint16 height, const QList<quint32> &colours)
{
    const QByteArray size = littleEndian(width) + littleEndian(height);
    QByteArray table;
    for (int i = 0; i < 4; ++i)
        table += bigEndian(colours.value(i)).sliced(1);
    QByteArray frames;
    for (int i = 0; i < colours.size(); ++i)
        frames += QByteArray(",\0\0\0\0", 5) + size + '\0' + '\2' + gifPixels(qint64(width) * height, i);
    return "GIF89a" + size + QByteArray("\x91\0\0", 3) + table + frames + ';';
}

QByteArray icon(const QByteArray &content)
{
    const QByteArray entry = QByteArray("\x10\x10\0\0\1\0\1\0", 8) + littleEndian(quint32(content.size()));
    return QByteArray("\0\0\1\0\1\0", 6) + entry + littleEndian<quint32>(content.isEmpty() ? 1'000 : 22)
           + content;
}

QByteArray bitmapOfIcon(qint32 width, qint32 height)
{
    const qsizetype bytesPerRow = (width + 31) / 32 * 4;
    return littleEndian<quint32>(40) + littleEndian(width) + littleEndian(2 * height)
           + QByteArray("\1\0\1\0", 4) + QByteArray(24, '\0')     // planes and bits, the rest
           + QByteArray(8, '\0')                                  // colours
           + QByteArray(2 * bytesPerRow * qMax(0, height), '\0'); // pixels and mask
}

QByteArray mngWithLoops(int depth)
{
    const QByteArray size = bigEndian(16) + bigEndian(16);
    QByteArray bytes = "\x8aMNG\r\n\x1a\n" + chunk("MHDR", size + QByteArray(20, '\0'));
    for (int level = 0; level < depth; ++level)
        bytes += chunk("LOOP", QByteArray(1, char(level)) + bigEndian(0x7fffffff));
    for (int level = depth - 1; level >= 0; --level)
        bytes += chunk("ENDL", QByteArray(1, char(level)));
    return bytes + chunk("MEND", {});
}

} // namespace Varnel::Test
