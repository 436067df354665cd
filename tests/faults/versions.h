// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Examples that tell from what is on the disk which version of them is installed, and whether the whole of
// it.

#pragma once

#include "server/project.h"

#include <QString>

namespace Varnel::Demo {
class DemoServer;
}

namespace Varnel::Test {

constexpr char REPOSITORY[] = "Demo";

[[nodiscard]] QString versionedName(int index);

/** A project: each file and the description name the version; with a picture if the index is even. */
[[nodiscard]] Demo::Project versionedProject(int index, int version, int files);

/** Gives the server's group @p count projects, all of this version and changed just now. */
void publish(Demo::DemoServer *server, int count, int version, int files);

/** What is installed of one example. */
struct Installed
{
    int version = 0; ///< 0: nothing is
    QString fault;   ///< what is neither absent nor a whole example of one version; empty if all is well
};

/** A picture that could not be had or written is no fault of an example, unless the test says so. */
enum class Picture { Required, Optional };

[[nodiscard]] Installed installed(int index, int files, Picture picture = Picture::Required);

/** Directories of the repository that are no installed examples: left by an update that was ended. */
[[nodiscard]] QStringList leftOvers(int count);

/** Those among them that the service removes by itself, a moment after it has told of an update. */
[[nodiscard]] QStringList markedCopies();

/** Writes the settings of a user whose last check was so many days ago, and no other. */
void writeSettings(const QString &groupUrl, int daysAgo);

/** Why the settings file is not what a user's was or what the service makes of it; empty if it is. */
[[nodiscard]] QString settingsFault(const QString &groupUrl, int daysAgo);

[[nodiscard]] QString settingsFileName();
[[nodiscard]] QStringList temporaryArchives();

} // namespace Varnel::Test
