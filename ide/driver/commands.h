// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <functional>

namespace Varnel::Driver {

struct Answer
{
    QJsonValue value = {};
    QString error = {}; ///< not empty: the command was not done, and why
    /** Done after the answer was sent, as it may not return until a dialog or menu is closed. */
    std::function<void()> afterwards = {};

    [[nodiscard]] static Answer failure(const QString &error) { return {.error = error}; }
    [[nodiscard]] static Answer first(const std::function<void()> &afterwards)
    {
        return {.afterwards = afterwards};
    }
};

/** What a command does with its arguments. */
using Command = std::function<Answer(const QJsonObject &)>;
using Commands = QHash<QString, Command>;

/** The IDE as a whole: modes, preferences, Welcome screen, screenshots, the end. */
void addIdeCommands(Commands *commands);
/** Lists and combo boxes. */
void addItemCommands(Commands *commands);
/** Any object: finding, properties, mouse, keyboard, menus. */
void addWidgetCommands(Commands *commands);

} // namespace Varnel::Driver
