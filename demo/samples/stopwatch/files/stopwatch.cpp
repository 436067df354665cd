// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "stopwatch.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTime>
#include <QVBoxLayout>

Stopwatch::Stopwatch()
    : m_display(new QLabel)
    , m_toggle(new QPushButton(tr("Start")))
    , m_lap(new QPushButton(tr("Lap")))
    , m_laps(new QListWidget)
{
    setWindowTitle(tr("Stopwatch"));
    m_refresh.setInterval(30); // milliseconds
    m_lap->setEnabled(false);
    m_display->setAlignment(Qt::AlignCenter);
    showTime();

    auto layout = new QVBoxLayout(this);
    layout->addWidget(m_display);
    layout->addWidget(m_toggle);
    layout->addWidget(m_lap);
    layout->addWidget(m_laps);

    connect(m_toggle, &QPushButton::clicked, this, &Stopwatch::toggle);
    connect(m_lap, &QPushButton::clicked, this, &Stopwatch::addLap);
    connect(&m_refresh, &QTimer::timeout, this, &Stopwatch::showTime);
}

void Stopwatch::toggle()
{
    if (m_refresh.isActive()) {
        m_refresh.stop();
    } else {
        m_time.start();
        m_refresh.start();
        m_laps->clear();
    }
    m_toggle->setText(m_refresh.isActive() ? tr("Stop") : tr("Start"));
    m_lap->setEnabled(m_refresh.isActive());
}

void Stopwatch::addLap()
{
    m_laps->addItem(timeText());
}

void Stopwatch::showTime()
{
    m_display->setText(timeText());
}

QString Stopwatch::timeText() const
{
    const qint64 elapsed = m_time.isValid() ? m_time.elapsed() : 0;
    return QTime::fromMSecsSinceStartOfDay(int(elapsed)).toString("mm:ss.zzz");
}
