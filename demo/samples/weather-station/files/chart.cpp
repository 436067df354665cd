// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "chart.h"

#include <QPainter>

#include <algorithm>

namespace {
constexpr int MARGIN = 24; // pixels
}

Chart::Chart(const QList<double> &values)
    : m_values(values)
{
}

void Chart::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), Qt::white);

    QPolygonF line;
    for (int index = 0; index < m_values.size(); ++index)
        line.append(position(index));
    painter.setPen(QPen(QColor(0x2b, 0x6c, 0xb0), 3));
    painter.drawPolyline(line);

    painter.setPen(Qt::darkGray);
    for (int index = 0; index < m_values.size(); ++index)
        painter.drawText(
            position(index) + QPointF(-8, -8), QString::number(m_values.at(index)) + QChar(0xb0));
}

QPointF Chart::position(int index) const
{
    const auto [lowest, highest] = std::minmax_element(m_values.begin(), m_values.end());
    const double range = std::max(1.0, *highest - *lowest);
    const double x = MARGIN + (width() - 2.0 * MARGIN) * index / std::max<qsizetype>(1, m_values.size() - 1);
    const double y = height() - MARGIN - (height() - 2.0 * MARGIN) * (m_values.at(index) - *lowest) / range;
    return {x, y};
}
