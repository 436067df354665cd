// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Quitting at each stage of an update: in a process of its own, as much of it happens after main().

#include "plugin/plugin.h"

#include "plugin/constants.h"
#include "service/downloadservice.h"

#include "common/archivebuilder.h"
#include "common/ideenvironment.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <utils/processreaper.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

#include <functional>

#include <sys/stat.h>

using namespace std::chrono_literals;
using namespace Varnel;
using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr int NOT_REACHED = 77; // exit code of a stage that did not come
const QString SLOW_TOOL_STARTED = "slow-tool-started";
constexpr int EXAMPLES = 6;

/** The plug-in, a server with some examples that are due, and what to wait for before quitting. */
class Stage
{
public:
    explicit Stage(const QString &name)
    {
        QThreadPool::globalInstance()->setMaxThreadCount(2);
        for (int id = 1; id <= EXAMPLES; ++id)
            addProject(id);
        m_isReached = prepare(name);
        m_ide.set(Constants::REPOSITORIES, QStringList{"Demo|" + m_server.groupUrl().toString() + '|'});
        m_ide.set(Constants::SERVICE_RESTART_TIMEOUT, 1);
        QString error;
        m_plugin.initialize({}, &error);
        QObject::connect(service(), &DownloadService::updated, service(), [this] { ++m_updates; });
    }

    /** Runs the application until the stage is reached, and then quits it. */
    int run()
    {
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, qApp, [this] {
            if (m_isReached())
                QCoreApplication::quit();
        });
        look.start(0ms);
        QTimer::singleShot(20s, qApp, [] { QCoreApplication::exit(NOT_REACHED); });
        return QCoreApplication::exec();
    }

private:
    static DownloadService *service() { return Plugin::downloadService(); }

    void addProject(int id)
    {
        Project project;
        project.id = id;
        project.path = QString("demo-%1").arg(id);
        project.name = project.path;
        project.avatarFile = "picture.png";
        project.avatar = encodedPicture({64, 64});
        project.tree.addFile("demo.pro", "TEMPLATE = app\n");
        m_server.gitlab().addProject(project);
    }

    std::function<bool()> prepare(const QString &name)
    {
        if (name == "nothing to do")
            return
                [this] { return m_server.requestCount("/api/v4/groups/*") > 0 && installed() == EXAMPLES; };
        if (name == "listed")
            return [this] { return m_updates == 1; };
        if (name == "registered")
            return [this] { return m_updates >= 2; };
        if (name == "server gone")
            return refuse();
        if (name == "vetting")
            return vet();
        if (name == "unpacking")
            return unpackSlowly();
        static const QHash<QString, QString> ROUTES{
            {"search", "/api/v4/groups"},
            {"listing", "/api/v4/groups/*"},
            {"archive", "/api/v4/projects/*"},
            {"picture", "/uploads/*"}};
        m_server.hold(ROUTES.value(name));
        const int held = name == "search" || name == "listing" ? 1 : 2;
        return [this, held] { return m_server.heldCount() == held; };
    }

    std::function<bool()> refuse()
    {
        m_server.answer("*", 503);
        return [this] { return m_server.requestCount() >= 2; }; // the watchdog has started it anew
    }

    std::function<bool()> vet()
    {
        constexpr qsizetype SIZE = 100'000'000; // takes a while
        m_server.gitlab().project("demo-1")->archive
            = TarBuilder().file("demo-1-main/large", QByteArray(SIZE, '\0')).tarGz();
        return [] { return !QDir(QDir::tempPath()).entryList({"demo-1-*.tar.gz"}).isEmpty(); };
    }

    static std::function<bool()> unpackSlowly()
    {
        const QString tool = QDir::tempPath() + "/tools/cmake";
        const QString started = QDir::tempPath() + '/' + SLOW_TOOL_STARTED;
        writeFile(tool, "#!/bin/sh\n: > " + started.toUtf8() + "\nexec sleep 60\n");
        if (::chmod(QFile::encodeName(tool), 0755) != 0)
            qFatal("cannot make a tool");
        qputenv("PATH", QFile::encodeName(QFileInfo(tool).path()) + ':' + qgetenv("PATH"));
        return [started] { return QFile::exists(started); };
    }

    [[nodiscard]] static int installed()
    {
        const QDir directory(dataRoot() + "/Demo");
        int count = 0;
        for (const QString &name : directory.entryList({"demo-?"}, QDir::Dirs))
            count += QFile::exists(directory.filePath(name) + "/examples-manifest.xml");
        return count;
    }

    DemoServer m_server;
    IdeEnvironment m_ide;
    std::function<bool()> m_isReached;
    int m_updates = 0;
    Plugin m_plugin;
};

} // namespace

class tst_Quit final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theProcessEndsOrderly_data();
    void theProcessEndsOrderly();
};

void tst_Quit::init()
{
    QDir(dataRoot()).removeRecursively();
}

void tst_Quit::theProcessEndsOrderly_data()
{
    QTest::addColumn<QString>("stage");

    for (const char *stage :
         {"search",
          "listing",
          "listed",
          "archive",
          "picture",
          "vetting",
          "unpacking",
          "registered",
          "nothing to do",
          "server gone"})
        QTest::newRow(stage) << QString::fromLatin1(stage);
}

void tst_Quit::theProcessEndsOrderly()
{
    QFETCH(const QString, stage);
    const QTemporaryDir temporary;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temporary.path());
    environment.insert("QT_LOGGING_RULES", "default.debug=false");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    QElapsedTimer sinceQuit;
    QByteArray output;
    connect(&process, &QProcess::readyRead, this, [&] {
        output += process.readAll();
        if (output.contains("quitting\n") && !sinceQuit.isValid())
            sinceQuit.start();
    });

    process.start(QCoreApplication::applicationFilePath(), {"--stage", stage});

    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 40'000);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY2(process.exitCode() == 0, output + "exit code " + QByteArray::number(process.exitCode()));
    QVERIFY2(sinceQuit.isValid(), output);
    QVERIFY2(sinceQuit.elapsed() < 3000, QByteArray::number(sinceQuit.elapsed()));
    QCOMPARE(output, "quitting\n"); // no word of threads, timers or what is gone already
    QCOMPARE(QDir(temporary.path()).entryList({"*.tar.gz"}), QStringList());
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) != "--stage") {
        tst_Quit test;
        return QTest::qExec(&test, argc, argv);
    }
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [] { fputs("quitting\n", stderr); });
    Stage stage(arguments.value(2));
    const int exitCode = stage.run();
    // A tool that is slow to die is awaited, as in the IDE, while there is an application object.
    Utils::ProcessReaper::deleteAll();
    return exitCode;
}

#include "tst_quit.moc"
