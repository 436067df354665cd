// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One project of a repository, its archive and its picture.

#include "client/repository.h"

#include "common/testfiles.h"

#include <QBuffer>
#include <QDebug>
#include <QJsonArray>
#include <QTest>
#include <QtConcurrentRun>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Example final : public QObject
{
    Q_OBJECT

private slots:
    void nameIsThePathAndDisplayNameTheTitle();
    void validityNeedsNumberTitleAndAddress_data();
    void validityNeedsNumberTitleAndAddress();
    void tagsAreTakenAsTheyAre_data();
    void tagsAreTakenAsTheyAre();
    void lastActivityIsReadAsIso_data();
    void lastActivityIsReadAsIso();
    void aNewExampleHasNoPayload();
    void theArchiveIsReplacedWhole();
    void picturesAreScaledToFit_data();
    void picturesAreScaledToFit();
    void picturesOfAnyKnownFormatAreTaken_data();
    void picturesOfAnyKnownFormatAreTaken();
    void picturesAreScaledWithoutNewColours();
    void anUndecodablePictureReplacesTheOldByNone();
    void thePictureSaysWhatItIsFor();
    void readersSeeWholePayloads();
    void pointersAreEqualOnlyForTheSameExample();
    void pointersAndListsAreComparedAndPrintedByTheirTypes();
    void theWholeProjectIsPrinted();
};

void tst_Example::nameIsThePathAndDisplayNameTheTitle()
{
    const Example example(QJsonObject{{"path", "hello-qml"}, {"name", "Hello QML"}});
    const Example nothing({});

    QCOMPARE(example.name(), "hello-qml");
    QCOMPARE(example.displayName(), "Hello QML");
    QCOMPARE(nothing.name(), QString());
    QCOMPARE(nothing.displayName(), QString());
}

void tst_Example::validityNeedsNumberTitleAndAddress_data()
{
    QTest::addColumn<QJsonObject>("project");
    QTest::addColumn<bool>("isValid");

    const QJsonObject good{{"id", 42}, {"name", "Hello"}, {"web_url", "http://x/hello"}, {"path", "hello"}};
    const auto with = [&good](const QString &key, const QJsonValue &value) {
        QJsonObject project = good;
        project.insert(key, value);
        return project;
    };
    QTest::newRow("all there") << good << true;
    QTest::newRow("empty path") << with("path", "") << true;
    QTest::newRow("no path") << with("path", QJsonValue::Undefined) << true;
    QTest::newRow("number 0") << with("id", 0) << false;
    QTest::newRow("no number") << with("id", QJsonValue::Undefined) << false;
    QTest::newRow("number as text") << with("id", "42") << false;
    QTest::newRow("number null") << with("id", QJsonValue::Null) << false;
    QTest::newRow("64-bit number") << with("id", 5e9) << true;
    QTest::newRow("empty title") << with("name", "") << false;
    QTest::newRow("title is no text") << with("name", 1) << false;
    QTest::newRow("no title") << with("name", QJsonValue::Undefined) << false;
    QTest::newRow("empty address") << with("web_url", "") << false;
    QTest::newRow("no address") << with("web_url", QJsonValue::Undefined) << false;
    QTest::newRow("nothing") << QJsonObject() << false;
}

void tst_Example::validityNeedsNumberTitleAndAddress()
{
    QFETCH(const QJsonObject, project);
    QFETCH(const bool, isValid);

    QCOMPARE(Example(project).isValid(), isValid);
}

void tst_Example::tagsAreTakenAsTheyAre_data()
{
    QTest::addColumn<QJsonValue>("tags");
    QTest::addColumn<QStringList>("expected");

    const QStringList none{"Qt", "example"};
    QTest::newRow("in their order") << QJsonValue(QJsonArray{"qml", "c++"}) << QStringList{"qml", "c++"};
    QTest::newRow("not trimmed, not filtered")
        << QJsonValue(QJsonArray{" a ", "", "a", " a "}) << QStringList{" a ", "", "a", " a "};
    QTest::newRow("what is no text is empty") << QJsonValue(QJsonArray{1, "a"}) << QStringList{"", "a"};
    QTest::newRow("one empty text is no default") << QJsonValue(QJsonArray{""}) << QStringList{""};
    QTest::newRow("empty list") << QJsonValue(QJsonArray()) << none;
    QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << none;
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << none;
    QTest::newRow("no list") << QJsonValue("qml") << none;
}

