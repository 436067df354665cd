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

// What an icon's first entry refers to, which is the one that is decoded.
QByteArrayView pictureInIcon(QByteArrayView icon)
{
    constexpr qsizetype OFFSET_FIELD = 18;
    if (icon.size() < OFFSET_FIELD + 4)
        return {};
    const qsizetype offset = qFromLittleEndian<quint32>(icon.data() + OFFSET_FIELD);
    return offset < icon.size() ? icon.sliced(offset) : QByteArrayView();
}

// An icon's directory knows sizes up to 256 only. Its decoder believes the bitmap that the directory refers
// to, so the size is read there. The second half of the rows is the mask.
bool isIconWithinBounds(QByteArrayView icon)
{
    const QByteArrayView bitmap = pictureInIcon(icon);
    constexpr qsizetype HEAD = 24; // enough to know the size
    return bitmap.size() >= HEAD
           && isWithinBounds(
               qFromLittleEndian<qint32>(bitmap.data() + 4),
               qFromLittleEndian<qint32>(bitmap.data() + 8) / 2);
}

// Each scan of a progressive picture goes over all of it again: a megabyte of them would take the better part
// of a minute. Those that honest programs write have about ten.
bool hasTooManyScans(const QByteArray &jpeg)
{
    constexpr qsizetype LARGEST_COUNT = 100;
    return jpeg.count("\xff\xda") > LARGEST_COUNT;
}

// The decoder keeps all texts, and compressed ones become some thousand times as large: a picture of two
// megabytes would take twelve gigabytes. No pixel depends on them.
QByteArray withoutTexts(const QByteArray &png)
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
        if (type != "tEXt" && type != "zTXt" && type != "iTXt")
            result += chunk;
        start += chunk.size();
    }
    return result + png.sliced(start); // a last chunk that was cut short
}

/** Decodes what is known to be of a format, once it has been looked at. */
class Decoder final
{
public:
    Decoder(const QByteArray &bytes, const QByteArray &format)
    {
        m_buffer.setData(bytes);
        m_buffer.open(QIODevice::ReadOnly);
        m_reader.setDevice(&m_buffer);
        m_reader.setFormat(format);
        m_reader.setAutoDetectImageFormat(false);
    }

    [[nodiscard]] bool isWithinBounds() const
    {
        if (m_reader.format() == "ico" && !isIconWithinBounds(m_buffer.data()))
            return false;
        if (m_reader.format() == "jpeg" && hasTooManyScans(m_buffer.data()))
            return false;
        const QSize size = m_reader.size();
        return Internal::isWithinBounds(size.width(), size.height());
    }

    [[nodiscard]] QImage read() { return m_reader.read(); }

private:
    QBuffer m_buffer;
    QImageReader m_reader;
};

bool isAnyPicture(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return !QImageReader::imageFormat(&buffer).isEmpty();
}

// Empty if that is no icon, or holds another kind of picture.
QByteArray pngInIcon(const QByteArray &bytes, const QByteArray &format)
{
    const QByteArray inside = format == "ico" ? pictureInIcon(bytes).toByteArray() : QByteArray();
    return formatOf(inside) == "png" ? inside : QByteArray();
}

} // namespace

QImage decodePicture(const QByteArray &bytes)
{
    const QByteArray format = formatOf(bytes);
    if (const QByteArray png = pngInIcon(bytes, format); !png.isEmpty())
        return decodePicture(png); // with all that is looked at in a PNG
    if (format.isEmpty())
        return {};
    Decoder decoder(format == "png" ? withoutTexts(bytes) : bytes, format);
    return decoder.isWithinBounds() ? decoder.read() : QImage();
}

bool isHarmlessPicture(const QByteArray &bytes)
{
    constexpr qsizetype LARGEST_TEXTS = 64LL * 1024;
    const QByteArray format = formatOf(bytes);
    if (const QByteArray png = pngInIcon(bytes, format); !png.isEmpty())
        return isHarmlessPicture(png);
    if (format.isEmpty())
        return !isAnyPicture(bytes);
    if (format == "png" && bytes.size() - withoutTexts(bytes).size() > LARGEST_TEXTS)
        return false;
    return Decoder(bytes, format).isWithinBounds();
}

} // namespace Varnel::Internal
