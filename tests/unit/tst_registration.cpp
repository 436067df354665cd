// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// From unpacked copies to one installed example, whatever the copies hold.

#include "service/registration.h"

#include "service/filesystem.h"
#include "service/placement.h"

#include "common/logrecorder.h"
#include "common/servicefixture.h"
#include "common/testfiles.h"

#include <QBuffer>
#include <QDir>
#include <QDomDocument>
#include <QJsonArray>
#include <QScopeGuard>
#include <QTest>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

static void removeBuiltInTemplate()
{
    Q_CLEANUP_RESOURCE(varnel_plugin);
}

static void restoreBuiltInTemplate()
{
    Q_INIT_RESOURCE(varnel_plugin);
}

namespace {

const QString FAILED = "There was an error while creating example mainfest";
const QString MANIFEST = "examples-manifest.xml";

QDateTime at(int day)
{
    return QDateTime(QDate(2024, 1, day), QTime(12, 0), QTimeZone::UTC);
}

/** A copy of a project that can be registered, with a file that tells it from others. */
void makeCopy(const QString &name, const QDateTime &time, const QByteArray &content = "content")
{
    const QString directory = ServiceFixture::path(name);
    writeFile(directory + "/app.pro", content);
    setTime(directory, time);
}

void makeInstalled(const QString &name, const QDateTime &time, const QString &module = "Demo")
{
    makeCopy(name, time, "installed");
    writeFile(
        ServiceFixture::path(name) + '/' + MANIFEST, "<instructionals module=\"" + module.toUtf8() + "\"/>");
    setTime(ServiceFixture::path(name), time);
}

QDomElement readManifest(const QString &name)
{
    QDomDocument document;
    if (!document.setContent(readFile(ServiceFixture::path(name) + '/' + MANIFEST)))
        return {};
    return document.documentElement();
}

QDomElement exampleOf(const QString &name)
{
    return readManifest(name).firstChildElement("examples").firstChildElement("example");
}

} // namespace

class tst_Registration final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

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

    // What is written
    void theManifestTellsAllOfTheExample();
    void aSecondRegistrationStartsFromTheTemplate();
    void thePictureIsWrittenAndNamed();
    void thePictureKeepsItsText();
    void aDownloadedPictureComesBeforeIcons();
    void withoutAPictureTheLargestIconIsNamed();
    void withoutAnIconTheDummyIsNamed();
    void theIconOfAnUpdateIsNamedByItsFinalPath();
    void anIconOutsideIsNamedByItsOwnPath();
    void absentTextsAreEmpty();
    void manifestAndPictureAreNotWrittenThroughLinks();

    // What fails
    void aFailureLeavesNoDirectory_data();
    void aFailureLeavesNoDirectory();
    void failuresAreLogged();
    void anUnwritablePictureIsNoFailure();
    void brokenTemplatesFail();
    void aLinkForACopyFails();
    void namesThatAreNotPlainTouchNothing_data();
    void namesThatAreNotPlainTouchNothing();
    void aFullDiskLeavesNothingHalfDone_data();
    void aFullDiskLeavesNothingHalfDone();
    void hiddenExamplesLeaveNothingBehind();
    void aFullDiskCostsThePictureAlone();
    void somethingOfTheUsersStays_data();
    void somethingOfTheUsersStays();
    void aLinkInPlaceOfTheExampleIsNotWrittenInto();
    void anotherRepositorysDirectoryIsNoCopy_data();
    void anotherRepositorysDirectoryIsNoCopy();
    void aFailureLeavesExamplesOfLongerPathsAlone();
    void namesThatAreNotUtf8AreNoHindrance();

private:
    bool registerExample(const Repository::ExamplePtr &example);

    std::unique_ptr<ServiceFixture> m_fixture;
};

void tst_Registration::initTestCase()
{
    m_fixture = std::make_unique<ServiceFixture>();
}

void tst_Registration::init()
{
    m_fixture->start();
}

void tst_Registration::cleanup()
{
    m_fixture->reset();
}

