// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// How the directory that was just unpacked is made the newest copy, and told by its mark.

#include "service/placement.h"

#include "service/filesystem.h"

#include "common/copies.h"
#include "common/ideenvironment.h"
#include "common/testfiles.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QTest>

#include <errno.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString REPOSITORY = "Demo";

bool timesAreFixed = false;
long granularity = 0; // seconds that times are rounded to; 0: not at all

} // namespace

// In place of the system library's, so that a file system which keeps its times is at hand.
extern "C" Q_DECL_EXPORT int
utimensat(int directory, const char *path, const timespec times[2], int flags) noexcept
{
    if (timesAreFixed) {
        errno = EPERM;
        return -1;
    }
    timespec rounded[]{times[0], times[1]};
    if (granularity > 0)
        rounded[1] = {times[1].tv_sec - times[1].tv_sec % granularity, 0};
    return int(::syscall(SYS_utimensat, directory, path, rounded, flags));
}

class tst_NewestCopy final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void theUnpackedDirectoryBecomesTheNewestCopy_data();
    void theUnpackedDirectoryBecomesTheNewestCopy();
    void aFutureRivalIsOvertakenByASecond();
    void theUnpackedDirectoryIsTakenFromALongerPath();
    void timesThatAreRoundedDoNotLoseATie();
    void whatCannotBeMarkedGoes_data();
    void whatCannotBeMarkedGoes();

    // The mark
    void twoMarksDiffer();
    void onlyTheMarkTellsACopy_data();
    void onlyTheMarkTellsACopy();
    void onlyMarkedCopiesOfThePathsAreFound();
};

void tst_NewestCopy::cleanup()
{
    QVERIFY(removeTree(dataRoot()));
}

void tst_NewestCopy::theUnpackedDirectoryBecomesTheNewestCopy_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QDateTime>("commit");

    const QDateTime now = QDateTime::currentDateTimeUtc();
    QTest::newRow("commit of years ago") << "demo-main-a" << at(1).addYears(-9);
    QTest::newRow("commit of now") << "demo-main-a" << now;
    QTest::newRow("commit of the future") << "demo-main-a" << now.addYears(3);
    QTest::newRow("the path alone") << "demo" << at(1);
    QTest::newRow("other letter case") << "Demo-main-a" << at(1);
    QTest::newRow("no separator behind the path") << "demonstration" << at(1);
}

void tst_NewestCopy::theUnpackedDirectoryBecomesTheNewestCopy()
{
    QFETCH(const QString, top);
    QFETCH(const QDateTime, commit);
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    if (top != "demo")
        makeCopy("demo", before);
    makeCopy("demo-main-left-over", before);
    makeCopy(top, commit);
    const Repository::Examples examples = makeExamples({"demo"});

    QVERIFY(!markAsNewestCopy(REPOSITORY, "demo", top, examples).isEmpty());

    const QStringList names = findDirNames(REPOSITORY, "demo", examples);
    const QString marked = names.constLast();
    QVERIFY2(isMarkedCopy(marked, "demo"), qPrintable(marked));
    QVERIFY(!QFileInfo::exists(pathOf(top)));
    const QDateTime time = QFileInfo(pathOf(marked)).lastModified(QTimeZone::UTC);
    QVERIFY(time >= before);
    QVERIFY(time <= QDateTime::currentDateTimeUtc());
}

void tst_NewestCopy::aFutureRivalIsOvertakenByASecond()
{
    const QDateTime future = QDateTime::currentDateTimeUtc().addYears(1);
    makeCopy("demo", future);
    makeCopy("demo-main-old", future.addSecs(100));
    makeCopy("demo-advanced", future.addSecs(500));
    makeCopy("demo-main-a", at(1));
    const Repository::Examples examples = makeExamples({"demo", "demo-advanced"});

    QVERIFY(!markAsNewestCopy(REPOSITORY, "demo", "demo-main-a", examples).isEmpty());

    const QString marked = findDirNames(REPOSITORY, "demo", examples).constLast();
    QVERIFY2(isMarkedCopy(marked, "demo"), qPrintable(marked));
    QCOMPARE(
        QFileInfo(pathOf(marked)).lastModified(QTimeZone::UTC).toMSecsSinceEpoch(),
        future.addSecs(101).toMSecsSinceEpoch());
}

