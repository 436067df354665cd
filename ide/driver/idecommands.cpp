// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "objects.h"
#include "stallprobe.h"

#include <coreplugin/icore.h>
#include <coreplugin/modemanager.h>
#include <coreplugin/welcomepagehelper.h>
#include <extensionsystem/pluginmanager.h>
#include <extensionsystem/pluginspec.h>
#include <utils/id.h>

#include <QApplication>
#include <QDesktopServices>
#include <QJsonArray>
#include <QListView>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QTest>

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

/**
 * The event loop's longest stall since this was asked last, and the most processor time of one, in
 * milliseconds; the first time it only begins.
 */
Answer longestStall(const QJsonObject &)
{
    static QPointer<StallProbe> probe;
    if (!probe)
        probe = new StallProbe(qApp);
    const StallProbe::Stall longest = probe->takeLongest();
    return {.value = QJsonObject{{"time", longest.time}, {"processor time", longest.processorTime}}};
}

Answer state(const QJsonObject &)
{
    return {
        .value = QJsonObject{
            {"started", ExtensionSystem::PluginManager::isInitializationDone()},
            {"window", description(Core::ICore::mainWindow())}}};
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

Answer screenshot(const QJsonObject &arguments)
{
    const auto widget = qobject_cast<QWidget *>(objectOf(arguments));
    const QPixmap picture = widget ? widget->grab() : QGuiApplication::primaryScreen()->grabWindow(0);
    const QString file = arguments.value("file").toString();
    if (!picture.save(file))
        return Answer::failure("the picture cannot be saved as " + file);
    return {};
}

/** The Welcome screen's page that is shown is one list or several; calls back for each tile. */
void forEachTile(const std::function<void(QListView *, const QModelIndex &, const Core::ListItem &)> &use)
{
    const auto views = Core::ICore::mainWindow()->findChildren<QListView *>();
    for (QListView *view : views) {
        if (!view->isVisible() || !view->model())
            continue;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QModelIndex index = view->model()->index(row, 0);
            if (const auto item = index.data(Core::ListModel::ItemRole).value<Core::ListItem *>())
                use(view, index, *item);
        }
    }
}

Answer tiles(const QJsonObject &)
{
    QJsonArray result;
    forEachTile([&](const QListView *, const QModelIndex &index, const Core::ListItem &item) {
        const auto picture = index.data(Core::ListModel::ItemImageRole).value<QPixmap>();
        result.append(QJsonObject{
            {"title", item.name},
            {"description", item.description},
            {"tags", QJsonArray::fromStringList(item.tags)},
            {"imageUrl", item.imageUrl},
            {"hasPicture", !picture.isNull()}});
    });
    return {.value = result};
}

Answer clickTile(const QJsonObject &arguments)
{
    Answer answer = Answer::failure("there is no such tile");
    forEachTile([&](QListView *view, const QModelIndex &index, const Core::ListItem &item) {
        if (item.name != arguments.value("title").toString())
            return;
        answer = Answer::first([view, index = QPersistentModelIndex(index)] {
            view->scrollTo(index);
            QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
        });
    });
    return answer;
}

// By what keeps them from running: nothing, or what the IDE says of it.
Answer plugins(const QJsonObject &)
{
    QJsonObject result;
    const auto specs = ExtensionSystem::PluginManager::plugins();
    for (const ExtensionSystem::PluginSpec *spec : specs) {
        if (spec->isEffectivelyEnabled())
            result.insert(
                spec->id(),
                spec->state() == ExtensionSystem::PluginSpec::Running ? QString()
                                                                      : "not running " + spec->errorString());
    }
    return {.value = result};
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
    commands->insert("screenshot", screenshot);
    commands->insert("tiles", tiles);
    commands->insert("click tile", clickTile);
    commands->insert("plugins", plugins);
    commands->insert("record urls", recordUrls);
    commands->insert("longest stall", longestStall);
    commands->insert("quit", quit);
}

} // namespace Varnel::Driver

#include "idecommands.moc"
