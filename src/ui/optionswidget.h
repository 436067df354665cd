// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "settings/settings.h"
#include "ui/examplerow.h"
#include "ui/manifestscan.h"

#include <coreplugin/dialogs/ioptionspage.h>

#include <memory>

namespace Varnel::Internal {

class Ui_OptionsWidget;

/**
 * The options page's content: the installed examples of each repository and the interval of the update
 * checks.
 *
 * Additions and removals are only queued, in this widget's own copy of the settings, until apply(). The
 * queues survive a redraw of the list, as do filter, selection and scroll position, but the rows that show
 * them do not. Needs the download service. Main thread only.
 */
class OptionsWidget final : public Core::IOptionsPageWidget
{
    Q_OBJECT

public:
    OptionsWidget();
    ~OptionsWidget() override;

    /**
     * Deletes what is queued for removal, has the service download what is queued for installation, and saves
     * the settings. Does not wait for downloads, reports no failure and keeps the queues.
     */
    void apply() override;

private slots:
    void showExamples(const QString &repositoryName);
    void scanInstalledExamples();

private:
    void onScanned(const Manifests &manifests);
    [[nodiscard]] ExampleRows makeRows(const QString &repositoryName);
    [[nodiscard]] static ToolTip
    makeToolTip(const QString &path, const QDateTime &installationTime, bool isOutdated);
    [[nodiscard]] ToolTip repositoryToolTip(const QString &repositoryName) const;
    void fillRepositoryComboBox();
    void connectSignals();
    void addExamples();
    void removeExamples();
    void queueForInstallation(const QSet<QString> &names);
    void applyQueues(const QString &repositoryName, Settings::RepositoryInfo &info) const;
    [[nodiscard]] Settings::RepositoryInfo &currentRepository();

    std::unique_ptr<Ui_OptionsWidget> ui;
    Settings m_settings;
    ManifestScan m_scan{this};
    QHash<QString, QString> m_folders; // canonical, by the manifests in them
    QString m_shownRepository;         // the one whose rows the list shows
};

} // namespace Varnel::Internal
