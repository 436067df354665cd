// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What stays and what goes when a registration fails or is hindered.

#include "service/filesystem.h"
#include "service/placement.h"

#include "common/builtintemplate.h"
#include "common/copies.h"
#include "common/filesizelimit.h"
#include "common/logrecorder.h"
#include "common/registrationfixture.h"
#include "common/testfiles.h"

#include <QBuffer>
#include <QImage>
#include <QTest>

#include <sys/stat.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_FailedRegistration final : public RegistrationFixture
{
    Q_OBJECT

private slots:
    // The ordinary failures
    void aFailureLeavesNoDirectory_data();
    void aFailureLeavesNoDirectory();
    void failuresAreLogged();
    void brokenTemplatesFail();
    void hiddenExamplesLeaveNothingBehind();

    // A full disk
    void aFullDiskLeavesNothingHalfDone_data();
    void aFullDiskLeavesNothingHalfDone();
    void aFullDiskCostsThePictureAlone();

    // What is not the example's
    void aLinkForACopyFails();
    void namesThatAreNotPlainTouchNothing_data();
    void namesThatAreNotPlainTouchNothing();
    void somethingOfTheUsersStays_data();
    void somethingOfTheUsersStays();
    void aLinkInPlaceOfTheExampleIsNotWrittenInto();
    void anotherRepositorysDirectoryIsNoCopy_data();
    void anotherRepositorysDirectoryIsNoCopy();
    void noCopyStaysWhereAnotherRepositoryHasThePlace();
    void aFailureLeavesExamplesOfLongerPathsAlone();

    // What is no failure
    void anUnwritablePictureIsNoFailure();
    void namesThatAreNotUtf8AreNoHindrance();
};

