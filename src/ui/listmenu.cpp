// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The context menu that the lists of installed and of online examples share.

#include "plugin/logging.h"
#include "plugin/plugin.h"

#include <QDesktopServices>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QUrl>

namespace Varnel::Internal {

// A member of the plug-in, in whose context translations know the menu's text.
void Plugin::initMenu(QListWidget *list, std::function<QUrl(const QString &)> toUrl)
{
    const auto onMenuRequested = [list = QPointer(list), toUrl = std::move(toUrl)](const QPoint &pos) {
        if (!list->itemAt(pos))
            return;

        QMenu menu;
        menu.addAction(tr("Open location..."));
        // The list view gives positions in its viewport, for the mouse and for the menu key alike.
        const bool isChosen = menu.exec(list->viewport()->mapToGlobal(pos));
        if (!isChosen || !list)
            return;

        const QList<QListWidgetItem *> selected = list->selectedItems();
        for (const QListWidgetItem *item : selected) {
            if (!QDesktopServices::openUrl(toUrl(item->data(Qt::UserRole).toString())))
                qCDebug(Log::main) << "Unable to open location:" << item->text();
        }
    };

    list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list, &QListWidget::customContextMenuRequested, list, onMenuRequested, Qt::DirectConnection);
}

} // namespace Varnel::Internal
