// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QByteArray;
class QImage;
QT_END_NAMESPACE

namespace Varnel::Internal {

/**
 * The first frame of an encoded picture: PNG, JPEG, GIF, BMP, ICO, WebP or TIFF, as its first bytes say, and
 * of at most 4,096 pixels a side. Null for anything else, and for what cannot be decoded. Any thread.
 */
[[nodiscard]] QImage decodePicture(const QByteArray &bytes);

/**
 * True if others may be given the encoded picture as it is: it keeps the bounds of decodePicture() and holds
 * no more than 64 KiB of texts, or no decoder of this machine takes it for a picture. Any thread.
 */
[[nodiscard]] bool isHarmlessPicture(const QByteArray &bytes);

} // namespace Varnel::Internal
