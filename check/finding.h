// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace Varnel::Check {

enum class Severity { Warning, Error };

/** A request that went wrong, and what came of it. A finding holds it without a password. */
struct FailedRequest
{
    QUrl url;
    int status = 0; ///< 0: no answer came
    QString error = {};
};

/** What the catalogue says of all findings of one kind. */
struct FindingKind
{
    QLatin1StringView id; ///< stable: scripts rely on it
    Severity severity;
    QLatin1StringView meaning; ///< what it is to the users
    QLatin1StringView advice;  ///< what the maintainer can do
};

/** Something that a maintainer should know. Its texts may hold whatever a server sent. */
struct Finding
{
    const FindingKind *kind; ///< of the catalogue, never null
    QString subject;         ///< an example's path; empty: the group
    QString text;
    std::optional<FailedRequest> request = {};
};

using Findings = QList<Finding>;

/** All kinds, in the order of the road from the group to the tile. */
[[nodiscard]] const QList<FindingKind> &findingKinds();

/** Makes a finding of the kind with this id, which must be in the catalogue. */
[[nodiscard]] Finding makeFinding(
    QLatin1StringView id,
    const QString &subject,
    const QString &text,
    const std::optional<FailedRequest> &request = {});

[[nodiscard]] QLatin1StringView severityName(Severity severity);

/** "GET address: status 404, error text". */
[[nodiscard]] QString describe(const FailedRequest &request);

} // namespace Varnel::Check
