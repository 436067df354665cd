// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "objects.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QJsonArray>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QWidget>

namespace Varnel::Driver {

namespace {

// An ampersand in a text marks a letter for the keyboard and is not shown.
QString shown(QString text)
{
    return text.remove('&');
}

bool matches(const QJsonObject &found, const QJsonObject &wanted)
{
    const QStringList keys{"class", "name", "visible", "window", "modal"};
    for (const QString &key : keys) {
        if (wanted.contains(key) && wanted.value(key) != found.value(key))
            return false;
    }
    return !wanted.contains("text")
           || shown(wanted.value("text").toString()) == shown(found.value("text").toString());
}

Answer find(const QJsonObject &arguments)
{
    QWidgetList widgets = QApplication::allWidgets();
    if (arguments.contains("object")) {
        const QObject *root = objectOf(arguments);
        if (!root)
            return Answer::failure("the object to search in is gone");
        widgets = root->findChildren<QWidget *>();
    }
    QJsonArray result;
    for (QWidget *widget : std::as_const(widgets)) {
        const QJsonObject found = description(widget);
        if (matches(found, arguments))
            result.append(found);
    }
    return {.value = result};
}

Answer getProperty(QObject *object, const QJsonObject &arguments)
{
    const QByteArray name = arguments.value("property").toString().toUtf8();
    const QVariant value = object->property(name);
    if (!value.isValid())
        return Answer::failure("there is no property \"" + QString::fromUtf8(name) + '"');
    if (const auto child = value.value<QObject *>())
        return {.value = description(child)};
    return {.value = toJson(value)};
}

Answer setProperty(QObject *object, const QJsonObject &arguments)
{
    const QByteArray name = arguments.value("property").toString().toUtf8();
    if (!object->setProperty(name, arguments.value("to").toVariant()))
        return Answer::failure("there is no property \"" + QString::fromUtf8(name) + "\" of that type");
    return {};
}

Answer call(QObject *object, const QJsonObject &arguments)
{
    const QByteArray method = arguments.value("method").toString().toUtf8();
    if (object->metaObject()->indexOfMethod(
            QMetaObject::normalizedSignature(QByteArray(method + "()").constData()).constData())
        < 0)
        return Answer::failure("there is no slot \"" + QString::fromUtf8(method) + '"');
    return Answer::first([object = QPointer(object), method] {
        if (object)
            QMetaObject::invokeMethod(object, method.constData());
    });
}

bool isReachable(const QWidget &widget)
{
    const QWidget *modal = QApplication::activeModalWidget();
    return widget.isVisible() && widget.isEnabled() && (!modal || modal == widget.window());
}

Answer click(QWidget *widget, const QJsonObject &)
{
    if (!isReachable(*widget))
        return Answer::failure("a user could not click that now: it is hidden, disabled or behind a dialog");
    return Answer::first([widget = QPointer(widget)] {
        if (widget)
            QTest::mouseClick(widget, Qt::LeftButton);
    });
}

QWidget *keyboardReceiver()
{
    for (QWidget *widget :
         {QApplication::activePopupWidget(), QApplication::focusWidget(), QApplication::activeWindow()}) {
        if (widget)
            return widget;
    }
    return nullptr;
}

void type(const QString &text, const QStringList &keys)
{
    if (!text.isEmpty() && keyboardReceiver())
        QTest::keyClicks(keyboardReceiver(), text);
    for (const QString &key : keys) {
        const QKeySequence sequence(key);
        if (!sequence.isEmpty() && keyboardReceiver())
            QTest::keyClick(keyboardReceiver(), sequence[0].key(), sequence[0].keyboardModifiers());
    }
}

// Goes to whatever has the focus, as from a keyboard.
Answer keyboard(const QJsonObject &arguments)
{
    if (!keyboardReceiver())
        return Answer::failure("nothing takes keys");
    const QString text = arguments.value("text").toString();
    const QStringList keys = arguments.value("keys").toVariant().toStringList();
    return Answer::first([text, keys] { type(text, keys); });
}

Answer focus(const QJsonObject &)
{
    QWidget *widget = QApplication::focusWidget();
    return widget ? Answer{.value = description(widget)} : Answer{.value = QJsonValue::Null};
}

// What the menu key does.
Answer contextMenu(QWidget *widget, const QJsonObject &)
{
    return Answer::first([widget = QPointer(widget)] {
        if (!widget)
            return;
        const QPoint position = widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, position, widget->mapToGlobal(position));
        QApplication::sendEvent(widget, &event);
    });
}

Answer popup(const QJsonObject &)
{
    const auto menu = qobject_cast<const QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return {.value = QJsonValue::Null};
    QJsonArray texts;
    const QList<QAction *> actions = menu->actions();
    for (const QAction *action : actions)
        texts.append(shown(action->text()));
    return {.value = texts};
}

Answer choose(const QJsonObject &arguments)
{
    const auto menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return Answer::failure("no menu is open");
    const QString text = arguments.value("text").toString();
    const QList<QAction *> actions = menu->actions();
    for (QAction *action : actions) {
        if (shown(action->text()) == text) {
            return Answer::first([menu, action] {
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
            });
        }
    }
    return Answer::failure("the menu has no such entry");
}

} // namespace

void addWidgetCommands(Commands *commands)
{
    commands->insert("find", find);
    commands->insert("get", forObject<QObject>(getProperty));
    commands->insert("set", forObject<QObject>(setProperty));
    commands->insert("call", forObject<QObject>(call));
    commands->insert("click", forObject<QWidget>(click));
    commands->insert("keyboard", keyboard);
    commands->insert("focus", focus);
    commands->insert("context menu", forObject<QWidget>(contextMenu));
    commands->insert("popup", popup);
    commands->insert("choose", choose);
}

} // namespace Varnel::Driver
