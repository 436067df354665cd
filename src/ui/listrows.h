// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Lists of examples may have thousands of rows: the work is in proportion to their number, not to its square.

#include "ui/examplerow.h"

#include <QSet>
#include <QString>

namespace Varnel::Internal {

/** Adds @p rows to a list that sorts itself. */
void addRows(QListWidget *list, ExampleRows rows);

/**
 * Hides exactly those rows whose text does not contain @p text in any letter case; an empty one shows all.
 * Selected rows stay selected; the current row, if hidden, gives way to the first one that is not.
 */
void filterRows(QListWidget *list, const QString &text);

/** Deletes the selected rows, also hidden ones. What is hidden stays hidden. */
void deleteSelectedRows(QListWidget *list);

/**
 * Selection, current row and scroll position of a list, kept while its rows are replaced. A row is found
 * again by its user data.
 */
class ListState final
{
public:
    explicit ListState(const QListWidget &list);

    /** Applies to the rows that are still there. Rows without user data are not found again. */
    void restore(QListWidget *list) const;

private:
    QSet<QString> m_selected;
    QString m_current;
    int m_horizontal; // scroll bar values
    int m_vertical;
};

} // namespace Varnel::Internal
