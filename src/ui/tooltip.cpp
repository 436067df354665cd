// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/tooltip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace Varnel::Internal {

using namespace Qt::StringLiterals;

namespace {

// Line separators would make a tool tip as high as there are characters, and markers would be filled in.
QString asPlainText(const QString &value)
{
    return shortened(value).simplified().toHtmlEscaped().replace(u'%', u"&#37;"_s);
}

} // namespace

QString shortened(const QString &text)
{
    return text.size() > SHOWN_CHARACTERS ? text.first(SHOWN_CHARACTERS - 1) + u'\u2026' : text;
}

QString ToolTip::filled() const
{
    QString result = pattern;
    for (const QString &value : values)
        result = result.arg(value);
    return result;
}

QString ToolTip::shown() const
{
    ToolTip plain{pattern, {}};
    for (const QString &value : values)
        plain.values.append(asPlainText(value));
    return plain.filled();
}

ToolTips::ToolTips(QAbstractItemView *view, Texts texts)
    : QObject(view)
    , m_view(view)
    , m_texts(std::move(texts))
{
    view->viewport()->installEventFilter(this);
}

bool ToolTips::eventFilter(QObject *viewport, QEvent *event)
{
    if (event->type() == QEvent::ToolTip && show(*static_cast<QHelpEvent *>(event)))
        return true;
    return QObject::eventFilter(viewport, event);
}

bool ToolTips::show(const QHelpEvent &request) const
{
    const QModelIndex index = m_view->indexAt(request.pos());
    const QString text = index.isValid() ? m_texts(index) : QString();
    if (text.isEmpty())
        return false;
    QToolTip::showText(request.globalPos(), text, m_view->viewport(), m_view->visualRect(index));
    return true;
}

} // namespace Varnel::Internal
