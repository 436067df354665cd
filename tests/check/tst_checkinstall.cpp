// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What varnel-check lays out, beside what the plug-in's own service installs from the same server.

#include "common/files.h"
#include "common/servicefixture.h"
#include "hostile/tree.h"
#include "plugin/constants.h"
#include "server/demoserver.h"
#include "server/samples.h"
#include "service/filesystem.h"
#include "service/placement.h"
#include "settings/settings.h"

#include <utils/qtcsettings.h>

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QSettings>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Test;

namespace {

// Whatever is made while an example is installed bears that time.
Tree comparable(const QString &directory)
{
    Tree tree = readTree(directory);
    for (auto it = tree.begin(); it != tree.end(); ++it) {
        const bool isOfInstallation = it->startsWith("mode 4") || it.key().endsWith(Constants::MANIFEST_FILE)
                                      || it.key().endsWith(Constants::PICTURE_FILE);
        if (isOfInstallation)
            it.value().replace(
                it->mid(it->indexOf(" time "), it->indexOf(" content ") - it->indexOf(" time ")), "");
    }
    return tree;
}

} // namespace

class tst_CheckInstall final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void commandInstallsTheSameBytes();
    void commandWritesTheSettingsThatThePluginWould();

private:
    void runCommand(const QStringList &arguments);

    std::unique_ptr<ServiceFixture> m_fixture;
    std::unique_ptr<Demo::DemoServer> m_server;
};

void tst_CheckInstall::initTestCase()
{
    m_fixture = std::make_unique<ServiceFixture>();
}

void tst_CheckInstall::init()
{
    m_fixture->reset();
    m_server = std::make_unique<Demo::DemoServer>();
    const Demo::Samples samples = Demo::readSamples(DEMO_SAMPLES_DIR);
    QVERIFY2(samples.error.isEmpty(), qPrintable(samples.error));
    for (const Demo::Project &project : samples.projects)
        m_server->gitlab().addProject(project);

    Demo::Project awkward;
    awkward.id = 900;
    awkward.path = "awkward";
    awkward.name = "A <b>\"bold\"</b> title & ]]> \u202e";
    awkward.description = "Not ]]> the end\x1b[31m\n";
    awkward.tree.addFile("awkward.pro", "TEMPLATE = app\n");
    awkward.tree.addFile("src/main.cpp", "int main() {}\n");
    awkward.tree.addFile("examples-manifest.xml", "<instructionals/>\n");
    awkward.tree.add("run.sh", {Demo::Tree::Entry::Executable, "#!/bin/sh\n"});
    awkward.tree.add("out", {Demo::Tree::Entry::Link, "/etc/hostname"});
    awkward.tree.add("empty", {Demo::Tree::Entry::Directory, {}});
    m_server->gitlab().addProject(awkward);
}

void tst_CheckInstall::cleanup()
{
    m_fixture->reset();
}

void tst_CheckInstall::runCommand(const QStringList &arguments)
{
    QProcess process;
    process.start(
        VARNEL_CHECK, QStringList{m_server->groupUrl().toString(), "--name", "Demo", "--quiet"} + arguments);
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 60000);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 1); // one sample has no project file
}

void tst_CheckInstall::commandInstallsTheSameBytes()
{
    const QString directory = QDir::cleanPath(Internal::repositoryDirectory("Demo"));
    m_fixture->start(m_server->groupUrl());
    QTRY_COMPARE(m_fixture->service().examples("Demo").size(), 9);
    QSet<QString> names;
    for (const Internal::Repository::ExamplePtr &example : m_fixture->service().examples("Demo"))
        names.insert(example->name());
    m_fixture->clearLines();
    m_fixture->service().save("Demo", names);
    QTRY_COMPARE_WITH_TIMEOUT(m_fixture->lines().count("updated"), 9, 60000);
    QTRY_COMPARE(entriesOf(directory).size(), 8);
    const Tree installed = comparable(directory);
    m_fixture->reset();
    QVERIFY(!QDir(directory).exists());

    runCommand({"--install", directory, "--force"});

    QCOMPARE(differences(installed, comparable(directory)), QStringList());
}

void tst_CheckInstall::commandWritesTheSettingsThatThePluginWould()
{
    const QString directory = QDir::cleanPath(Internal::repositoryDirectory("Demo"));
    const QString file = QDir::tempPath() + "/written.ini";
    QFile::remove(file);

    runCommand({"--install", directory, "--force", "--settings", file});

    const QSettings written(file, QSettings::IniFormat);
    auto theirs = m_fixture->ide().settings();
    theirs->setValue(Constants::INSTALLED_EXAMPLES, QStringList{"Demo|somewhere|else"});
    theirs->setValue("Varnel/Repositories", written.value("Varnel/Repositories"));
    Internal::Settings::updateInstalledExamplesValue(theirs);
    QCOMPARE(
        written.value(Constants::INSTALLED_EXAMPLES).toStringList(),
        theirs->value(Constants::INSTALLED_EXAMPLES).toStringList());
    Internal::Settings record;
    record.load(theirs);
    QCOMPARE(record.findName(m_server->groupUrl()), QString("Demo"));
}

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv); // the samples' pictures are painted
    tst_CheckInstall test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_checkinstall.moc"
