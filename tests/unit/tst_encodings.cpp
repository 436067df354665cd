// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// How repositories and dates are written into the settings and read from them.

#include "settings/encodings.h"
#include "settings/settings.h"

#include "common/logrecorder.h"

#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Encodings final : public QObject
{
    Q_OBJECT

private slots:
    // Repositories
    void faultyRepositoryEntriesAreSkipped_data();
    void faultyRepositoryEntriesAreSkipped();
    void emptyExampleNamesSurviveTheRoundTrip_data();
    void emptyExampleNamesSurviveTheRoundTrip();
    void addressesAreReadTolerantly();
    void repositoryTextsAreWrittenInFourSubstitutions_data();
    void repositoryTextsAreWrittenInFourSubstitutions();

    // Dates
    void faultyDateEntriesAreSkipped_data();
    void faultyDateEntriesAreSkipped();
    void datesAreRead_data();
    void datesAreRead();
    void datesAreWritten_data();
    void datesAreWritten();
};

void tst_Encodings::faultyRepositoryEntriesAreSkipped_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("names"); // sorted
    QTest::addColumn<QStringList>("lines");

    const QString wrong = "Skipping wrong setting in item: \"%1\"";
    const QString name = "Skipping duplicated repository name in item: \"%1\"";
    const QString url = "Skipping duplicated repository url in item: \"%1\"";
    QTest::newRow("empty, without a word") << QStringList{""} << QStringList{} << QStringList{};
    QTest::newRow("bare name") << QStringList{"a"} << QStringList{} << QStringList{wrong.arg("a")};
    QTest::newRow("no address") << QStringList{"a|"} << QStringList{} << QStringList{wrong.arg("a|")};
    QTest::newRow("no address, but examples")
        << QStringList{"a||x"} << QStringList{} << QStringList{wrong.arg("a||x")};
    QTest::newRow("no name") << QStringList{"|http://x/g"} << QStringList{}
                             << QStringList{wrong.arg("|http://x/g")};
    QTest::newRow("only a separator") << QStringList{"|"} << QStringList{} << QStringList{wrong.arg("|")};
    QTest::newRow("name taken, first wins") << QStringList{"a|http://x/g|", "a|http://y/g|"}
                                            << QStringList{"a"} << QStringList{name.arg("a|http://y/g|")};
    QTest::newRow("address taken, first wins") << QStringList{"a|http://x/g|", "b|http://x/g|"}
                                               << QStringList{"a"} << QStringList{url.arg("b|http://x/g|")};
    QTest::newRow("both taken: the name is told")
        << QStringList{"a|http://x/g|", "a|http://x/g|"} << QStringList{"a"}
        << QStringList{name.arg("a|http://x/g|")};
    QTest::newRow("name of a skipped entry is free")
        << QStringList{"a|", "a|http://x/g|"} << QStringList{"a"} << QStringList{wrong.arg("a|")};
    QTest::newRow("address of a skipped entry is free")
        << QStringList{"a|http://x/g", "a|http://y/g", "b|http://y/g"} << QStringList{"a", "b"}
        << QStringList{name.arg("a|http://y/g")};
    QTest::newRow("letter case tells names apart")
        << QStringList{"a|http://x/g", "A|http://y/g"} << QStringList{"A", "a"} << QStringList{};
    QTest::newRow("a closing slash tells addresses apart")
        << QStringList{"a|http://x/g", "b|http://x/g/"} << QStringList{"a", "b"} << QStringList{};
    QTest::newRow("the address is not judged")
        << QStringList{"a|not an address"} << QStringList{"a"} << QStringList{};
    QTest::newRow("good ones among bad ones")
        << QStringList{"", "a", "b|http://x/g|", "|"} << QStringList{"b"}
        << QStringList{wrong.arg("a"), wrong.arg("|")};
}

void tst_Encodings::faultyRepositoryEntriesAreSkipped()
{
    QFETCH(const QStringList, texts);
    QFETCH(const QStringList, names);
    QFETCH(const QStringList, lines);
    const LogRecorder log;

    const auto repositories = fromStringList(texts);

    QStringList keys = repositories.keys();
    keys.sort();
    QCOMPARE(keys, names);
    QCOMPARE(log.lines(LogRecorder::MAIN), lines);
    if (keys.contains("a") && texts.contains("a|http://x/g|"))
        QCOMPARE(repositories.value("a").url, QUrl("http://x/g"));
}

void tst_Encodings::emptyExampleNamesSurviveTheRoundTrip_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSet<QString>>("examples");
    QTest::addColumn<QString>("written"); // empty where the order of a set decides

    QTest::newRow("no third part") << "a|http://x/g" << QSet<QString>{} << "a|http://x/g|";
    QTest::newRow("empty third part") << "a|http://x/g|" << QSet<QString>{""} << "a|http://x/g|";
    QTest::newRow("one name") << "a|http://x/g|x" << QSet<QString>{"x"} << "a|http://x/g|x";
    QTest::newRow("empty one in the middle") << "a|http://x/g|x||y" << QSet<QString>{"x", "", "y"} << "";
    QTest::newRow("names twice") << "a|http://x/g|x|x" << QSet<QString>{"x"} << "a|http://x/g|x";
}

