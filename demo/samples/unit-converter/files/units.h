// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

/** A unit of a quantity: its value times factor plus offset is the value in the quantity's base unit. */
struct Unit
{
    QString name;
    double factor = 1;
    double offset = 0;
};

struct Quantity
{
    QString name;
    QList<Unit> units;
};

QList<Quantity> quantities();
double convert(double value, const Unit &from, const Unit &to);
