// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which directories are copies of an example, and in which order.

#include "service/placement.h"

#include "service/filesystem.h"
#include "settings/settings.h"

#include "common/copies.h"
#include "common/ideenvironment.h"
#include "common/testfiles.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString REPOSITORY = "Demo";

} // namespace

class tst_Placement final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void directoriesLieBelowTheLocation();
    void namesAreFilledInOneAfterTheOther();

    // The listing
    void copiesAreListedOldestFirst();
    void timesAreComparedBelowASecond();
    void longerPathsKeepTheirDirectories();
    void beginningsMatchInAnyLetterCase();
    void longerPathsMatchInTheirLetterCaseOnly();
    void aPathIsOnePattern();
    void onlyVisibleDirectoriesAreListed();
    void aMissingRepositoryHasNoCopies();
    void namesThatAreNotUtf8EndNoListing();
    void theOrderIsThatOfOrdinaryListings_data();
    void theOrderIsThatOfOrdinaryListings();

    // Names
    void aCommitAtTheEndOfANameIsTold_data();
    void aCommitAtTheEndOfANameIsTold();

    // Repositories within each other
    void aDirectoryThatHoldsARepositoryIsTold_data();
    void aDirectoryThatHoldsARepositoryIsTold();
    void aLinkToARepositoryIsTold();
};

void tst_Placement::cleanup()
{
    QVERIFY(removeTree(dataRoot()));
}

void tst_Placement::directoriesLieBelowTheLocation()
{
    QCOMPARE(repositoryDirectory("Demo"), Settings::location().arg("Demo") + '/');
    QCOMPARE(exampleDirectory("Demo", "hello"), Settings::location().arg("Demo") + "/hello");
}

void tst_Placement::namesAreFilledInOneAfterTheOther()
{
    QCOMPARE(exampleDirectory("D%2", "hello"), Settings::location().arg("Dhello") + "/hello");
}

void tst_Placement::copiesAreListedOldestFirst()
{
    makeCopy("demo", at(2));
    makeCopy("demo-main-b", at(1));
    makeCopy("demo-main-a", at(3));

    QCOMPARE(
        findDirNames(REPOSITORY, "demo", makeExamples({"demo"})),
        (QStringList{"demo-main-b", "demo", "demo-main-a"}));
}

void tst_Placement::timesAreComparedBelowASecond()
{
    makeCopy("demo-a", at(1, 2));
    makeCopy("demo-b", at(1, 1));
    makeCopy("demo-c", at(1, 3));

    QCOMPARE(findDirNames(REPOSITORY, "demo", {}), (QStringList{"demo-b", "demo-a", "demo-c"}));
}

void tst_Placement::longerPathsKeepTheirDirectories()
{
    makeCopy("demo", at(1));
    makeCopy("demo-main-a", at(2));
    makeCopy("demo-advanced", at(3));
    makeCopy("demo-advanced-main-a", at(4));
    const Repository::Examples examples = makeExamples({"demo", "demo-advanced", "other"});

    QCOMPARE(findDirNames(REPOSITORY, "demo", examples), (QStringList{"demo", "demo-main-a"}));
    QCOMPARE(
        findDirNames(REPOSITORY, "demo-advanced", examples),
        (QStringList{"demo-advanced", "demo-advanced-main-a"}));
    // What is no longer listed has no claim.
    QCOMPARE(findDirNames(REPOSITORY, "demo", makeExamples({"demo"})).size(), 4);
}

void tst_Placement::beginningsMatchInAnyLetterCase()
{
    makeCopy("Demo-main-a", at(1));
    makeCopy("DEMO", at(2));

    QCOMPARE(findDirNames(REPOSITORY, "demo", {}), (QStringList{"Demo-main-a", "DEMO"}));
}

void tst_Placement::longerPathsMatchInTheirLetterCaseOnly()
{
    makeCopy("Demo-Advanced", at(1));
    makeCopy("demo-advanced", at(2));

    QCOMPARE(
        findDirNames(REPOSITORY, "demo", makeExamples({"demo", "demo-advanced"})),
        QStringList{"Demo-Advanced"});
}

void tst_Placement::aPathIsOnePattern()
{
    makeCopy("demo", at(1));
    makeCopy("x demo", at(2));
    makeCopy("x;demo", at(3));

    QCOMPARE(findDirNames(REPOSITORY, "x demo", {}), QStringList{"x demo"});
    QCOMPARE(findDirNames(REPOSITORY, "x;demo", {}), QStringList{"x;demo"});
}

