// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <extensionsystem/iplugin.h>

#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QListWidget;
class QUrl;
QT_END_NAMESPACE

namespace Varnel::Internal {

class DownloadService;
class VarnelPluginPrivate;

/**
 * What the IDE loads. Starting up never fails: a missing translation or another TLS library than the one
 * built against is only logged. Main thread only.
 */
class Plugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "varnel.json")

public:
    Plugin();
    ~Plugin() override;

    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;

    /** The one service of the process: null before start-up; it outlives the plug-in object. */
    [[nodiscard]] static DownloadService *downloadService();

    /**
     * Gives @p list a context menu that opens the locations of the selected rows with the desktop's default
     * handler. @p toUrl makes an address of a row's Qt::UserRole text; it must be set.
     */
    static void initMenu(QListWidget *list, std::function<QUrl(const QString &)> toUrl);

private:
    void checkTlsLibrary() const;
    void installTranslator();

    std::unique_ptr<VarnelPluginPrivate> d; // null until initialize()
};

} // namespace Varnel::Internal
