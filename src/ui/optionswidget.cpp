// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/optionswidget.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "plugin/plugin.h"
#include "service/downloadservice.h"
#include "service/filesystem.h"
#include "service/placement.h"
#include "ui/examplesdialog.h"
#include "ui/examplerow.h"
#include "ui/listfilter.h"
#include "ui/listrows.h"
#include "ui_optionswidget.h"

#include <coreplugin/helpmanager.h>
#include <coreplugin/icore.h>
#include <coreplugin/messagebox.h>

#include <QDir>
#include <QPointer>

#include <algorithm>
#include <set>

namespace Varnel::Internal {

namespace {

// Each is one literal, as the translation tools know it by its whole text.
constexpr char TOOLTIP1[] = QT_TRANSLATE_NOOP(
    "Varnel::Internal::OptionsWidget",
    "<table><tbody>"
    "<tr><td style=\"width: 40%;\">Location:&nbsp;</td><td style=\"width: 60%;\">%1</td></tr>"
    "<tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\">%2</td></tr>"
    "<tr><td style=\"width: 40%;\">Status:&nbsp;</td><td style=\"width: 60%;\">%3</td></tr>"
    "</tbody></table>");
constexpr char TOOLTIP2[] = QT_TRANSLATE_NOOP(
    "Varnel::Internal::OptionsWidget",
    "<table><tbody>"
    "<tr><td style=\"width: 40%;\">Folder:&nbsp;</td><td style=\"width: 60%;\">%1</td></tr>"
    "<tr><td style=\"width: 40%;\">Link:&nbsp;</td><td style=\"width: 60%;\">%2</td></tr>"
    "</tbody></table>");

constexpr QRgb OUTDATED_BACKGROUND = qRgb(226, 178, 182);
constexpr QRgb OUTDATED_TEXT
    = qRgb(32, 32, 32); // dark in every theme, as the background is light in every theme

struct CaseInsensitiveLess
{
    bool operator()(const QString &left, const QString &right) const
    {
        return left.compare(right, Qt::CaseInsensitive) < 0;
    }
};

QString repositoryFolder(const QString &repositoryName)
{
    return Settings::location().arg(repositoryName);
}

void announceDocumentationChange()
{
    const auto helpSignals = Core::HelpManager::Signals::instance();
    emit helpSignals->documentationChanged();
}

void removeDuplicates(QSet<QString> &toInstall, QSet<QString> &toRemove)
{
    const QSet<QString> common = toInstall & toRemove;
    toInstall -= common;
    toRemove -= common;
}

// A row is marked if any online example of its name is newer, so the latest one of each name decides.
QHash<QString, QDateTime>
findLatestActivities(const Repository::Examples &examples, const QList<QFileInfo> &manifests)
{
    QHash<QString, QDateTime> result;
    for (const QFileInfo &manifest : manifests)
        result.insert(manifest.dir().dirName(), {});
    for (const Repository::ExamplePtr &example : examples) {
        const auto latest = result.find(example->name());
        if (latest == result.end())
            continue;
        const QDateTime activity = example->lastActivity();
        if (activity.isValid() && (!latest->isValid() || *latest < activity))
            *latest = activity;
    }
    return result;
}

// What is compared is files, not their names. A manifest that is gone has no canonical path, and neither has
// the one of a deleted folder: all that are gone are forgotten together.
void forgetManifests(QList<QFileInfo> &manifests, const QStringList &folders)
{
    QSet<QString> paths;
    for (const QString &folder : folders) {
        const QString canonicalFolder = QDir(folder).canonicalPath();
        paths.insert(QFileInfo(canonicalFolder + u'/' + QLatin1StringView(Constants::MANIFEST_FILE))
                         .canonicalFilePath());
    }
    manifests.removeIf([&paths](const QFileInfo &manifest) {
        return paths.contains(QFileInfo(manifest.filePath()).canonicalFilePath());
    });
}

} // namespace

OptionsWidget::OptionsWidget()
    : ui(std::make_unique<Ui_OptionsWidget>())
{
    m_settings.load(Core::ICore::settings());

    ui->setupUi(this);
    const auto maximum = quint32(ui->timeoutSpinBox->maximum());
    ui->timeoutSpinBox->setValue(int(std::min(m_settings.updatesCheckTimeoutDays, maximum)));
    fillRepositoryComboBox();
    setUpExampleRows(ui->examplesListWidget);
    setUpFilter(ui->filterLineEdit, ui->examplesListWidget);
    Plugin::initMenu(ui->examplesListWidget, &QUrl::fromLocalFile);

    connectSignals();
    scanInstalledExamples();
}

OptionsWidget::~OptionsWidget() = default;

void OptionsWidget::apply()
{
    for (auto it = m_settings.repositories.begin(); it != m_settings.repositories.end(); ++it)
        applyQueues(it.key(), it.value());
    if (m_scan.isRunning())
        scanInstalledExamples(); // it may have seen what was removed
    m_settings.updatesCheckTimeoutDays = quint32(ui->timeoutSpinBox->value());
    m_settings.save(Core::ICore::settings());
}

void OptionsWidget::showExamples(const QString &repositoryName)
{
    QListWidget *list = ui->examplesListWidget;
    const ListState state(*list);
    const bool isRedraw = repositoryName == m_shownRepository;
    m_shownRepository = repositoryName;

    list->clear();
    addRows(list, makeRows(repositoryName));
    filterRows(list, ui->filterLineEdit->text());
    if (isRedraw)
        state.restore(list);
    else
        list->scrollToTop(); // it would stay where the other repository was
}

void OptionsWidget::scanInstalledExamples()
{
    Folders folders;
    for (auto it = m_settings.repositories.begin(); it != m_settings.repositories.end(); ++it) {
        // The entry without a name stands for "none" and is no repository; its folder would be that of them
        // all.
        if (!it.key().isEmpty())
            folders.insert(it.key(), repositoryFolder(it.key()));
    }
    m_scan.start(folders);
}

void OptionsWidget::onScanned(const Manifests &manifests)
{
    for (auto it = m_settings.repositories.begin(); it != m_settings.repositories.end(); ++it)
        it->installed = manifests.byRepository.value(it.key());
    m_folders = manifests.folders;
    showExamples(ui->repositoryComboBox->currentText());
    announceDocumentationChange();
}

ExampleRows OptionsWidget::makeRows(const QString &repositoryName)
{
    const QList<QFileInfo> &installed = m_settings.repositories[repositoryName].installed;
    const QHash<QString, QDateTime> latestActivities
        = findLatestActivities(Plugin::downloadService()->examples(repositoryName), installed);
    ExampleRows rows;
    for (const QFileInfo &manifest : installed) {
        const QDir dir = manifest.dir();
        const QString path = m_folders.value(manifest.filePath());
        const QDateTime installationTime = manifest.lastModified();
        const bool isOutdated = installationTime.secsTo(latestActivities.value(dir.dirName())) > 0;
        auto row = std::make_unique<ExampleRow>(dir.dirName(), [path, installationTime, isOutdated] {
            return makeToolTip(path, installationTime, isOutdated);
        });
        if (isOutdated) {
            row->setBackground(QColor(OUTDATED_BACKGROUND));
            row->setForeground(QColor(OUTDATED_TEXT));
        }
        row->setData(Qt::UserRole, path);
        rows.push_back(std::move(row));
    }
    return rows;
}

ToolTip OptionsWidget::makeToolTip(const QString &path, const QDateTime &installationTime, bool isOutdated)
{
    return {
        tr(TOOLTIP1),
        {QDir::toNativeSeparators(path),
         installationTime.toLocalTime().toString(Qt::TextDate),
         isOutdated ? tr("Update available") : tr("Updated")}};
}

ToolTip OptionsWidget::repositoryToolTip(const QString &repositoryName) const
{
    return {
        tr(TOOLTIP2),
        {QDir::toNativeSeparators(repositoryFolder(repositoryName)),
         m_settings.repositories.value(repositoryName).url.toString()}};
}

void OptionsWidget::fillRepositoryComboBox()
{
    QStringList names = m_settings.repositories.keys();
    names.sort();
    for (const QString &name : std::as_const(names)) {
        ui->repositoryComboBox->addItem(name);
        const int item = ui->repositoryComboBox->count() - 1;
        ui->repositoryComboBox->setItemData(item, repositoryToolTip(name).filled(), Qt::ToolTipRole);
    }
    new ToolTips(ui->repositoryComboBox->view(), [this](const QModelIndex &item) {
        return repositoryToolTip(item.data().toString()).shown();
    });
}

void OptionsWidget::connectSignals()
{
    connect(ui->repositoryComboBox, &QComboBox::currentTextChanged, this, &OptionsWidget::showExamples);
    connect(ui->addButton, &QPushButton::clicked, this, &OptionsWidget::addExamples);
    connect(ui->removeButton, &QPushButton::clicked, this, &OptionsWidget::removeExamples);
    connect(&m_scan, &ManifestScan::finished, this, &OptionsWidget::onScanned);
    connect(
        Plugin::downloadService(), &DownloadService::updated, this, &OptionsWidget::scanInstalledExamples);
}

void OptionsWidget::addExamples()
{
    const Repository::Examples examples
        = Plugin::downloadService()->examples(ui->repositoryComboBox->currentText());
    if (examples.isEmpty()) {
        Core::AsynchronousMessageBox::warning(
            tr("Examples Not Found"), tr("Check your online connection and try again later!"));
        return;
    }

    // The dialog is ours and goes with us if the page is closed under it.
    const QPointer<ExamplesDialog> dialog = new ExamplesDialog(examples, this);
    dialog->exec();
    if (!dialog)
        return;
    queueForInstallation(dialog->selected());
    delete dialog;
}

void OptionsWidget::removeExamples()
{
    const QList<QListWidgetItem *> selected = ui->examplesListWidget->selectedItems();
    if (selected.isEmpty()) {
        Core::AsynchronousMessageBox::information(
            tr("Examples Not Selected"),
            tr("Select examples to remove, press Remove button, "
               "then press Apply button to apply changes."));
        return;
    }

    Settings::RepositoryInfo &info = currentRepository();
    for (const QListWidgetItem *row : selected)
        info.toRemove.insert(row->text());
    deleteSelectedRows(ui->examplesListWidget);
    removeDuplicates(info.toInstall, info.toRemove);
}

void OptionsWidget::queueForInstallation(const QSet<QString> &names)
{
    std::set<QString, CaseInsensitiveLess> listed;
    for (int row = 0; row < ui->examplesListWidget->count(); ++row)
        listed.insert(ui->examplesListWidget->item(row)->text());

    Settings::RepositoryInfo &info = currentRepository();
    ExampleRows added;
    for (const QString &name : names) {
        if (listed.insert(name).second) {
            info.toInstall.insert(name);
            added.push_back(std::make_unique<ExampleRow>(name));
        }
    }
    addRows(ui->examplesListWidget, std::move(added));
    filterRows(ui->examplesListWidget, ui->filterLineEdit->text());
    removeDuplicates(info.toInstall, info.toRemove);
}

void OptionsWidget::applyQueues(const QString &repositoryName, Settings::RepositoryInfo &info) const
{
    qCDebug(Log::main) << "Repository:" << repositoryName;
    qCDebug(Log::main) << "Examples to install:" << info.toInstall;
    qCDebug(Log::main) << "Examples to remove:" << info.toRemove;
    if (info.toRemove.isEmpty() && info.toInstall.isEmpty())
        return;

    const QString folderPattern = repositoryFolder(repositoryName) + "/%1";
    QStringList folders;
    for (const QString &name : std::as_const(info.toRemove)) {
        folders.append(folderPattern.arg(name));
        // Any other name would lead out of the repository's folder, or into that of another one.
        if (isPlainName(name) && !holdsRepository(folders.constLast(), m_settings.repositories.keys()))
            removeTree(folders.constLast());
    }
    forgetManifests(info.installed, folders);
    info.examples += info.toRemove;
    info.examples -= info.toInstall;

    Plugin::downloadService()->save(repositoryName, info.toInstall);
    announceDocumentationChange();
}

Settings::RepositoryInfo &OptionsWidget::currentRepository()
{
    return m_settings.repositories[ui->repositoryComboBox->currentText()];
}

} // namespace Varnel::Internal