void tst_Placement::onlyVisibleDirectoriesAreListed()
{
    makeCopy("demo", at(1));
    writeFile(pathOf("demo.txt"), "x");
    makeCopy(".demo", at(2));
    makeLink(pathOf("demo-dangling"), "nowhere");
    makeLink(pathOf("demo-link"), "demo");
    setTime(pathOf("demo-link"), at(3));
    makeCopy("a-demo", at(4));

    QStringList names = findDirNames(REPOSITORY, "demo", {});

    names.sort();
    QCOMPARE(names, (QStringList{"demo", "demo-link"}));
}

void tst_Placement::aMissingRepositoryHasNoCopies()
{
    QCOMPARE(findDirNames("Nowhere", "demo", {}), QStringList());
}

void tst_Placement::namesThatAreNotUtf8EndNoListing()
{
    for (int i = 0; i < 20; ++i) {
        makeCopy(QString("demo-%1").arg(i), at(1));
        QCOMPARE(::mkdir(QFile::encodeName(pathOf("x")) + "caf\xe9" + QByteArray::number(i), 0755), 0);
    }

    QCOMPARE(findDirNames(REPOSITORY, "demo", {}).size(), 20);
}

void tst_Placement::theOrderIsThatOfOrdinaryListings_data()
{
    QTest::addColumn<QList<int>>("days"); // of copies in alphabetical order

    QTest::newRow("all different") << QList<int>{3, 1, 4, 2};
    QTest::newRow("all equal") << QList<int>{1, 1, 1, 1, 1};
    QTest::newRow("pairs") << QList<int>{2, 1, 2, 1, 3};
    QTest::newRow("one") << QList<int>{1};
    QTest::newRow("none") << QList<int>{};
}

void tst_Placement::theOrderIsThatOfOrdinaryListings()
{
    QFETCH(const QList<int>, days);
    const QStringList names{"demo", "demo-B", "demo-a", "demo-main-1", "demo-ä"};
    for (qsizetype i = 0; i < days.size(); ++i)
        makeCopy(names.at(i), at(days.at(i)));

    const QStringList listed
        = QDir(repositoryDirectory(REPOSITORY)).entryList({"demo*"}, QDir::Dirs, QDir::Time | QDir::Reversed);

    QCOMPARE(findDirNames(REPOSITORY, "demo", makeExamples({"demo"})), listed);
    QCOMPARE(listed.size(), days.size());
}

void tst_Placement::aCommitAtTheEndOfANameIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTold");

    QTest::newRow("SHA-1") << "demo-main-" + QString(40, 'a') << true;
    QTest::newRow("SHA-256") << "demo-main-" + QString(64, '0') << true;
    QTest::newRow("short") << "demo-main-" + QString(39, 'a') << false;
    QTest::newRow("between") << "demo-main-" + QString(50, 'a') << false;
    QTest::newRow("no hyphen") << "demo" + QString(40, 'a') << false;
    QTest::newRow("no hexadecimal digit") << "demo-" + QString(40, 'g') << false;
    QTest::newRow("capitals") << "demo-" + QString(40, 'A') << false;
    QTest::newRow("in the middle") << "demo-" + QString(40, 'a') + "-x" << false;
}

void tst_Placement::aCommitAtTheEndOfANameIsTold()
{
    QFETCH(const QString, name);
    QFETCH(const bool, isTold);

    QCOMPARE(endsInCommit(name), isTold);
}

void tst_Placement::aDirectoryThatHoldsARepositoryIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTold");

    QTest::newRow("the other one") << "beta" << true;
    QTest::newRow("above another one") << "deep" << true;
    QTest::newRow("within another one") << "beta/inner" << false;
    QTest::newRow("beginning of its name") << "be" << false;
    QTest::newRow("longer name") << "beta2" << false;
    QTest::newRow("by a way around") << "x/../beta" << true;
    QTest::newRow("something else") << "gamma" << false;
}

void tst_Placement::aDirectoryThatHoldsARepositoryIsTold()
{
    QFETCH(const QString, name);
    const QStringList repositories{"Demo", "Demo/beta", "Demo/deep/er"};

    QTEST(holdsRepository(pathOf(name), repositories), "isTold");
    QVERIFY(!holdsRepository(pathOf(name), {}));
}

void tst_Placement::aLinkToARepositoryIsTold()
{
    makeDirectory(Settings::location().arg("Other"));
    makeLink(pathOf("link"), Settings::location().arg("Other"));

    QVERIFY(holdsRepository(pathOf("link"), {"Demo", "Other"}));
    QVERIFY(!holdsRepository(pathOf("link"), {"Demo"}));
}

QTEST_GUILESS_MAIN(tst_Placement)
#include "tst_placement.moc"
