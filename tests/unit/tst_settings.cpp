// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The settings record, and where examples are installed.

#include "plugin/constants.h"
#include "settings/encodings.h"
#include "settings/settings.h"

#include "common/ideenvironment.h"
#include "common/logrecorder.h"

#include <utils/qtcsettings.h>

#include <tolmak/sdk.h>

#include <QScopeGuard>
#include <QStandardPaths>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Settings final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void withoutAnyKeyTheDefaultsApply();
    void loadingReplacesTheWholeRecord();
    void numbersAreReadAsUnsigned_data();
    void numbersAreReadAsUnsigned();
    void everyKeyIsWrittenEvenOfAnEmptyRecord();
    void whatIsSavedIsLoadedAgain();
    void queuesAndScannedFilesAreNotStored();
    void otherGroupsAreLeftAlone();
    void theFileIsNamedOutsideOfAnyCategory();
    void missingAndUselessRepositoriesAreLogged();

    void aNameIsFoundByItsExactAddress();
    void theLocationIsMadeOfDataLocationAndRelease();
    void theLocationStaysTheSame();

private:
    [[nodiscard]] Settings loaded() const;

    std::unique_ptr<IdeEnvironment> m_ide;
};

Settings tst_Settings::loaded() const
{
    Settings settings;
    settings.load(m_ide->settings());
    return settings;
}

void tst_Settings::initTestCase()
{
    m_ide = std::make_unique<IdeEnvironment>();
}

void tst_Settings::cleanup()
{
    m_ide->reset();
}

void tst_Settings::withoutAnyKeyTheDefaultsApply()
{
    const Settings settings = loaded();

    QCOMPARE(settings.updatesCheckTimeoutDays, 1u);
    QCOMPARE(settings.serviceRestartTimeoutSeconds, 60u);
    QVERIFY(settings.repositories.isEmpty());
    QVERIFY(settings.lastCheckedDates.isEmpty());
}

void tst_Settings::loadingReplacesTheWholeRecord()
{
    Settings settings;
    settings.updatesCheckTimeoutDays = 7;
    settings.serviceRestartTimeoutSeconds = 8;
    settings.repositories.insert("Old", {});
    settings.lastCheckedDates.insert("Old", QDate(2025, 1, 1));
    m_ide->set(Constants::REPOSITORIES, QStringList{"New|http://x/g|"});

    settings.load(m_ide->settings());

    QCOMPARE(settings.updatesCheckTimeoutDays, 1u);
    QCOMPARE(settings.serviceRestartTimeoutSeconds, 60u);
    QCOMPARE(settings.repositories.keys(), QStringList{"New"});
    QVERIFY(settings.lastCheckedDates.isEmpty());
}

void tst_Settings::numbersAreReadAsUnsigned_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<quint32>("number");

    QTest::newRow("number") << QVariant(30) << 30u;
    QTest::newRow("zero") << QVariant(0) << 0u;
    QTest::newRow("text of a number") << QVariant("12") << 12u;
    QTest::newRow("largest") << QVariant("4294967295") << 4294967295u;
    QTest::newRow("beyond any day spin box") << QVariant(1000) << 1000u;
    QTest::newRow("word") << QVariant("daily") << 0u;
    QTest::newRow("nothing") << QVariant("") << 0u;
}

void tst_Settings::numbersAreReadAsUnsigned()
{
    QFETCH(const QVariant, stored);
    QFETCH(const quint32, number);
    m_ide->set(Constants::UPDATES_TIMEOUT, stored);
    m_ide->set(Constants::SERVICE_RESTART_TIMEOUT, stored);

    const Settings settings = loaded();

    QCOMPARE(settings.updatesCheckTimeoutDays, number);
    QCOMPARE(settings.serviceRestartTimeoutSeconds, number);
}

void tst_Settings::everyKeyIsWrittenEvenOfAnEmptyRecord()
{
    Settings().save(m_ide->settings());

    QVERIFY(m_ide->isStored("Varnel/Repositories"));
    QVERIFY(m_ide->isStored("Varnel/UpdatesCheckedDate"));
    QCOMPARE(m_ide->stored("Varnel/UpdatesCheckTimeoutDays").toInt(), 1);
    QCOMPARE(m_ide->stored("Varnel/ServiceRestartTimeoutSeconds").toInt(), 60);
    QCOMPARE(m_ide->stored("Varnel/Repositories").toStringList(), QStringList());
}

