// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/listfilter.h"

#include <QListWidget>

namespace Varnel::Internal {

void filterRows(QListWidget *list, const QString &text)
{
    for (int row = 0; row < list->count(); ++row) {
        const bool hidden = !list->item(row)->text().contains(text, Qt::CaseInsensitive);
        // Each call schedules a new layout, also one that changes nothing.
        if (list->isRowHidden(row) != hidden)
            list->setRowHidden(row, hidden);
    }
}

} // namespace Varnel::Internal
