// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Which addresses are asked for, and which redirects are followed.

#include "client/requestpolicy.h"

#include <QTest>
#include <QUrl>

using namespace Varnel::Internal;

class tst_RequestPolicy final : public QObject
{
    Q_OBJECT

private slots:
    void onlyAddressesOfTheWebAreAskedFor_data();
    void onlyAddressesOfTheWebAreAskedFor();
    void redirectsAreToldByTheirStatus();
    void addressesHaveABound();
    void targetsAreResolvedAgainstTheirOrigin_data();
    void targetsAreResolvedAgainstTheirOrigin();
    void redirectsAreJudged_data();
    void redirectsAreJudged();
};

void tst_RequestPolicy::onlyAddressesOfTheWebAreAskedFor_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("fault");

    QTest::newRow("plain") << "http://x/a" << QString();
    QTest::newRow("encrypted") << "https://x/a" << QString();
    QTest::newRow("in capitals") << "HTTPS://x/a" << QString();
    QTest::newRow("empty, which the network layer fails") << "" << QString();
    QTest::newRow("relative") << "uploads/a.png" << "Protocol \"\" is unknown";
    QTest::newRow("of a host without a scheme") << "//x/a.png" << "Protocol \"\" is unknown";
    QTest::newRow("file") << "file:///etc/passwd" << "Protocol \"file\" is unknown";
    QTest::newRow("resource") << "qrc:/a" << "Protocol \"qrc\" is unknown";
    QTest::newRow("data") << "data:,a" << "Protocol \"data\" is unknown";
    QTest::newRow("local socket") << "unix+http://x/a" << "Protocol \"unix+http\" is unknown";
    QTest::newRow("a scheme that begins like ours") << "httpx://x/a" << "Protocol \"httpx\" is unknown";
    QTest::newRow("preconnected") << "preconnect-http://x" << "Protocol \"preconnect-http\" is unknown";
    QTest::newRow("script") << "javascript:alert(1)" << "Protocol \"javascript\" is unknown";
}

void tst_RequestPolicy::onlyAddressesOfTheWebAreAskedFor()
{
    QFETCH(const QString, address);
    QFETCH(const QString, fault);

    QCOMPARE(faultOfAddress(QUrl(address)), fault);
    QCOMPARE(faultOfAddress(QUrl(address)).isNull(), fault.isNull());
}

void tst_RequestPolicy::redirectsAreToldByTheirStatus()
{
    QList<int> redirects;
    for (int status = 0; status < 1000; ++status) {
        if (isRedirect(status))
            redirects.append(status);
    }

    QCOMPARE(redirects, (QList<int>{301, 302, 303, 305, 307, 308}));
}

void tst_RequestPolicy::addressesHaveABound()
{
    const QString longest = "http://y/" + QString(4087, 'a');

    QCOMPARE(addressOf(longest).toString(), longest);
    QVERIFY(addressOf(longest + 'a').isEmpty());
}

void tst_RequestPolicy::targetsAreResolvedAgainstTheirOrigin_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QByteArray>("target");

    QTest::newRow("absolute") << QByteArray("https://y/b") << QByteArray("https://y/b");
    QTest::newRow("path") << QByteArray("/b") << QByteArray("http://user:word@x:81/b");
    QTest::newRow("relative") << QByteArray("b?c") << QByteArray("http://user:word@x:81/a/b?c");
    QTest::newRow("other host") << QByteArray("//y/b") << QByteArray("http://y/b");
    QTest::newRow("not encoded") << QByteArray("/\xc3\xa4") << QByteArray("http://user:word@x:81/%C3%A4");
    QTest::newRow("other scheme") << QByteArray("file:///b") << QByteArray("file:///b");
    QTest::newRow("none") << QByteArray() << QByteArray();
    QTest::newRow("malformed") << QByteArray("http://[::1") << QByteArray();
    const QByteArray longest = "http://y/" + QByteArray(4087, 'a');
    QTest::newRow("of 4,096 characters") << longest << longest;
    QTest::newRow("longer") << longest + 'a' << QByteArray();
}

void tst_RequestPolicy::targetsAreResolvedAgainstTheirOrigin()
{
    QFETCH(const QByteArray, location);
    QFETCH(const QByteArray, target);

    const QUrl url = redirectTarget(QUrl("http://user:word@x:81/a/a"), location);

    QCOMPARE(url.toEncoded(), target);
    QCOMPARE(url.isValid(), !target.isEmpty());
}

void tst_RequestPolicy::redirectsAreJudged_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QUrl>("to");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("fault");

    const QString unknown = "Unknown protocol specified";
    QTest::newRow("same safety, plain") << "http://x" << QUrl("http://y") << 0 << QString();
    QTest::newRow("same safety, encrypted") << "https://x" << QUrl("https://y") << 0 << QString();
    QTest::newRow("more safety") << "http://x" << QUrl("https://y") << 0 << QString();
    QTest::newRow("less safety") << "https://x" << QUrl("http://y") << 0 << "Insecure redirect";
    QTest::newRow("the last one") << "http://x" << QUrl("http://y") << 49 << QString();
    QTest::newRow("one too many") << "http://x" << QUrl("http://y") << 50 << "Too many redirects";
    QTest::newRow("nowhere") << "http://x" << QUrl() << 0 << unknown;
    QTest::newRow("file") << "http://x" << QUrl("file:///a") << 0 << unknown;
    QTest::newRow("ftp") << "http://x" << QUrl("ftp://y") << 0 << unknown;
    QTest::newRow("a scheme that begins like ours") << "http://x" << QUrl("http+unix://y") << 0 << unknown;
    QTest::newRow("local socket") << "http://x" << QUrl("unix+http://y") << 0 << unknown;
    QTest::newRow("encrypted local socket") << "https://x" << QUrl("unix+https://y") << 0 << unknown;
    QTest::newRow("host of a socket") << "https://x" << QUrl("unix://y") << 0 << unknown;
}

void tst_RequestPolicy::redirectsAreJudged()
{
    QFETCH(const QString, from);
    QFETCH(const QUrl, to);
    QFETCH(const int, count);
    QFETCH(const QString, fault);

    QCOMPARE(faultOfRedirect(QUrl(from), to, count), fault);
    QCOMPARE(faultOfRedirect(QUrl(from), to, count).isNull(), fault.isNull());
}

QTEST_MAIN(tst_RequestPolicy)
#include "tst_requestpolicy.moc"
