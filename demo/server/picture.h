// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// Pictures painted from a few words, so that no picture files need to be kept.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>

namespace Varnel::Demo {

struct Tile
{
    QString text; // two or three letters
    QColor colour;
    int size = 256; // pixels, both ways
};

/** A rounded, coloured tile with the text in its middle, as PNG. Needs a QGuiApplication. */
[[nodiscard]] QByteArray paint(const Tile &tile);

} // namespace Varnel::Demo
