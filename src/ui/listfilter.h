// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QListWidget;
QT_END_NAMESPACE

namespace Utils {
class FancyLineEdit;
}

namespace Varnel::Internal {

/**
 * Makes @p line filter the rows of @p list while it is typed into. The return key does nothing there: left to
 * the dialog around it, it would press the default button, and that may apply what was not meant yet.
 */
void setUpFilter(Utils::FancyLineEdit *line, QListWidget *list);

} // namespace Varnel::Internal
