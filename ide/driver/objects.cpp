// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "objects.h"

#include <QBrush>
#include <QColor>
#include <QJsonArray>
#include <QMessageBox>
#include <QPointer>
#include <QTabBar>
#include <QWidget>

namespace Varnel::Driver {

namespace {

QList<QPointer<QObject>> &known()
{
    static QList<QPointer<QObject>> objects;
    return objects;
}

QString textOf(const QObject &object)
{
    for (const char *property : {"text", "title", "windowTitle", "currentText", "plainText"}) {
        const QString text = object.property(property).toString();
        if (!text.isEmpty())
            return text;
    }
    const auto tabs = qobject_cast<const QTabBar *>(&object);
    return tabs ? tabs->tabText(tabs->currentIndex()) : QString();
}

QJsonObject geometryOf(const QWidget &widget)
{
    const QPoint position = widget.mapToGlobal(QPoint());
    return {{"x", position.x()}, {"y", position.y()}, {"width", widget.width()}, {"height", widget.height()}};
}

} // namespace

int numberOf(QObject *object)
{
    const qsizetype number = known().indexOf(object);
    if (number >= 0)
        return int(number);
    known().append(object);
    return int(known().size() - 1);
}

QObject *objectOf(const QJsonObject &arguments)
{
    return known().value(arguments.value("object").toInt(-1));
}

QJsonObject description(QObject *object)
{
    QJsonObject result{
        {"object", numberOf(object)},
        {"class", QString::fromLatin1(object->metaObject()->className())},
        {"name", object->objectName()},
        {"text", textOf(*object)}};
    if (const auto widget = qobject_cast<const QWidget *>(object)) {
        result.insert("visible", widget->isVisible());
        result.insert("enabled", widget->isEnabled());
        result.insert("window", widget->isWindow());
        result.insert("modal", widget->isModal());
        result.insert("geometry", geometryOf(*widget));
    }
    return result;
}

QJsonValue toJson(const QVariant &value)
{
    if (!value.isValid())
        return QJsonValue::Null;
    if (value.canConvert<QBrush>()) {
        const auto brush = value.value<QBrush>();
        return brush.style() == Qt::NoBrush ? QJsonValue(QJsonValue::Null) : QJsonValue(brush.color().name());
    }
    if (value.metaType() == QMetaType::fromType<QSize>())
        return QJsonObject{{"width", value.toSize().width()}, {"height", value.toSize().height()}};
    const QJsonValue json = QJsonValue::fromVariant(value);
    return json.isNull() ? QJsonValue(value.toString()) : json;
}

} // namespace Varnel::Driver
