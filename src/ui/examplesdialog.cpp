// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/examplesdialog.h"

#include "plugin/plugin.h"
#include "ui/listrows.h"
#include "ui_examplesdialog.h"

#include <QUrl>

namespace Varnel::Internal {

namespace {

// One literal, as the translation tools know it by its whole text.
constexpr char TOOLTIP[] = QT_TRANSLATE_NOOP(
    "Varnel::Internal::ExamplesDialog",
    "<table><tbody>"
    "<tr><td style=\"width: 40%;\">Name:&nbsp;</td><td style=\"width: 60%;\">%1</td></tr>"
    "<tr><td style=\"width: 40%;\">Description:&nbsp;</td><td style=\"width: 60%;\">%2</td></tr>"
    "<tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\">%3</td></tr>"
    "<tr><td style=\"width: 40%;\">Location:&nbsp;</td><td style=\"width: 60%;\">%4</td></tr>"
    "</tbody></table>");

} // namespace

ExamplesDialog::ExamplesDialog(const Repository::Examples &examples, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui_ExamplesDialog>())
{
    ui->setupUi(this);
    ui->filterLineEdit->setFiltering(true);
    Plugin::initMenu(
        ui->examplesListWidget, [](const QString &text) { return QUrl(text, QUrl::TolerantMode); });
    connect(ui->filterLineEdit, &QLineEdit::textChanged, this, [this](const QString &text) {
        filterRows(ui->examplesListWidget, text);
    });
    addRows(examples);
}

ExamplesDialog::~ExamplesDialog() = default;

void ExamplesDialog::accept()
{
    const QList<QListWidgetItem *> rows = ui->examplesListWidget->selectedItems();
    for (const QListWidgetItem *row : rows)
        m_selected.insert(row->text());
    QDialog::accept();
}

void ExamplesDialog::addRows(const Repository::Examples &examples)
{
    const QString toolTip = tr(TOOLTIP);
    for (const Repository::ExamplePtr &example : examples) {
        const QJsonObject &project = example->project();
        const QString webUrl = project.value(u"web_url").toString();
        auto row = std::make_unique<QListWidgetItem>(project.value(u"path").toString());
        row->setToolTip(toolTip.arg(project.value(u"name").toString())
                            .arg(project.value(u"description").toString())
                            .arg(example->lastActivity().toLocalTime().toString(Qt::TextDate))
                            .arg(webUrl));
        row->setData(Qt::UserRole, webUrl);
        ui->examplesListWidget->addItem(row.release());
    }
}

} // namespace Varnel::Internal
