// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/listfilter.h"

#include "ui/listrows.h"

#include <utils/fancylineedit.h>

#include <QKeyEvent>
#include <QListWidget>

namespace Varnel::Internal {

namespace {

class ReturnKeyStopper final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *line, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent *>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter)
                return true;
        }
        return QObject::eventFilter(line, event);
    }
};

} // namespace

void setUpFilter(Utils::FancyLineEdit *line, QListWidget *list)
{
    line->setFiltering(true);
    line->installEventFilter(new ReturnKeyStopper(line));
    QObject::connect(
        line, &QLineEdit::textChanged, list, [list](const QString &text) { filterRows(list, text); });
}

} // namespace Varnel::Internal
