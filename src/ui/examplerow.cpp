// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/examplerow.h"

#include <QListWidget>
#include <QStyledItemDelegate>

namespace Varnel::Internal {

namespace {

/** What is drawn and measured is the beginning of a row's text. */
class ShortTextDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QString displayText(const QVariant &value, const QLocale &locale) const override
    {
        return QStyledItemDelegate::displayText(shortened(value.toString()), locale);
    }
};

} // namespace

ExampleRow::ExampleRow(const QString &name, ToolTipMaker toolTip)
    : QListWidgetItem(name)
    , m_toolTip(std::move(toolTip))
{
}

QVariant ExampleRow::data(int role) const
{
    if (role == Qt::ToolTipRole && m_toolTip)
        return m_toolTip().filled();
    // A screen reader takes the whole text where there is no other.
    if (role == Qt::AccessibleTextRole && text().size() > SHOWN_CHARACTERS)
        return shortened(text());
    return QListWidgetItem::data(role);
}

QString ExampleRow::shownToolTip() const
{
    return m_toolTip ? m_toolTip().shown() : QString();
}

void setUpExampleRows(QListWidget *list)
{
    list->setItemDelegate(new ShortTextDelegate(list));
    new ToolTips(list, [list](const QModelIndex &index) {
        const auto row = dynamic_cast<const ExampleRow *>(list->itemFromIndex(index));
        return row ? row->shownToolTip() : QString();
    });
}

} // namespace Varnel::Internal