bool tst_Registration::registerExample(const Repository::ExamplePtr &example)
{
    m_fixture->clearLines();
    m_fixture->service().registerExample("Demo", example);
    return !m_fixture->lines().contains(FAILED);
}

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

void tst_Registration::theManifestTellsAllOfTheExample()
{
    makeCopy("hello-main-1", at(1));
    writeFile(ServiceFixture::path("hello-main-1/qml/Main.qml"), "ApplicationWindow {}");
    setTime(ServiceFixture::path("hello-main-1"), at(1));

    QVERIFY(registerExample(makeExample("hello", {{"tag_list", QJsonArray{"qml", "ui"}}})));

    QCOMPARE(
        readFile(ServiceFixture::path("hello/" + MANIFEST)),
        R"(<?xml version='1.0' encoding='utf-8'?>
<!-- Generated file. This file is used by SDK to show example inside Welcome screen. It is not the part of the example. -->
<instructionals module="Demo">
 <examples>
  <example imageUrl="dummy.png" name="Title of hello" projectPath="app.pro">
   <description><![CDATA[About hello]]></description>
   <tags>qml,ui</tags>
   <platforms>Zel</platforms>
   <preferredFeatures>Zel.Wizard.Feature.Emulator</preferredFeatures>
   <fileToOpen>/qml/Main.qml</fileToOpen>
  </example>
 </examples>
</instructionals>
)");
}

void tst_Registration::aSecondRegistrationStartsFromTheTemplate()
{
    makeCopy("hello", at(1));
    QVERIFY(registerExample(makeExample("hello", {{"name", "Old title"}, {"description", "old"}})));

    QVERIFY(registerExample(makeExample("hello")));

    const QByteArray manifest = readFile(ServiceFixture::path("hello/" + MANIFEST));
    QVERIFY(!manifest.contains("Old title"));
    QVERIFY(!manifest.contains("[old]"));
    QCOMPARE(manifest.count("<example "), 1);
    QCOMPARE(manifest.count("CDATA"), 1);
}

void tst_Registration::thePictureIsWrittenAndNamed()
{
    makeCopy("hello-main-1", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({256, 128}, "jpg"));

    QVERIFY(registerExample(example));

    const QString picture = ServiceFixture::path("hello/example-icon.png");
    QCOMPARE(exampleOf("hello").attribute("imageUrl"), picture);
    QCOMPARE(QImage(picture, "png").size(), QSize(128, 64));
}

void tst_Registration::aDownloadedPictureComesBeforeIcons()
{
    makeCopy("hello-main-1", at(1));
    writeFile(ServiceFixture::path("hello-main-1/icons/128x128/app.png"), encodedPicture({8, 8}));
    setTime(ServiceFixture::path("hello-main-1"), at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));
    const LogRecorder log;

    QVERIFY(registerExample(example));

    QCOMPARE(exampleOf("hello").attribute("imageUrl"), ServiceFixture::path("hello/example-icon.png"));
    QCOMPARE(log.lines(LogRecorder::SERVICE).filter("contains no image"), QStringList());
}

void tst_Registration::thePictureKeepsItsText()
{
    makeCopy("hello-main-1", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));

    QVERIFY(registerExample(example));

    QCOMPARE(
        QImage(ServiceFixture::path("hello/example-icon.png")).text("Description"),
        "This file is used by SDK to show image for example inside Welcome screen.\n"
        "It is not the part of the example.");
}

void tst_Registration::withoutAPictureTheLargestIconIsNamed()
{
    makeCopy("hello", at(1));
    writeFile(ServiceFixture::path("hello/a/icons/128x128/small.png"), "x");
    writeFile(ServiceFixture::path("hello/a/icons/128x128/large.png"), "xx");
    const LogRecorder log;

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(
        exampleOf("hello").attribute("imageUrl"),
        QFileInfo(ServiceFixture::path("hello/a/icons/128x128/large.png")).canonicalFilePath());
    QVERIFY(!QFile::exists(ServiceFixture::path("hello/example-icon.png")));
    QCOMPARE(
        log.lines(LogRecorder::SERVICE),
        QStringList{"Repository contains no image for example: \"Title of hello\""});
}

