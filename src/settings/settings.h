// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDate>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QString>
#include <QUrl>

namespace Utils {
class QtcSettings;
}

namespace Varnel::Internal {

/**
 * The plug-in's whole persistent configuration, a value that each owner loads, changes and saves as a copy of
 * its own; the last save wins, key by key. Main thread only. Faulty entries are skipped with a debug line.
 */
class Settings
{
public:
    struct RepositoryInfo
    {
        QUrl url;                   ///< the group's web address
        QSet<QString> examples;     ///< paths that the user removed: left out of automatic updates
        QSet<QString> toRemove;     ///< queued in the options page, never stored
        QSet<QString> toInstall;    ///< queued in the options page, never stored
        QList<QFileInfo> installed; ///< manifests found on disk by the options page, never stored
    };

    /** Replaces the whole record by what @p settings holds, with defaults for what it lacks. */
    void load(Utils::QtcSettings *settings);
    /** Writes every key, also those of empty lists. */
    void save(Utils::QtcSettings *settings) const;

    /** Name of the first repository with exactly @p url, empty if there is none. */
    [[nodiscard]] QString findName(const QUrl &url) const;

    /**
     * Directory of a repository's installed examples, with "%1" for the repository's name.
     * Fixed for the life of the process by its first call, which is made while the library loads.
     */
    [[nodiscard]] static QString location();

    /**
     * Points the IDE's entries of installed examples that belong to a configured repository at this
     * installation's directories, and creates those. Entries are refreshed only: whoever configures a
     * repository provides its entry.
     */
    static void updateInstalledExamplesValue(Utils::QtcSettings *settings);

    QHash<QString, QDate> lastCheckedDates; ///< by repository name; a date may be invalid
    quint32 updatesCheckTimeoutDays = 1;    ///< 0: no automatic updates
    quint32 serviceRestartTimeoutSeconds = 60;
    QHash<QString, RepositoryInfo>
        repositories; ///< by name; as loaded, no name is empty and no two have the same address
};

} // namespace Varnel::Internal
