// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/listfilter.h"

#include <QListWidget>

namespace Varnel::Internal {

namespace {

// No arrow key leads out of a hidden row, and the menu key would take the list's first one for it.
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

} // namespace

void filterRows(QListWidget *list, const QString &text)
{
    for (int row = 0; row < list->count(); ++row) {
        const bool hidden = !list->item(row)->text().contains(text, Qt::CaseInsensitive);
        // Each call schedules a new layout, also one that changes nothing.
        if (list->isRowHidden(row) != hidden)
            list->setRowHidden(row, hidden);
    }
    leaveHiddenRow(list);
}

} // namespace Varnel::Internal
