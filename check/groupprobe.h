// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the answers about a group, and the list of its projects, give reason to say.

#pragma once

#include "report.h"

#include "client/repository.h"

#include <QHash>
#include <QJsonArray>
#include <QMap>

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

/** The paths and titles of all listed examples, so that one can be compared with many thousand others. */
class ListedTexts final
{
public:
    explicit ListedTexts(const Internal::Repository::Examples &listed);

    /** Paths that begin with this one and are longer, in any letter case; not more than the first few. */
    [[nodiscard]] QStringList longerPaths(const QString &path) const;
    /** How many have this path, in any letter case. */
    [[nodiscard]] qsizetype countPath(const QString &path) const;
    [[nodiscard]] qsizetype countTitle(const QString &title) const { return m_titles.value(title); }

private:
    QMultiMap<QString, QString> m_paths; // by the path in small letters
    QHash<QString, qsizetype> m_titles;
};

/** What is known of an example without its archive. */
[[nodiscard]] ExampleReport
describeExample(const Internal::Repository::ExamplePtr &example, const ListedTexts &listed);
[[nodiscard]] Findings judgeTexts(const ExampleReport &example, const ListedTexts &listed);

} // namespace Varnel::Check
