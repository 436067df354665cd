// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Texts that go into a manifest: it is well-formed, and a reader gets the allowed part of them back.

#include "service/manifest.h"

#include <QXmlStreamReader>

using namespace Varnel::Internal;

namespace {

// Outside of sections a carriage return is escaped and stays; inside a reader sees every line end as "\n".
QString withPlainLineEnds(QString text)
{
    return text.replace("\r\n", "\n").replace('\r', '\n');
}

// By the rules of XML 1.0: what is no character is no text.
QString expected(const QString &text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        const bool isPair
            = text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const bool isControl = unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r';
        if (isPair)
            result.append(text.sliced(i++, 2));
        else if (!isControl && !text.at(i).isSurrogate() && unit < 0xfffe)
            result.append(text.at(i));
    }
    return withPlainLineEnds(result);
}

// Halves of pairs come only from 16-bit units.
QString textOf(const uint8_t *data, size_t size)
{
    const auto bytes = reinterpret_cast<const char *>(data);
    if (size % 2 == 1)
        return QString::fromUtf8(bytes, qsizetype(size));
    QString text(qsizetype(size / 2), QChar());
    memcpy(text.data(), bytes, size);
    return text;
}

Manifest manifestWith(const QString &text)
{
    std::optional<Manifest> manifest = Manifest::fromTemplate(text);
    if (!manifest)
        qFatal("no template");
    manifest->setName(text);
    manifest->setProjectPath(text);
    manifest->setImageUrl(text);
    manifest->setDescription(text);
    manifest->setTags({text});
    manifest->setFileToOpen(text);
    return *manifest;
}

} // namespace

int initialise()
{
    Q_INIT_RESOURCE(varnel_plugin);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int isReady = initialise();
    const QString text = textOf(data, size);

    QXmlStreamReader reader(manifestWith(text).toByteArray());

    QString description;
    QString tags;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"description")
            description = reader.readElementText();
        else if (reader.isStartElement() && reader.name() == u"tags")
            tags = reader.readElementText();
    }
    if (reader.hasError())
        qFatal("not well-formed: %s", qPrintable(reader.errorString()));
    if (description != expected(text))
        qFatal("the description has changed");
    if (withPlainLineEnds(tags).trimmed() != expected(text).trimmed())
        qFatal("the tags have changed");
    return 0;
}
