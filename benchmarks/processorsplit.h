// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QJsonObject>
#include <QString>

namespace Varnel::Bench {

/**
 * Takes the steps of an installation once more, one after the other, for examples that have just been
 * installed. Returns the seconds of processor time that each step takes for all of them, by its name.
 */
[[nodiscard]] QJsonObject
processorSplit(const QString &repositoryName, const Internal::Repository::Examples &examples);

} // namespace Varnel::Bench