void tst_Registration::withoutAnIconTheDummyIsNamed()
{
    makeCopy("hello", at(1));
    writeFile(ServiceFixture::path("hello/icons/86x86/x.png"), "x");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(exampleOf("hello").attribute("imageUrl"), "dummy.png");
}

void tst_Registration::theIconOfAnUpdateIsNamedByItsFinalPath()
{
    makeInstalled("hello", at(1));
    writeFile(ServiceFixture::path("hello@0123/icons/128x128/x.png"), "x");
    makeCopy("hello@0123", at(2));

    QVERIFY(registerExample(makeExample("hello")));

    const QString icon = ServiceFixture::path("hello/icons/128x128/x.png");
    QCOMPARE(exampleOf("hello").attribute("imageUrl"), QFileInfo(icon).canonicalFilePath());
    QVERIFY(QFile::exists(icon));
}

void tst_Registration::anIconOutsideIsNamedByItsOwnPath()
{
    writeFile(dataRoot() + "/outside.png", "x");
    makeLink(ServiceFixture::path("hello@0123/icons/128x128/x.png"), dataRoot() + "/outside.png");
    makeCopy("hello@0123", at(2));

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(
        exampleOf("hello").attribute("imageUrl"), QFileInfo(dataRoot() + "/outside.png").canonicalFilePath());
}

void tst_Registration::absentTextsAreEmpty()
{
    makeCopy("hello", at(1));

    QVERIFY(registerExample(makeExample("hello", {{"description", QJsonValue::Null}})));

    QVERIFY(readFile(ServiceFixture::path("hello/" + MANIFEST))
                .contains("<description><![CDATA[]]></description>"));
    QCOMPARE(exampleOf("hello").firstChildElement("tags").text(), "Qt,example");
}

void tst_Registration::manifestAndPictureAreNotWrittenThroughLinks()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/a", "precious");
    writeFile(outside + "/b", "precious");
    for (const char *name : {"hello", "hello@0123"}) {
        const QString directory = ServiceFixture::path(QString::fromLatin1(name));
        makeLink(directory + '/' + MANIFEST, outside + "/a");
        makeLink(directory + "/example-icon.png", outside + "/b");
        makeCopy(QString::fromLatin1(name), at(1));
        const Repository::ExamplePtr example = makeExample("hello");
        example->setImage(encodedPicture({8, 8}));

        QVERIFY(registerExample(example));

        QCOMPARE(readFile(outside + "/a"), "precious");
        QCOMPARE(readFile(outside + "/b"), "precious");
        QVERIFY(!QFileInfo(ServiceFixture::path("hello/" + MANIFEST)).isSymLink());
        QVERIFY(!QFileInfo(ServiceFixture::path("hello/example-icon.png")).isSymLink());
    }
}

void tst_Registration::aFailureLeavesNoDirectory_data()
{
    QTest::addColumn<QString>("kind");

    for (const char *kind : {"copy", "copy and installed", "installed alone", "copies", "nothing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_Registration::aFailureLeavesNoDirectory()
{
    QFETCH(const QString, kind);
    writeFile(ServiceFixture::path("neighbour/app.pro"), "x");
    if (kind.startsWith("cop")) {
        writeFile(ServiceFixture::path("hello@0123/no-project"), "x");
        setTime(ServiceFixture::path("hello@0123"), at(3));
    }
    if (kind.contains("and installed"))
        makeInstalled("hello", at(2));
    if (kind == "installed alone")
        writeFile(ServiceFixture::path("hello/no-project"), "x");

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"neighbour"});
}

void tst_Registration::failuresAreLogged()
{
    const LogRecorder log;
    makeDirectory(ServiceFixture::path("hello"));
    QVERIFY(!registerExample(makeExample("hello")));
    QCOMPARE(log.lines(LogRecorder::SERVICE).constFirst(), "Project file not found");

    const LogRecorder second;
    makeCopy("hello", at(1));
    makeDirectory(ServiceFixture::path("hello/" + MANIFEST));
    QVERIFY(!registerExample(makeExample("hello")));
    QVERIFY(second.lines(LogRecorder::SERVICE)
                .contains("Unable to save manifest: \"" + ServiceFixture::path("hello/" + MANIFEST) + '"'));
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Registration::anUnwritablePictureIsNoFailure()
{
    makeCopy("hello", at(1));
    makeDirectory(ServiceFixture::path("hello/example-icon.png"));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));

    QVERIFY(registerExample(example));

    QCOMPARE(exampleOf("hello").attribute("imageUrl"), ServiceFixture::path("hello/example-icon.png"));
}

