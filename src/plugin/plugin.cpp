// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "plugin/plugin.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/downloadservice.h"
#include "settings/settings.h"
#include "ui/optionspage.h"
#include "ui/optionswidget.h"

#include <coreplugin/icore.h>
#include <extensionsystem/pluginmanager.h>
#include <utils/filepath.h>
#include <utils/id.h>
#include <utils/qtcsettings.h>

#include <tolmak/sdk.h>

#include <QCoreApplication>
#include <QLocale>
#include <QScopedPointer>
#include <QSslSocket>
#include <QTranslator>

namespace Varnel::Internal {

// Outlives the plug-in object: deleted with the library's static objects.
static QScopedPointer<DownloadService> pServiceManager;

/** What start-up creates and the plug-in object takes along. */
class VarnelPluginPrivate final : public QObject
{
public:
    VarnelPluginPrivate()
    {
        // Before the Welcome screen reads the list.
        Settings::updateInstalledExamplesValue(Core::ICore::settings());
        registerOptionsPage();
        pServiceManager.reset(new DownloadService(nullptr));
    }

private:
    void registerOptionsPage()
    {
        const QString displayName
            = Tolmak::Sdk::osVariant() + u' '
              + QCoreApplication::translate("Varnel::Internal::VarnelPlugin", "Examples");
        new OptionsPage(
            displayName, Utils::Id(Constants::OPTIONS_PAGE_ID), [] { return new OptionsWidget; }, this);
    }
};

Plugin::Plugin() = default;

Plugin::~Plugin() = default;

bool Plugin::initialize(const QStringList &, QString *)
{
    checkTlsLibrary();
    installTranslator();
    d = std::make_unique<VarnelPluginPrivate>();
    return true;
}

void Plugin::extensionsInitialized() {}

DownloadService *Plugin::downloadService()
{
    return pServiceManager.get();
}

void Plugin::checkTlsLibrary() const
{
    if (QSslSocket::sslLibraryBuildVersionNumber() == QSslSocket::sslLibraryVersionNumber())
        return;
    qCDebug(Log::main) << "SSL versions mismatch!\nCompiled version:\t"
                       << QSslSocket::sslLibraryBuildVersionString() << "\nSystem version:\t"
                       << QSslSocket::sslLibraryVersionString();
}

void Plugin::installTranslator()
{
    static const QString BASE_NAME = QStringLiteral("Varnel");
    const QVariant language = ExtensionSystem::PluginManager::settings()->value(Constants::OVERRIDE_LANGUAGE);
    const QLocale locale = language.isValid() ? QLocale(language.toString()) : QLocale();
    const QString directory = Core::ICore::resourcePath("translations").toFSPathString();

    auto translator = new QTranslator(this);
    if (translator->load(locale, BASE_NAME, QStringLiteral("_"), directory))
        QCoreApplication::installTranslator(translator);
    else
        qCDebug(Log::main) << "Failed to load translator:" << directory << BASE_NAME;
}

} // namespace Varnel::Internal
