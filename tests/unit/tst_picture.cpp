// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which pictures are decoded, and with what.

#include "client/picture.h"

#include "common/hostilepictures.h"
#include "common/testfiles.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QTest>
#include <QtEndian>

using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Picture final : public QObject
{
    Q_OBJECT

private slots:
    void knownFormatsAreDecodedAsEver_data();
    void knownFormatsAreDecodedAsEver();
    void otherFormatsAreNot_data();
    void otherFormatsAreNot();
    void aLoopWithoutAnEndIsNotEntered_data();
    void aLoopWithoutAnEndIsNotEntered();
    void theFirstBytesDecide();
    void theDeclaredSizeDecides_data();
    void theDeclaredSizeDecides();
    void theFirstFrameIsTaken();
    void rowsFromTheTopAreTaken();
    void compressedTextsAreLeftOut();
    void plainTextsAreLeftOut();
    void compressedTextsInAnIconAreLeftOut();
    void aPictureOfManyScansIsNoPicture();
    void whatOthersMayDecodeKeepsTheSameBounds_data();
    void whatOthersMayDecodeKeepsTheSameBounds();
    void aPictureThatIsCutShortIsNoWorse();
};

void tst_Picture::knownFormatsAreDecodedAsEver_data()
{
    QTest::addColumn<QByteArray>("bytes");

    for (const char *format : {"png", "jpg", "bmp", "ico", "webp", "tiff"})
        QTest::newRow(format) << encodedPicture({48, 24}, format);
    QTest::newRow("gif") << gif(48, 24);
    QTest::newRow("icon with a png") << icon(encodedPicture({48, 24}, "png"));
}

void tst_Picture::knownFormatsAreDecodedAsEver()
{
    QFETCH(const QByteArray, bytes);

    const QImage image = decodePicture(bytes);

    QCOMPARE(image.size(), QSize(48, 24));
    QCOMPARE(image, QImage::fromData(bytes));
}

void tst_Picture::otherFormatsAreNot_data()
{
    QTest::addColumn<QByteArray>("bytes");

    for (const char *format : {"ppm", "xbm", "xpm", "icns", "wbmp"})
        QTest::newRow(format) << encodedPicture({32, 32}, format);
    QTest::newRow("svg") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'/>");
    QTest::newRow("cursor") << [] {
        QByteArray cursor = encodedPicture({32, 32}, "ico");
        cursor[2] = 2;
        return cursor;
    }();
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("<html>");
    QTest::newRow("container of a sound") << QByteArray("RIFF\x10\0\0\0WAVEfmt ", 16);
    QTest::newRow("container cut short") << QByteArray("RIFF");
}

void tst_Picture::otherFormatsAreNot()
{
    QTest::failOnWarning();
    QFETCH(const QByteArray, bytes);

    QVERIFY(decodePicture(bytes).isNull());
}

void tst_Picture::aLoopWithoutAnEndIsNotEntered_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("around nothing") << mngWithLoops(1);
    QTest::newRow("three in one another") << mngWithLoops(3);
}

// Whoever decodes it stays there: the time limit of the test is what fails then.
void tst_Picture::aLoopWithoutAnEndIsNotEntered()
{
    QFETCH(const QByteArray, bytes);
    if (!QImageReader::supportedImageFormats().contains("mng"))
        QSKIP("no decoder of it is installed");

    QVERIFY(decodePicture(bytes).isNull());
}

void tst_Picture::theFirstBytesDecide()
{
    const QByteArray png = encodedPicture({8, 8}, "png");

    QVERIFY(decodePicture(' ' + png).isNull());
    QVERIFY(decodePicture("GIF89a" + png).isNull());
    QVERIFY(decodePicture("BM" + mngWithLoops(1)).isNull());
}

void tst_Picture::theDeclaredSizeDecides_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size"); // empty: refused

    QTest::newRow("as wide as may be") << png(4096, 1) << QSize(4096, 1);
    QTest::newRow("too wide") << png(4097, 1) << QSize();
    QTest::newRow("as high as may be") << png(1, 4096) << QSize(1, 4096);
    QTest::newRow("too high") << png(1, 4097) << QSize();
    QTest::newRow("both") << png(4096, 4096) << QSize(4096, 4096);
    QTest::newRow("beyond all numbers") << png(0x7fffffff, 0x7fffffff, 0) << QSize();
    QTest::newRow("jpg") << encodedPicture({4097, 1}, "jpg") << QSize();
    QTest::newRow("bmp") << encodedPicture({4097, 1}, "bmp") << QSize();
    QTest::newRow("webp") << encodedPicture({4097, 1}, "webp") << QSize();
    QTest::newRow("tiff") << encodedPicture({4097, 1}, "tiff") << QSize();
    QTest::newRow("gif") << gif(4097, 1) << QSize();
    QTest::newRow("icon with a png as large as may be") << icon(png(4096, 1)) << QSize(4096, 1);
    QTest::newRow("icon with a png too large") << icon(png(4097, 1)) << QSize();
    QTest::newRow("icon with a bitmap too large") << icon(bitmapOfIcon(4097, 1)) << QSize();
    QTest::newRow("icon that leads out of itself") << icon({}) << QSize();
}

