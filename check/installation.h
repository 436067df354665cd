// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>

namespace Varnel::Check {

class FileLock;

/**
 * A directory that examples are laid out in for others. It is locked against a second installation as long as
 * the object lives. The IDE keeps its own directories up to date itself, so those are refused.
 */
class Installation final
{
public:
    Installation(const QString &directory, const QString &repositoryName, const QUrl &url);
    /** Unlocks the directory, and removes it, and what is above it, as far as it is new and empty. */
    ~Installation();
    Q_DISABLE_COPY_MOVE(Installation)

    /** Makes the directory and locks it. What keeps it from being used; empty if nothing does. */
    [[nodiscard]] QString open(bool isForced);

    [[nodiscard]] const QString &directory() const { return m_directory; }

    /** Removes what an installation that was killed has left of these examples. */
    void removeLeftOvers(const QStringList &paths) const;
    /**
     * Removes what this one leaves beside examples: copies, and of @p topNames, which archives had at their
     * top, what is new. In their own directory the IDEs let it lie; here it would be in the way of the next
     * one.
     */
    void removeRemains(const QStringList &paths, const QSet<QString> &topNames) const;

    /** What the IDE's settings have to hold, in their own format. */
    [[nodiscard]] QString settingsText() const;
    /** Writes the same into a file of settings, whose other values stay. False if that fails. */
    [[nodiscard]] bool writeSettings(const QString &file) const;

private:
    [[nodiscard]] bool isWithinIde() const;
    [[nodiscard]] bool isPlaceOfIde() const;
    [[nodiscard]] QString foreignEntry() const;
    [[nodiscard]] QString exampleEntry() const;
    [[nodiscard]] QString repositoryEntry() const;

    QString m_directory; // absolute
    const QString m_repositoryName;
    const QUrl m_url;
    QStringList m_new;      // directories that were made for it, the lowest first
    QSet<QString> m_before; // what was there when it was opened
    std::unique_ptr<FileLock> m_lock;
};

} // namespace Varnel::Check
