// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "settings/settings.h"

#include <QStringList>

// How the record's two lists are written as texts: "name|url|example|example..." and "name|dd.MM.yyyy".
namespace Varnel::Internal {

[[nodiscard]] QHash<QString, Settings::RepositoryInfo> fromStringList(const QStringList &texts);
[[nodiscard]] QStringList toStringList(const QHash<QString, Settings::RepositoryInfo> &repositories);

[[nodiscard]] QHash<QString, QDate> lastCheckedDateFromStringList(const QStringList &texts);
[[nodiscard]] QStringList lastUpdateTimeToStringList(const QHash<QString, QDate> &dates);

} // namespace Varnel::Internal
