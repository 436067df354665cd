// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Lists of examples may have thousands of rows: the work is in proportion to their number, not to its square.

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QListWidget;
class QString;
QT_END_NAMESPACE

namespace Varnel::Internal {

/**
 * Hides exactly those rows whose text does not contain @p text in any letter case; an empty one shows all.
 * Selected rows stay selected; the current row, if hidden, gives way to the first one that is not.
 */
void filterRows(QListWidget *list, const QString &text);

/** Deletes the selected rows, also hidden ones. What is hidden stays hidden. */
void deleteSelectedRows(QListWidget *list);

} // namespace Varnel::Internal
