// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "report.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

QString countText(qsizetype count, const QString &word)
{
    return count == 1 ? u"1 %1"_s.arg(word) : u"%1 %2s"_s.arg(count).arg(word);
}

} // namespace

qsizetype Report::count(Severity severity) const
{
    return std::ranges::count(
        findings, severity, [](const Finding &finding) { return finding.kind->severity; });
}

qsizetype Report::installable() const
{
    return std::ranges::count_if(
        examples, [](const ExampleReport &example) { return example.manifest.has_value(); });
}

QString Report::groupText() const
{
    if (group.found.isEmpty())
        return {};
    const GroupHit &picked = group.found.constFirst();
    QString text
        = u"Group \"%1\" (%2, number %3)"_s.arg(picked.title, picked.path, QString::number(picked.id));
    if (group.isListed)
        text += u": %1 projects listed, %2 dropped"_s.arg(group.listed).arg(group.dropped.size());
    if (group.isCompared)
        text += group.beyondListing.isEmpty() ? u", none missing"_s
                                              : u", %1 missing"_s.arg(group.beyondListing.size());
    return text;
}

QString Report::counts() const
{
    return countText(count(Severity::Error), u"error"_s) + u", "_s
           + countText(count(Severity::Warning), u"warning"_s);
}

QHash<QString, Findings> Report::findingsBySubject() const
{
    QHash<QString, Findings> result;
    for (const Finding &finding : findings)
        result[finding.subject].append(finding);
    return result;
}

} // namespace Varnel::Check
