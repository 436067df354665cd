// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Descriptions, which become part of an XML file.

#include "case.h"

#include "plugin/constants.h"

#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

namespace Varnel::Test {

namespace {

QString descriptionInManifest()
{
    QFile file(World::exampleDirectory("subject") + '/' + Constants::MANIFEST_FILE);
    if (!file.open(QIODevice::ReadOnly))
        return "no manifest";
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == u"description")
            return reader.readElementText();
    }
    return "no description";
}

/** @p written is what the manifest gives back. */
Case description(const QString &name, const QString &sent, const QString &written)
{
    return {
        .name = name,
        .prepare = [sent](World &world) { world.subject().description = sent; },
        .check = [written](World &) { QVERIFY(descriptionInManifest() == written); },
        .memory = Q_INT64_C(1500) * 1024 * 1024};
}

Case kept(const QString &name, const QString &text)
{
    return description(name, text, text);
}

} // namespace

QList<Case> descriptionCases()
{
    constexpr qsizetype TEN_MILLION = 10'000'000;
    return {
        kept("end marker of a section", "a]]>b"),
        kept("nothing but end markers", "]]>]]>]]>"),
        kept("half an end marker at the end", "a]]"),
        kept("brackets before an end marker", "]]]]]>>>"),
        kept("way out of the section", "]]></description><fileToOpen>/etc/passwd</fileToOpen><![CDATA["),
        kept("begin of a section", "<![CDATA[a"),
        kept("document type with an entity", "<!DOCTYPE x [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>&e;"),
        kept("markup", "<b onclick=\"x\">bold</b> &lt;&amp;&#0;"),
        kept("comment", "<!-- -- -->"),
        kept("processing instruction", "<?xml version=\"2.0\"?>"),
        kept("markers", "%1 %2 %3 %4 %99"),
        kept("characters beyond 16 bits", QString::fromUcs4(U"\U0001F600\U0010FFFD")),
        kept("from right to left", QString(QChar(0x202e)) + "noitpircsed"),
        kept("10 million letters", QString(TEN_MILLION, u'd')),
        kept("2 million letters of end markers", QString("]]>").repeated(700'000)),
        kept("10 million opening brackets", QString(TEN_MILLION, u']')),
        description("control characters", QString("a\x01\x08\x0b\x1f") + QChar(0) + "b", "ab"),
        description("first half of a pair", QString("a") + QChar(0xd800) + "b", "ab"),
        description("second half of a pair", QString("a") + QChar(0xdc00) + "b", "ab"),
        description("halves in the wrong order", QString("a") + QChar(0xdc00) + QChar(0xd800), "a"),
        description("no characters", QString("a") + QChar(0xfffe) + QChar(0xffff) + "b", "ab"),
        description("end marker around what is dropped", QString("a]]") + QChar(1) + ">b", "a]]>b"),
    };
}

} // namespace Varnel::Test
