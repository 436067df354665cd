// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// How a test names the IDE's objects: by a number that it was given for one that it found.
#pragma once

#include "commands.h"

QT_BEGIN_NAMESPACE
class QObject;
class QWidget;
QT_END_NAMESPACE

namespace Varnel::Driver {

/** The number of an object; the same one as long as the object lives. */
[[nodiscard]] int numberOf(QObject *object);

/** The object that a command's argument "object" names; null if there is none or it is gone. */
[[nodiscard]] QObject *objectOf(const QJsonObject &arguments);

/** What a test is told of an object. */
[[nodiscard]] QJsonObject description(QObject *object);

/**
 * A value as a test sees it: what JSON does not know comes as text, a colour as "#rrggbb", a size as an
 * object.
 */
[[nodiscard]] QJsonValue toJson(const QVariant &value);

/** A command for an object of one class; fails by itself where the object is of another one. */
template<class Object>
Command forObject(const std::function<Answer(Object *, const QJsonObject &)> &command)
{
    return [command](const QJsonObject &arguments) {
        if (auto object = qobject_cast<Object *>(objectOf(arguments)))
            return command(object, arguments);
        return Answer::failure(
            QString("there is no such %1").arg(QLatin1StringView(Object::staticMetaObject.className())));
    };
}

} // namespace Varnel::Driver
