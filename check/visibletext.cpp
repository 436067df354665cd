// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "visibletext.h"

#include <QList>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

bool hasNoShape(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Other_PrivateUse:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        // Blank letters, and marks that choose another shape.
        return character == 0x115f || character == 0x1160 || character == 0x3164 || character == 0xffa0
               || (character >= 0xfe00 && character <= 0xfe0f)
               || (character >= 0xe0100 && character <= 0xe01ef);
    }
}

bool isMark(char32_t character)
{
    const QChar::Category category = QChar::category(character);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing;
}

// What East Asian terminals draw twice as wide.
bool isWide(char32_t character)
{
    return (character >= 0x1100 && character <= 0x115f) || (character >= 0x2e80 && character <= 0xa4cf)
           || (character >= 0xac00 && character <= 0xd7a3) || (character >= 0xf900 && character <= 0xfaff)
           || (character >= 0xfe30 && character <= 0xfe6f) || (character >= 0xff00 && character <= 0xff60)
           || (character >= 0xffe0 && character <= 0xffe6) || (character >= 0x1f300 && character <= 0x1faff)
           || (character >= 0x20000 && character <= 0x3fffd);
}

int columnsOf(char32_t character)
{
    if (isMark(character))
        return 0;
    return isWide(character) ? 2 : 1;
}

// More marks upon each other than any writing has reach over the lines above and below.
constexpr int MOST_MARKS = 4;

// Half a surrogate pair comes as a replacement character.
QList<char32_t> charactersOf(const QString &text)
{
    const QList<uint> codes = text.toUcs4();
    return {codes.cbegin(), codes.cend()};
}

} // namespace

QString visible(const QString &text)
{
    QString result;
    int marks = 0;
    const QList<char32_t> characters = charactersOf(text);
    for (const char32_t character : characters) {
        marks = isMark(character) ? marks + 1 : 0;
        if (character == U'\n' || character == U'\t' || character == U'\r')
            result += u' ';
        else if (hasNoShape(character) || marks > MOST_MARKS)
            result += u"\\u{%1}"_s.arg(uint(character), 0, 16);
        else
            result += QStringView(QChar::fromUcs4(character));
    }
    return result;
}

QString visibleMarkup(const QString &text)
{
    return visible(text).toHtmlEscaped().replace(u'\'', "&#39;"_L1);
}

// Outside of its strings a document has nothing but ASCII, line breaks included.
QByteArray visibleJson(const QByteArray &json)
{
    QString result;
    const QList<char32_t> characters = charactersOf(QString::fromUtf8(json));
    for (const char32_t character : characters) {
        const auto units = QChar::fromUcs4(character);
        if (character == U'\n' || !hasNoShape(character)) {
            result += QStringView(units);
            continue;
        }
        for (const char16_t unit : units)
            result += u"\\u%1"_s.arg(uint(unit), 4, 16, QChar(u'0'));
    }
    return result.toUtf8();
}

int columnsOf(const QString &text)
{
    int columns = 0;
    const QList<char32_t> characters = charactersOf(text);
    for (const char32_t character : characters)
        columns += columnsOf(character);
    return columns;
}

QString shortened(const QString &text, int columns)
{
    if (columnsOf(text) <= columns)
        return text;
    QString result;
    int used = 1; // the ellipsis
    const QList<char32_t> characters = charactersOf(text);
    for (const char32_t character : characters) {
        used += columnsOf(character);
        if (used > columns)
            break;
        result += QStringView(QChar::fromUcs4(character));
    }
    return result + u'…';
}

QString shown(const QString &text)
{
    constexpr int LONGEST = 2'000; // columns
    return shortened(visible(text), LONGEST);
}

} // namespace Varnel::Check
