// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "units.h"

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QLabel;

class ConverterWidget final : public QWidget
{
    Q_OBJECT

public:
    ConverterWidget();

private:
    void showQuantity(int index);
    void showResult();

    const QList<Quantity> m_quantities = quantities();
    QComboBox *m_quantity;
    QDoubleSpinBox *m_value;
    QComboBox *m_from;
    QComboBox *m_to;
    QLabel *m_result;
};
