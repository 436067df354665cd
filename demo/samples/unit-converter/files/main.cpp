// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "converterwidget.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    ConverterWidget widget;
    widget.show();
    return application.exec();
}
