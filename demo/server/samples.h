// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// Reads a folder of sample projects.
#pragma once

#include "server/project.h"

#include <QList>

namespace Varnel::Demo {

struct Samples
{
    QList<Project> projects;
    QString error; // one sentence; empty if all went well
};

/**
 * One project for each folder below @p folder, which holds a description, "project.json", and what is in the
 * repository, "files". Stops at the first thing that is wrong. Needs a QGuiApplication, as it paints
 * pictures.
 */
[[nodiscard]] Samples readSamples(const QString &folder);

} // namespace Varnel::Demo
