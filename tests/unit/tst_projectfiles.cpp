// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which files of a project count: the one to load, the one to open, the picture.

#include "service/projectfiles.h"

#include "common/copies.h"
#include "common/files.h"
#include "common/hostilepictures.h"
#include "common/projectfixture.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_ProjectFiles final : public ProjectFixture
{
    Q_OBJECT

private slots:
    // The project file
    void theNewestProjectFileIsTaken_data();
    void theNewestProjectFileIsTaken();
    void ofEqualTimesTheNameDecidesAsInListings();
    void onlyFilesDirectlyInTheDirectoryAreProjects_data();
    void onlyFilesDirectlyInTheDirectoryAreProjects();

    // The file to open
    void aWindowInQmlComesBeforeAMainFunction();
    void mainNeedsABlankBeforeIt_data();
    void mainNeedsABlankBeforeIt();
    void aFileOfAnyNameMayHoldTheMainFunction();
    void filesInAllDirectoriesAreSearched_data();
    void filesInAllDirectoriesAreSearched();
    void onlyQmlFilesMayHoldTheWindow();
    void withoutEitherTheProjectFileIsOpened();
    void theFileIsRelativeWithALeadingSlash_data();
    void theFileIsRelativeWithALeadingSlash();
    void everyOccurrenceOfTheDirectoryIsRemoved();
    void hiddenFilesAreNotSearched();
    void linkedDirectoriesAreNotSearched();
    void namesThatAreNotUtf8EndNoSearch();

    // The picture
    void theLargestIconOf128PixelsIsTaken();
    void iconsThatCouldDoHarmArePassedOver();
    void iconsOfOtherSizesDoNotCount();
    void onlyPicturesAreIcons_data();
    void onlyPicturesAreIcons();
    void iconsAreFoundAtAnyDepth();
    void iconDirectoriesWithoutFilesArePassedOver();
    void theCanonicalPathIsTaken();
};

void tst_ProjectFiles::theNewestProjectFileIsTaken_data()
{
    QTest::addColumn<QStringList>("oldestFirst");
    QTest::addColumn<QString>("project");

    QTest::newRow("newer qmake file") << QStringList{"CMakeLists.txt", "app.pro"} << "app.pro";
    QTest::newRow("newer CMake file") << QStringList{"app.pro", "CMakeLists.txt"} << "CMakeLists.txt";
    QTest::newRow("of several") << QStringList{"a.pro", "c.pro", "b.pro"} << "b.pro";
    QTest::newRow("the only one") << QStringList{"app.pro"} << "app.pro";
    QTest::newRow("newer files of other kinds") << QStringList{"app.pro", "main.cpp"} << "app.pro";
    QTest::newRow("letter case does not count") << QStringList{"cmakelists.txt", "APP.PRO"} << "APP.PRO";
    QTest::newRow("none") << QStringList{"main.cpp", "app.pro.user", "CMakeLists.txt.in"} << "";
}

void tst_ProjectFiles::theNewestProjectFileIsTaken()
{
    QFETCH(const QStringList, oldestFirst);
    QFETCH(const QString, project);
    int day = 1;
    for (const QString &name : oldestFirst) {
        writeFile(path(name), "");
        setTime(path(name), at(day++));
    }

    QCOMPARE(findProject(m_project), project);
    const QStringList listed
        = QDir(m_project).entryList({"*.pro", "CMakeLists.txt"}, QDir::Files | QDir::Readable, QDir::Time);
    QCOMPARE(listed.value(0), project);
}

void tst_ProjectFiles::ofEqualTimesTheNameDecidesAsInListings()
{
    for (const char *name : {"b.pro", "CMakeLists.txt", "a.pro", "B.pro"}) {
        writeFile(path(QString::fromLatin1(name)), "");
        setTime(path(QString::fromLatin1(name)), at(1));
    }

    const QStringList listed
        = QDir(m_project).entryList({"*.pro", "CMakeLists.txt"}, QDir::Files | QDir::Readable, QDir::Time);

    QCOMPARE(findProject(m_project), listed.constFirst());
}

void tst_ProjectFiles::onlyFilesDirectlyInTheDirectoryAreProjects_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("isProject");

    QTest::newRow("below") << "below" << false;
    QTest::newRow("directory") << "directory" << false;
    QTest::newRow("hidden") << "hidden" << false;
    QTest::newRow("dangling link") << "dangling" << false;
    QTest::newRow("link to a file") << "link" << true;
}