void tst_Registration::brokenTemplatesFail()
{
    makeCopy("hello@0123", at(2));
    makeInstalled("hello", at(1));
    removeBuiltInTemplate();
    const auto restore = qScopeGuard([] { restoreBuiltInTemplate(); });
    const LogRecorder log;

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(m_fixture->lines(), (QStringList{FAILED, "updated", "documentation changed"}));
    QCOMPARE(log.lines(LogRecorder::SERVICE).constFirst(), "Internal manifest XML error: file not found");
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Registration::aLinkForACopyFails()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/app.pro", "x");
    makeLink(ServiceFixture::path("hello-main"), outside);

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
    QCOMPARE(entriesOf(outside), QStringList{"app.pro"});
}

void tst_Registration::namesThatAreNotPlainTouchNothing_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"", ".", "..", "../outside", "a/b", "/etc", "*", "hel?o", "hell[o]"})
        QTest::addRow("'%s'", name) << QString::fromLatin1(name);
    QTest::newRow("NUL") << QString::fromLatin1("hello\0", 6);
}

void tst_Registration::namesThatAreNotPlainTouchNothing()
{
    QFETCH(const QString, name);
    makeInstalled("hello", at(1));
    makeCopy("a/b", at(1));
    writeFile(dataRoot() + "/outside/app.pro", "x");
    const QStringList before = entriesOf(ServiceFixture::path("hello"));

    QVERIFY(!registerExample(makeExample(name)));

    QCOMPARE(m_fixture->lines(), (QStringList{FAILED, "updated", "documentation changed"}));
    QCOMPARE(ServiceFixture::installed(), (QStringList{"a", "hello"}));
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), before);
    QCOMPARE(entriesOf(ServiceFixture::path("a/b")), QStringList{"app.pro"});
    QCOMPARE(entriesOf(dataRoot()), (QStringList{"Demo", "outside"}));
    QCOMPARE(entriesOf(dataRoot() + "/outside"), QStringList{"app.pro"});
}

void tst_Registration::aFullDiskLeavesNothingHalfDone_data()
{
    QTest::addColumn<qint64>("room"); // bytes that any file may have
    QTest::addColumn<bool>("isInstalled");

    QTest::newRow("not a byte, first installation") << qint64(0) << false;
    QTest::newRow("not a byte, update") << qint64(0) << true;
    QTest::newRow("half a manifest, first installation") << qint64(300) << false;
    QTest::newRow("half a manifest, update") << qint64(300) << true;
}

void tst_Registration::aFullDiskLeavesNothingHalfDone()
{
    QFETCH(const qint64, room);
    QFETCH(const bool, isInstalled);
    makeCopy("hello@0123", at(2));
    if (isInstalled)
        makeInstalled("hello", at(1));
    rlimit before{};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit{rlim_t(room), before.rlim_max};
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);

    const bool isRegistered = registerExample(makeExample("hello"));

    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, oldHandler);
    QVERIFY(!isRegistered);
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Registration::aFullDiskCostsThePictureAlone()
{
    makeCopy("hello@0123", at(2));
    makeInstalled("hello", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    QImage noise(128, 128, QImage::Format_RGB32);
    for (quint32 i = 0, x = 1; i < 128 * 128; ++i)
        noise.setPixel(int(i % 128), int(i / 128), x = x * 1'664'525 + 1'013'904'223);
    QByteArray picture;
    QBuffer buffer(&picture);
    QVERIFY(noise.save(&buffer, "png"));
    example->setImage(picture);
    rlimit before{};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit{10'000, before.rlim_max};
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);

    const bool isRegistered = registerExample(example);

    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, oldHandler);
    QVERIFY(isRegistered);
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "content");
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", MANIFEST}));
}

