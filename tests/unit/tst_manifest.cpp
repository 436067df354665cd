// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The manifest of an example, byte for byte, and what becomes of texts that XML cannot hold.

#include "service/manifest.h"

#include "common/builtintemplate.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"

#include <QDomDocument>
#include <QLibraryInfo>
#include <QProcess>
#include <QResource>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr char EXPECTED[] = R"(<?xml version='1.0' encoding='utf-8'?>
<!-- Generated file. This file is used by SDK to show example inside Welcome screen. It is not the part of the example. -->
<instructionals module="Demo">
 <examples>
  <example imageUrl="/data/hello/example-icon.png" name="Hello QML" projectPath="hello.pro">
   <description><![CDATA[A first
window]]></description>
   <tags>qml,ui</tags>
   <platforms>Zel</platforms>
   <preferredFeatures>Zel.Wizard.Feature.Emulator</preferredFeatures>
   <fileToOpen>/qml/Main.qml</fileToOpen>
  </example>
 </examples>
</instructionals>
)";

/** Packs a template as a resource of the same name; null content packs none. */
QByteArray packedTemplate(const QByteArray &content)
{
    const QTemporaryDir directory;
    const QString collection = directory.filePath("test.qrc");
    const QString name(content.isNull() ? u"another-file.xml" : u"examples-manifest.xml");
    writeFile(directory.filePath(name), content);
    writeFile(
        collection, "<RCC><qresource prefix=\"/\"><file>" + name.toUtf8() + "</file></qresource></RCC>");
    const QString rcc = QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath) + "/rcc";
    if (QProcess::execute(rcc, {"--binary", collection, "-o", directory.filePath("test.rcc")}) != 0)
        qFatal("cannot pack a resource");
    return readFile(directory.filePath("test.rcc"));
}

} // namespace

class tst_Manifest final : public QObject
{
    Q_OBJECT

private slots:
    void theManifestIsAsTheWelcomeScreenReadsIt();
    void eachOneStartsFromTheTemplate();
    void emptyTextsAreWritten();
    void textsAreEscaped();
    void whatXmlForbidsIsDropped_data();
    void whatXmlForbidsIsDropped();
    void endMarkersInDescriptionsAreSplit_data();
    void endMarkersInDescriptionsAreSplit();
    void manyEndMarkersTakeLinearTime();
    void anOrdinaryDescriptionIsOneSection();
    void brokenTemplatesAreLogged_data();
    void brokenTemplatesAreLogged();
    void manifestsOfARepositoryAreRecognised_data();
    void manifestsOfARepositoryAreRecognised();
    void aManifestThatIsNoFileIsNone();
    void whatIsWrittenIsRecognised();

private:
    [[nodiscard]] static Manifest filled(const QString &description);
    [[nodiscard]] static QString readDescription(const QByteArray &manifest);
};

Manifest tst_Manifest::filled(const QString &description)
{
    std::optional<Manifest> manifest = Manifest::fromTemplate("Demo");
    if (!manifest)
        qFatal("no template");
    manifest->setName("Hello QML");
    manifest->setProjectPath("hello.pro");
    manifest->setImageUrl("/data/hello/example-icon.png");
    manifest->setDescription(description);
    manifest->setTags({"qml", "ui"});
    manifest->setFileToOpen("/qml/Main.qml");
    return *manifest;
}

// With another parser than the one that belongs to the writer.
QString tst_Manifest::readDescription(const QByteArray &manifest)
{
    QXmlStreamReader reader(manifest);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == u"description")
            return reader.readElementText();
    }
    return "no description";
}

void tst_Manifest::theManifestIsAsTheWelcomeScreenReadsIt()
{
    QCOMPARE(filled("A first\nwindow").toByteArray(), QByteArray(EXPECTED));
}

void tst_Manifest::eachOneStartsFromTheTemplate()
{
    const QByteArray first = filled("First").toByteArray();

    QCOMPARE(filled("Second").toByteArray(), QByteArray(first).replace("First", "Second"));
}

void tst_Manifest::emptyTextsAreWritten()
{
    std::optional<Manifest> manifest = Manifest::fromTemplate("");
    QVERIFY(manifest);
    manifest->setName("");
    manifest->setProjectPath("");
    manifest->setImageUrl("dummy.png");
    manifest->setDescription("");
    manifest->setTags({});
    manifest->setFileToOpen("");

    const QByteArray bytes = manifest->toByteArray();

    QVERIFY(bytes.contains("<instructionals module=\"\">"));
    QVERIFY(bytes.contains("<example imageUrl=\"dummy.png\" name=\"\" projectPath=\"\">"));
    QVERIFY(bytes.contains("<description><![CDATA[]]></description>"));
    QVERIFY(bytes.contains("<platforms>Zel</platforms>"));
    QVERIFY(bytes.contains("<preferredFeatures>Zel.Wizard.Feature.Emulator</preferredFeatures>"));
}

