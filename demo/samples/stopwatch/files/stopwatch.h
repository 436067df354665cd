// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QListWidget;
class QPushButton;

class Stopwatch final : public QWidget
{
    Q_OBJECT

public:
    Stopwatch();

private:
    void toggle();
    void addLap();
    void showTime();
    QString timeText() const;

    QElapsedTimer m_time;
    QTimer m_refresh;
    QLabel *m_display;
    QPushButton *m_toggle;
    QPushButton *m_lap;
    QListWidget *m_laps;
};
