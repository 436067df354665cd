// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/picture.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

namespace Varnel::Internal {

namespace {

constexpr int LARGEST_SIDE = 4096; // pixels: decoding happens on the main thread

const QByteArray PNG_SIGNATURE = QByteArrayLiteral("\x89PNG\r\n\x1a\n");

// Empty if no decoder may see the picture: some installed ones loop for as long as a picture tells them to.
QByteArray formatOf(const QByteArray &bytes)
{
    struct Signature
    {
        QByteArray format;
        QByteArray start;
    };
    static const Signature SIGNATURES[]{
        {"png", PNG_SIGNATURE},
        {"jpeg", QByteArrayLiteral("\xff\xd8\xff")},
        {"gif", QByteArrayLiteral("GIF87a")},
        {"gif", QByteArrayLiteral("GIF89a")},
        {"bmp", QByteArrayLiteral("BM")},
        {"ico", QByteArrayLiteral("\0\0\1\0")},
        {"tiff", QByteArrayLiteral("II*\0")},
        {"tiff", QByteArrayLiteral("MM\0*")}};
    for (const Signature &signature : SIGNATURES) {
        if (bytes.startsWith(signature.start))
            return signature.format;
    }
    const bool isWebp = bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP"; // between them is a length
    return isWebp ? QByteArray("webp") : QByteArray();
}

// BMP counts its rows from the top if the height is negative.
bool isWithinBounds(qint64 width, qint64 height)
{
    return width >= 1 && width <= LARGEST_SIDE && qAbs(height) >= 1 && qAbs(height) <= LARGEST_SIDE;
}

// An icon's directory knows sizes up to 256 only. Its decoder believes the picture that the directory refers
// to, so the size is read there.
bool isIconWithinBounds(QByteArrayView bytes)
{
    constexpr qsizetype OFFSET_FIELD = 18; // of the first entry, which is the one that is decoded
    constexpr qsizetype HEAD = 24;         // enough of either kind of picture
    if (bytes.size() < OFFSET_FIELD + 4)
        return false;
    const qsizetype start = qFromLittleEndian<quint32>(bytes.data() + OFFSET_FIELD);
    if (start > bytes.size() - HEAD)
        return false;
    const char *head = bytes.data() + start;
    if (bytes.sliced(start).startsWith(PNG_SIGNATURE))
        return isWithinBounds(qFromBigEndian<quint32>(head + 16), qFromBigEndian<quint32>(head + 20));
    // The second half of the rows is the mask.
    return isWithinBounds(qFromLittleEndian<qint32>(head + 4), qFromLittleEndian<qint32>(head + 8) / 2);
}

// Compressed texts become some thousand times as large, and the decoder keeps all of them: a picture of two
// megabytes would take twelve gigabytes. No pixel depends on them.
QByteArray withoutCompressedTexts(const QByteArray &png)
{
    constexpr qsizetype FRAME = 12; // length, type and checksum of a chunk
    QByteArray result = PNG_SIGNATURE;
    qsizetype start = result.size();
    while (png.size() - start >= FRAME) {
        const qsizetype length = qFromBigEndian<quint32>(png.constData() + start);
        if (length > png.size() - start - FRAME)
            break;
        const QByteArrayView chunk = QByteArrayView(png).sliced(start, length + FRAME);
        const QByteArrayView type = chunk.sliced(4, 4);
        if (type != "zTXt" && type != "iTXt")
            result += chunk;
        start += chunk.size();
    }
    return result + png.sliced(start); // a last chunk that was cut short
}

} // namespace

QImage decodePicture(const QByteArray &bytes)
{
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty() || (format == "ico" && !isIconWithinBounds(bytes)))
        return {};
    QBuffer buffer;
    buffer.setData(format == "png" ? withoutCompressedTexts(bytes) : bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    return isWithinBounds(size.width(), size.height()) ? reader.read() : QImage();
}

} // namespace Varnel::Internal
