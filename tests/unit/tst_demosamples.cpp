// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The demo repository's server reads its samples, and says what is wrong with one.

#include "server/samples.h"

#include "common/files.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Varnel::Demo;
using namespace Varnel::Test;

namespace {

constexpr char DESCRIPTION[] = R"({"id": 1, "title": "T", "branch": "main", "created": "2024-01-01T00:00:00Z",
    "commit": "2024-01-01T00:00:00Z", "activity": "2024-01-01T00:00:00Z"%1})";

QByteArray description(const QByteArray &more = {})
{
    return QByteArray(DESCRIPTION).replace("%1", more);
}

} // namespace

class tst_DemoSamples final : public QObject
{
    Q_OBJECT

private slots:
    void theOwnSamplesAreReadable();
    void picturesArePaintedAsDescribed();
    void whatIsWrongWithASampleIsSaid_data();
    void whatIsWrongWithASampleIsSaid();
};

void tst_DemoSamples::theOwnSamplesAreReadable()
{
    const Samples samples = readSamples(QFINDTESTDATA("../../demo/samples"));

    QCOMPARE(samples.error, QString());
    QStringList paths;
    for (const Project &sample : samples.projects)
        paths.append(sample.path);
    QVERIFY(paths.contains(u"maps"_s) && paths.contains(u"maps-offline"_s));
    QVERIFY(paths.contains(u"sketches"_s));
}

void tst_DemoSamples::picturesArePaintedAsDescribed()
{
    const QTemporaryDir directory;
    writeFile(
        directory.filePath(u"one/project.json"_s), description(R"(, "avatar": {"text": "A", "colour": "red"},
                         "icons": {"icons/128x128/i.png": {"text": "I", "colour": "#00ff00"}})"));
    writeFile(directory.filePath(u"one/files/CMakeLists.txt"_s), "");

    const Samples samples = readSamples(directory.path());

    QCOMPARE(samples.error, QString());
    const Project &one = samples.projects.first();
    QCOMPARE(QImage::fromData(one.avatar, "PNG").size(), QSize(256, 256));
    const QByteArray icon = one.tree.entries().at("icons/128x128/i.png").content;
    QCOMPARE(QImage::fromData(icon, "PNG").size(), QSize(128, 128));
    QVERIFY(one.tree.entries().contains("CMakeLists.txt"));
}

void tst_DemoSamples::whatIsWrongWithASampleIsSaid_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("hasFiles");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("no JSON") << "{"_ba << true << u"project.json: "_s;
    QTest::newRow("something missing") << "{\"id\": 1}"_ba << true << u"\"title\" is missing"_s;
    QTest::newRow("wrong kind") << R"({"id": "one"})"_ba << true << u"\"id\" is of a wrong kind"_s;
    QTest::newRow("no time") << description().replace("2024-01-01T00:00:00Z", "soon") << true
                             << u"\"created\" is not a time: \"soon\""_s;
    QTest::newRow("misspelt") << description(R"(, "titel": "T")") << true << u"\"titel\" means nothing"_s;
    QTest::newRow("picture without a colour") << description(R"(, "avatar": {"text": "A"})") << true
                                              << u"\"avatar\" needs a \"text\" and a \"colour\""_s;
    QTest::newRow("no files") << description() << false << u"one/files: "_s;
}

void tst_DemoSamples::whatIsWrongWithASampleIsSaid()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, hasFiles);
    QFETCH(QString, complaint);
    const QTemporaryDir directory;
    writeFile(directory.filePath(u"one/project.json"_s), text);
    if (hasFiles)
        writeFile(directory.filePath(u"one/files/a.txt"_s), "a");

    const Samples samples = readSamples(directory.path());

    QVERIFY2(samples.error.contains(complaint), qPrintable(samples.error));
    QVERIFY(samples.error.startsWith(directory.path()));
}

QTEST_MAIN(tst_DemoSamples)
#include "tst_demosamples.moc"
