// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The options page's rows of what is installed, and how they are marked.

#include "common/pagetest.h"
#include "common/testfiles.h"
#include "service/downloadservice.h"
#include "settings/settings.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QListWidget>
#include <QMenu>
#include <QTest>

#include <filesystem>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_InstalledRows final : public PageTest
{
    Q_OBJECT

private slots:
    // What is installed
    void pageWithoutRepositoriesIsEmpty();
    void installedExamplesAreListedByName();
    void repositoryWithoutAFolderHasNoRows();
    void choosingARepositoryShowsItsExamples();
    void nestedManifestsAreRowsOfTheirOwn();
    void onlyReadableManifestsCount();
    void nameThatIsNotUtf8HidesNoManifest();
    void rowCarriesPathAndToolTip();
    void toolTipNamesTheRealFolder();
    void linkedManifestStandsForItsOwnFolder();

    // What is outdated
    void newerExampleIsMarked_data();
    void newerExampleIsMarked();
    void markedRowStaysReadable();
    void olderDuplicateDoesNotHideTheNewerOne();
    void markNeedsTheSameRepository();

    // Open location
    void openLocationOpensTheFolder();
    void openLocationOfAnAddedRowIsOnlyLogged();

public slots:
    void open(const QUrl &url) { m_opened.append(url); }

private:
    QList<QUrl> m_opened;
};

void tst_InstalledRows::pageWithoutRepositoriesIsEmpty()
{
    install("Demo", "maps");

    openPage({});
    m_fixture.update(); // the second scan knows the name of "none"

    QCOMPARE(repositories()->count(), 0);
    QCOMPARE(list()->count(), 0);
}

void tst_InstalledRows::installedExamplesAreListedByName()
{
    install("Demo", "maps");
    install("Demo", "clock");
    install("Demo", "hello");
    install("Other", "foreign");

    openPage({"Demo", "Other"});

    QCOMPARE(texts(list()), (QStringList{"clock", "hello", "maps"}));
}

void tst_InstalledRows::repositoryWithoutAFolderHasNoRows()
{
    openPage({"Demo"});

    QVERIFY(!QFileInfo::exists(Settings::location().arg("Demo")));
    QCOMPARE(list()->count(), 0);
}

void tst_InstalledRows::choosingARepositoryShowsItsExamples()
{
    install("Demo", "maps");
    install("Other", "clock");
    openPage({"Demo", "Other"});

    repositories()->setCurrentText("Other");

    QCOMPARE(texts(list()), QStringList{"clock"});
}

void tst_InstalledRows::nestedManifestsAreRowsOfTheirOwn()
{
    install("Demo", "maps");
    install("Demo", "maps/parts/inner");

    openPage({"Demo"});

    QCOMPARE(texts(list()), (QStringList{"inner", "maps"}));
}

void tst_InstalledRows::onlyReadableManifestsCount()
{
    const QDir folder(Settings::location().arg("Demo"));
    install("Demo", "maps");
    QVERIFY(QFile::rename(install("Demo", "upper"), folder.filePath("upper/Examples-Manifest.xml")));
    QVERIFY(QFile::rename(install("Demo", "longer"), folder.filePath("longer/my-examples-manifest.xml")));
    QVERIFY(folder.mkpath("directory/examples-manifest.xml"));
    install("Demo", ".hidden");
    QVERIFY(folder.mkpath("dangling"));
    QVERIFY(QFile::link(folder.filePath("nowhere"), folder.filePath("dangling/examples-manifest.xml")));
    QVERIFY(folder.mkpath("elsewhere"));
    QVERIFY(QFile::link(folder.filePath("maps"), folder.filePath("elsewhere/linked")));

    openPage({"Demo"});

    QCOMPARE(texts(list()), QStringList{"maps"});
}

