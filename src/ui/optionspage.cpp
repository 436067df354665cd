// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/optionspage.h"

#include "plugin/constants.h"
#include "ui/optionswidget.h"

namespace Varnel::Internal {

OptionsPage::OptionsPage(
    const QString &displayName, Utils::Id id, std::function<OptionsWidget *()> creator, QObject *parent)
    : QObject(parent)
    , Core::IOptionsPage(true)
{
    setId(id);
    setDisplayName(displayName);
    setCategory(Utils::Id(Constants::OPTIONS_CATEGORY));
    setWidgetCreator([creator = std::move(creator)]() -> QWidget * { return creator(); });
}

} // namespace Varnel::Internal
