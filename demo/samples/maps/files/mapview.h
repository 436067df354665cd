// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QWidget>

/** The map of one island; dragging moves it, the wheel zooms. */
class MapView final : public QWidget
{
    Q_OBJECT

public:
    MapView();

    QSize sizeHint() const override { return {640, 480}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    const QPainterPath m_coast; // metres
    QPointF m_centre;           // metres, what is in the middle of the widget
    QPointF m_lastPosition;     // pixels
    double m_scale = 0.2;       // pixels per metre
};
