// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pictureprobe.h"

#include "client/picture.h"
#include "service/nativefiles.h"

#include <QBuffer>
#include <QImage>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr int TILE_SIZE = 128;                      // pixels
constexpr qint64 LARGEST_ICON = 64LL * 1024 * 1024; // bytes
constexpr double OBLONG = 1.5;                      // of the longer side to the shorter

QString describe(const QSize &size)
{
    return u"it has %1 x %2 pixels"_s.arg(size.width()).arg(size.height());
}

bool isOblong(const QSize &size)
{
    const QSize lying = size.width() < size.height() ? size.transposed() : size;
    return lying.width() > lying.height() * OBLONG;
}

} // namespace

QImage readIcon(const QString &file)
{
    Internal::RegularFile icon(file);
    QByteArray bytes;
    QByteArray block(1024LL * 1024, Qt::Uninitialized);
    while (icon.isOpen() && bytes.size() < LARGEST_ICON) {
        const qint64 size = icon.read(block.data(), block.size());
        if (size <= 0)
            break;
        bytes.append(block.constData(), size);
    }
    return Internal::decodePicture(bytes);
}

QByteArray tilePicture(const QImage &image)
{
    if (image.isNull())
        return {};
    const QImage tile
        = image.width() <= TILE_SIZE && image.height() <= TILE_SIZE
              ? image
              : image.scaled(TILE_SIZE, TILE_SIZE, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    tile.convertToFormat(QImage::Format_ARGB32).save(&buffer, "png");
    return bytes;
}

Findings
judgePicture(const QString &path, const PictureReport &picture, const std::optional<AvatarAnswer> &avatar)
{
    Findings findings;
    if (avatar && avatar->failure)
        findings.append(
            makeFinding("picture-failed"_L1, path, u"it was asked for in vain"_s, avatar->failure));
    else if (avatar && avatar->size.isEmpty())
        findings.append(makeFinding("picture-unreadable"_L1, path, u"the avatar cannot be decoded"_s));
    if (picture.source == PictureSource::None) {
        findings.append(makeFinding("picture-missing"_L1, path, u"neither avatar nor icon"_s));
        return findings;
    }
    if (picture.size.isEmpty())
        findings.append(
            makeFinding("picture-unreadable"_L1, path, u"%1 cannot be decoded"_s.arg(picture.place)));
    else if (picture.size.width() < TILE_SIZE && picture.size.height() < TILE_SIZE)
        findings.append(makeFinding("picture-small"_L1, path, describe(picture.size)));
    if (!picture.size.isEmpty() && isOblong(picture.size))
        findings.append(makeFinding("picture-not-square"_L1, path, describe(picture.size)));
    return findings;
}

} // namespace Varnel::Check
