// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The IDE as far as the plug-in's parts need it outside of it.

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace ExtensionSystem {
class PluginManager;
}
namespace Utils {
class QtcSettings;
}

namespace Varnel::Test {

/**
 * A plug-in manager with an empty settings file, and the IDE's knowledge of file types. One per process, at
 * first from initTestCase(): it needs the application.
 */
class IdeEnvironment final
{
public:
    IdeEnvironment();
    ~IdeEnvironment();
    Q_DISABLE_COPY_MOVE(IdeEnvironment)

    /** Forgets the settings and whatever is installed. */
    void reset();

    [[nodiscard]] Utils::QtcSettings *settings() const;
    [[nodiscard]] QString settingsFile() const;
    /** Sets a key of the plug-in's own group. */
    void set(const char *key, const QVariant &value);
    /** What the settings file holds under a key with its group, read anew from the disk. */
    [[nodiscard]] QVariant stored(const QString &key) const;
    [[nodiscard]] bool isStored(const QString &key) const;

private:
    std::unique_ptr<ExtensionSystem::PluginManager> m_pluginManager;
};

/** The directory that holds the directories of all repositories. */
[[nodiscard]] QString dataRoot();

/**
 * Runs the application until it quits, as the IDE does: only then do the last workers end. For
 * cleanupTestCase().
 */
void quitApplication();

} // namespace Varnel::Test