void tst_ProjectFiles::onlyFilesDirectlyInTheDirectoryAreProjects()
{
    QFETCH(const QString, kind);
    QFETCH(const bool, isProject);
    if (kind == "below")
        writeFile(path("src/app.pro"), "");
    else if (kind == "directory")
        makeDirectory(path("app.pro"));
    else if (kind == "hidden")
        writeFile(path(".app.pro"), "");
    else if (kind == "dangling")
        makeLink(path("app.pro"), "nowhere");
    else {
        writeFile(path("real"), "");
        makeLink(path("app.pro"), "real");
    }

    QCOMPARE(findProject(m_project), isProject ? "app.pro" : "");
}

void tst_ProjectFiles::aWindowInQmlComesBeforeAMainFunction()
{
    writeFile(path("a/main.cpp"), MAIN);
    writeFile(path("z/Main.qml"), "ApplicationWindow {}");
    writeFile(path("app.pro"), "");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/z/Main.qml");
}

void tst_ProjectFiles::mainNeedsABlankBeforeIt_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<bool>("isFound");

    QTest::newRow("behind a type") << QByteArray("int main(int, char **)") << true;
    QTest::newRow("behind a type, on Windows") << QByteArray("\r\nint main(int, char **)\r\n") << true;
    QTest::newRow("at the start of a line") << QByteArray("int\nmain(int, char **)") << false;
    QTest::newRow("behind a tabulator") << QByteArray("int\tmain(int, char **)") << false;
    QTest::newRow("blank before the bracket") << QByteArray("int main (int, char **)") << false;
    QTest::newRow("another name") << QByteArray("int domain(int)") << false;
}

void tst_ProjectFiles::mainNeedsABlankBeforeIt()
{
    QFETCH(const QByteArray, source);
    QFETCH(const bool, isFound);
    writeFile(path("app.pro"), "");
    writeFile(path("main.cpp"), source);

    QCOMPARE(findProjectFiles(m_project).fileToOpen, isFound ? "/main.cpp" : "app.pro");
}

void tst_ProjectFiles::aFileOfAnyNameMayHoldTheMainFunction()
{
    writeFile(path("app.pro"), "");
    writeFile(path("README"), "Its main( is short");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/README");
}

void tst_ProjectFiles::filesInAllDirectoriesAreSearched_data()
{
    QTest::addColumn<QString>("directory");

    for (const char *directory : {"a", "b", "a/c", "a/c/d"})
        QTest::newRow(directory) << QString::fromLatin1(directory);
}

void tst_ProjectFiles::filesInAllDirectoriesAreSearched()
{
    QFETCH(const QString, directory);
    for (const char *other : {"a", "b", "a/c", "a/c/d"})
        writeFile(path(QString::fromLatin1(other) + "/other.cpp"), "int other()");
    writeFile(path(directory + "/main.cpp"), MAIN);

    QCOMPARE(findProjectFiles(m_project).fileToOpen, '/' + directory + "/main.cpp");
}

void tst_ProjectFiles::onlyQmlFilesMayHoldTheWindow()
{
    writeFile(path("app.pro"), "");
    writeFile(path("main.js"), "ApplicationWindow");
    writeFile(path("Main.qml.in"), "ApplicationWindow");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "app.pro");
}

void tst_ProjectFiles::withoutEitherTheProjectFileIsOpened()
{
    writeFile(path("CMakeLists.txt"), "");
    writeFile(path("Main.qml"), "Item {}");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "CMakeLists.txt");
    QCOMPARE(findProjectFiles(m_directory->path()).fileToOpen, "");
}

void tst_ProjectFiles::theFileIsRelativeWithALeadingSlash_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("top") << "Main.qml";
    QTest::newRow("below") << "src/qml/Main.qml";
    QTest::newRow("other letters") << "übung/Käse 1.qml";
}

void tst_ProjectFiles::theFileIsRelativeWithALeadingSlash()
{
    QFETCH(const QString, file);
    writeFile(path(file), "ApplicationWindow {}");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/" + file);
}

void tst_ProjectFiles::everyOccurrenceOfTheDirectoryIsRemoved()
{
    writeFile(m_project + "/src" + m_project + "/qml" + m_project + "/Main.qml", "ApplicationWindow {}");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/src/qml/Main.qml");
}

void tst_ProjectFiles::hiddenFilesAreNotSearched()
{
    writeFile(path("app.pro"), "");
    writeFile(path(".git/hooks/sample.qml"), "ApplicationWindow");
    writeFile(path(".main.cpp"), MAIN);

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "app.pro");
}

void tst_ProjectFiles::linkedDirectoriesAreNotSearched()
{
    writeFile(m_directory->filePath("outside/Main.qml"), "ApplicationWindow");
    writeFile(path("app.pro"), "");
    makeLink(path("link"), "../outside");
    makeLink(path("circle"), ".");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "app.pro");
}