void tst_Settings::whatIsSavedIsLoadedAgain()
{
    Settings settings;
    settings.updatesCheckTimeoutDays = 14;
    settings.serviceRestartTimeoutSeconds = 5;
    settings.lastCheckedDates = {{"Demo", QDate(2026, 2, 28)}, {"", QDate(2026, 3, 1)}};
    Settings::RepositoryInfo info;
    info.url = QUrl("https://example.org:8443/a/b");
    info.examples = {"maps", "hello-qml"};
    settings.repositories.insert("Demo", info);

    settings.save(m_ide->settings());
    const Settings again = loaded();

    QCOMPARE(again.updatesCheckTimeoutDays, 14u);
    QCOMPARE(again.serviceRestartTimeoutSeconds, 5u);
    QCOMPARE(again.lastCheckedDates, settings.lastCheckedDates);
    QCOMPARE(again.repositories.keys(), QStringList{"Demo"});
    QCOMPARE(again.repositories.value("Demo").url, info.url);
    QCOMPARE(again.repositories.value("Demo").examples, info.examples);
}

void tst_Settings::queuesAndScannedFilesAreNotStored()
{
    Settings settings;
    Settings::RepositoryInfo info;
    info.url = QUrl("http://x/g");
    info.toRemove = {"removed"};
    info.toInstall = {"installed"};
    info.installed = {QFileInfo("/scanned")};
    settings.repositories.insert("Demo", info);

    settings.save(m_ide->settings());

    QCOMPARE(m_ide->stored("Varnel/Repositories").toStringList(), QStringList{"Demo|http://x/g|"});
}

void tst_Settings::otherGroupsAreLeftAlone()
{
    m_ide->settings()->setValue("Other/Repositories", "mine");

    Settings().save(m_ide->settings());
    const Settings settings = loaded();

    QVERIFY(settings.repositories.isEmpty());
    QVERIFY(m_ide->settings()->group().isEmpty());
    QCOMPARE(m_ide->stored("Other/Repositories").toString(), "mine");
}

void tst_Settings::theFileIsNamedOutsideOfAnyCategory()
{
    const LogRecorder log({});

    const Settings settings = loaded();

    QCOMPARE(log.lines("default"), QStringList{QString("Settings: \"%1\"").arg(m_ide->settingsFile())});
}

void tst_Settings::missingAndUselessRepositoriesAreLogged()
{
    LogRecorder log;

    Settings settings = loaded();
    QCOMPARE(log.lines(LogRecorder::MAIN), QStringList{"Settings does not contain variable: Repositories"});

    log.clear();
    m_ide->set(Constants::REPOSITORIES, QStringList{});
    settings = loaded();
    QCOMPARE(
        log.lines(LogRecorder::MAIN), QStringList{"Empty or invalid settings. Check variable: Repositories"});

    log.clear();
    m_ide->set(Constants::REPOSITORIES, QStringList{"wrong"});
    settings = loaded();
    QCOMPARE(
        log.lines(LogRecorder::MAIN),
        (QStringList{
            "Skipping wrong setting in item: \"wrong\"",
            "Empty or invalid settings. Check variable: Repositories"}));

    log.clear();
    m_ide->set(Constants::REPOSITORIES, QStringList{"a|http://x/g|"});
    settings = loaded();
    QCOMPARE(log.lines(LogRecorder::MAIN), QStringList());
}

void tst_Settings::aNameIsFoundByItsExactAddress()
{
    Settings settings;
    settings.repositories = fromStringList({"a|http://x/g|", "b|http://y/g|"});

    QCOMPARE(settings.findName(QUrl("http://y/g")), "b");
    QCOMPARE(settings.findName(QUrl("http://y/g/")), QString());
    QCOMPARE(settings.findName(QUrl()), QString());
    QCOMPARE(Settings().findName(QUrl("http://x/g")), QString());
}

void tst_Settings::theLocationIsMadeOfDataLocationAndRelease()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);

    QCOMPARE(Settings::location(), QString(data + '/' + Tolmak::Sdk::releaseInfo().name + "/%1"));
}

void tst_Settings::theLocationStaysTheSame()
{
    const QString location = Settings::location();
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    const auto restore = qScopeGuard([&data] { qputenv("XDG_DATA_HOME", data); });
    const LogRecorder log;

    qputenv("XDG_DATA_HOME", data + "/elsewhere");

    QVERIFY(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation).endsWith("/elsewhere"));
    QCOMPARE(Settings::location(), location);
    QVERIFY(location.endsWith("/%1"));
    QCOMPARE(log.lines(LogRecorder::MAIN), QStringList()); // told once, when it was made
}

QTEST_MAIN(tst_Settings)
#include "tst_settings.moc"