void tst_Manifest::textsAreEscaped()
{
    const QString hostile = "<a href=\"x\">&amp; 'b' > \xc3\xa4";
    std::optional<Manifest> manifest = Manifest::fromTemplate(hostile);
    QVERIFY(manifest);
    manifest->setName(hostile);
    manifest->setProjectPath(hostile);
    manifest->setImageUrl(hostile);
    manifest->setTags({hostile, "x"});
    manifest->setFileToOpen(hostile);

    QDomDocument read;
    QVERIFY(read.setContent(manifest->toByteArray()));

    const QDomElement root = read.documentElement();
    const QDomElement example = root.firstChildElement("examples").firstChildElement("example");
    QCOMPARE(root.attribute("module"), hostile);
    for (const char *attribute : {"name", "projectPath", "imageUrl"})
        QCOMPARE(example.attribute(QString::fromLatin1(attribute)), hostile);
    QCOMPARE(example.firstChildElement("tags").text(), hostile + ",x");
    QCOMPARE(example.firstChildElement("fileToOpen").text(), hostile);
}

void tst_Manifest::whatXmlForbidsIsDropped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("control characters") << QString("a\x01"
                                                   "b\x0b"
                                                   "c\x1f"
                                                   "d")
                                        << "abcd";
    QTest::newRow("escape") << QString("\x1b[1mbold") << "[1mbold";
    QTest::newRow("NUL") << QString::fromLatin1("a\0b", 3) << "ab";
    QTest::newRow("white space stays") << "a\tb\nc" << "a\tb\nc";
    QTest::newRow("delete stays") << QString("a\x7f"
                                             "b")
                                  << QString("a\x7f"
                                             "b");
    QTest::newRow("no characters") << QString(u"a\ufffe\uffffb") << "ab";
    QTest::newRow("high half alone") << QString(u"a") + QChar(0xd83d) + "b" << "ab";
    QTest::newRow("low half alone") << QString(u"a") + QChar(0xde00) + "b" << "ab";
    QTest::newRow("halves in the wrong order") << QString(u"a") + QChar(0xde00) + QChar(0xd83d) + "b" << "ab";
    QTest::newRow("high half last") << QString(u"a") + QChar(0xd83d) << "a";
    QTest::newRow("pair") << QString::fromUcs4(U"a\U0001f600b") << QString::fromUcs4(U"a\U0001f600b");
}

void tst_Manifest::whatXmlForbidsIsDropped()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);
    std::optional<Manifest> manifest = Manifest::fromTemplate(text);
    QVERIFY(manifest);
    manifest->setName(text);
    manifest->setProjectPath(text);
    manifest->setImageUrl(text);
    manifest->setDescription(text);
    manifest->setTags({text});
    manifest->setFileToOpen(text);

    const QByteArray bytes = manifest->toByteArray();

    QXmlStreamReader reader(bytes);
    QStringList values;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const QXmlStreamAttribute &attribute : reader.attributes())
            values.append(attribute.value().toString());
        if (QStringList{"description", "tags", "fileToOpen"}.contains(reader.name()))
            values.append(reader.readElementText());
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(values.size(), 7);
    QString inAttributes = expected; // a parser turns white space into blanks there
    inAttributes.replace('\t', ' ').replace('\n', ' ');
    for (const QString &value : std::as_const(values))
        QVERIFY2(value == expected || value == inAttributes, qPrintable(value));
}

void tst_Manifest::endMarkersInDescriptionsAreSplit_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QByteArray>("written");

    QTest::newRow("inside") << "a]]>b" << QByteArray("<![CDATA[a]]]]><![CDATA[>b]]>");
    QTest::newRow("alone") << "]]>" << QByteArray("<![CDATA[]]]]><![CDATA[>]]>");
    QTest::newRow("twice") << "]]>]]>" << QByteArray("<![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]>");
    QTest::newRow("with more brackets") << "]]]>" << QByteArray("<![CDATA[]]]]]><![CDATA[>]]>");
    QTest::newRow("another section inside")
        << "<![CDATA[x]]>" << QByteArray("<![CDATA[<![CDATA[x]]]]><![CDATA[>]]>");
    QTest::newRow("made of what is left") << QString("]]\x01>") << QByteArray("<![CDATA[]]]]><![CDATA[>]]>");
}

