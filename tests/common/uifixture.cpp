// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/uifixture.h"

#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"
#include "settings/settings.h"
#include "ui/optionswidget.h"

#include <extensionsystem/pluginmanager.h>
#include <utils/qtcsettings.h>
#include <utils/theme/theme_p.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTest>

#include <filesystem>

namespace Varnel::Test {

using Internal::Settings;

namespace {

QStringList namesIn(const QString &message)
{
    static const QRegularExpression QUOTED("\"([^\"]*)\"");
    QStringList result;
    for (const QRegularExpressionMatch &match : QUOTED.globalMatch(message))
        result.append(match.captured(1));
    result.sort();
    return result;
}

} // namespace

void setUpTheme()
{
    Utils::setCreatorTheme(new Utils::Theme("test")); // takes it over
}

UiFixture::UiFixture()
{
    setUpTheme();
}

UiFixture::~UiFixture()
{
    quitApplication();
}

void UiFixture::setRepositoryNames(const QStringList &names)
{
    QStringList entries;
    for (const QString &name : names)
        entries.append(name + "|http://127.0.0.1:1/" + name + '|');
    m_ide.set(Constants::REPOSITORIES, entries);
}

void UiFixture::reset()
{
    closeMessageBoxes();
    m_plugin.reset();
    std::filesystem::remove_all(dataRoot().toStdString()); // QDir would leave names that are not UTF-8
    m_ide.reset();
    m_ide.set(Constants::UPDATES_TIMEOUT, 0); // a listing downloads nothing by itself
}

void UiFixture::start()
{
    m_plugin.reset(); // its page has to be gone before another one with the same id comes
    m_plugin = std::make_unique<Plugin>();
    QString error;
    QVERIFY(m_plugin->initialize({}, &error));
}

DownloadService &UiFixture::service() const
{
    return *Plugin::downloadService();
}

void UiFixture::list(const QString &repository, const Repository::Examples &examples) const
{
    const QSharedPointer<Repository> target = service().findRepository(repository);
    QVERIFY(target);
    target->onFetched(examples);
    waitForScans();
}

void UiFixture::update() const
{
    emit service().updated();
    waitForScans();
}

QHash<QString, Queues> UiFixture::applyAndReport(OptionsWidget &page)
{
    LogRecorder log;
    page.apply();

    QHash<QString, Queues> result;
    QString repository;
    for (const QString &message : log.lines(LogRecorder::MAIN)) {
        if (message.startsWith("Repository:"))
            repository = namesIn(message).value(0);
        else if (message.startsWith("Examples to install: QSet("))
            result[repository].toInstall = namesIn(message);
        else if (message.startsWith("Examples to remove: QSet("))
            result[repository].toRemove = namesIn(message);
    }
    return result;
}

QHash<QString, Queues> UiFixture::applyOffline(OptionsWidget &page) const
{
    const auto repositories = page.findChild<QComboBox *>("repositoryComboBox");
    for (int i = 0; i < repositories->count(); ++i)
        list(repositories->itemText(i), {});
    return applyAndReport(page);
}

void waitForScans()
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        if (const auto page = qobject_cast<const OptionsWidget *>(widget))
            QTRY_VERIFY(!page->findChild<Internal::ManifestScan *>()->isRunning());
    }
}

Repository::ExamplePtr makeActiveExample(const QString &path, const QString &lastActivity)
{
    return makeExample(path, {{"last_activity_at", lastActivity}});
}

QString install(const QString &repository, const QString &path, const QDateTime &time)
{
    const QString directory = exampleDirectory(repository, path);
    const QString manifest = directory + '/' + QLatin1StringView(Constants::MANIFEST_FILE);
    writeFile(manifest, "<instructionals/>");
    if (time.isValid())
        setTime(manifest, time);
    return manifest;
}

QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int row = 0; row < list->count(); ++row)
        result.append(list->item(row)->text());
    return result;
}

QStringList visibleTexts(const QListWidget *list)
{
    QStringList result;
    for (int row = 0; row < list->count(); ++row) {
        if (!list->item(row)->isHidden())
            result.append(list->item(row)->text());
    }
    return result;
}

QListWidgetItem *findRow(const QListWidget *list, const QString &text)
{
    return list->findItems(text, Qt::MatchExactly).value(0);
}

void selectRows(QListWidget *list, const QStringList &texts)
{
    list->clearSelection();
    for (const QString &text : texts) {
        QListWidgetItem *row = findRow(list, text);
        QVERIFY2(row, qPrintable(text));
        row->setSelected(true);
    }
}

QWidget *frontWindow()
{
    QWidget *popup = QApplication::activePopupWidget();
    return popup ? popup : QApplication::activeModalWidget();
}

QMessageBox *messageBox()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (auto box = qobject_cast<QMessageBox *>(window); box && box->isVisible())
            return box;
    }
    return nullptr;
}

void closeMessageBoxes()
{
    while (QMessageBox *box = messageBox())
        delete box;
}

} // namespace Varnel::Test
