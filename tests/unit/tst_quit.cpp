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
const QByteArray QUITTING = "quitting\n";
const QByteArray LAST_WORDS = QUITTING + "service gone\n"; // the latter when the library's static objects go

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

/** What was seen of a process that quits at a stage. */
struct Run
{
    bool isOver = false;
    bool hasEndedWell = false;
    std::chrono::milliseconds durationOfQuitting{};
    QByteArray output = {};
    QStringList archivesLeft = {};
};

Run runUntil(const QString &stage, const QString &loggingRules)
{
    const QTemporaryDir temporary;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temporary.path());
    environment.insert("QT_LOGGING_RULES", loggingRules);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    Run run;
    QElapsedTimer sinceQuit;
    QObject::connect(&process, &QProcess::readyRead, &process, [&] {
        run.output += process.readAll();
        if (run.output.contains(QUITTING) && !sinceQuit.isValid())
            sinceQuit.start();
    });

    process.start(QCoreApplication::applicationFilePath(), {"--stage", stage});

    run.isOver = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 40s);
    run.hasEndedWell
        = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && sinceQuit.isValid();
    if (!run.hasEndedWell)
        run.output += "exit code " + QByteArray::number(process.exitCode());
    else
        run.durationOfQuitting = std::chrono::milliseconds(sinceQuit.elapsed());
    run.archivesLeft = QDir(temporary.path()).entryList({"*.tar.gz"});
    return run;
}

} // namespace

class tst_Quit final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theProcessEndsOrderly_data();
    void theProcessEndsOrderly();
    void downloadsEndWithoutAWord_data();
    void downloadsEndWithoutAWord();
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
    const Run run = runUntil(stage, "default.debug=false");

    QVERIFY2(run.isOver, run.output);
    QVERIFY2(run.hasEndedWell, run.output);
    QVERIFY2(run.durationOfQuitting < 3s, QByteArray::number(qint64(run.durationOfQuitting.count())));
    QCOMPARE(run.output, LAST_WORDS); // none of threads, timers or what is gone already
    QCOMPARE(run.archivesLeft, QStringList());
}

void tst_Quit::downloadsEndWithoutAWord_data()
{
    QTest::addColumn<QString>("stage");

    QTest::newRow("archive") << "archive";
    QTest::newRow("picture") << "picture";
}

void tst_Quit::downloadsEndWithoutAWord()
{
    QFETCH(const QString, stage);

    const Run run = runUntil(stage, "default.debug=false;zel.varnel.plugin.api.debug=true");

    QVERIFY2(run.hasEndedWell, run.output);
    QVERIFY2(run.output.contains("Status: \"Downloading example: demo-"), run.output);
    QVERIFY2(run.output.endsWith('\n' + LAST_WORDS), run.output);
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) != "--stage") {
        tst_Quit test;
        return QTest::qExec(&test, argc, argv);
    }
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [] { fputs(QUITTING, stderr); });
    Stage stage(arguments.value(2));
    QObject::connect(Plugin::downloadService(), &QObject::destroyed, [] { fputs("service gone\n", stderr); });
    const int exitCode = stage.run();
    // A tool that is slow to die is awaited, as in the IDE, while there is an application object.
    Utils::ProcessReaper::deleteAll();
    return exitCode;
}

#include "tst_quit.moc"
