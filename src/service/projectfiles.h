// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <stop_token>

namespace Varnel::Internal {

/** What an unpacked project is made of: which file to load, which to open, which picture to show. */
struct ProjectFiles
{
    /**
     * Bare name of the most recently modified project file directly in the directory, empty if there is none.
     */
    QString project;
    /**
     * The file to show first: one with a window in QML or else with a main function, relative to the
     * directory with a leading "/"; else the project file's bare name.
     */
    QString fileToOpen;
    /**
     * Canonical path of the picture of most bytes in the first icons/128x128 that has one; those that could
     * do harm are passed over. Empty if there is none.
     */
    QString icon;
};

/**
 * Looks through the project in @p directory. Reads as much of it as it takes to find the file to open, so it
 * may take as long; incomplete if @p stop is requested meanwhile. Any thread.
 */
[[nodiscard]] ProjectFiles findProjectFiles(const QString &directory, const std::stop_token &stop = {});

/** The project file alone. */
[[nodiscard]] QString findProject(const QString &directory);

/**
 * True if @p path is a regular file in the end whose text contains @p needle, which is not empty; carriage
 * returns do not count. Reads in blocks, and no further than the size that the file has at the beginning.
 */
[[nodiscard]] bool
fileContains(const QString &path, const QByteArray &needle, const std::stop_token &stop = {});

} // namespace Varnel::Internal
