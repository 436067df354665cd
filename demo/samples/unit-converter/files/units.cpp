// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "units.h"

QList<Quantity> quantities()
{
    return {
        {QStringLiteral("Länge"),
         {{QStringLiteral("µm"), 1e-6},
          {QStringLiteral("mm"), 1e-3},
          {QStringLiteral("m"), 1},
          {QStringLiteral("km"), 1e3}}},
        {QStringLiteral("Gewicht"),
         {{QStringLiteral("g"), 1e-3}, {QStringLiteral("kg"), 1}, {QStringLiteral("t"), 1e3}}},
        {QStringLiteral("Temperatur"),
         {{QStringLiteral("K"), 1},
          {QStringLiteral("°C"), 1, 273.15},
          {QStringLiteral("°F"), 5.0 / 9, 255.372222}}},
    };
}

double convert(double value, const Unit &from, const Unit &to)
{
    return (value * from.factor + from.offset - to.offset) / to.factor;
}