void tst_NewestCopy::theUnpackedDirectoryIsTakenFromALongerPath()
{
    const Repository::Examples examples = makeExamples({"maps", "maps-main"});
    makeCopy("maps-main-4f0c1d6a", at(1)); // of maps, branch main

    QVERIFY(!markAsNewestCopy(REPOSITORY, "maps", "maps-main-4f0c1d6a", examples).isEmpty());

    QCOMPARE(findDirNames(REPOSITORY, "maps", examples).size(), 1);
    QCOMPARE(findDirNames(REPOSITORY, "maps-main", examples), QStringList());
}

void tst_NewestCopy::timesThatAreRoundedDoNotLoseATie()
{
    const auto restore = qScopeGuard([] { granularity = 0; });
    granularity = 2;
    makeCopy("demo-main-a", at(1));
    makeCopy("demo", QDateTime::currentDateTimeUtc()); // and by its name it would win
    const Repository::Examples examples = makeExamples({"demo"});

    const QString marked = markAsNewestCopy(REPOSITORY, "demo", "demo-main-a", examples);

    QVERIFY(!marked.isEmpty());
    QCOMPARE(findDirNames(REPOSITORY, "demo", examples).constLast(), marked);
}

void tst_NewestCopy::whatCannotBeMarkedGoes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isTimeFixed");

    QTest::newRow("no room for the mark in a name") << QString(240, 'd') << false;
    QTest::newRow("time that cannot be set") << "demo" << true;
}

void tst_NewestCopy::whatCannotBeMarkedGoes()
{
    QFETCH(const QString, path);
    QFETCH(const bool, isTimeFixed);
    makeCopy(path + "-main-a", at(1));
    makeCopy("neighbour", at(2));
    timesAreFixed = isTimeFixed;

    const bool isMarked
        = !markAsNewestCopy(REPOSITORY, path, path + "-main-a", makeExamples({path})).isEmpty();

    timesAreFixed = false;
    QVERIFY(!isMarked);
    QCOMPARE(entriesOf(repositoryDirectory(REPOSITORY)), QStringList{"neighbour"});
}

void tst_NewestCopy::twoMarksDiffer()
{
    makeCopy("demo-a", at(1));
    makeCopy("demo-b", at(1));

    QVERIFY(!markAsNewestCopy(REPOSITORY, "demo", "demo-a", {}).isEmpty());
    QVERIFY(!markAsNewestCopy(REPOSITORY, "demo", "demo-b", {}).isEmpty());

    const QStringList names = entriesOf(repositoryDirectory(REPOSITORY));
    QCOMPARE(names.size(), 2);
    QVERIFY(isMarkedCopy(names.at(0), "demo") && isMarkedCopy(names.at(1), "demo"));
}

void tst_NewestCopy::onlyTheMarkTellsACopy_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isMarked");

    QTest::newRow("mark") << "demo@0123" << true;
    QTest::newRow("path") << "demo" << false;
    QTest::newRow("branch") << "demo-main" << false;
    QTest::newRow("mark of a longer path") << "demo-advanced@0123" << false;
    QTest::newRow("mark of a shorter path") << "dem@0123" << false;
}

void tst_NewestCopy::onlyTheMarkTellsACopy()
{
    QFETCH(const QString, name);
    QFETCH(const bool, isMarked);

    QCOMPARE(isMarkedCopy(name, "demo"), isMarked);
}

void tst_NewestCopy::onlyMarkedCopiesOfThePathsAreFound()
{
    const QString id = QString(32, 'a');
    for (const QString &name : QStringList{"demo", "demo@1", "demo@" + id, "other@" + id, "demo-x@" + id})
        makeDirectory(pathOf(name));

    QCOMPARE(findMarkedCopies(REPOSITORY, {"demo", "none"}), QStringList{pathOf("demo@" + id)});
}

QTEST_GUILESS_MAIN(tst_NewestCopy)
#include "tst_newestcopy.moc"