void tst_ProjectFiles::namesThatAreNotUtf8EndNoSearch()
{
    for (int i = 0; i < 20; ++i) {
        const QByteArray raw = QFile::encodeName(m_project) + "/caf\xe9" + QByteArray::number(i);
        QCOMPARE(::mkdir(raw, 0755), 0);
    }
    for (int i = 0; i < 20; ++i)
        makeDirectory(path(QString("directory-%1").arg(i)));
    writeFile(path("directory-7/Main.qml"), "ApplicationWindow");
    writeFile(path("app.pro"), "");

    QCOMPARE(findProjectFiles(m_project).fileToOpen, "/directory-7/Main.qml");
    QCOMPARE(findProject(m_project), "app.pro");
}

void tst_ProjectFiles::theLargestIconOf128PixelsIsTaken()
{
    writeFile(path("icons/128x128/a.png"), QByteArray(10, 'x'));
    writeFile(path("icons/128x128/b.png"), QByteArray(30, 'x'));
    writeFile(path("icons/128x128/c.jpg"), QByteArray(20, 'x'));
    writeFile(path("icons/128x128/d.txt"), QByteArray(90, 'x'));
    writeFile(path("icons/256x256/e.png"), QByteArray(99, 'x'));

    QCOMPARE(findProjectFiles(m_project).icon, QFileInfo(path("icons/128x128/b.png")).canonicalFilePath());
}

// The Welcome screen would decode it.
void tst_ProjectFiles::iconsThatCouldDoHarmArePassedOver()
{
    writeFile(path("icons/128x128/a.png"), png(16, 16));
    writeFile(path("icons/128x128/b.png"), mngWithLoops(3) + QByteArray(10'000, '\0'));
    writeFile(path("icons/128x128/c.png"), png(16, 16) + QByteArray(4 * 1024 * 1024, '\0'));

    QCOMPARE(findProjectFiles(m_project).icon, QFileInfo(path("icons/128x128/a.png")).canonicalFilePath());

    writeFile(path("icons/128x128/a.png"), png(16'000, 16, 1));
    QCOMPARE(findProjectFiles(m_project).icon, QString());
}

void tst_ProjectFiles::iconsOfOtherSizesDoNotCount()
{
    writeFile(path("icons/86x86/a.png"), "x");
    writeFile(path("icons/256x256/a.png"), "x");
    writeFile(path("icons/a.png"), "x");
    writeFile(path("icons/128x128/deeper/a.png"), "x");
    writeFile(path("128x128/a.png"), "x");

    QCOMPARE(findProjectFiles(m_project).icon, QString());
}

void tst_ProjectFiles::onlyPicturesAreIcons_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isIcon");

    QTest::newRow("png") << "a.png" << true;
    QTest::newRow("jpeg") << "a.jpeg" << true;
    QTest::newRow("jpg") << "a.jpg" << true;
    QTest::newRow("bmp") << "a.bmp" << true;
    QTest::newRow("capital letters") << "A.PNG" << true;
    QTest::newRow("svg") << "a.svg" << false;
    QTest::newRow("no suffix") << "png" << false;
    QTest::newRow("hidden") << ".a.png" << false;
}

void tst_ProjectFiles::onlyPicturesAreIcons()
{
    QFETCH(const QString, name);
    QFETCH(const bool, isIcon);
    writeFile(path("icons/128x128/" + name), "x");

    QCOMPARE(!findProjectFiles(m_project).icon.isEmpty(), isIcon);
}

void tst_ProjectFiles::iconsAreFoundAtAnyDepth()
{
    writeFile(path("a/b/c/icons/128x128/x.png"), "x");
    writeFile(path("a/iconset/128x128/y.png"), "yy");

    QCOMPARE(
        findProjectFiles(m_project).icon, QFileInfo(path("a/b/c/icons/128x128/x.png")).canonicalFilePath());
}

void tst_ProjectFiles::iconDirectoriesWithoutFilesArePassedOver()
{
    makeDirectory(path("icons/128x128"));
    makeDirectory(path("a/icons/86x86"));
    writeFile(path("b/icons/128x128/x.png"), "x");

    QCOMPARE(findProjectFiles(m_project).icon, QFileInfo(path("b/icons/128x128/x.png")).canonicalFilePath());
}

void tst_ProjectFiles::theCanonicalPathIsTaken()
{
    writeFile(path("real.png"), "x");
    makeLink(path("icons/128x128/a.png"), "../../real.png");
    makeLink(m_directory->filePath("link"), "project");

    QCOMPARE(
        findProjectFiles(m_directory->filePath("link")).icon,
        QFileInfo(path("real.png")).canonicalFilePath());
}

QTEST_GUILESS_MAIN(tst_ProjectFiles)
#include "tst_projectfiles.moc"
