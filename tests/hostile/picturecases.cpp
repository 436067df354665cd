// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures that are none, that are too large, or that want to be another file.

#include "case.h"

#include "common/hostilepictures.h"
#include "common/testfiles.h"

#include <QFile>
#include <QImage>
#include <QTest>

namespace Varnel::Test {

namespace {

enum class Shown { Yes, No, Maybe }; // maybe: the decoder may take what is there, or nothing

std::function<void(World &)> checkShown(Shown shown)
{
    return [shown](World &) {
        const QString icon = World::exampleDirectory("subject") + "/example-icon.png";
        if (shown != Shown::Maybe)
            QCOMPARE(QFile::exists(icon), shown == Shown::Yes);
        if (QFile::exists(icon)) {
            const QImage image(icon);
            QCOMPARE_LE(image.width(), 128);
            QCOMPARE_LE(image.height(), 128);
        }
    };
}

Case picture(const QString &name, Shown shown, const QByteArray &bytes, const QByteArray &type = "image/png")
{
    return {
        .name = name,
        .prepare = [bytes, type](World &world) { world.setPicture(bytes, type); },
        .check = checkShown(shown)};
}

Case address(const QString &name, const QString &address)
{
    return {
        .name = "address " + name,
        .prepare = [address](World &world) { world.subject().overrides.insert("avatar_url", address); },
        .check = checkShown(Shown::No)};
}

QByteArray svg(const QByteArray &content)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' width='64' "
           "height='64'>"
           + content + "</svg>";
}

QList<Case> addressCases()
{
    return {
        address("empty", ""),
        address(
            "of a host of 300,000 accents",
            "http://a" + QString::fromUtf8("\xcc\x81\xcc\x96").repeated(150'000)),
        address("of a file", "file:///etc/passwd"),
        address("of a file without slashes", "file:etc/passwd"),
        address("of a resource", "qrc:/qt-project.org/logo.png"),
        address("with the picture inside", "data:image/png;base64,iVBORw0KGgo="),
        address("of another service", "ftp://127.0.0.1:1/a.png"),
        address("of a script", "javascript:alert(1)"),
        address("of a local socket", "unix+http://local-service/a.png"),
        address("that is connected to first", "preconnect-http://127.0.0.1:1"),
        address("relative", "uploads/a.png"),
        address("without a scheme", "//127.0.0.1:1/a.png"),
        address("without a host", "http:///a.png"),
        address("malformed", "http://[::1"),
        address("with a port beyond all", "http://127.0.0.1:99999/a.png"),
        address("nobody answers", "http://127.0.0.1:1/a.png"),
        address("with a line feed", "http://127.0.0.1:1/a\r\nHost: evil\r\n\r\n"),
        address("of a million letters", "http://127.0.0.1:1/" + QString(1'000'000, u'a')),
        {.name = "address of a picture on the user's disk",
         .prepare =
             [](World &world) {
                 const QString file = World::path("home/secret.png");
                 writeFile(file, encodedPicture({8, 8}));
                 world.subject().overrides.insert("avatar_url", QUrl::fromLocalFile(file).toString());
             },
         .check = checkShown(Shown::No)},
    };
}

QList<Case> contentCases()
{
    const QByteArray good = encodedPicture({300, 200}, "png");
    QByteArray largeGif("GIF89a\xff\xff\xff\xff\x80\x00\x00\x00\x00\x00\xff\xff\xff", 19);
    largeGif += QByteArray("\x2c\x00\x00\x00\x00\xff\xff\xff\xff\x00\x02\x02\x44\x01\x00\x3b", 16);
    QByteArray bmp("BM\x3a\x00\x00\x00\x00\x00\x00\x00\x36\x00\x00\x00\x28\x00\x00\x00", 18);
    bmp += QByteArray("\xff\xff\xff\x7f\xff\xff\xff\x7f\x01\x00\x18\x00", 12) + QByteArray(28, '\0');
    QByteArray bomb;
    for (char level = 'b'; level <= 'j'; ++level)
        bomb += QByteArray("<!ENTITY ") + level + " \""
                + QByteArray("&" + QByteArray(1, char(level - 1)) + ";").repeated(10) + "\">";
    return {
        picture("honest", Shown::Yes, good),
        picture("nothing", Shown::No, ""),
        picture("cut in the middle", Shown::Maybe, good.first(good.size() / 2)),
        picture("cut behind the header", Shown::No, good.first(40)),
        picture("html with a picture's type", Shown::No, "<!DOCTYPE html><html><body>Sign in</body></html>"),
        picture("picture with html's type", Shown::Yes, good, "text/html"),
        picture("jpeg as png", Shown::Yes, encodedPicture({64, 64}, "jpg")),
        picture("gif that is as large as can be", Shown::No, largeGif, "image/gif"),
        picture(
            "webp, cut short",
            Shown::No,
            QByteArray("RIFF\xff\xff\xff\x7fWEBPVP8 \xff\xff\xff\x7f", 20),
            "image/webp"),
        picture("bmp that is as large as can be", Shown::No, bmp, "image/bmp"),
        picture(
            "xpm",
            Shown::No,
            "/* XPM */\nstatic char *x[] = {\"99999 99999 1 1\",\"a c #000\"};\n",
            "image/x-xpixmap"),
        picture(
            "ppm that is as large as can be", Shown::No, "P6 100000 100000 255\n", "image/x-portable-pixmap"),
        picture("ppm of negative size", Shown::No, "P6 -1 -1 255\n", "image/x-portable-pixmap"),
        picture("png of 20,000 x 20,000 pixels", Shown::No, png(20'000, 20'000, 20'000)),
        picture("png that says to be as large as can be", Shown::No, png(0x7fffffff, 0x7fffffff, 0)),
        picture("png that says to have no pixels", Shown::No, png(0, 0, 0)),
        picture("png one pixel high", Shown::No, png(1'000'000, 1, 1)),
        picture("png one pixel wide", Shown::No, png(1, 1'000'000, 1'000'000)),
        picture(
            "png with wrong checksums",
            Shown::Maybe,
            [good] {
                QByteArray bytes = good;
                bytes[30] = char(~bytes[30]);
                return bytes;
            }()),
        picture(
            "svg that includes a file",
            Shown::No,
            svg("<image width='64' height='64' xlink:href='file:///etc/passwd'/>"),
            "image/svg+xml"),
        picture(
            "svg that includes an address",
            Shown::No,
            svg("<image width='64' height='64' xlink:href='http://127.0.0.1:1/a.png'/>"),
            "image/svg+xml"),
        picture(
            "svg with entities of entities",
            Shown::No,
            "<!DOCTYPE svg [<!ENTITY a \"lol\">" + bomb + "]>" + svg("<text>&j;</text>"),
            "image/svg+xml"),
        picture(
            "svg that is as large as can be",
            Shown::No,
            "<svg xmlns='http://www.w3.org/2000/svg' width='2147483647' height='2147483647'/>",
            "image/svg+xml"),
        picture("mng with a loop without an end", Shown::No, mngWithLoops(1)),
        picture("mng with three loops in one another", Shown::No, mngWithLoops(3)),
        picture("mng with a png's type and name", Shown::No, mngWithLoops(2), "image/png; name=a.png"),
        picture("ppm", Shown::No, encodedPicture({16, 16}, "ppm"), "image/x-portable-pixmap"),
        picture("png as large as may be", Shown::Yes, png(4096, 4096)),
        picture("png that is a little larger", Shown::No, png(4097, 4096)),
        picture("png with 300 texts of eight million letters", Shown::Yes, withTexts(good, 300)),
        picture("gif of two frames", Shown::Yes, gif(16, 16, {0xff0000, 0x00ff00}), "image/gif"),
        picture("icon with a png", Shown::Yes, icon(good)),
        picture("icon with a png of 20,000 x 20,000 pixels", Shown::No, icon(png(20'000, 20'000))),
        picture("icon with a bitmap of 8,190 x 8,190 pixels", Shown::No, icon(bitmapOfIcon(8190, 8190))),
        picture("icon that leads out of itself", Shown::No, icon({})),
        picture("sound in a webp's container", Shown::No, QByteArray("RIFF\x10\0\0\0WAVEfmt ", 16)),
        picture("50 MB of letters", Shown::No, QByteArray(50 * 1024 * 1024, 'x')),
    };
}

} // namespace

QList<Case> pictureCases()
{
    return addressCases() + contentCases();
}

} // namespace Varnel::Test
