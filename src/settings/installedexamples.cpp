// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// Keeps the IDE's list of example collections pointing at the directories of this installation.

#include "settings/settings.h"

#include "plugin/constants.h"

#include <coreplugin/helpmanager.h>
#include <utils/qtcsettings.h>

#include <QDir>

#include <algorithm>

namespace Varnel::Internal {

void Settings::updateInstalledExamplesValue(Utils::QtcSettings *settings)
{
    QStringList entries = settings->value(Constants::INSTALLED_EXAMPLES).toStringList();
    Settings record;
    record.load(settings);

    bool isChanged = false;
    const QStringList names = record.repositories.keys();
    for (const QString &name : names) {
        const QString directory = location().arg(name);
        const auto entry = std::find_if(
            entries.begin(), entries.end(), [&name](const QString &text) { return text.startsWith(name); });
        if (entry == entries.end())
            continue;
        *entry = QStringLiteral("%1|%2|%2").arg(name).arg(directory);
        QDir().mkpath(directory);
        isChanged = true;
    }
    if (!isChanged)
        return;

    settings->setValue(Constants::INSTALLED_EXAMPLES, entries);
    settings->sync();
    Core::HelpManager::Signals *help = Core::HelpManager::Signals::instance();
    emit help->setupFinished();
}

} // namespace Varnel::Internal
