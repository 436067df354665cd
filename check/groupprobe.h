// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the answers about a group, and the list of its projects, give reason to say.

#pragma once

#include "report.h"

#include "client/repository.h"

#include <QJsonArray>

namespace Varnel::Check {

/** What a search has found, whatever it looks like. */
[[nodiscard]] QList<GroupHit> readHits(const QByteArray &body);
/** The projects that a group's details carry, valid or not. */
[[nodiscard]] QJsonArray readProjects(const QByteArray &body);

/** Whether the first hit is the group that was asked for. */
[[nodiscard]] Findings judgeHits(const GroupReport &group);

/** The projects that no IDE lists, although the answer carries them. */
[[nodiscard]] QList<DroppedProject> findDropped(const QJsonArray &projects);
[[nodiscard]] Findings judgeListing(const GroupReport &group);

/** What is known of an example without its archive. */
[[nodiscard]] ExampleReport describeExample(
    const Internal::Repository::ExamplePtr &example, const Internal::Repository::Examples &listed);
/** @p examples are all that are listed. */
[[nodiscard]] Findings judgeTexts(const ExampleReport &example, const QList<ExampleReport> &examples);

} // namespace Varnel::Check
