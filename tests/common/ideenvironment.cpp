// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/ideenvironment.h"

#include "plugin/constants.h"
#include "service/filesystem.h"
#include "service/filetypes.h"
#include "settings/settings.h"

#include <extensionsystem/pluginmanager.h>
#include <utils/qtcsettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QThread>

using ExtensionSystem::PluginManager;

namespace Varnel::Test {

IdeEnvironment::IdeEnvironment()
    : m_pluginManager(std::make_unique<PluginManager>())
{
    PluginManager::setSettings(
        new Utils::QtcSettings(QDir::tempPath() + "/settings.ini", QSettings::IniFormat));
    Internal::learnFileTypes();
}

IdeEnvironment::~IdeEnvironment() = default;

void IdeEnvironment::reset()
{
    settings()->clear();
    settings()->sync();
    Internal::removeTree(dataRoot());
}

Utils::QtcSettings *IdeEnvironment::settings() const
{
    return PluginManager::settings();
}

QString IdeEnvironment::settingsFile() const
{
    return settings()->fileName();
}

void IdeEnvironment::set(const char *key, const QVariant &value)
{
    settings()->setValue(QByteArray(Constants::SETTINGS_GROUP) + '/' + key, value);
}

QVariant IdeEnvironment::stored(const QString &key) const
{
    settings()->sync();
    return QSettings(settingsFile(), QSettings::IniFormat).value(key);
}

bool IdeEnvironment::isStored(const QString &key) const
{
    settings()->sync();
    return QSettings(settingsFile(), QSettings::IniFormat).contains(key);
}

QString dataRoot()
{
    return QFileInfo(Internal::Settings::location().arg("any")).path();
}

void quitApplication()
{
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    QCoreApplication::exec();
}

} // namespace Varnel::Test
