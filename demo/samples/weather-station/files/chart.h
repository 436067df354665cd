// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QWidget>

/** A line through measured values, from left to right, as high and wide as the widget. */
class Chart final : public QWidget
{
    Q_OBJECT

public:
    explicit Chart(const QList<double> &values);

    QSize sizeHint() const override { return {480, 240}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPointF position(int index) const;

    const QList<double> m_values; // degrees Celsius
};
