// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of a server on their way to a terminal or a page: what could move the cursor, turn the writing round
// or hide is written out.

#pragma once

#include <QString>

namespace Varnel::Check {

/** @p text in one line, each character that has no shape of its own as "\u{202e}"; line breaks as blanks. */
[[nodiscard]] QString visible(const QString &text);

/** The same with the marks of markup replaced, too, for a page's text or an attribute in double quotes. */
[[nodiscard]] QString visibleMarkup(const QString &text);

/** A JSON document in which no such character is left: escaped, a parser reads them back. */
[[nodiscard]] QByteArray visibleJson(const QByteArray &json);

/** How many columns of a terminal a visible text takes. */
[[nodiscard]] int columnsOf(const QString &text);

/** At most @p columns of a visible text, with an ellipsis where something is missing. */
[[nodiscard]] QString shortened(const QString &text, int columns);

/** visible() and shortened(): a server may send megabytes of one text. The JSON report has all of it. */
[[nodiscard]] QString shown(const QString &text);

} // namespace Varnel::Check
