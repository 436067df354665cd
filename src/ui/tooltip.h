// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

QT_BEGIN_NAMESPACE
class QAbstractItemView;
class QHelpEvent;
class QModelIndex;
QT_END_NAMESPACE

/**
 * Tool tips in rich text that are made of texts of servers and of users.
 *
 * A rich text reads whatever file of the machine an image in it names: a device without end takes all memory,
 * a pipe holds the main thread for ever. So the text that is shown is another one than the text that is kept.
 */
namespace Varnel::Internal {

/**
 * What a list or a tool tip shows of any text at most: the layout of some million characters takes minutes.
 */
constexpr qsizetype SHOWN_CHARACTERS = 300;

/** The beginning of @p text, with an ellipsis if it is cut. */
[[nodiscard]] QString shortened(const QString &text);

struct ToolTip
{
    QString pattern; ///< rich text with the markers %1, %2 ...
    QStringList values;

    /** The pattern filled in step by step: markers and markup in a value count, whatever that leads to. */
    [[nodiscard]] QString filled() const;
    /** The pattern with the beginning of each value, as plain text. */
    [[nodiscard]] QString shown() const;
};

/**
 * Shows the tool tips of a view's rows by a text of their own instead of by their data; a child of the view.
 */
class ToolTips final : public QObject
{
public:
    using Texts = std::function<QString(const QModelIndex &)>;

    /** Rows for which @p texts returns an empty text are left to the view. */
    ToolTips(QAbstractItemView *view, Texts texts);

    bool eventFilter(QObject *viewport, QEvent *event) override;

private:
    [[nodiscard]] bool show(const QHelpEvent &request) const;

    QAbstractItemView *const m_view;
    const Texts m_texts;
};

} // namespace Varnel::Internal
