// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// From unpacked copies to one installed example, and what is announced of it.

#include "common/copies.h"
#include "common/logrecorder.h"
#include "common/registrationfixture.h"
#include "common/testfiles.h"

#include <QTest>

using namespace Varnel::Test;

class tst_Registration final : public RegistrationFixture
{
    Q_OBJECT

private slots:
    // What is announced
    void successIsAnnounced();
    void failureIsReportedAndAnnounced();
    void anUnknownRepositoryIsReportedOnly();

    // Where it goes
    void theNewestCopyTakesTheExamplesName();
    void olderCopiesGo();
    void theInstalledExampleIsReplaced();
    void theInstalledExampleThatIsNewestStays();
    void aPlainDirectoryIsRegisteredInPlace();
    void longerPathsAreLeftAlone();
    void neighboursWithAManifestAreLeftAlone_data();
    void neighboursWithAManifestAreLeftAlone();
    void markedCopiesAreNeverNeighbours();
    void linksAmongCopiesAreRemovedThemselves();
};

void tst_Registration::successIsAnnounced()
{
    makeCopy("hello-main-1", at(1));

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(m_fixture->lines(), (QStringList{"updated", "documentation changed"}));
}

void tst_Registration::failureIsReportedAndAnnounced()
{
    const LogRecorder log;

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(m_fixture->lines(), (QStringList{FAILED, "updated", "documentation changed"}));
    QCOMPARE(log.lines(LogRecorder::SERVICE).constLast(), "Status: \"" + FAILED + '"');
}

void tst_Registration::anUnknownRepositoryIsReportedOnly()
{
    makeCopy("hello-main-1", at(1));
    const LogRecorder log;

    m_fixture->service().registerExample("Other", makeExample("hello"));

    const QString status
        = "Skip registering example Title of hello - unable to find repository for name: Other";
    QCOMPARE(m_fixture->lines(), QStringList{status});
    QCOMPARE(log.pluginLines(), QStringList{"service: Status: \"" + status + '"'});
    QCOMPARE(ServiceFixture::installed(), QStringList{"hello-main-1"});
}

void tst_Registration::theNewestCopyTakesTheExamplesName()
{
    makeCopy("hello-main-1", at(1), "first");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "first");
    QVERIFY(QFile::exists(ServiceFixture::path("hello/" + MANIFEST)));
}

void tst_Registration::olderCopiesGo()
{
    makeCopy("hello-main-c", at(1), "oldest");
    makeCopy("hello-main-b", at(3), "newest");
    makeCopy("hello-main-a", at(2), "middle");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "newest");
}

void tst_Registration::theInstalledExampleIsReplaced()
{
    makeInstalled("hello", at(1));
    writeFile(ServiceFixture::path("hello/only-in-the-old-one"), "x");
    setTime(ServiceFixture::path("hello"), at(1));
    makeCopy("hello@0123", at(2), "update");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "update");
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", MANIFEST}));
}

void tst_Registration::theInstalledExampleThatIsNewestStays()
{
    makeCopy("hello-main-1", at(1), "left over");
    makeInstalled("hello", at(2));

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "installed");
}

void tst_Registration::aPlainDirectoryIsRegisteredInPlace()
{
    makeCopy("hello", at(1));

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(exampleOf("hello").attribute("name"), "Title of hello");
}

void tst_Registration::longerPathsAreLeftAlone()
{
    makeCopy("demo-main-1", at(1));
    makeCopy("demo-advanced", at(2));
    makeCopy("demo-advanced-main-1", at(3));
    m_fixture->list(makeExamples({"demo", "demo-advanced"}));

    QVERIFY(registerExample(makeExample("demo")));

    QCOMPARE(ServiceFixture::installed(), (QStringList{"demo", "demo-advanced", "demo-advanced-main-1"}));
}

void tst_Registration::neighboursWithAManifestAreLeftAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("module");
    QTest::addColumn<bool>("isLeft");

    QTest::newRow("example that is no longer listed") << "hello-world" << "Demo" << true;
    QTest::newRow("copy that the user made") << "hello (copy)" << "Demo" << true;
    QTest::newRow("other letter case") << "Hello" << "Demo" << true;
    QTest::newRow("manifest of another repository") << "hello-world" << "Other" << false;
}

void tst_Registration::neighboursWithAManifestAreLeftAlone()
{
    QFETCH(const QString, name);
    QFETCH(const QString, module);
    QFETCH(const bool, isLeft);
    makeInstalled(name, at(1), module);
    makeInstalled("hello", at(2));
    makeCopy("hello@0123", at(3), "update");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed().contains(name), isLeft);
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "update");
    if (isLeft)
        QCOMPARE(readFile(ServiceFixture::path(name + "/app.pro")), "installed");
}

void tst_Registration::markedCopiesAreNeverNeighbours()
{
    makeInstalled("hello@0123", at(1)); // a registration was killed before the exchange
    makeInstalled("hello", at(2));
    makeCopy("hello@4567", at(3), "update");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
}

void tst_Registration::linksAmongCopiesAreRemovedThemselves()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/precious", "x");
    makeLink(ServiceFixture::path("hello-link"), outside);
    makeLink(ServiceFixture::path("hello-old/inner"), outside);
    setTime(ServiceFixture::path("hello-old"), at(1));
    setTime(outside, at(1));
    makeCopy("hello@0123", QDateTime::currentDateTimeUtc());

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(entriesOf(outside), QStringList{"precious"});
}

QTEST_MAIN(tst_Registration)
#include "tst_registration.moc"