void tst_FailedRegistration::aFailureLeavesNoDirectory_data()
{
    QTest::addColumn<QString>("kind");

    for (const char *kind : {"copy", "copy and installed", "installed alone", "copies", "nothing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_FailedRegistration::aFailureLeavesNoDirectory()
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

void tst_FailedRegistration::failuresAreLogged()
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

void tst_FailedRegistration::brokenTemplatesFail()
{
    makeCopy("hello@0123", at(2));
    makeInstalled("hello", at(1));
    const WithoutBuiltInTemplate without;
    const LogRecorder log;

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(m_fixture->lines(), (QStringList{FAILED, "updated", "documentation changed"}));
    QCOMPARE(log.lines(LogRecorder::SERVICE).constFirst(), "Internal manifest XML error: file not found");
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_FailedRegistration::hiddenExamplesLeaveNothingBehind()
{
    makeCopy(newCopyName(".hello"), at(1));

    QVERIFY(!registerExample(makeExample(".hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_FailedRegistration::aFullDiskLeavesNothingHalfDone_data()
{
    QTest::addColumn<qint64>("room"); // bytes that any file may have
    QTest::addColumn<bool>("isInstalled");

    QTest::newRow("not a byte, first installation") << qint64(0) << false;
    QTest::newRow("not a byte, update") << qint64(0) << true;
    QTest::newRow("half a manifest, first installation") << qint64(300) << false;
    QTest::newRow("half a manifest, update") << qint64(300) << true;
}

void tst_FailedRegistration::aFullDiskLeavesNothingHalfDone()
{
    QFETCH(const qint64, room);
    QFETCH(const bool, isInstalled);
    makeCopy("hello@0123", at(2));
    if (isInstalled)
        makeInstalled("hello", at(1));

    const bool isRegistered = [&] {
        const FileSizeLimit limit(room);
        return registerExample(makeExample("hello"));
    }();

    QVERIFY(!isRegistered);
    QCOMPARE(ServiceFixture::installed(), QStringList());
}

void tst_FailedRegistration::aFullDiskCostsThePictureAlone()
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

    const bool isRegistered = [&] {
        const FileSizeLimit limit(10'000);
        return registerExample(example);
    }();

    QVERIFY(isRegistered);
    QCOMPARE(readFile(ServiceFixture::path("hello/app.pro")), "content");
    QCOMPARE(entriesOf(ServiceFixture::path("hello")), (QStringList{"app.pro", MANIFEST}));
}

void tst_FailedRegistration::aLinkForACopyFails()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/app.pro", "x");
    makeLink(ServiceFixture::path("hello-main"), outside);

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
    QCOMPARE(entriesOf(outside), QStringList{"app.pro"});
}

void tst_FailedRegistration::namesThatAreNotPlainTouchNothing_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"", ".", "..", "../outside", "a/b", "/etc", "*", "hel?o", "hell[o]"})
        QTest::addRow("'%s'", name) << QString::fromLatin1(name);
    QTest::newRow("NUL") << QString::fromLatin1("hello\0", 6);
}

void tst_FailedRegistration::namesThatAreNotPlainTouchNothing()
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

void tst_FailedRegistration::somethingOfTheUsersStays_data()
{
    QTest::addColumn<bool>("hasCopy");

    QTest::newRow("with a copy to put there") << true;
    QTest::newRow("without one") << false;
}

void tst_FailedRegistration::somethingOfTheUsersStays()
{
    QFETCH(const bool, hasCopy);
    writeFile(ServiceFixture::path("hello"), "the user's own notes");
    if (hasCopy)
        makeCopy("hello@0123", at(1));

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello"});
    QCOMPARE(readFile(ServiceFixture::path("hello")), "the user's own notes");
}

void tst_FailedRegistration::aLinkInPlaceOfTheExampleIsNotWrittenInto()
{
    const QString outside = dataRoot() + "/outside";
    writeFile(outside + "/app.pro", "precious");
    makeLink(ServiceFixture::path("hello"), outside);
    makeCopy(newCopyName("hello"), at(1));

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList());
    QCOMPARE(entriesOf(outside), QStringList{"app.pro"});
}

void tst_FailedRegistration::anotherRepositorysDirectoryIsNoCopy_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isRegistered");

    QTest::newRow("of the same name") << "beta" << false;
    QTest::newRow("in another letter case") << "BETA" << true;
    QTest::newRow("of a longer name") << "be" << true;
}

void tst_FailedRegistration::anotherRepositorysDirectoryIsNoCopy()
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

void tst_FailedRegistration::noCopyStaysWhereAnotherRepositoryHasThePlace()
{
    const QString copy = "beta@" + QString(32, u'0');
    m_fixture->start(QUrl("http://127.0.0.1"), {"Demo/beta|http://127.0.0.2|"});
    makeCopy("beta/precious", at(1));
    makeCopy(copy, at(2));

    QVERIFY(!registerExample(makeExample("beta")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"beta"});
    QCOMPARE(entriesOf(ServiceFixture::path("beta")), QStringList{"precious"});
}

void tst_FailedRegistration::aFailureLeavesExamplesOfLongerPathsAlone()
{
    m_fixture->list(makeExamples({"hello", "hello@1"}));
    makeInstalled("hello@1", at(1));
    writeFile(ServiceFixture::path("hello/README"), "no project");

    QVERIFY(!registerExample(makeExample("hello")));

    QCOMPARE(ServiceFixture::installed(), QStringList{"hello@1"});
}

void tst_FailedRegistration::anUnwritablePictureIsNoFailure()
{
    makeCopy("hello", at(1));
    makeDirectory(ServiceFixture::path("hello/example-icon.png"));
    const Repository::ExamplePtr example = makeExample("hello");
    example->setImage(encodedPicture({8, 8}));

    QVERIFY(registerExample(example));

    QCOMPARE(exampleOf("hello").attribute("imageUrl"), ServiceFixture::path("hello/example-icon.png"));
}

void tst_FailedRegistration::namesThatAreNotUtf8AreNoHindrance()
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

QTEST_MAIN(tst_FailedRegistration)
#include "tst_failedregistration.moc"
