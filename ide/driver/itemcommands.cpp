// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "objects.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QJsonArray>
#include <QListView>

namespace Varnel::Driver {

namespace {

QJsonObject rowOf(const QAbstractItemView &view, const QModelIndex &index)
{
    const auto list = qobject_cast<const QListView *>(&view);
    return {
        {"text", index.data(Qt::DisplayRole).toString()},
        {"toolTip", index.data(Qt::ToolTipRole).toString()},
        {"data", toJson(index.data(Qt::UserRole))},
        {"background", toJson(index.data(Qt::BackgroundRole))},
        {"foreground", toJson(index.data(Qt::ForegroundRole))},
        {"hidden", list && list->isRowHidden(index.row())},
        {"selected", view.selectionModel()->isSelected(index)}};
}

Answer rows(QAbstractItemView *view, const QJsonObject &)
{
    QJsonArray result;
    const QAbstractItemModel *model = view->model();
    for (int row = 0; row < model->rowCount(view->rootIndex()); ++row)
        result.append(rowOf(*view, model->index(row, 0, view->rootIndex())));
    return {.value = result};
}

void collectTexts(const QAbstractItemModel &model, const QModelIndex &parent, QJsonArray *texts)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        texts->append(index.data(Qt::DisplayRole).toString());
        collectTexts(model, index, texts);
    }
}

// Of a whole tree, whether its branches are open or not.
Answer texts(QAbstractItemView *view, const QJsonObject &)
{
    QJsonArray result;
    collectTexts(*view->model(), view->rootIndex(), &result);
    return {.value = result};
}

QModelIndex findRow(const QAbstractItemView &view, const QString &text)
{
    const QAbstractItemModel *model = view.model();
    for (int row = 0; row < model->rowCount(view.rootIndex()); ++row) {
        const QModelIndex index = model->index(row, 0, view.rootIndex());
        if (index.data(Qt::DisplayRole).toString() == text)
            return index;
    }
    return {};
}

// Exactly these rows; the first is the current one.
Answer select(QAbstractItemView *view, const QJsonObject &arguments)
{
    QModelIndex first;
    QItemSelection selection;
    const QStringList texts = arguments.value("rows").toVariant().toStringList();
    for (const QString &text : texts) {
        const QModelIndex index = findRow(*view, text);
        if (!index.isValid())
            return Answer::failure("there is no row \"" + text + '"');
        selection.select(index, index);
        if (!first.isValid())
            first = index;
    }
    view->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    return {};
}

Answer items(QComboBox *box, const QJsonObject &)
{
    QJsonArray result;
    for (int item = 0; item < box->count(); ++item) {
        result.append(QJsonObject{
            {"text", box->itemText(item)}, {"toolTip", box->itemData(item, Qt::ToolTipRole).toString()}});
    }
    return {.value = result};
}

// As by the user, who also activates what is chosen.
Answer chooseItem(QComboBox *box, const QJsonObject &arguments)
{
    const QString text = arguments.value("text").toString();
    const int item = box->findText(text);
    if (item < 0)
        return Answer::failure("there is no item \"" + text + '"');
    box->setCurrentIndex(item);
    emit box->activated(item);
    emit box->textActivated(text);
    return {};
}

} // namespace

void addItemCommands(Commands *commands)
{
    commands->insert("rows", forObject<QAbstractItemView>(rows));
    commands->insert("texts", forObject<QAbstractItemView>(texts));
    commands->insert("select", forObject<QAbstractItemView>(select));
    commands->insert("items", forObject<QComboBox>(items));
    commands->insert("choose item", forObject<QComboBox>(chooseItem));
}

} // namespace Varnel::Driver