void tst_Example::tagsAreTakenAsTheyAre()
{
    QFETCH(const QJsonValue, tags);
    QFETCH(const QStringList, expected);

    QCOMPARE(Example(projectObject("demo", {{"tag_list", tags}})).tags(), expected);
}

void tst_Example::lastActivityIsReadAsIso_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("time");

    const QTime time(10, 11, 12, 345);
    QTest::newRow("with milliseconds, UTC")
        << "2023-05-04T10:11:12.345Z" << QDateTime(QDate(2023, 5, 4), time, QTimeZone::UTC);
    QTest::newRow("with an offset") << "2023-05-04T10:11:12.345+02:00"
                                    << QDateTime(QDate(2023, 5, 4), time.addSecs(-7200), QTimeZone::UTC);
    QTest::newRow("empty") << "" << QDateTime();
    QTest::newRow("malformed") << "yesterday" << QDateTime();
}

void tst_Example::lastActivityIsReadAsIso()
{
    QFETCH(const QString, text);
    QFETCH(const QDateTime, time);

    const QDateTime read = Example(projectObject("demo", {{"last_activity_at", text}})).lastActivity();

    QCOMPARE(read.isValid(), time.isValid());
    QCOMPARE(read, time);
    if (text.endsWith('Z'))
        QCOMPARE(read.timeSpec(), Qt::UTC);
}

void tst_Example::aNewExampleHasNoPayload()
{
    const Example example(projectObject("demo"));

    QVERIFY(example.data().isEmpty());
    QVERIFY(example.image().isNull());
    QVERIFY(!Example(QJsonObject{}).lastActivity().isValid());
}

void tst_Example::theArchiveIsReplacedWhole()
{
    Example example(projectObject("demo"));

    example.setData("a long first archive");
    example.setData("short");

    QCOMPARE(example.data(), "short");
}

void tst_Example::picturesAreScaledToFit_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("scaled");

    QTest::newRow("wide") << QSize(512, 256) << QSize(128, 64);
    QTest::newRow("high") << QSize(100, 400) << QSize(32, 128);
    QTest::newRow("square") << QSize(256, 256) << QSize(128, 128);
    QTest::newRow("fitting") << QSize(128, 128) << QSize(128, 128);
    QTest::newRow("small") << QSize(16, 8) << QSize(128, 64);
}

void tst_Example::picturesAreScaledToFit()
{
    QFETCH(const QSize, size);
    QFETCH(const QSize, scaled);
    Example example(projectObject("demo"));

    example.setImage(encodedPicture(size));

    QCOMPARE(example.image().size(), scaled);
}

void tst_Example::picturesOfAnyKnownFormatAreTaken_data()
{
    QTest::addColumn<QByteArray>("format");

    for (const char *format : {"png", "jpg", "bmp", "ico", "tiff", "webp"})
        QTest::newRow(format) << QByteArray(format);
}

void tst_Example::picturesOfAnyKnownFormatAreTaken()
{
    QFETCH(const QByteArray, format);
    Example example(projectObject("demo"));

    example.setImage(encodedPicture({128, 128}, format));

    QCOMPARE(example.image().size(), QSize(128, 128));
}

void tst_Example::picturesAreScaledWithoutNewColours()
{
    QImage stripes(512, 512, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y) {
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, x % 3 == 0 ? 0xff000000 : 0xffffffff);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(stripes.save(&buffer, "png"));
    Example example(projectObject("demo"));

    example.setImage(bytes);

    const QImage image = example.image().convertToFormat(QImage::Format_RGB32);
    QSet<QRgb> colours;
    for (int x = 0; x < image.width(); ++x)
        colours.insert(image.pixel(x, 64));
    QCOMPARE(colours, (QSet<QRgb>{0xff000000, 0xffffffff}));
}

void tst_Example::anUndecodablePictureReplacesTheOldByNone()
{
    QTest::failOnWarning();
    for (const QByteArray &bytes : {QByteArray(), QByteArray("<html>not a picture</html>")}) {
        Example example(projectObject("demo"));
        example.setImage(encodedPicture({8, 8}));
        QVERIFY(!example.image().isNull());

        example.setImage(bytes);

        QVERIFY(example.image().isNull());
    }
}

