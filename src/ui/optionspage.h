// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <coreplugin/dialogs/ioptionspage.h>
#include <utils/id.h>

#include <QObject>

#include <functional>

namespace Varnel::Internal {

class OptionsWidget;

/** Registers one page in the Help category of the IDE's preferences, for as long as it lives. */
class OptionsPage final : public QObject, public Core::IOptionsPage
{
    Q_OBJECT

public:
    /** @p creator makes the page's widget each time the IDE asks for one; it must be set. */
    OptionsPage(
        const QString &displayName, Utils::Id id, std::function<OptionsWidget *()> creator, QObject *parent);
};

} // namespace Varnel::Internal
