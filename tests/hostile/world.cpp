// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "world.h"

#include "common/testfiles.h"

#include "client/repository.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"
#include "service/placement.h"

#include <extensionsystem/pluginmanager.h>
#include <utils/mimeutils.h>
#include <utils/qtcsettings.h>
#include <utils/unarchiver.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <filesystem>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

namespace Varnel::Test {

namespace {

namespace fs = std::filesystem;

constexpr char REPOSITORY[] = "hostile";
constexpr char CANARY[] = "canary";
constexpr char NEIGHBOUR[] = "neighbour";

fs::path nativePath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

// One that the plug-in would take for an installed one, but that is in no listing.
void writeNeighbour()
{
    const QString directory = World::exampleDirectory(NEIGHBOUR);
    writeFile(directory + "/CMakeLists.txt", "project(neighbour)\n");
    writeFile(
        directory + '/' + Constants::MANIFEST_FILE,
        QByteArray("<instructionals module=\"") + REPOSITORY + "\"><examples/></instructionals>\n");
}

void plantCanaries()
{
    for (const char *name : {"home", "data", "config", "cache", "tmp", "runtime"})
        writeFile(World::path(QLatin1StringView(name) + "/canary"), CANARY);
    writeFile(QFileInfo(World::repositoryDirectory() + "..").absoluteFilePath() + '/' + CANARY, CANARY);
}

void removeAll(const QString &path)
{
    std::error_code error;
    fs::remove_all(nativePath(path), error);
    if (!error)
        return;
    // Something is without rights, and maybe deeper than a path can say: the system's own programs mind
    // neither.
    QProcess::execute("/bin/chmod", {"-R", "u+rwx", path});
    if (QProcess::execute("/bin/rm", {"-rf", path}) != 0)
        qFatal("cannot remove %s", qPrintable(path));
}

QByteArray content(const fs::path &path)
{
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly))
        return "unreadable";
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5).toHex();
}

// Directories that something may come and go in: their times are no sign of harm.
bool isBusyDirectory(const fs::path &path)
{
    for (const QString &busy : {World::path("tmp"), World::path("config"), World::repositoryDirectory()}) {
        if (path == nativePath(QDir::cleanPath(busy)))
            return true;
    }
    return false;
}

QByteArray description(const fs::path &path)
{
    struct stat status;
    if (lstat(path.c_str(), &status) != 0)
        return "gone";
    QByteArray text = "mode " + QByteArray::number(status.st_mode, 8) + " links "
                      + QByteArray::number(S_ISREG(status.st_mode) ? qint64(status.st_nlink) : 0);
    if (!isBusyDirectory(path))
        text += " time " + QByteArray::number(qint64(status.st_mtim.tv_sec)) + '.'
                + QByteArray::number(qint64(status.st_mtim.tv_nsec));
    if (S_ISREG(status.st_mode))
        text += " content " + content(path);
    if (S_ISLNK(status.st_mode))
        text += " target " + QByteArray(fs::read_symlink(path).c_str());
    return text;
}

} // namespace

World::World()
    : m_host("127.0.0.1")
{
    // What is removed below would be the user's own without directories for the test.
    if (qEnvironmentVariable("HOME") != path("home") || qEnvironmentVariable("TMPDIR") != path("tmp"))
        qFatal("run this by cmake/run-isolated.sh");
    removeAll(repositoryDirectory());
    removeAll(path("home"));
    // What a case left that did not end. The directory itself stays: without it Qt takes the machine's own.
    const QStringList leftOvers = entriesOf(path("tmp"));
    for (const QString &name : leftOvers)
        removeAll(path("tmp/" + name));
    QDir().mkpath(repositoryDirectory());
    plantCanaries();
    writeNeighbour();
    makeServer({});
}

World::~World()
{
    stop();
    liftLimit();
    qputenv("PATH", m_searchPath);
    Utils::Environment::setSystemEnvironment(m_environment);
}

void World::prepareProcess()
{
    static ExtensionSystem::PluginManager pluginManager;
    Utils::setMimeStartupPhase(Utils::MimeStartupPhase::UpAndRunning);
}

void World::makeServer(const Demo::DemoServer::Setup &setup)
{
    m_server = std::make_unique<Demo::DemoServer>(setup);
    Demo::Project project;
    project.id = 7;
    project.path = "subject";
    project.name = "Subject";
    project.description = "About the subject";
    project.tree.addFile("CMakeLists.txt", "project(subject)\n");
    project.tree.addFile("main.cpp", "int main() {}\n");
    m_server->gitlab().addProject(project);
}