void tst_InstalledRows::nameThatIsNotUtf8HidesNoManifest()
{
    const QStringList names{"a", "b", "c", "d"};
    for (const QString &name : names) {
        install("Demo", name);
        for (int i = 0; i < 10; ++i) {
            const std::string file
                = exampleDirectory("Demo", name).toStdString() + "/\xff" + std::to_string(i);
            QVERIFY(std::filesystem::create_directory(file));
        }
    }
    // What cannot be named is not taken for what has the replacement character in its name.
    const QString manifest = install("Demo", "d/\ufffd0");
    std::filesystem::copy(
        manifest.toStdString(),
        exampleDirectory("Demo", "d").toStdString() + "/\xff" + "0/examples-manifest.xml");

    openPage({"Demo"});

    QCOMPARE(texts(list()), names + QStringList{"\ufffd0"});
}

void tst_InstalledRows::rowCarriesPathAndToolTip()
{
    const QDateTime time = QDateTime::currentDateTime().addDays(-3);
    const QFileInfo manifest(install("Demo", "maps", time));

    openPage({"Demo"});

    const QListWidgetItem *row = list()->item(0);
    const QString path = manifest.dir().canonicalPath();
    QCOMPARE(row->data(Qt::UserRole).toString(), path);
    QCOMPARE(
        row->toolTip(),
        "<table><tbody><tr><td style=\"width: 40%;\">Location:&nbsp;</td><td style=\"width: 60%;\">" + path
            + "</td></tr><tr><td style=\"width: 40%;\">Updated:&nbsp;</td><td style=\"width: 60%;\">"
            + time.toString(Qt::TextDate)
            + "</td></tr><tr><td style=\"width: 40%;\">Status:&nbsp;</td>"
              "<td style=\"width: 60%;\">Updated</td></tr></tbody></table>");
    QVERIFY(!row->data(Qt::BackgroundRole).isValid());
    QVERIFY(!row->data(Qt::ForegroundRole).isValid());
}

void tst_InstalledRows::toolTipNamesTheRealFolder()
{
    const QString elsewhere = QDir::tempPath() + "/elsewhere";
    QVERIFY(QDir().mkpath(elsewhere));
    const QString folder = Settings::location().arg("Demo");
    QVERIFY(QDir().mkpath(QFileInfo(folder).path()));
    QVERIFY(QFile::link(elsewhere, folder)); // a user's own way to another volume
    install("Demo", "maps");

    openPage({"Demo"});

    QCOMPARE(list()->count(), 1);
    QCOMPARE(list()->item(0)->data(Qt::UserRole).toString(), QDir(elsewhere).canonicalPath() + "/maps");
    QVERIFY(QFile::remove(folder));
}

void tst_InstalledRows::linkedManifestStandsForItsOwnFolder()
{
    const QString target = QDir::tempPath() + "/shared/examples-manifest.xml";
    writeFile(target, "<instructionals/>");
    const QString manifest = install("Demo", "maps");
    QVERIFY(QFile::remove(manifest));
    QVERIFY(QFile::link(target, manifest));

    openPage({"Demo"});

    QCOMPARE(
        list()->item(0)->data(Qt::UserRole).toString(),
        QDir(exampleDirectory("Demo", "maps")).canonicalPath());
}

void tst_InstalledRows::newerExampleIsMarked_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("lastActivity");
    QTest::addColumn<bool>("marked");
    QTest::newRow("same time") << "maps" << "2023-05-04T10:00:00.000Z" << false;
    QTest::newRow("999 ms newer") << "maps" << "2023-05-04T10:00:00.999Z" << false;
    QTest::newRow("1 s newer") << "maps" << "2023-05-04T10:00:01.000Z" << true;
    QTest::newRow("1 s older") << "maps" << "2023-05-04T09:59:59.000Z" << false;
    QTest::newRow("newer in another time zone") << "maps" << "2023-05-04T12:00:01.000+02:00" << true;
    QTest::newRow("older in another time zone") << "maps" << "2023-05-04T11:00:00.000+02:00" << false;
    QTest::newRow("no date") << "maps" << "" << false;
    QTest::newRow("malformed date") << "maps" << "tomorrow" << false;
    QTest::newRow("another letter case") << "Maps" << "2024-05-04T10:00:00.000Z" << false;
    QTest::newRow("another example") << "maps-2" << "2024-05-04T10:00:00.000Z" << false;
}

