// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tablereport.h"

#include "visibletext.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

enum class Colour { Red = 31, Green = 32, Yellow = 33, Bold = 1 };

/** Writes coloured words, or plain ones. */
class Painter final
{
public:
    explicit Painter(bool isColoured)
        : m_isColoured(isColoured)
    {
    }

    [[nodiscard]] QString paint(Colour colour, const QString &text) const
    {
        return m_isColoured ? u"\x1b[%1m%2\x1b[0m"_s.arg(int(colour)).arg(text) : text;
    }
    [[nodiscard]] QString paint(Severity severity, const QString &text) const
    {
        return paint(severity == Severity::Error ? Colour::Red : Colour::Yellow, text);
    }

private:
    bool m_isColoured;
};

constexpr int COLUMNS = 8;
using Row = std::array<QString, COLUMNS>;
constexpr std::array<int, COLUMNS> WIDEST{28, 26, 10, 8, 20, 24, 16, 9};

QString sizeText(qint64 bytes)
{
    if (bytes < 1000)
        return u"%1 B"_s.arg(bytes);
    return bytes < 1'000'000 ? u"%1 kB"_s.arg(double(bytes) / 1e3, 0, 'f', 1)
                             : u"%1 MB"_s.arg(double(bytes) / 1e6, 0, 'f', 1);
}

QString pictureText(const PictureReport &picture)
{
    if (picture.source == PictureSource::None)
        return u"none"_s;
    const QString kind = picture.source == PictureSource::Avatar ? u"avatar"_s : u"icon"_s;
    return picture.size.isEmpty()
               ? kind
               : u"%1 %2x%3"_s.arg(kind).arg(picture.size.width()).arg(picture.size.height());
}

QString resultOf(const ExampleReport &example, const Findings &findings)
{
    if (!example.manifest)
        return u"fails"_s;
    return findings.isEmpty() ? u"installs"_s : u"remarks"_s;
}

Row rowOf(const ExampleReport &example, const Findings &findings)
{
    const QString none = u"-"_s;
    Row row{
        example.path,
        example.title,
        example.archive ? sizeText(example.archive->size) : none,
        example.archive && example.archive->isAccepted ? QString::number(example.archive->entries) : none,
        example.manifest ? example.manifest->projectPath : none,
        example.manifest ? example.manifest->fileToOpen : none,
        pictureText(example.picture),
        resultOf(example, findings)};
    for (int column = 0; column < COLUMNS; ++column)
        row[column] = shortened(visible(row[column]), WIDEST[column]);
    return row;
}

QString lineOf(const Row &row, const std::array<int, COLUMNS> &widths)
{
    QString line;
    for (int column = 0; column < COLUMNS; ++column)
        line += u"  "_s + row[column] + QString(widths[column] - columnsOf(row[column]), u' ');
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

QString examplesTable(const Report &report, const Painter &painter)
{
    const QHash<QString, Findings> findings = report.findingsBySubject();
    QList<Row> rows;
    for (const ExampleReport &example : report.examples)
        rows.append(rowOf(example, findings.value(example.path)));
    if (rows.isEmpty())
        return {};
    const Row head{
        u"PATH"_s,
        u"TITLE"_s,
        u"ARCHIVE"_s,
        u"ENTRIES"_s,
        u"PROJECT FILE"_s,
        u"OPENS"_s,
        u"PICTURE"_s,
        u"RESULT"_s};
    std::array<int, COLUMNS> widths{};
    for (int column = 0; column < COLUMNS; ++column) {
        widths[column] = columnsOf(head[column]);
        for (const Row &row : std::as_const(rows))
            widths[column] = std::max(widths[column], columnsOf(row[column]));
    }
    QString text = painter.paint(Colour::Bold, lineOf(head, widths)) + u'\n';
    for (const Row &row : std::as_const(rows))
        text += lineOf(row, widths) + u'\n';
    return text + u'\n';
}

QString groupText(const Report &report)
{
    const QString text = report.groupText();
    return text.isEmpty() ? QString() : QString(shown(text) + u"\n\n"_s);
}

QString findingText(const Finding &finding, const Painter &painter)
{
    const QString subject = finding.subject.isEmpty() ? u"the group"_s : finding.subject;
    const QString severity = severityName(finding.kind->severity);
    QString text = u"%1 %2 [%3]\n"_s.arg(
        painter.paint(finding.kind->severity, severity + u':'),
        painter.paint(Colour::Bold, shown(subject)),
        finding.kind->id);
    text += u"    %1 (%2)\n"_s.arg(finding.kind->meaning, shown(finding.text));
    if (finding.request)
        text += u"    %1\n"_s.arg(shown(describe(*finding.request)));
    return text + u"    -> %1\n"_s.arg(finding.kind->advice);
}

QString summary(const Report &report)
{
    if (!report.isComplete)
        return report.counts() + u"; the group could not be checked.\n"_s;
    return report.counts()
           + u"; %1 of %2 examples install.\n"_s.arg(report.installable()).arg(report.examples.size());
}

} // namespace

QString tableReport(const Report &report, const TableStyle &style)
{
    const Painter painter(style.isColoured);
    QString text;
    if (!style.isQuiet)
        text += groupText(report) + examplesTable(report, painter);
    for (const Finding &finding : report.findings)
        text += findingText(finding, painter);
    if (style.isQuiet)
        return text;
    return text + (report.findings.isEmpty() ? QString() : u"\n"_s) + summary(report);
}

} // namespace Varnel::Check
