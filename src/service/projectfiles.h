// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/** What an unpacked project is made of: which file to load, which to open, which picture to show. */
namespace Varnel::Internal {

/** Bare name of the most recently modified project file directly in @p directory, empty if there is none. */
[[nodiscard]] QString findProject(const QString &directory);

/** Canonical path of the largest picture among the project's icons of 128 pixels, empty if there is none. */
[[nodiscard]] QString findIcon(const QString &directory);

/**
 * The file to show first: one with a window in QML or else with a main function, relative to @p directory with a
 * leading "/"; else the project file's bare name.
 */
[[nodiscard]] QString findFileToOpen(const QString &directory);

/**
 * True if @p path is a regular file in the end whose text contains @p needle; carriage returns do not count.
 * Reads in blocks, so that a file of any size needs little memory.
 */
[[nodiscard]] bool fileContains(const QString &path, const QByteArray &needle);

} // namespace Varnel::Internal
