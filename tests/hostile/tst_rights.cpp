// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Files and directories without rights, as a user's mistake or an earlier archive leaves them. An ordinary
// user feels them, root does not.

#include "tree.h"
#include "world.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"
#include "plugin/constants.h"

#include <QFile>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Varnel;
using namespace Varnel::Test;

namespace {

QByteArray archive(const QByteArray &version)
{
    return TarBuilder()
        .directory("subject-main-1/")
        .file("subject-main-1/CMakeLists.txt", "project(subject)\n")
        .file("subject-main-1/version", version)
        .tarGz();
}

void setMode(const QString &path, mode_t mode)
{
    if (::chmod(QFile::encodeName(path), mode) != 0)
        qFatal("cannot set the mode of %s", qPrintable(path));
}

/** Takes the rights to a directory away as long as it lives. */
class Closed final
{
public:
    Closed(const QString &directory, mode_t mode)
        : m_directory(directory)
    {
        setMode(m_directory, mode);
    }
    ~Closed() { setMode(m_directory, 0755); }
    Q_DISABLE_COPY_MOVE(Closed)

private:
    const QString m_directory;
};

QByteArray installedVersion()
{
    return World::isInstalled("subject") ? readFile(World::exampleDirectory("subject") + "/version")
                                         : QByteArray("none");
}

void update(World &world, const QByteArray &version)
{
    world.subject().archive = archive(version);
    world.updateAll(true);
}

} // namespace

class tst_Rights final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void updateReplacesAnExampleWithoutRights_data();
    void updateReplacesAnExampleWithoutRights();
    void whatCannotBeWrittenEndsInAStatusAndIsHealed_data();
    void whatCannotBeWrittenEndsInAStatusAndIsHealed();
};

void tst_Rights::initTestCase()
{
    World::prepareProcess();
}

void tst_Rights::updateReplacesAnExampleWithoutRights_data()
{
    QTest::addColumn<int>("directoryMode");
    QTest::addColumn<int>("manifestMode");
    for (const int directoryMode : {0755, 0555, 0511, 0111, 0000}) {
        for (const int manifestMode : {0644, 0444, 0000})
            QTest::addRow("directory %04o, manifest %04o", directoryMode, manifestMode)
                << directoryMode << manifestMode;
    }
}

void tst_Rights::updateReplacesAnExampleWithoutRights()
{
    QFETCH(int, directoryMode);
    QFETCH(int, manifestMode);
    World world;
    const QStringList others = World::repositoryEntries();
    update(world, "1");
    QCOMPARE(installedVersion(), "1");
    const QString copy = World::exampleDirectory("subject-old");
    writeFile(copy + "/below/file", "of an older copy");
    setMode(World::exampleDirectory("subject") + '/' + Constants::MANIFEST_FILE, mode_t(manifestMode));
    for (const QString &directory : {World::exampleDirectory("subject"), copy + "/below", copy})
        setMode(directory, mode_t(directoryMode));

    update(world, "2");

    QCOMPARE(installedVersion(), "2");
    QStringList expected = others + QStringList{"subject"};
    expected.sort();
    QTRY_COMPARE(World::repositoryEntries(), expected);
}

void tst_Rights::whatCannotBeWrittenEndsInAStatusAndIsHealed_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("status");
    const QString data = QFileInfo(World::repositoryDirectory() + "..").absoluteFilePath();
    const QString failed = "There was an error while unarchiving";
    for (const int mode : {0555, 0000}) {
        QTest::addRow("repository %04o", mode) << World::repositoryDirectory() << mode << failed;
        QTest::addRow("data location %04o", mode) << data << mode << (mode == 0 ? failed : QString());
        QTest::addRow("temporary directory %04o", mode)
            << World::path("tmp") << mode << "Downloaded file is not an archive";
    }
}

void tst_Rights::whatCannotBeWrittenEndsInAStatusAndIsHealed()
{
    QFETCH(QString, directory);
    QFETCH(int, mode);
    QFETCH(QString, status);
    if (::geteuid() == 0)
        QSKIP("root writes and reads all the same");
    World world;
    update(world, "1");
    const Tree before = readTree(World::repositoryDirectory());

    {
        const Closed closed(directory, mode_t(mode));
        update(world, "2");
    }

    if (status.isEmpty()) {
        QCOMPARE(installedVersion(), "2");
    } else {
        QVERIFY2(world.hasLogged(status), qPrintable(world.log().join('\n')));
        QCOMPARE(differences(before, readTree(World::repositoryDirectory())), QStringList());
    }
    update(world, "3");
    QCOMPARE(installedVersion(), "3");
}

QTEST_MAIN(tst_Rights)

#include "tst_rights.moc"
