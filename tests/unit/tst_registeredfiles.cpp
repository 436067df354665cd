// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the registration writes into an example's directory: the manifest and the picture.

#include "service/registration.h"

#include "common/copies.h"
#include "common/logrecorder.h"
#include "common/registrationfixture.h"
#include "common/testfiles.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

RegistrationContext contextOf(const EncodedPicture &picture)
{
    return {
        .repositoryName = "Demo",
        .listed = {},
        .repositoryNames = {"Demo"},
        .copy = {.picture = picture},
        .removeCopy = [](const QString &) {},
        .isBeingRemoved = [](const QString &) { return false; }};
}

} // namespace

class tst_RegisteredFiles final : public RegistrationFixture
{
    Q_OBJECT

private slots:
    // The manifest
    void theManifestTellsAllOfTheExample();
    void aSecondRegistrationStartsFromTheTemplate();
    void absentTextsAreEmpty();

    // The picture
    void thePictureIsWrittenAndNamed();
    void thePictureKeepsItsText();
    void aPictureIsEncodedOnlyOnce();
    void aPictureThatHasChangedIsEncodedAgain();
    void aDownloadedPictureComesBeforeIcons();
    void withoutAPictureTheLargestIconIsNamed();
    void withoutAnIconTheDummyIsNamed();
    void theIconOfAnUpdateIsNamedByItsFinalPath();
    void anIconOutsideIsNamedByItsOwnPath();

    // Both
    void manifestAndPictureAreNotWrittenThroughLinks();
};

void tst_RegisteredFiles::theManifestTellsAllOfTheExample()
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

void tst_RegisteredFiles::aSecondRegistrationStartsFromTheTemplate()
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

void tst_RegisteredFiles::absentTextsAreEmpty()
{
    makeCopy("hello", at(1));

    QVERIFY(registerExample(makeExample("hello", {{"description", QJsonValue::Null}})));

    QVERIFY(readFile(ServiceFixture::path("hello/" + MANIFEST))
                .contains("<description><![CDATA[]]></description>"));
    QCOMPARE(exampleOf("hello").firstChildElement("tags").text(), "Qt,example");
}

void tst_RegisteredFiles::thePictureIsWrittenAndNamed()
{
    makeCopy("hello-main-1", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({256, 128}, "jpg"));

    QVERIFY(registerExample(example));

    const QString picture = ServiceFixture::path("hello/example-icon.png");
    QCOMPARE(exampleOf("hello").attribute("imageUrl"), picture);
    QCOMPARE(QImage(picture, "png").size(), QSize(128, 64));
}

void tst_RegisteredFiles::thePictureKeepsItsText()
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

// What was encoded is told apart from what it should be, so that the file shows where it comes from.
void tst_RegisteredFiles::aPictureIsEncodedOnlyOnce()
{
    makeCopy("hello-main-1", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));
    const EncodedPicture before = encodePicture(example->image());
    QCOMPARE(QImage::fromData(before.bytes).size(), QSize(128, 128));

    QVERIFY(Registration(example, contextOf({.imageKey = before.imageKey, .bytes = "encoded"})).run());

    QCOMPARE(readFile(ServiceFixture::path("hello/example-icon.png")), "encoded");
}

void tst_RegisteredFiles::aPictureThatHasChangedIsEncodedAgain()
{
    makeCopy("hello-main-1", at(1));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));
    const EncodedPicture before = encodePicture(example->image());
    example->setImage(encodedPicture({16, 8}));

    QVERIFY(Registration(example, contextOf(before)).run());

    QCOMPARE(QImage(ServiceFixture::path("hello/example-icon.png")).size(), QSize(128, 64));
}

void tst_RegisteredFiles::aDownloadedPictureComesBeforeIcons()
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

void tst_RegisteredFiles::withoutAPictureTheLargestIconIsNamed()
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

void tst_RegisteredFiles::withoutAnIconTheDummyIsNamed()
{
    makeCopy("hello", at(1));
    writeFile(ServiceFixture::path("hello/icons/86x86/x.png"), "x");

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(exampleOf("hello").attribute("imageUrl"), "dummy.png");
}

void tst_RegisteredFiles::theIconOfAnUpdateIsNamedByItsFinalPath()
{
    makeInstalled("hello", at(1));
    writeFile(ServiceFixture::path("hello@0123/icons/128x128/x.png"), "x");
    makeCopy("hello@0123", at(2));

    QVERIFY(registerExample(makeExample("hello")));

    const QString icon = ServiceFixture::path("hello/icons/128x128/x.png");
    QCOMPARE(exampleOf("hello").attribute("imageUrl"), QFileInfo(icon).canonicalFilePath());
    QVERIFY(QFile::exists(icon));
}

void tst_RegisteredFiles::anIconOutsideIsNamedByItsOwnPath()
{
    writeFile(dataRoot() + "/outside.png", "x");
    makeLink(ServiceFixture::path("hello@0123/icons/128x128/x.png"), dataRoot() + "/outside.png");
    makeCopy("hello@0123", at(2));

    QVERIFY(registerExample(makeExample("hello")));

    QCOMPARE(
        exampleOf("hello").attribute("imageUrl"), QFileInfo(dataRoot() + "/outside.png").canonicalFilePath());
}

void tst_RegisteredFiles::manifestAndPictureAreNotWrittenThroughLinks()
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

QTEST_MAIN(tst_RegisteredFiles)
#include "tst_registeredfiles.moc"
