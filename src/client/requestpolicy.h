// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which addresses may be asked for, and which redirects are followed: the network layer's own rules, but for
// http and https only. What is refused has the network layer's text, in its own translation.

#pragma once

#include <QString>

QT_BEGIN_NAMESPACE
class QUrl;
QT_END_NAMESPACE

namespace Varnel::Internal {

/** As many as the network layer follows by default. */
constexpr int MAXIMUM_REDIRECTS = 50;

/**
 * The address that a server sent, as it is meant. Empty if it is longer than 4,096 characters: reading it
 * takes time with the square of its length.
 */
[[nodiscard]] QUrl addressOf(const QString &text);

/** Null if @p url may be asked for. An empty address may: the network layer refuses it. */
[[nodiscard]] QString faultOfAddress(const QUrl &url);

/** True if an answer with this status sends the client on to another address. */
[[nodiscard]] bool isRedirect(int status);

/**
 * The absolute address that a "Location" header of an answer from @p from names; invalid if it names none.
 */
[[nodiscard]] QUrl redirectTarget(const QUrl &from, const QByteArray &location);

/** Null if a redirect from @p from to @p to may be followed after @p count others. */
[[nodiscard]] QString faultOfRedirect(const QUrl &from, const QUrl &to, int count);

} // namespace Varnel::Internal
