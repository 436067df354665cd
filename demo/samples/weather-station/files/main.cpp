// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "chart.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    application.setWindowIcon(QIcon(":/icons/128x128/weather-station.png"));
    Chart chart({14.5, 16.0, 18.5, 19.5, 19.0, 17.0, 15.5});
    chart.setWindowTitle("Weather Station");
    chart.show();
    return application.exec();
}
