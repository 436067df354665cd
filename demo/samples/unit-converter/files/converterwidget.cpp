// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "converterwidget.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>

ConverterWidget::ConverterWidget()
    : m_quantity(new QComboBox)
    , m_value(new QDoubleSpinBox)
    , m_from(new QComboBox)
    , m_to(new QComboBox)
    , m_result(new QLabel)
{
    setWindowTitle(tr("Größenumrechner"));
    m_value->setRange(-1e9, 1e9);
    m_value->setValue(1);

    auto layout = new QFormLayout(this);
    layout->addRow(tr("Größe"), m_quantity);
    layout->addRow(tr("Wert"), m_value);
    layout->addRow(tr("von"), m_from);
    layout->addRow(tr("nach"), m_to);
    layout->addRow(tr("Ergebnis"), m_result);

    for (const Quantity &quantity : m_quantities)
        m_quantity->addItem(quantity.name);
    showQuantity(0);

    connect(m_quantity, &QComboBox::currentIndexChanged, this, &ConverterWidget::showQuantity);
    connect(m_value, &QDoubleSpinBox::valueChanged, this, &ConverterWidget::showResult);
    connect(m_from, &QComboBox::currentIndexChanged, this, &ConverterWidget::showResult);
    connect(m_to, &QComboBox::currentIndexChanged, this, &ConverterWidget::showResult);
}

void ConverterWidget::showQuantity(int index)
{
    const QSignalBlocker fromBlocker(m_from);
    const QSignalBlocker toBlocker(m_to);
    m_from->clear();
    m_to->clear();
    for (const Unit &unit : m_quantities.at(index).units) {
        m_from->addItem(unit.name);
        m_to->addItem(unit.name);
    }
    showResult();
}

void ConverterWidget::showResult()
{
    const QList<Unit> &units = m_quantities.at(m_quantity->currentIndex()).units;
    const double result
        = convert(m_value->value(), units.at(m_from->currentIndex()), units.at(m_to->currentIndex()));
    m_result->setText(locale().toString(result, 'g', 8));
}
