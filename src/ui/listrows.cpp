// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/listrows.h"

#include <QListWidget>
#include <QScrollBar>

#include <algorithm>

namespace Varnel::Internal {

namespace {

// No arrow key leads out of a hidden row, and the menu key would act on the list's first row instead.
void leaveHiddenRow(QListWidget *list)
{
    if (list->currentRow() < 0 || !list->isRowHidden(list->currentRow()))
        return;
    for (int row = 0; row < list->count(); ++row) {
        if (!list->isRowHidden(row)) {
            list->setCurrentRow(row, QItemSelectionModel::NoUpdate);
            return;
        }
    }
}

QSet<const QListWidgetItem *> showHiddenRows(QListWidget *list)
{
    QSet<const QListWidgetItem *> hidden;
    for (int row = 0; row < list->count(); ++row) {
        if (list->isRowHidden(row)) {
            hidden.insert(list->item(row));
            list->setRowHidden(row, false);
        }
    }
    return hidden;
}

void hideRows(QListWidget *list, const QSet<const QListWidgetItem *> &rows)
{
    for (int row = 0; row < list->count(); ++row) {
        if (rows.contains(list->item(row)))
            list->setRowHidden(row, true);
    }
}

// In runs, from the end, so that few rows have to move up.
void deleteRows(QListWidget *list, const QSet<const QListWidgetItem *> &rows)
{
    for (int end = list->count(); end > 0;) {
        int begin = end;
        while (begin > 0 && rows.contains(list->item(begin - 1)))
            --begin;
        if (begin < end)
            list->model()->removeRows(begin, end - begin);
        end = begin - 1;
    }
}

QString keyOf(const QListWidgetItem *row)
{
    return row ? row->data(Qt::UserRole).toString() : QString();
}

} // namespace

// The rows come in their order: a list that sorts itself moves up all rows behind each new one.
void addRows(QListWidget *list, ExampleRows rows)
{
    std::stable_sort(
        rows.begin(), rows.end(), [](const auto &left, const auto &right) { return *left < *right; });
    for (std::unique_ptr<ExampleRow> &row : rows)
        list->addItem(row.release());
}

void filterRows(QListWidget *list, const QString &text)
{
    for (int row = 0; row < list->count(); ++row) {
        const bool hidden = !list->item(row)->text().contains(text, Qt::CaseInsensitive);
        // Each call schedules a new layout, even if it changes nothing.
        if (list->isRowHidden(row) != hidden)
            list->setRowHidden(row, hidden);
    }
    leaveHiddenRow(list);
}

// Whenever a row is deleted, the list corrects the place of each hidden and of each selected row. So no row
// is hidden or selected meanwhile.
void deleteSelectedRows(QListWidget *list)
{
    const QList<QListWidgetItem *> selected = list->selectedItems();
    const QSet<const QListWidgetItem *> hidden = showHiddenRows(list);
    list->clearSelection();
    deleteRows(list, {selected.begin(), selected.end()});
    hideRows(list, hidden);
    leaveHiddenRow(list);
}

ListState::ListState(const QListWidget &list)
    : m_current(keyOf(list.currentItem()))
    , m_horizontal(list.horizontalScrollBar()->value())
    , m_vertical(list.verticalScrollBar()->value())
{
    const QList<QListWidgetItem *> selected = list.selectedItems();
    for (const QListWidgetItem *row : selected)
        m_selected.insert(keyOf(row));
    m_selected.remove(QString());
}

void ListState::restore(QListWidget *list) const
{
    QItemSelection selection;
    for (int row = 0; row < list->count(); ++row) {
        const QString key = keyOf(list->item(row));
        if (m_selected.contains(key))
            selection.append(QItemSelectionRange(list->model()->index(row, 0)));
        if (key == m_current && !key.isEmpty())
            list->setCurrentRow(row, QItemSelectionModel::NoUpdate);
    }
    list->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);

    list->doItemsLayout(); // the scroll bars' ranges are those of the last layout
    list->horizontalScrollBar()->setValue(m_horizontal);
    list->verticalScrollBar()->setValue(m_vertical);
}

} // namespace Varnel::Internal
