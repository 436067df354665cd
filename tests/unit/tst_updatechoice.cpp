// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which examples an update downloads again.

#include "service/downloadservice.h"

#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "common/updatefixture.h"
#include "service/nativefiles.h"

#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

QJsonObject activityAt(const QDateTime &time)
{
    return {{"last_activity_at", time.toUTC().toString(Qt::ISODateWithMs)}};
}

} // namespace

class tst_UpdateChoice final : public UpdateFixture
{
    Q_OBJECT

private slots:
    void changedExamplesAreDownloaded_data();
    void changedExamplesAreDownloaded();
    void onTheFirstCheckAllAreDownloaded();
    void missingExamplesAreDownloaded();
    void removedExamplesAreNever_data();
    void removedExamplesAreNever();
    void unusualPathsAreListedAsUsual();
    void leftOversGoUnlessAnotherProcessUnpacks();
};

void tst_UpdateChoice::changedExamplesAreDownloaded_data()
{
    QTest::addColumn<QJsonObject>("changes");
    QTest::addColumn<bool>("isDownloaded");

    const QDateTime checked = QDate::currentDate().addDays(-5).startOfDay(); // local time
    QTest::newRow("long before") << activityAt(checked.addYears(-1)) << false;
    QTest::newRow("a second before the day of the check") << activityAt(checked.addSecs(-1)) << false;
    QTest::newRow("less than a second before") << activityAt(checked.addMSecs(-999)) << true;
    QTest::newRow("at the start of the day of the check") << activityAt(checked) << true;
    QTest::newRow("later on the day of the check") << activityAt(checked.addSecs(3600)) << true;
    QTest::newRow("after the day of the check") << activityAt(checked.addDays(2)) << true;
    QTest::newRow("in the future") << activityAt(checked.addYears(3)) << true;
    QTest::newRow("at an unknown time") << QJsonObject{{"last_activity_at", "x"}} << true;
    QTest::newRow("never") << QJsonObject{{"last_activity_at", QJsonValue::Null}} << true;
}

void tst_UpdateChoice::changedExamplesAreDownloaded()
{
    QFETCH(QJsonObject, changes);
    QFETCH(const bool, isDownloaded);
    makeDirectory(ServiceFixture::path("a"));
    start(daysAgo(5));
    const LogRecorder log;
    changes.insert("id", 1);

    m_fixture->list({makeExample("a", changes)});

    QCOMPARE(downloads(), isDownloaded ? QList<int>{1} : QList<int>());
    QCOMPARE(log.lines(LogRecorder::SERVICE).contains("Skip example: \"Title of a\""), !isDownloaded);
}

void tst_UpdateChoice::leftOversGoUnlessAnotherProcessUnpacks()
{
    const QString leftOver = "a@" + QString(32, u'0');
    makeDirectory(ServiceFixture::path("a"));
    makeDirectory(ServiceFixture::path(leftOver));
    const Repository::Examples listed{
        makeExample("a", activityAt(QDateTime::currentDateTime().addYears(-1)))};
    {
        start(daysAgo(5));
        const DirectoryLock other(ServiceFixture::path({}));
        m_fixture->list(listed);
        QCOMPARE(downloads(), QList<int>());
        m_fixture->stop(); // which ends the background worker
    }
    QCOMPARE(ServiceFixture::installed(), (QStringList{"a", leftOver}));

    start(daysAgo(5));
    m_fixture->list(listed);

    QTRY_COMPARE(ServiceFixture::installed(), QStringList{"a"});
}

void tst_UpdateChoice::onTheFirstCheckAllAreDownloaded()
{
    makeDirectory(ServiceFixture::path("a"));
    start({});

    m_fixture->list({makeExample("a", {{"id", 1}}), makeExample("b", {{"id", 2}})});

    QCOMPARE(downloads(), (QList<int>{1, 2}));
}

void tst_UpdateChoice::missingExamplesAreDownloaded()
{
    makeDirectory(ServiceFixture::path("there"));
    writeFile(ServiceFixture::path("file"), "in the way");
    makeDirectory(ServiceFixture::path("Missing-in-another-case"));
    start(daysAgo(5));
    const LogRecorder log;

    m_fixture->list(
        {makeExample("there", {{"id", 1}}),
         makeExample("missing", {{"id", 2}}),
         makeExample("file", {{"id", 3}}),
         makeExample("missing-in-another-case", {{"id", 4}})});

    QCOMPARE(downloads(), (QList<int>{2, 3, 4}));
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        (QStringList{"Updating examples: 4", "Skip example: \"Title of there\""}));
}

void tst_UpdateChoice::removedExamplesAreNever_data()
{
    QTest::addColumn<QString>("storedDate");
    QTest::addColumn<bool>("isThere");

    QTest::newRow("first check") << QString() << false;
    QTest::newRow("unchanged, missing") << daysAgo(5) << false;
    QTest::newRow("still there") << QString() << true;
}

void tst_UpdateChoice::removedExamplesAreNever()
{
    QFETCH(const QString, storedDate);
    QFETCH(const bool, isThere);
    if (isThere)
        makeDirectory(ServiceFixture::path("removed"));
    start(storedDate);
    const LogRecorder log;

    m_fixture->list(
        {makeExample("removed", {{"id", 1}, {"last_activity_at", "2999-01-01T00:00:00Z"}}),
         makeExample("Removed", {{"id", 2}})});

    QCOMPARE(downloads(), QList<int>{2});
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        (QStringList{"Updating examples: 2", "Skip example: \"Title of removed\""}));
}

void tst_UpdateChoice::unusualPathsAreListedAsUsual()
{
    start({});
    const Repository::Examples examples{
        makeExample("../up", {{"id", 1}}), makeExample("", {{"id", 2}}), makeExample("*", {{"id", 3}})};

    m_fixture->list(examples);

    QCOMPARE(m_fixture->service().examples("Demo"), examples);
    QCOMPARE(downloads(), (QList<int>{1, 2, 3}));
}

QTEST_MAIN(tst_UpdateChoice)
#include "tst_updatechoice.moc"
