// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QDialog>
#include <QSet>

#include <memory>

namespace Varnel::Internal {

class Ui_ExamplesDialog;
struct ToolTip;

/** Lets the user choose among the examples of a repository. Lists them all, also those that are installed. */
class ExamplesDialog final : public QDialog
{
    Q_OBJECT

public:
    ExamplesDialog(const Repository::Examples &examples, QWidget *parent);
    ~ExamplesDialog() override;

    /** Paths of the chosen examples: empty until the dialog is accepted, and if it is rejected. */
    [[nodiscard]] const QSet<QString> &selected() const { return m_selected; }

    void accept() override;

private:
    void showRows(const Repository::Examples &examples);
    [[nodiscard]] static ToolTip makeToolTip(const Example &example);

    std::unique_ptr<Ui_ExamplesDialog> ui;
    QSet<QString> m_selected;
};

} // namespace Varnel::Internal