void tst_Registration::somethingOfTheUsersStays_data()
{
    QTest::addColumn<bool>("hasCopy");

    QTest::newRow("with a copy to put there") << true;
    QTest::newRow("without one") << false;
}

void tst_Registration::somethingOfTheUsersStays()
{
    QFETCH(const bool, hasCopy);
    writeFile(ServiceFixture::path("hello"), "the user's own notes");
    if (hasCopy)
        makeCopy("hello@0123", at(1));

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello")), "the user's own notes");
}

void tst_Registration::aLinkInPlaceOfTheExampleIsNotWrittenInto()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/app.pro", "precious");
    makeLink(ServiceFixture::path("hello"), outside);
    makeCopy(newCopyName("hello"), at(1));

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
    QCOMPARE(entriesOf(outside), QStringList{"app.pro"});
}

void tst_Registration::anotherRepositorysDirectoryIsNoCopy_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isRegistered");

    QTest::newRow("of the same name") << "beta" << false;
    QTest::newRow("in another letter case") << "BETA" << true;
    QTest::newRow("of a longer name") << "be" << true;
}

void tst_Registration::anotherRepositorysDirectoryIsNoCopy()
{
    QFETCH(const QString, path);
    QFETCH(const bool, isRegistered);
    m_fixture->start(QUrl("http://127.0.0.1"), {"Demo/beta|http://127.0.0.2|"});
    makeCopy("beta/precious", at(1));
    makeCopy(path + "@0123", at(2));

    QCOMPARE(registerExample(makeExample(path)), isRegistered);
    QCOMPARE(entriesOf(ServiceFixture::path("beta")), QStringList{"precious"});

    // Also where the registration fails for another reason.
    QVERIFY(removeTree(ServiceFixture::path(path + "/app.pro")));
    QVERIFY(!registerExample(makeExample(path)));
    QCOMPARE(entriesOf(ServiceFixture::path("beta")), QStringList{"precious"});
}

void tst_Registration::aFailureLeavesExamplesOfLongerPathsAlone()
{
    m_fixture->list(makeExamples({"hello", "hello@1"}));
    makeInstalled("hello@1", at(1));
    writeFile(ServiceFixture::path("hello/README"), "no project");

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello@1"});
}

void tst_Registration::hiddenExamplesLeaveNothingBehind()
{
    makeCopy(newCopyName(".hello"), at(1));

    QVERIFY(!registerExample(makeExample(".hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_Registration::namesThatAreNotUtf8AreNoHindrance()
{
    for (int i = 0; i < 20; ++i) {
        makeDirectory(ServiceFixture::path(QString("other-%1").arg(i)));
        QCOMPARE(
            ::mkdir(QFile::encodeName(ServiceFixture::path("x")) + "caf\xe9" + QByteArray::number(i), 0755),
            0);
    }
    makeCopy("hello-old", at(1));
    const QByteArray raw = QFile::encodeName(ServiceFixture::path("hello-old")) + "/caf\xe9";
    QCOMPARE(::mkdir(raw, 0755), 0);
    setTime(ServiceFixture::path("hello-old"), at(1));
    makeCopy("hello@0123", at(2), "update");

    QVERIFY(registerExample(makeExample("hello")));

    QVERIFY(!existsRaw(QFile::encodeName(ServiceFixture::path("hello-old"))));
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "update");
}

QTEST_MAIN(tst_Registration)
#include "tst_registration.moc"