void tst_Manifest::endMarkersInDescriptionsAreSplit()
{
    QFETCH(QString, description);
    QFETCH(const QByteArray, written);

    const QByteArray bytes = filled(description).toByteArray();

    QVERIFY2(bytes.contains("<description>" + written + "</description>"), bytes);
    QCOMPARE(readDescription(bytes), description.remove(QChar(1)));
}

// Text that is moved once per marker would take minutes here.
void tst_Manifest::manyEndMarkersTakeLinearTime()
{
    const QString description = QString("]]>").repeated(200'000);

    QCOMPARE(readDescription(filled(description).toByteArray()), description);
}

void tst_Manifest::anOrdinaryDescriptionIsOneSection()
{
    const QString description = "<b>bold</b> & more ]] > [x]";

    const QByteArray bytes = filled(description).toByteArray();

    QCOMPARE(bytes.count("<![CDATA["), 1);
    QCOMPARE(readDescription(bytes), description);
}

void tst_Manifest::brokenTemplatesAreLogged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line"); // "*": the parser's words

    QTest::newRow("missing") << QByteArray() << "Internal manifest XML error: file not found";
    QTest::newRow("not parsable") << QByteArray("<instructionals>\n</x>")
                                  << "Internal manifest XML error: * 2 4";
    QTest::newRow("empty") << QByteArray("") << "Internal manifest XML error: * 1 0";
    QTest::newRow("without its root")
        << QByteArray("<other/>") << "Internal manifest XML error: element \"instructionals\" not found";
}

void tst_Manifest::brokenTemplatesAreLogged()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, line);
    const QByteArray resource = packedTemplate(content);
    const WithoutBuiltInTemplate without;
    QVERIFY(QResource::registerResource(reinterpret_cast<const uchar *>(resource.constData())));
    const auto unregister = qScopeGuard([&resource] {
        QResource::unregisterResource(reinterpret_cast<const uchar *>(resource.constData()));
    });
    const LogRecorder log;

    const std::optional<Manifest> manifest = Manifest::fromTemplate("Demo");

    QVERIFY(!manifest);
    QCOMPARE(log.pluginLines().size(), 1);
    const QString written = log.lines(LogRecorder::SERVICE).value(0);
    const QRegularExpression expected(
        QRegularExpression::anchoredPattern(QRegularExpression::escape(line).replace("\\*", "\".+\"")));
    QVERIFY2(expected.match(written).hasMatch(), qPrintable(written));
}

void tst_Manifest::manifestsOfARepositoryAreRecognised_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isRecognised");

    QTest::newRow("as it is written") << QByteArray(EXPECTED) << true;
    QTest::newRow("root alone") << QByteArray("<instructionals module='Demo'/>") << true;
    QTest::newRow("cut short behind the root") << QByteArray("<instructionals module='Demo'>") << true;
    QTest::newRow("another repository's") << QByteArray("<instructionals module='Demo2'/>") << false;
    QTest::newRow("other letter case") << QByteArray("<instructionals module='demo'/>") << false;
    QTest::newRow("no module") << QByteArray("<instructionals/>") << false;
    QTest::newRow("another root") << QByteArray("<x module='Demo'><instructionals module='Demo'/></x>")
                                  << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no XML") << QByteArray("hello") << false;
}

void tst_Manifest::manifestsOfARepositoryAreRecognised()
{
    QFETCH(const QByteArray, content);
    QFETCH(const bool, isRecognised);
    const QTemporaryDir directory;
    writeFile(directory.filePath("examples-manifest.xml"), content);

    QCOMPARE(holdsManifest(directory.path(), "Demo"), isRecognised);
}

void tst_Manifest::aManifestThatIsNoFileIsNone()
{
    const QTemporaryDir directory;
    QVERIFY(!holdsManifest(directory.path(), "Demo"));
    makeDirectory(directory.filePath("examples-manifest.xml"));
    QVERIFY(!holdsManifest(directory.path(), "Demo"));
    makeLink(directory.filePath("link/examples-manifest.xml"), "/dev/zero");
    QVERIFY(!holdsManifest(directory.filePath("link"), "Demo"));
}

void tst_Manifest::whatIsWrittenIsRecognised()
{
    for (const QString &name : {QString("Demo"), QString("D&<>\"'\xc3\xa4 o"), QString("a\x01z")}) {
        const QTemporaryDir directory;
        writeFile(directory.filePath("examples-manifest.xml"), Manifest::fromTemplate(name)->toByteArray());

        QVERIFY2(holdsManifest(directory.path(), name), qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(tst_Manifest)
#include "tst_manifest.moc"
