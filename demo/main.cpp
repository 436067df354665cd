// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

// The demo repository as a program: serves a folder of sample projects until it is told to end.
#include "control.h"
#include "server/demoserver.h"
#include "server/samples.h"
#include "signalwatcher.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;

namespace {

struct Options
{
    quint16 port = 0;
    QString folder;
    QString group;
};

int fail(const QString &message)
{
    QTextStream(stderr) << "varnel-demo-server: " << message << Qt::endl;
    return EXIT_FAILURE;
}

std::optional<Options> parse(const QCoreApplication &application)
{
    const QCommandLineOption port(
        u"port"_s, u"The port to listen on, 0 for any free one."_s, u"number"_s, u"0"_s);
    const QCommandLineOption folder(
        u"folder"_s, u"The folder of the sample projects."_s, u"folder"_s, QStringLiteral(DEMO_SAMPLES_DIR));
    const QCommandLineOption group(
        u"group"_s, u"The group that they belong to, maybe with parents."_s, u"path"_s, u"samples"_s);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Serves a folder of projects on this machine as a GitLab group. "
                                     u"Prints the group's address when ready."_s);
    parser.addHelpOption();
    parser.addOptions({port, folder, group});
    parser.process(application);

    bool isNumber = false;
    const quint16 number = parser.value(port).toUShort(&isNumber);
    if (!isNumber)
        return std::nullopt;
    return Options{.port = number, .folder = parser.value(folder), .group = parser.value(group)};
}

int serve(QCoreApplication &application)
{
    const std::optional<Options> options = parse(application);
    if (!options)
        return fail(u"the port must be a number up to 65535"_s);
    const Samples samples = readSamples(options->folder);
    if (!samples.error.isEmpty())
        return fail(samples.error);
    DemoServer server(DemoServer::Setup{.group = options->group, .port = options->port});
    if (!server.isListening())
        return fail(u"cannot listen on port %1: %2"_s.arg(options->port).arg(server.errorString()));

    for (const Project &project : samples.projects)
        server.gitlab().addProject(project);
    const Control control(server);
    const SignalWatcher watcher;
    QObject::connect(&watcher, &SignalWatcher::finished, &application, &QCoreApplication::quit);
    QTextStream(stdout) << server.groupUrl().toString() << Qt::endl;
    return application.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    SignalWatcher::block();
    qputenv("QT_QPA_PLATFORM", "offscreen"); // it paints pictures, but shows nothing
    QGuiApplication application(argc, argv);
    return serve(application);
}
