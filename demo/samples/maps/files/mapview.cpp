// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mapview.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double ISLAND_RADIUS = 900; // metres
constexpr double GRID_WIDTH = 250;    // metres
constexpr double SMALLEST_SCALE = 0.05;
constexpr double GREATEST_SCALE = 5;

QPainterPath coast()
{
    QPainterPath path;
    constexpr int POINTS = 180;
    for (int index = 0; index < POINTS; ++index) {
        const double angle = 2 * M_PI * index / POINTS;
        const double radius = ISLAND_RADIUS * (1 + 0.2 * std::sin(3 * angle) + 0.08 * std::cos(11 * angle));
        const QPointF point(radius * std::cos(angle), radius * std::sin(angle));
        if (index == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

} // namespace

MapView::MapView()
    : m_coast(coast())
{
    setWindowTitle(tr("Maps"));
    setCursor(Qt::OpenHandCursor);
}

void MapView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0xbe, 0xe3, 0xf8));
    painter.translate(rect().center());
    painter.scale(m_scale, m_scale);
    painter.translate(-m_centre);

    QPen pen(QColor(0x27, 0x67, 0x49), 2);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setBrush(QColor(0xc6, 0xf6, 0xd5));
    painter.drawPath(m_coast);

    pen.setColor(QColor(0, 0, 0, 40));
    pen.setWidth(1);
    painter.setPen(pen);
    for (double metre = -4 * GRID_WIDTH; metre <= 4 * GRID_WIDTH; metre += GRID_WIDTH) {
        painter.drawLine(QPointF(metre, -4 * GRID_WIDTH), QPointF(metre, 4 * GRID_WIDTH));
        painter.drawLine(QPointF(-4 * GRID_WIDTH, metre), QPointF(4 * GRID_WIDTH, metre));
    }
}

void MapView::mousePressEvent(QMouseEvent *event)
{
    m_lastPosition = event->position();
}

void MapView::mouseMoveEvent(QMouseEvent *event)
{
    m_centre -= (event->position() - m_lastPosition) / m_scale;
    m_lastPosition = event->position();
    update();
}

void MapView::wheelEvent(QWheelEvent *event)
{
    const double factor = std::pow(1.2, event->angleDelta().y() / 120.0);
    m_scale = std::clamp(m_scale * factor, SMALLEST_SCALE, GREATEST_SCALE);
    update();
}