Demo::Project &World::subject()
{
    return *m_server->gitlab().project("subject");
}

Demo::Project &World::other()
{
    if (!m_server->gitlab().project("other")) {
        Demo::Project project;
        project.id = 9;
        project.path = "other";
        project.name = "Other";
        project.tree.addFile("CMakeLists.txt", "project(other)\n");
        m_server->gitlab().addProject(project);
    }
    return *m_server->gitlab().project("other");
}

// The IDE's libraries look at their own copy of the environment.
void World::hideCmake()
{
    const QString tools = path("runtime/tools");
    for (const QString &program : {QString("tar"), QString("gzip")}) {
        if (!QFileInfo::exists(tools + '/' + program))
            makeLink(tools + '/' + program, "/usr/bin/" + program);
    }
    Utils::Environment::modifySystemEnvironment({{"PATH", tools}});
}

void World::baitPrograms(const QStringList &programs)
{
    const QString baits = path("runtime/baits");
    for (const QString &program : programs) {
        const QString file = baits + '/' + program;
        writeFile(file, "#!/bin/sh\necho harm >>'" + QFile::encodeName(path("home/canary")) + "'\n");
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    const QString searchPath = baits + ':' + QFile::decodeName(m_searchPath);
    qputenv("PATH", QFile::encodeName(searchPath));
    Utils::Environment::modifySystemEnvironment({{"PATH", searchPath}});
}

void World::setToolLocale(const QString &locale)
{
    Utils::Environment::modifySystemEnvironment({{"LC_ALL", locale}, {"LANG", locale}});
}

void World::limitFileSize(qint64 bytes)
{
    ::signal(SIGXFSZ, SIG_IGN); // to write more is an error then, not the end
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = rlim_t(bytes);
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot limit the size of files");
}

void World::liftLimit()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

void World::setPicture(const QByteArray &bytes, const QByteArray &type)
{
    subject().overrides.insert("avatar_url", m_server->url(PICTURE_ROUTE).toString());
    m_server->answer(PICTURE_ROUTE, 200, bytes, {{"Content-Type", type}});
}

void World::encrypt(const QSslConfiguration &configuration, const QString &host)
{
    makeServer({.encryption = configuration});
    m_host = host;
}

QString World::repositoryEntry() const
{
    QUrl url = m_server->groupUrl();
    url.setHost(m_host);
    return QString("%1|%2|-").arg(REPOSITORY, url.toString());
}

void World::writeSettings()
{
    QMap<QString, QVariant> settings{{Constants::REPOSITORIES, QStringList{repositoryEntry()}}};
    settings.insert(m_settings);

    const QString file = path("config/settings.ini");
    QFile::remove(file);
    if (m_settingsFile) {
        writeFile(file, *m_settingsFile);
        settings.clear();
    }
    auto store = new Utils::QtcSettings(file, QSettings::IniFormat);
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store->setValue(Utils::Key(Constants::SETTINGS_GROUP) + '/' + it.key().toUtf8(), it.value());
    ExtensionSystem::PluginManager::setSettings(store);
}

void World::start()
{
    writeSettings();
    m_service = std::make_unique<Internal::DownloadService>(nullptr);
    QObject::connect(
        m_service.get(), &Internal::DownloadService::updated, m_service.get(), [this] { ++m_updates; });
}

void World::updateAll(bool isRestarted)
{
    const qsizetype projects = m_server->gitlab().projects().size();
    qsizetype ends = endCount();
    if (!m_service || isRestarted) {
        stop();
        start();
        ++ends; // of the listing
    } else {
        m_service->save(REPOSITORY, {"subject", "other"});
    }
    QVERIFY2(
        waitFor([&] { return endCount() >= ends + projects && isIdle(); }), qPrintable(log().join('\n')));
}

void World::restartHonestly()
{
    stop();
    m_settings.clear();
    m_settingsFile.reset();
    m_host = "127.0.0.1";
    makeServer({});
    start();
}

void World::installGood()
{
    m_server->restore();
    const QList<Demo::Project> projects = m_server->gitlab().projects();
    for (const Demo::Project &project : projects)
        m_server->gitlab().removeProject(project.path);
    Demo::Project good;
    good.id = 8;
    good.path = "good";
    good.name = "Good";
    good.tree.addFile("CMakeLists.txt", "project(good)\n");
    m_server->gitlab().addProject(good);

    QVERIFY(repository());
    const qsizetype updates = updateCount();
    repository()->reset();
    QVERIFY(waitFor([this] {
        const Internal::Repository::Examples examples = repository()->examples();
        return examples.size() == 1 && examples.constFirst()->name() == "good";
    }));
    if (updateCount() == updates) // else the update was due, and is under way
        m_service->save(REPOSITORY, {"good"});
    QVERIFY(waitFor([this] { return isInstalled("good") && isIdle(); }));
}

void World::stop()
{
    m_service.reset();
}

// QTest's own waiting sleeps between two looks at the events, and a connection takes many of them.
bool World::waitFor(const std::function<bool()> &isTrue, std::chrono::milliseconds patience)
{
    QTimer wakeUp;
    wakeUp.start(std::chrono::milliseconds(5));
    const QDeadlineTimer deadline(patience);
    while (!isTrue()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

// Asked for once: while the temporary directory is missing, Qt gives the system's.
QString World::path(const QString &relative)
{
    static const QString BASE = QFileInfo(QDir::tempPath()).path() + '/';
    return BASE + relative;
}

QString World::repositoryDirectory()
{
    return Internal::repositoryDirectory(REPOSITORY);
}

QString World::exampleDirectory(const QString &name)
{
    return Internal::exampleDirectory(REPOSITORY, name);
}

bool World::isInstalled(const QString &name)
{
    return QFileInfo(exampleDirectory(name) + '/' + Constants::MANIFEST_FILE).isFile();
}

QByteArray World::wayUp()
{
    return QFile::encodeName(QDir(repositoryDirectory()).relativeFilePath(path())) + '/';
}

Internal::Repository *World::repository() const
{
    return m_service->findRepository(REPOSITORY).get();
}

bool World::hasLogged(const QString &text) const
{
    const QStringList lines = log();
    return std::any_of(
        lines.cbegin(), lines.cend(), [&text](const QString &line) { return line.contains(text); });
}

qsizetype World::updateCount() const
{
    return log().filter("Updating examples:").size();
}

// Each archive ends with one of these; so does a listing.
qsizetype World::endCount() const
{
    return m_updates + log().filter("There was an error while unarchiving").size()
           + log().filter("Downloaded file is not an archive").size();
}

bool World::isIdle() const
{
    const QStringList temporary = QDir(path("tmp")).entryList({"*.tar.gz"}, QDir::AllEntries | QDir::Hidden);
    return temporary.isEmpty() && m_service->findChildren<Utils::Unarchiver *>().isEmpty()
           && m_server->heldCount() == 0;
}

QMap<QByteArray, QByteArray> World::everythingElse()
{
    const fs::path base = nativePath(QDir::cleanPath(path()));
    const fs::path repository = nativePath(QDir::cleanPath(repositoryDirectory()));
    const fs::path neighbour = nativePath(exampleDirectory(NEIGHBOUR));
    const fs::path settings = nativePath(path("config/settings.ini"));

    QMap<QByteArray, QByteArray> result;
    for (const fs::directory_entry &entry : fs::directory_iterator(base.parent_path()))
        result.insert(entry.path().c_str(), entry.path() == base ? "here" : "beside");
    for (auto it = fs::recursive_directory_iterator(base); it != fs::end(it); ++it) {
        if (it->path() != settings)
            result.insert(it->path().c_str(), description(it->path()));
        if (it->path() == repository)
            it.disable_recursion_pending();
    }
    for (auto it = fs::recursive_directory_iterator(neighbour); it != fs::end(it); ++it)
        result.insert(it->path().c_str(), description(it->path()));
    return result;
}

QStringList
World::differences(const QMap<QByteArray, QByteArray> &before, const QMap<QByteArray, QByteArray> &after)
{
    QStringList lines;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (after.value(it.key()) != it.value())
            lines.append(
                QString::fromUtf8(it.key() + ": " + it.value() + " -> " + after.value(it.key(), "gone")));
    }
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (!before.contains(it.key()))
            lines.append(QString::fromUtf8(it.key() + ": new"));
    }
    return lines;
}

QStringList World::repositoryEntries()
{
    QStringList names;
    for (const fs::directory_entry &entry : fs::directory_iterator(nativePath(repositoryDirectory())))
        names.append(QFile::decodeName(entry.path().filename().c_str()));
    names.sort();
    return names;
}

} // namespace Varnel::Test
