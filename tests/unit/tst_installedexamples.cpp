// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The refreshing of the IDE's list of example collections.

#include "plugin/constants.h"
#include "settings/settings.h"

#include "common/ideenvironment.h"
#include "common/testfiles.h"

#include <coreplugin/helpmanager.h>
#include <utils/qtcsettings.h>

#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_InstalledExamples final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void withoutTheValueNothingIsWritten();
    void withoutAMatchingEntryNothingIsWritten();
    void anEntryIsReplacedByNameAndDirectoryTwice();
    void anEntryThatIsUpToDateIsWrittenAgain();
    void entriesKeepTheirPlaces();
    void entriesAreClaimedByTheirBeginning_data();
    void entriesAreClaimedByTheirBeginning();
    void severalRepositoriesAreAnnouncedOnce();
    void entryTextsAreMadeInTwoSubstitutions();
    void aDirectoryThatCannotBeMadeIsNoObstacle();
    void aMissingDirectoryComesBack();

private:
    void setRepositories(const QStringList &names);
    void setEntries(const QStringList &entries);
    [[nodiscard]] QStringList storedEntries() const;
    void update() { Settings::updateInstalledExamplesValue(m_ide->settings()); }

    std::unique_ptr<IdeEnvironment> m_ide;
    std::unique_ptr<QSignalSpy> m_setupFinished;
};

namespace {

QString entryOf(const QString &name)
{
    const QString directory = Settings::location().arg(name);
    return name + '|' + directory + '|' + directory;
}

} // namespace

void tst_InstalledExamples::initTestCase()
{
    m_ide = std::make_unique<IdeEnvironment>();
    m_setupFinished = std::make_unique<QSignalSpy>(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::setupFinished);
}

void tst_InstalledExamples::cleanup()
{
    m_ide->reset();
    m_setupFinished->clear();
}

void tst_InstalledExamples::setRepositories(const QStringList &names)
{
    QStringList texts;
    for (const QString &name : names)
        texts.append(name + "|http://x/" + name + '|');
    m_ide->set(Constants::REPOSITORIES, texts);
}

void tst_InstalledExamples::setEntries(const QStringList &entries)
{
    m_ide->settings()->setValue(Constants::INSTALLED_EXAMPLES, entries);
}

QStringList tst_InstalledExamples::storedEntries() const
{
    return m_ide->stored(Constants::INSTALLED_EXAMPLES).toStringList();
}

void tst_InstalledExamples::withoutTheValueNothingIsWritten()
{
    setRepositories({"Demo"});

    update();

    QVERIFY(!m_ide->isStored(Constants::INSTALLED_EXAMPLES));
    QVERIFY(!QDir(Settings::location().arg("Demo")).exists());
    QCOMPARE(m_setupFinished->size(), 0);
}

void tst_InstalledExamples::withoutAMatchingEntryNothingIsWritten()
{
    setRepositories({"Demo"});
    setEntries({"Other|/x|/x"});

    update();

    QCOMPARE(storedEntries(), QStringList{"Other|/x|/x"});
    QVERIFY(!QDir(Settings::location().arg("Demo")).exists());
    QCOMPARE(m_setupFinished->size(), 0);
}

void tst_InstalledExamples::anEntryIsReplacedByNameAndDirectoryTwice()
{
    setRepositories({"Demo"});
    setEntries({"Demo|/old|/old"});
    QStringList onDisk;
    const auto connection = connect(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::setupFinished, this, [&] {
            // Not through the environment, which would write the file itself.
            const QSettings file(m_ide->settingsFile(), QSettings::IniFormat);
            onDisk = file.value(Constants::INSTALLED_EXAMPLES).toStringList();
        });

    update();

    disconnect(connection);
    QCOMPARE(onDisk, QStringList{entryOf("Demo")}); // written before it is announced
    QCOMPARE(m_setupFinished->size(), 1);
    QVERIFY(QDir(Settings::location().arg("Demo")).exists());
}

void tst_InstalledExamples::anEntryThatIsUpToDateIsWrittenAgain()
{
    setRepositories({"Demo"});
    setEntries({entryOf("Demo")});

    update();

    QCOMPARE(storedEntries(), QStringList{entryOf("Demo")});
    QCOMPARE(m_setupFinished->size(), 1);
}

void tst_InstalledExamples::entriesKeepTheirPlaces()
{
    setRepositories({"Demo"});
    setEntries({"Qt|/a|/a", "Demo|/old|/old", "", "Zoo|/b|/b"});

    update();

    QCOMPARE(storedEntries(), (QStringList{"Qt|/a|/a", entryOf("Demo"), "", "Zoo|/b|/b"}));
}

void tst_InstalledExamples::entriesAreClaimedByTheirBeginning_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QStringList>("expected"); // "*" stands for the repository's entry

    QTest::newRow("whole first field") << QStringList{"abc|/x|/x"} << QStringList{"*"};
    QTest::newRow("name alone") << QStringList{"abc"} << QStringList{"*"};
    QTest::newRow("longer name") << QStringList{"abcdef|/x|/x"} << QStringList{"*"};
    QTest::newRow("only the first of two")
        << QStringList{"abcdef|/x|/x", "abc|/y|/y"} << QStringList{"*", "abc|/y|/y"};
    QTest::newRow("other letter case") << QStringList{"Abc|/x|/x"} << QStringList{"Abc|/x|/x"};
    QTest::newRow("name further on") << QStringList{"x|abc|abc"} << QStringList{"x|abc|abc"};
    QTest::newRow("shorter name") << QStringList{"ab|/x|/x"} << QStringList{"ab|/x|/x"};
}

void tst_InstalledExamples::entriesAreClaimedByTheirBeginning()
{
    QFETCH(const QStringList, entries);
    QFETCH(QStringList, expected);
    setRepositories({"abc"});
    setEntries(entries);

    update();

    QCOMPARE(storedEntries(), expected.replaceInStrings("*", entryOf("abc")));
}

void tst_InstalledExamples::severalRepositoriesAreAnnouncedOnce()
{
    setRepositories({"One", "Two", "Without entry"});
    setEntries({"Two|/x|/x", "One|/y|/y"});

    update();

    QCOMPARE(storedEntries(), (QStringList{entryOf("Two"), entryOf("One")}));
    QCOMPARE(m_setupFinished->size(), 1);
    QCOMPARE(entriesOf(dataRoot()), (QStringList{"One", "Two"}));
}

void tst_InstalledExamples::entryTextsAreMadeInTwoSubstitutions()
{
    setRepositories({"a%2b"});
    setEntries({"a%2b|/x|/x"});
    const QString directory = Settings::location().arg("a%2b");

    update();

    QCOMPARE(storedEntries(), QStringList{"a" + directory + "b|" + directory + '|' + directory});
}

void tst_InstalledExamples::aDirectoryThatCannotBeMadeIsNoObstacle()
{
    setRepositories({"Demo"});
    setEntries({"Demo|/x|/x"});
    writeFile(Settings::location().arg("Demo"), "a file in the way");

    update();

    QCOMPARE(storedEntries(), QStringList{entryOf("Demo")});
    QCOMPARE(m_setupFinished->size(), 1);
}

void tst_InstalledExamples::aMissingDirectoryComesBack()
{
    setRepositories({"Demo"});
    setEntries({entryOf("Demo")});
    update();
    QVERIFY(QDir(dataRoot()).removeRecursively());

    update();

    QVERIFY(QDir(Settings::location().arg("Demo")).exists());
}

QTEST_MAIN(tst_InstalledExamples)
#include "tst_installedexamples.moc"
