// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures made byte by byte, so that they say of themselves what no encoder would.

#pragma once

#include <QByteArray>
#include <QList>
#include <QtTypes>

namespace Varnel::Test {

/**
 * A PNG of one bit a pixel that says to be this large; as many @p rows of zeros are there, all by default.
 */
[[nodiscard]] QByteArray png(quint32 width, quint32 height, qint64 rows = -1);

/** The PNG with as many compressed texts of eight million letters each. */
[[nodiscard]] QByteArray withTexts(const QByteArray &png, int count);

/** A GIF with a frame for each of up to four colours (0xrrggbb). */
[[nodiscard]] QByteArray gif(quint16 width, quint16 height, const QList<quint32> &colours = {0x808080});

/** An icon whose only entry is this picture; one that lies behind the end of the file if it is empty. */
[[nodiscard]] QByteArray icon(const QByteArray &content);

/** The kind of picture that icons hold, of one bit a pixel; all black. */
[[nodiscard]] QByteArray bitmapOfIcon(qint32 width, qint32 height);

/** An MNG of some hundred bytes with nothing but loops of 2^31 turns in one another. */
[[nodiscard]] QByteArray mngWithLoops(int depth);

} // namespace Varnel::Test