void tst_InstalledRows::newerExampleIsMarked()
{
    QFETCH(QString, path);
    QFETCH(QString, lastActivity);
    QFETCH(bool, marked);
    install("Demo", "maps", QDateTime::fromString("2023-05-04T10:00:00.000Z", Qt::ISODateWithMs));
    openPage({"Demo"});

    m_fixture.list("Demo", {makeActiveExample(path, lastActivity)});

    const QListWidgetItem *row = list()->item(0);
    QCOMPARE(row->data(Qt::BackgroundRole).isValid(), marked);
    QVERIFY(row->toolTip().contains(QLatin1StringView(marked ? ">Update available<" : ">Updated<")));
    if (marked)
        QCOMPARE(row->background(), QBrush(QColor(226, 178, 182)));
}

void tst_InstalledRows::markedRowStaysReadable()
{
    QPalette dark;
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Base, Qt::black);
    install("Demo", "maps");
    openPage({"Demo"});
    list()->setPalette(dark);
    showPage();

    m_fixture.list("Demo", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});

    const QRect row = list()->visualItemRect(list()->item(0)).adjusted(2, 2, -2, -2);
    const QImage image = list()->viewport()->grab(row).toImage();
    int darkest = 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            darkest = std::min(darkest, image.pixelColor(x, y).lightness());
    }
    QCOMPARE(image.pixelColor(image.width() - 1, 0), QColor(226, 178, 182));
    QVERIFY2(darkest < 96, qPrintable(QString::number(darkest)));
}

void tst_InstalledRows::olderDuplicateDoesNotHideTheNewerOne()
{
    install("Demo", "maps", QDateTime::currentDateTime());
    openPage({"Demo"});

    m_fixture.list(
        "Demo",
        {makeActiveExample("maps", "2001-05-04T10:00:00.000Z"),
         makeActiveExample("maps", "2123-05-04T10:00:00.000Z"),
         makeActiveExample("maps", "")});

    QVERIFY(list()->item(0)->toolTip().contains(">Update available<"));
}

void tst_InstalledRows::markNeedsTheSameRepository()
{
    install("Demo", "maps");
    openPage({"Demo", "Other"});

    m_fixture.list("Other", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});

    QVERIFY(list()->item(0)->toolTip().contains(">Updated<"));
}

void tst_InstalledRows::openLocationOpensTheFolder()
{
    QDesktopServices::setUrlHandler("file", this, "open");
    m_opened.clear();
    install("Demo", "maps 100%25");
    openPage({"Demo"});
    m_page->show();
    list()->item(0)->setSelected(true);
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });

    emit list() -> customContextMenuRequested(list()->visualItemRect(list()->item(0)).center());

    const QString folder = QDir(exampleDirectory("Demo", "maps 100%25")).canonicalPath();
    QCOMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(folder)});
    QDesktopServices::unsetUrlHandler("file");
}

void tst_InstalledRows::openLocationOfAnAddedRowIsOnlyLogged()
{
    openPage({"Demo"});
    m_fixture.list("Demo", makeExamples({"maps"}));
    add({"maps"});
    m_page->show();
    list()->item(0)->setSelected(true);
    WhenOpened<QMenu> menu([](QMenu *opened) {
        QTest::keyClick(opened, Qt::Key_Down);
        QTest::keyClick(opened, Qt::Key_Return);
    });
    QLoggingCategory::setFilterRules("zel.varnel.plugin.debug=true");
    QTest::ignoreMessage(QtDebugMsg, "Unable to open location: \"maps\"");

    emit list() -> customContextMenuRequested(list()->visualItemRect(list()->item(0)).center());

    QVERIFY(menu.happened());
    QLoggingCategory::setFilterRules({});
}

QTEST_MAIN(tst_InstalledRows)
#include "tst_installedrows.moc"
