// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "objects.h"

#include <coreplugin/icore.h>
#include <coreplugin/modemanager.h>
#include <coreplugin/welcomepagehelper.h>
#include <extensionsystem/pluginmanager.h>
#include <utils/filepath.h>
#include <utils/id.h>
#include <utils/qtcsettings.h>

#include <QApplication>
#include <QDesktopServices>
#include <QJsonArray>
#include <QListView>
#include <QPixmap>
#include <QPointer>
#include <QScreen>

namespace Varnel::Driver {

namespace {

/** Takes the place of the desktop's handlers and remembers what they would have been given. */
class UrlRecorder final : public QObject
{
    Q_OBJECT

public:
    UrlRecorder()
    {
        for (const QString &scheme : {QString("file"), QString("http"), QString("https")})
            QDesktopServices::setUrlHandler(scheme, this, "record");
    }

    ~UrlRecorder() override
    {
        for (const QString &scheme : {QString("file"), QString("http"), QString("https")})
            QDesktopServices::unsetUrlHandler(scheme);
    }

    [[nodiscard]] QStringList urls() const { return m_urls; }

    Q_INVOKABLE void record(const QUrl &url) { m_urls.append(url.toString()); }

private:
    QStringList m_urls;
};

Answer recordUrls(const QJsonObject &)
{
    static QPointer<UrlRecorder> recorder;
    if (!recorder) {
        recorder = new UrlRecorder;
        recorder->setParent(qApp);
    }
    return {.value = QJsonArray::fromStringList(recorder->urls())};
}

Answer state(const QJsonObject &)
{
    return {
        .value = QJsonObject{
            {"started", ExtensionSystem::PluginManager::isInitializationDone()},
            {"mode", Core::ModeManager::currentModeId().toString()},
            {"window", description(Core::ICore::mainWindow())},
            {"settings", Core::ICore::settings()->fileName()}}};
}

Answer mode(const QJsonObject &arguments)
{
    const auto id = Utils::Id::fromSetting(arguments.value("id").toVariant());
    Core::ModeManager::activateMode(id);
    if (Core::ModeManager::currentModeId() != id)
        return Answer::failure("there is no such mode");
    return {};
}

Answer preferences(const QJsonObject &arguments)
{
    const auto page = Utils::Id::fromSetting(arguments.value("page").toVariant());
    return Answer::first([page] { Core::ICore::showOptionsDialog(page); });
}

Answer setting(const QJsonObject &arguments)
{
    const Utils::Key key = Utils::keyFromString(arguments.value("key").toString());
    return {.value = toJson(Core::ICore::settings()->value(key))};
}

Answer screenshot(const QJsonObject &arguments)
{
    const auto widget = qobject_cast<QWidget *>(objectOf(arguments));
    const QPixmap picture = widget ? widget->grab() : QGuiApplication::primaryScreen()->grabWindow(0);
    const QString file = arguments.value("file").toString();
    if (!picture.save(file))
        return Answer::failure("the picture cannot be saved as " + file);
    return {};
}

QJsonValue tile(const QModelIndex &index)
{
    const auto item = index.data(Core::ListModel::ItemRole).value<Core::ListItem *>();
    if (!item)
        return QJsonValue::Undefined;
    const auto picture = index.data(Core::ListModel::ItemImageRole).value<QPixmap>();
    return QJsonObject{
        {"title", item->name},
        {"description", item->description},
        {"tags", QJsonArray::fromStringList(item->tags)},
        {"imageUrl", item->imageUrl},
        {"hasPicture", !picture.isNull()}};
}

// Of the Welcome screen's page that is shown.
Answer tiles(const QJsonObject &)
{
    QJsonArray result;
    const auto views = Core::ICore::mainWindow()->findChildren<QListView *>();
    for (const QListView *view : views) {
        if (!view->isVisible() || !view->model())
            continue;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QJsonValue found = tile(view->model()->index(row, 0));
            if (!found.isUndefined())
                result.append(found);
        }
    }
    return {.value = result};
}

Answer openFile(const QJsonObject &arguments)
{
    const auto file = Utils::FilePath::fromUserInput(arguments.value("file").toString());
    return Answer::first([file] { Core::ICore::openFiles({file}); });
}

Answer quit(const QJsonObject &)
{
    return Answer::first([] { Core::ICore::exit(); });
}

} // namespace

void addIdeCommands(Commands *commands)
{
    commands->insert("state", state);
    commands->insert("mode", mode);
    commands->insert("preferences", preferences);
    commands->insert("setting", setting);
    commands->insert("screenshot", screenshot);
    commands->insert("tiles", tiles);
    commands->insert("open file", openFile);
    commands->insert("record urls", recordUrls);
    commands->insert("quit", quit);
}

} // namespace Varnel::Driver

#include "idecommands.moc"