void tst_Picture::theDeclaredSizeDecides()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QSize, size);

    const QImage image = decodePicture(bytes);

    QCOMPARE(image.isNull(), size.isEmpty());
    if (!size.isEmpty())
        QCOMPARE(image.size(), size);
}

void tst_Picture::theFirstFrameIsTaken()
{
    QByteArray two = gif(8, 4, {0xff0000, 0x00ff00});
    QBuffer buffer(&two);
    QCOMPARE(QImageReader(&buffer).imageCount(), 2);

    const QImage image = decodePicture(two);

    QCOMPARE(image.pixel(0, 0), 0xffff0000);
}

void tst_Picture::rowsFromTheTopAreTaken()
{
    QByteArray bytes = encodedPicture({8, 4}, "bmp");
    const qint32 height = -4;
    qToLittleEndian(height, bytes.data() + 22);

    QCOMPARE(decodePicture(bytes).size(), QSize(8, 4));
}

void tst_Picture::compressedTextsAreLeftOut()
{
    const QByteArray plain = png(16, 8);

    const QImage image = decodePicture(withTexts(plain, 3));

    QCOMPARE(QImage::fromData(withTexts(plain, 3)).textKeys(), QStringList{"key"});
    QCOMPARE(image.textKeys(), QStringList());
    QCOMPARE(image, QImage::fromData(plain));
}

void tst_Picture::plainTextsAreLeftOut()
{
    const QImage plain = QImage::fromData(png(16, 8));
    QImage labelled = plain;
    labelled.setText("key", "a value");
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::WriteOnly) && labelled.save(&buffer, "png"));
    QVERIFY(bytes.contains("tEXtkey"));

    const QImage image = decodePicture(bytes);

    QCOMPARE(image.textKeys(), QStringList());
    QCOMPARE(image, plain);
}

void tst_Picture::compressedTextsInAnIconAreLeftOut()
{
    QCOMPARE(decodePicture(icon(withTexts(png(16, 16), 1))).size(), QSize(16, 16));
    QVERIFY(decodePicture(icon(withTexts(png(16, 16), 1))).textKeys().isEmpty());
}

void tst_Picture::aPictureOfManyScansIsNoPicture()
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    QVERIFY(writer.write(QImage::fromData(encodedPicture({16, 16}))));
    const QByteArray start("\xff\xda");
    const qsizetype scans = jpeg.count(start);
    QVERIFY(scans > 1);
    const qsizetype end = jpeg.size() - 2;
    const QByteArray lastScan = jpeg.sliced(jpeg.lastIndexOf(start)).chopped(2);
    const auto withScans
        = [&](qsizetype count) { return QByteArray(jpeg).insert(end, lastScan.repeated(count - scans)); };

    QVERIFY(!decodePicture(withScans(100)).isNull());
    QVERIFY(!QImage::fromData(withScans(101)).isNull());
    QVERIFY(decodePicture(withScans(101)).isNull());
}

void tst_Picture::whatOthersMayDecodeKeepsTheSameBounds_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isHarmless");

    for (const char *format : {"png", "jpg", "bmp", "ico", "webp", "tiff"})
        QTest::newRow(format) << encodedPicture({48, 24}, format) << true;
    for (const char *format : {"ppm", "xpm", "wbmp"})
        QTest::newRow(format) << encodedPicture({32, 32}, format) << false;
    QTest::newRow("gif") << gif(48, 24) << true;
    QTest::newRow("icon with a png") << icon(png(48, 24)) << true;
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("no picture at all") << QByteArray(10, 'x') << true;
    QTest::newRow("loops") << mngWithLoops(1) << false;
    QTest::newRow("largest") << png(4096, 4096, 1) << true;
    QTest::newRow("too wide") << png(4097, 16, 1) << false;
    QTest::newRow("too wide in an icon") << icon(png(4097, 16, 1)) << false;
    QTest::newRow("a text of 8 KB") << withTexts(png(16, 8), 1) << true;
    QTest::newRow("ten such texts") << withTexts(png(16, 8), 10) << false;
    QTest::newRow("ten such texts in an icon") << icon(withTexts(png(16, 16), 10)) << false;
}

void tst_Picture::whatOthersMayDecodeKeepsTheSameBounds()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, isHarmless);

    QCOMPARE(isHarmlessPicture(bytes), isHarmless);
}

void tst_Picture::aPictureThatIsCutShortIsNoWorse()
{
    const QByteArray whole = encodedPicture({64, 64});

    for (qsizetype length = 0; length < whole.size(); ++length)
        QCOMPARE(decodePicture(whole.first(length)), QImage::fromData(whole.first(length), "png"));
}

QTEST_MAIN(tst_Picture)
#include "tst_picture.moc"
