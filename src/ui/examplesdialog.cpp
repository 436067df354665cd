// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/examplesdialog.h"

#include "client/requestpolicy.h"
#include "plugin/plugin.h"
#include "ui/examplerow.h"
#include "ui/listfilter.h"
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

// The desktop would start what stands for any other scheme, with an address of the server's choice.
QUrl webAddress(const QString &text)
{
    const QUrl url = addressOf(text);
    return url.isValid() && !url.isEmpty() && faultOfAddress(url).isNull() ? url : QUrl();
}

} // namespace

ExamplesDialog::ExamplesDialog(const Repository::Examples &examples, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui_ExamplesDialog>())
{
    ui->setupUi(this);
    setUpExampleRows(ui->examplesListWidget);
    setUpFilter(ui->filterLineEdit, ui->examplesListWidget);
    Plugin::initMenu(ui->examplesListWidget, webAddress);
    showRows(examples);
}

ExamplesDialog::~ExamplesDialog() = default;

void ExamplesDialog::accept()
{
    const QList<QListWidgetItem *> rows = ui->examplesListWidget->selectedItems();
    for (const QListWidgetItem *row : rows)
        m_selected.insert(row->text());
    QDialog::accept();
}

void ExamplesDialog::showRows(const Repository::Examples &examples)
{
    ExampleRows rows;
    rows.reserve(size_t(examples.size()));
    for (const Repository::ExamplePtr &example : examples) {
        auto row = std::make_unique<ExampleRow>(
            example->project().value(u"path").toString(), [example] { return makeToolTip(*example); });
        row->setData(Qt::UserRole, example->project().value(u"web_url").toString());
        rows.push_back(std::move(row));
    }
    addRows(ui->examplesListWidget, std::move(rows));
}

ToolTip ExamplesDialog::makeToolTip(const Example &example)
{
    const QJsonObject &project = example.project();
    return {
        tr(TOOLTIP),
        {project.value(u"name").toString(),
         project.value(u"description").toString(),
         example.lastActivity().toLocalTime().toString(Qt::TextDate),
         project.value(u"web_url").toString()}};
}

} // namespace Varnel::Internal
