// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// An IDE plug-in that does nothing: Varnel depends on the SDK's plug-in of this id, and a stock IDE
// does not load a plug-in whose dependency is missing.

#include <extensionsystem/iplugin.h>

namespace FerronaOS {

class Plugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "ferronaos.json")
};

} // namespace FerronaOS

#include "plugin.moc"
