// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "report.h"

#include <algorithm>

namespace Varnel::Check {

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

Findings Report::findingsOf(const QString &path) const
{
    Findings result;
    std::ranges::copy_if(findings, std::back_inserter(result), [&path](const Finding &finding) {
        return finding.subject == path;
    });
    return result;
}

} // namespace Varnel::Check
