// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/manifest.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/nativefiles.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace Varnel::Internal {

namespace {

constexpr int INDENTATION = 1; // spaces
// So much is read of a manifest that may be anybody's. One that the registration wrote has its root element
// there.
constexpr qsizetype MAXIMUM_BEGINNING = 64LL * 1024; // bytes
constexpr char16_t ROOT_ELEMENT[] = u"instructionals";
constexpr char16_t MODULE_ATTRIBUTE[] = u"module";

QString manifestFile()
{
    return QString::fromUtf8(Constants::MANIFEST_FILE);
}

bool isAllowedUnit(QChar unit)
{
    return unit >= u' ' ? unit < u'\ufffe' : unit == u'\t' || unit == u'\n' || unit == u'\r';
}

// Keeps what XML 1.0 can hold: no control characters, no halves of surrogate pairs.
QString withoutForbidden(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            result += unit;
            result += text.at(++i);
        } else if (!unit.isSurrogate() && isAllowedUnit(unit)) {
            result += unit;
        }
    }
    return result;
}

} // namespace

std::optional<Manifest> Manifest::fromTemplate(const QString &repositoryName)
{
    QFile file(QStringLiteral(":/%1").arg(manifestFile()));
    if (!file.open(QIODevice::ReadOnly)) {
        qCDebug(Log::service) << "Internal manifest XML error: file not found";
        return {};
    }
    QDomDocument document;
    if (const auto result = document.setContent(&file); !result) {
        qCDebug(Log::service) << "Internal manifest XML error:" << result.errorMessage << result.errorLine
                              << result.errorColumn;
        return {};
    }
    QDomElement root = document.elementsByTagName(QString(ROOT_ELEMENT)).at(0).toElement();
    if (root.isNull()) {
        qCDebug(Log::service) << R"(Internal manifest XML error: element "instructionals" not found)";
        return {};
    }
    root.setAttribute(QString(MODULE_ATTRIBUTE), withoutForbidden(repositoryName));
    return Manifest(document);
}

Manifest::Manifest(const QDomDocument &document)
    : m_document(document)
    , m_example(document.elementsByTagName(QString(ROOT_ELEMENT))
                    .at(0)
                    .firstChildElement(QStringLiteral("examples"))
                    .firstChildElement(QStringLiteral("example")))
{
}

void Manifest::setName(const QString &title)
{
    m_example.setAttribute(QStringLiteral("name"), withoutForbidden(title));
}

void Manifest::setProjectPath(const QString &path)
{
    m_example.setAttribute(QStringLiteral("projectPath"), withoutForbidden(path));
}

void Manifest::setImageUrl(const QString &url)
{
    m_example.setAttribute(QStringLiteral("imageUrl"), withoutForbidden(url));
}

void Manifest::setDescription(const QString &description)
{
    QDomElement element = m_example.firstChildElement(QStringLiteral("description"));
    // An end marker would close the section early, so it is split over two: "]]" ends one, ">" begins the
    // next.
    const QString text = withoutForbidden(description);
    qsizetype begin = 0;
    for (qsizetype end = text.indexOf(u"]]>"); end >= 0; end = text.indexOf(u"]]>", begin)) {
        element.appendChild(m_document.createCDATASection(text.sliced(begin, end + 2 - begin)));
        begin = end + 2;
    }
    element.appendChild(m_document.createCDATASection(text.sliced(begin)));
}

void Manifest::setTags(const QStringList &tags)
{
    setText(QStringLiteral("tags"), tags.join(u','));
}

void Manifest::setFileToOpen(const QString &file)
{
    setText(QStringLiteral("fileToOpen"), file);
}

QByteArray Manifest::toByteArray() const
{
    return m_document.toByteArray(INDENTATION);
}

void Manifest::setText(const QString &element, const QString &text)
{
    m_example.firstChildElement(element).appendChild(m_document.createTextNode(withoutForbidden(text)));
}

bool holdsManifest(const QString &directory, const QString &repositoryName)
{
    const QString path = directory + u'/' + manifestFile();
    RegularFile file(path);
    if (!file.isOpen() || QFileInfo(path).isSymLink())
        return false;
    QByteArray beginning(MAXIMUM_BEGINNING, Qt::Uninitialized);
    beginning.truncate(file.read(beginning.data(), beginning.size()));
    QXmlStreamReader reader(beginning);
    return reader.readNextStartElement() && reader.name() == ROOT_ELEMENT
           && reader.attributes().value(QString(MODULE_ATTRIBUTE)) == withoutForbidden(repositoryName);
}

} // namespace Varnel::Internal
