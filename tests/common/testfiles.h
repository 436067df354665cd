// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Files, pictures and projects for tests; what cannot be made ends the test program.

#pragma once

#include "client/repository.h"
#include "common/files.h"

#include <QByteArray>
#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>

namespace Varnel::Test {

/** A picture of one colour. */
[[nodiscard]] QByteArray encodedPicture(const QSize &size, const char *format = "png");

/** A valid project object as a server sends it, with the given path and changes. */
[[nodiscard]] QJsonObject projectObject(const QString &path, const QJsonObject &changes = {});
[[nodiscard]] Internal::Repository::ExamplePtr
makeExample(const QString &path, const QJsonObject &changes = {});
[[nodiscard]] Internal::Repository::Examples makeExamples(const QStringList &paths);

} // namespace Varnel::Test