void tst_Encodings::emptyExampleNamesSurviveTheRoundTrip()
{
    QFETCH(const QString, text);
    QFETCH(const QSet<QString>, examples);
    QFETCH(const QString, written);

    const auto repositories = fromStringList({text});
    const QStringList texts = toStringList(repositories);

    QCOMPARE(repositories.value("a").examples, examples);
    QCOMPARE(texts.size(), 1);
    if (!written.isEmpty())
        QCOMPARE(texts.constFirst(), written);
    else
        QCOMPARE(fromStringList(texts).value("a").examples, examples);
}

void tst_Encodings::addressesAreReadTolerantly()
{
    const auto repositories = fromStringList({"a|http://x/sample group|"});

    QCOMPARE(repositories.value("a").url, QUrl("http://x/sample%20group", QUrl::StrictMode));
    QCOMPARE(toStringList(repositories), QStringList{"a|http://x/sample group|"});
}

void tst_Encodings::repositoryTextsAreWrittenInFourSubstitutions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSet<QString>>("examples");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "a" << QSet<QString>{"x"} << "a|http://x/g|x";
    QTest::newRow("address marker in the name")
        << "a%2b" << QSet<QString>{"x"} << "ahttp://x/gb|http://x/g|x";
    QTest::newRow("examples marker in the name") << "a%3" << QSet<QString>{"x"} << "ax|http://x/g|x";
    QTest::newRow("separator marker in the name") << "a%4b" << QSet<QString>{} << "a|b|http://x/g|";
    QTest::newRow("separator marker in an example") << "a" << QSet<QString>{"x%4y"} << "a|http://x/g|x|y";
    // The smallest marker that is left is substituted, whichever it is meant to be.
    QTest::newRow("name marker in the name") << "a%1" << QSet<QString>{"x"} << "ahttp://x/g%4x%4|";
}

void tst_Encodings::repositoryTextsAreWrittenInFourSubstitutions()
{
    QFETCH(const QString, name);
    QFETCH(const QSet<QString>, examples);
    QFETCH(const QString, text);
    Settings::RepositoryInfo info;
    info.url = QUrl("http://x/g");
    info.examples = examples;

    QCOMPARE(toStringList({{name, info}}), QStringList{text});
}

void tst_Encodings::faultyDateEntriesAreSkipped_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("lines");

    const QString wrong = "Skipping wrong setting in item: \"%1\"";
    QTest::newRow("empty, without a word") << QStringList{""} << QStringList{} << QStringList{};
    QTest::newRow("one part") << QStringList{"a"} << QStringList{} << QStringList{wrong.arg("a")};
    QTest::newRow("three parts") << QStringList{"a|01.02.2026|x"} << QStringList{}
                                 << QStringList{wrong.arg("a|01.02.2026|x")};
    QTest::newRow("name taken, first wins")
        << QStringList{"a|01.02.2026", "a|03.04.2026"} << QStringList{"a"}
        << QStringList{"Skipping duplicated repository name in item: \"a|03.04.2026\""};
    QTest::newRow("empty name") << QStringList{"|01.02.2026"} << QStringList{""} << QStringList{};
}

void tst_Encodings::faultyDateEntriesAreSkipped()
{
    QFETCH(const QStringList, texts);
    QFETCH(const QStringList, names);
    QFETCH(const QStringList, lines);
    const LogRecorder log;

    const QHash<QString, QDate> dates = lastCheckedDateFromStringList(texts);

    QCOMPARE(dates.keys(), names);
    QCOMPARE(log.lines(LogRecorder::MAIN), lines);
    for (const QDate &date : dates)
        QCOMPARE(date, QDate(2026, 2, 1));
}

void tst_Encodings::datesAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date");

    QTest::newRow("ordinary") << "a|28.02.2026" << QDate(2026, 2, 28);
    QTest::newRow("31 February") << "a|31.02.2026" << QDate();
    QTest::newRow("leap day") << "a|29.02.2024" << QDate(2024, 2, 29);
    QTest::newRow("empty") << "a|" << QDate();
    QTest::newRow("word") << "a|yesterday" << QDate();
    QTest::newRow("two-digit year") << "a|01.02.26" << QDate();
    QTest::newRow("another order") << "a|2026-02-01" << QDate();
}

void tst_Encodings::datesAreRead()
{
    QFETCH(const QString, text);
    QFETCH(const QDate, date);

    const QHash<QString, QDate> dates = lastCheckedDateFromStringList({text});

    QVERIFY(dates.contains("a"));
    QCOMPARE(dates.value("a"), date);
}

void tst_Encodings::datesAreWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("text");

    QTest::newRow("ordinary") << "a" << QDate(2026, 2, 1) << "a|01.02.2026";
    QTest::newRow("empty name") << "" << QDate(2026, 12, 31) << "|31.12.2026";
    QTest::newRow("invalid") << "a" << QDate() << "a|";
    QTest::newRow("separator marker in the name") << "a%2" << QDate(2026, 2, 1) << "a||01.02.2026";
    QTest::newRow("date marker in the name") << "a%3" << QDate(2026, 2, 1) << "a01.02.2026|01.02.2026";
}

void tst_Encodings::datesAreWritten()
{
    QFETCH(const QString, name);
    QFETCH(const QDate, date);
    QFETCH(const QString, text);

    QCOMPARE(lastUpdateTimeToStringList({{name, date}}), QStringList{text});
}

QTEST_MAIN(tst_Encodings)
#include "tst_encodings.moc"
