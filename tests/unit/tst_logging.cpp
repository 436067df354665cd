// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The logging categories: silent by default, switched on one by one.

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/downloadservice.h"

#include "common/ideenvironment.h"
#include "common/logrecorder.h"

#include <QTest>
#include <QtConcurrentRun>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Logging final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void categoriesBearTheirNames();
    void onlyWarningsAreOnByDefault();
    void aCategoryIsOneObjectForAllThreads();
    void withoutRulesNothingIsLogged();
    void oneCategoryIsSwitchedOnAlone();
    void aStatusThatIsLoggedNowhereIsStillEmitted();

private:
    /** Lines in three categories: of the settings, of a client without a group, of a service. */
    void makeServiceTalk();

    std::unique_ptr<IdeEnvironment> m_ide;
};

void tst_Logging::initTestCase()
{
    m_ide = std::make_unique<IdeEnvironment>();
}

void tst_Logging::cleanup()
{
    m_ide->reset();
}

void tst_Logging::cleanupTestCase()
{
    quitApplication();
}

void tst_Logging::makeServiceTalk()
{
    m_ide->set(Constants::REPOSITORIES, QStringList{"wrong", "Demo|http://127.0.0.1|"});
    DownloadService service(nullptr);
    service.save("Unknown", {});
}

void tst_Logging::categoriesBearTheirNames()
{
    QCOMPARE(Log::main().categoryName(), "zel.varnel.plugin");
    QCOMPARE(Log::api().categoryName(), "zel.varnel.plugin.api");
    QCOMPARE(Log::arch().categoryName(), "zel.varnel.plugin.archive");
    QCOMPARE(Log::repository().categoryName(), "zel.varnel.plugin.repository");
    QCOMPARE(Log::service().categoryName(), "zel.varnel.plugin.service");
}

void tst_Logging::onlyWarningsAreOnByDefault()
{
    for (const QLoggingCategory *category :
         {&Log::main(), &Log::api(), &Log::arch(), &Log::repository(), &Log::service()}) {
        QVERIFY(!category->isDebugEnabled());
        QVERIFY(!category->isInfoEnabled());
        QVERIFY(category->isWarningEnabled());
        QVERIFY(category->isCriticalEnabled());
    }
}

void tst_Logging::aCategoryIsOneObjectForAllThreads()
{
    const QLoggingCategory *elsewhere = QtConcurrent::run([] { return &Log::api(); }).result();

    QCOMPARE(elsewhere, &Log::api());
}

void tst_Logging::withoutRulesNothingIsLogged()
{
    const LogRecorder log({});

    makeServiceTalk();

    QCOMPARE(log.pluginLines(), QStringList());
}

void tst_Logging::oneCategoryIsSwitchedOnAlone()
{
    const LogRecorder log("zel.varnel.plugin.service.debug=true");

    makeServiceTalk();

    QCOMPARE(
        log.pluginLines(),
        QStringList{
            "service: Status: \"Skip downloading examples - unable to find repository for name: Unknown\""});
}

void tst_Logging::aStatusThatIsLoggedNowhereIsStillEmitted()
{
    DownloadService service(nullptr);
    QStringList statuses;
    connect(&service, &DownloadService::statusChanged, this, [&statuses](const QString &status) {
        statuses.append(status);
    });

    service.save("Unknown", {});

    QCOMPARE(
        statuses, QStringList{"Skip downloading examples - unable to find repository for name: Unknown"});
}

QTEST_MAIN(tst_Logging)
#include "tst_logging.moc"
