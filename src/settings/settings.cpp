// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "settings/settings.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "settings/encodings.h"

#include <utils/qtcsettings.h>

#include <tolmak/sdk.h>

#include <QStandardPaths>

namespace Varnel::Internal {

void Settings::load(Utils::QtcSettings *settings)
{
    qDebug() << "Settings:" << settings->fileName();
    *this = {};

    settings->beginGroup(Constants::SETTINGS_GROUP);
    if (settings->contains(Constants::UPDATES_CHECKED)) {
        lastCheckedDates
            = lastCheckedDateFromStringList(settings->value(Constants::UPDATES_CHECKED).toStringList());
    }
    if (settings->contains(Constants::UPDATES_TIMEOUT))
        updatesCheckTimeoutDays = settings->value(Constants::UPDATES_TIMEOUT).toUInt();
    if (settings->contains(Constants::SERVICE_RESTART_TIMEOUT))
        serviceRestartTimeoutSeconds = settings->value(Constants::SERVICE_RESTART_TIMEOUT).toUInt();
    if (settings->contains(Constants::REPOSITORIES)) {
        repositories = fromStringList(settings->value(Constants::REPOSITORIES).toStringList());
        if (repositories.isEmpty())
            qCDebug(Log::main) << "Empty or invalid settings. Check variable:" << Constants::REPOSITORIES;
    } else {
        qCDebug(Log::main) << "Settings does not contain variable:" << Constants::REPOSITORIES;
    }
    settings->endGroup();
}

void Settings::save(Utils::QtcSettings *settings) const
{
    settings->beginGroup(Constants::SETTINGS_GROUP);
    settings->setValue(Constants::UPDATES_CHECKED, lastUpdateTimeToStringList(lastCheckedDates));
    settings->setValue(Constants::UPDATES_TIMEOUT, updatesCheckTimeoutDays);
    settings->setValue(Constants::SERVICE_RESTART_TIMEOUT, serviceRestartTimeoutSeconds);
    settings->setValue(Constants::REPOSITORIES, toStringList(repositories));
    settings->endGroup();
}

QString Settings::findName(const QUrl &url) const
{
    for (auto it = repositories.cbegin(); it != repositories.cend(); ++it) {
        if (it->url == url)
            return it.key();
    }
    return {};
}

QString Settings::location()
{
    static QString cacheLocation;
    if (cacheLocation.isEmpty()) {
        const QString dataLocation = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        cacheLocation = dataLocation + u'/' + Tolmak::Sdk::releaseInfo().name + QStringLiteral("/%1");
        qCDebug(Log::main) << "Data location" << cacheLocation;
    }
    return cacheLocation;
}

} // namespace Varnel::Internal