void tst_Example::thePictureSaysWhatItIsFor()
{
    Example example(projectObject("demo"));

    example.setImage(encodedPicture({8, 8}));

    QCOMPARE(example.image().textKeys(), QStringList{"Description"});
    QCOMPARE(
        example.image().text("Description"),
        "This file is used by SDK to show image for example inside Welcome screen.\n"
        "It is not the part of the example.");
}

void tst_Example::readersSeeWholePayloads()
{
    Example example(projectObject("demo"));
    const QByteArray pictures[]{encodedPicture({64, 64}), encodedPicture({64, 32})};
    QThreadPool pool;
    pool.setMaxThreadCount(2);
    QFuture<void> writing = QtConcurrent::run(&pool, [&] {
        for (int i = 0; i < 300; ++i) {
            example.setData(QByteArray(1000 + i, char('a' + i % 26)));
            example.setImage(pictures[i % 2]);
        }
    });

    while (!writing.isFinished()) {
        const QByteArray data = example.data();
        QCOMPARE(data.count(data.isEmpty() ? 'x' : data.front()), data.size());
        const QSize size = example.image().size();
        QVERIFY(size.isEmpty() || size == QSize(128, 128) || size == QSize(128, 64));
    }
}

void tst_Example::pointersAreEqualOnlyForTheSameExample()
{
    const Repository::ExamplePtr one = makeExample("demo");
    const Repository::ExamplePtr other = makeExample("demo");
    const QMetaType pointer = QMetaType::fromType<Repository::ExamplePtr>();
    const QMetaType list = QMetaType::fromType<Repository::Examples>();

    QCOMPARE(pointer.name(), "QSharedPointer<Varnel::Internal::Example>");
    QCOMPARE(list.name(), "QList<QSharedPointer<Varnel::Internal::Example>>");
    const Repository::ExamplePtr same = one;
    QVERIFY(pointer.equals(&one, &same));
    QVERIFY(!pointer.equals(&one, &other));
    const Repository::Examples ones{one, other};
    const Repository::Examples others{other, one};
    QVERIFY(!list.equals(&ones, &others));

    QString text;
    QDebug(&text).nospace() << one;
    QVERIFY2(text.startsWith("QSharedPointer("), qPrintable(text));
}

void tst_Example::pointersAndListsAreComparedAndPrintedByTheirTypes()
{
    for (const QMetaType type :
         {QMetaType::fromType<Repository::ExamplePtr>(), QMetaType::fromType<Repository::Examples>()}) {
        QVERIFY2(type.isEqualityComparable(), type.name());
        QVERIFY2(type.isOrdered(), type.name());
        QVERIFY2(type.hasRegisteredDebugStreamOperator(), type.name());
    }
    const Repository::Examples two{makeExample("a"), makeExample("b")};
    const Repository::Examples swapped{two.at(1), two.at(0)};
    const bool isFirstLess = two.at(0).get() < two.at(1).get();
    const QPartialOrdering order = isFirstLess ? QPartialOrdering::Less : QPartialOrdering::Greater;
    QVERIFY(QMetaType::fromType<Repository::ExamplePtr>().compare(&two.at(0), &two.at(1)) == order);
    QVERIFY(QMetaType::fromType<Repository::Examples>().compare(&two, &swapped) == order);

    QString text;
    QDebug debug(&text);
    QVERIFY(QMetaType::fromType<Repository::Examples>().debugStream(debug, &two));
    QCOMPARE(text.count("QSharedPointer("), 2);
}

void tst_Example::theWholeProjectIsPrinted()
{
    const Example example(QJsonObject{{"path", "hello"}, {"id", 42}, {"name", "Hello"}});
    QString text;

    QDebug(&text).nospace() << example;

    QCOMPARE(
        text,
        "QMap((\"id\", QVariant(qlonglong, 42))(\"name\", QVariant(QString, \"Hello\"))"
        "(\"path\", QVariant(QString, \"hello\")))");
}

QTEST_MAIN(tst_Example)
#include "tst_example.moc"
