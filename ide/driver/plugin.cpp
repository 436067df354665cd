// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// An IDE plug-in that does nothing unless the environment names a socket for it to listen on.

#include "commands.h"
#include "commandserver.h"

#include <extensionsystem/iplugin.h>

#include <memory>

namespace Varnel::Driver {

class Plugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "driver.json")

public:
    bool initialize(const QStringList &, QString *errorString) override
    {
        const QString path = qEnvironmentVariable("VARNEL_DRIVER_SOCKET");
        if (path.isEmpty())
            return true;
        Commands commands;
        addIdeCommands(&commands);
        addItemCommands(&commands);
        addWidgetCommands(&commands);
        m_server = std::make_unique<CommandServer>(commands);
        return m_server->listen(path, errorString);
    }

private:
    std::unique_ptr<CommandServer> m_server; // none without a socket's path
};

} // namespace Varnel::Driver

#include "plugin.moc"
