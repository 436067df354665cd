// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/picture.h"

#include <QBuffer>
#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace Varnel::Demo {

namespace {

void paintBackground(QPainter &painter, const Tile &tile)
{
    const qreal size = tile.size;
    QPainterPath outline;
    outline.addRoundedRect(QRectF(0, 0, size, size), size / 8, size / 8);
    painter.setClipPath(outline);

    QLinearGradient gradient(0, 0, 0, size);
    gradient.setColorAt(0, tile.colour.lighter(125));
    gradient.setColorAt(1, tile.colour.darker(120));
    painter.fillPath(outline, gradient);

    // Two arcs that rise from a corner give the plain area some depth.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 26));
    painter.drawEllipse(QPointF(size, size), size * 0.75, size * 0.75);
    painter.drawEllipse(QPointF(size, size), size * 0.45, size * 0.45);
}

void paintText(QPainter &painter, const Tile &tile)
{
    QFont font;
    font.setBold(true);
    font.setPixelSize(tile.size * 9 / 10 / int(std::max<qsizetype>(2, tile.text.size())));
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRectF(0, 0, tile.size, tile.size), Qt::AlignCenter, tile.text);
}

} // namespace

QByteArray paint(const Tile &tile)
{
    QImage image(tile.size, tile.size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter, tile);
    paintText(painter, tile);
    painter.end();

    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return png;
}

} // namespace Varnel::Demo
