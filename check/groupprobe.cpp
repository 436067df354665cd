// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "groupprobe.h"

#include "client/answers.h"
#include "client/example.h"
#include "service/filesystem.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

using Internal::Example;
using Internal::Repository;

constexpr qsizetype MOST_NEIGHBOURS = 20; // of one path; those of an honest group have few

QString describe(const GroupHit &hit)
{
    return u"\"%1\" (number %2)"_s.arg(hit.path.isEmpty() ? hit.title : hit.path, QString::number(hit.id));
}

QStringList describe(const QList<GroupHit> &hits)
{
    QStringList texts;
    for (const GroupHit &hit : hits)
        texts.append(describe(hit));
    return texts;
}

QStringList reasonsToDrop(const QJsonValue &project)
{
    if (!project.isObject())
        return {u"it is no object"_s};
    QStringList reasons;
    const QJsonObject object = project.toObject();
    if (object.value("id"_L1).toDouble() == 0)
        reasons.append(u"it has no number"_s);
    if (object.value("name"_L1).toString().isEmpty())
        reasons.append(u"it has no title"_s);
    if (object.value("web_url"_L1).toString().isEmpty())
        reasons.append(u"it has no web address"_s);
    return reasons;
}

QString named(const DroppedProject &project)
{
    const QString name = project.path.isEmpty() ? project.title : project.path;
    return name.isEmpty() ? u"a project without a name"_s : u"\"%1\""_s.arg(name);
}

bool isSamePath(const QString &one, const QString &other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

} // namespace

QList<GroupHit> readHits(const QByteArray &body)
{
    const QJsonDocument document = Internal::parseAnswer(body);
    const QJsonArray groups = document.isObject() ? QJsonArray{document.object()} : document.array();
    QList<GroupHit> hits;
    for (const QJsonValue group : groups) {
        const QString fullPath = group["full_path"_L1].toString();
        hits.append(
            {.id = group["id"_L1].toInteger(),
             .path = fullPath.isEmpty() ? group["path"_L1].toString() : fullPath,
             .title = group["name"_L1].toString()});
    }
    return hits;
}

QJsonArray readProjects(const QByteArray &body)
{
    const QJsonDocument document = Internal::parseAnswer(body);
    const QJsonObject group = document.isArray() ? document.array().at(0).toObject() : document.object();
    return group.value("projects"_L1).toArray();
}

Findings judgeHits(const GroupReport &group)
{
    const GroupHit &picked = group.found.constFirst();
    if (isSamePath(picked.path, group.requested))
        return {};
    const QString others = group.found.size() == 1
                               ? u"no other matches"_s
                               : u"also found: "_s + describe(group.found.sliced(1)).join(", "_L1);
    return {makeFinding(
        "group-other"_L1,
        {},
        u"asked for was \"%1\", taken is %2; %3"_s.arg(group.requested, describe(picked), others))};
}

QList<DroppedProject> findDropped(const QJsonArray &projects)
{
    QList<DroppedProject> dropped;
    for (const QJsonValue project : projects) {
        if (Example(project.toObject()).isValid())
            continue;
        dropped.append(
            {.path = project["path"_L1].toString(),
             .title = project["name"_L1].toString(),
             .reasons = reasonsToDrop(project)});
    }
    return dropped;
}

Findings judgeListing(const GroupReport &group)
{
    Findings findings;
    if (group.listed == 0)
        findings.append(makeFinding("listing-empty"_L1, {}, u"no project is listed"_s));
    for (const DroppedProject &project : group.dropped)
        findings.append(makeFinding(
            "project-dropped"_L1, {}, u"%1: %2"_s.arg(named(project), project.reasons.join(", "_L1))));
    return findings;
}

ListedTexts::ListedTexts(const Repository::Examples &listed)
{
    for (const Repository::ExamplePtr &example : listed) {
        m_paths.insert(example->name().toCaseFolded(), example->name());
        ++m_titles[example->displayName()];
    }
}

QStringList ListedTexts::longerPaths(const QString &path) const
{
    QStringList result;
    const QString folded = path.toCaseFolded();
    for (auto it = m_paths.upperBound(folded); it != m_paths.cend() && it.key().startsWith(folded); ++it) {
        if (result.size() == MOST_NEIGHBOURS)
            break;
        result.append(it.value());
    }
    return result;
}

qsizetype ListedTexts::countPath(const QString &path) const
{
    return m_paths.count(path.toCaseFolded());
}

ExampleReport describeExample(const Repository::ExamplePtr &example, const ListedTexts &listed)
{
    const QString path = example->name();
    return {
        .path = path,
        .title = example->displayName(),
        .description = example->project().value("description"_L1).toString(),
        .tags = example->tags(),
        .hasOwnTags = !example->project().value("tag_list"_L1).toArray().isEmpty(),
        .lastActivity = example->lastActivity(),
        .isPathPlain = Internal::isPlainName(path),
        .beginsPathOf = path.isEmpty() ? QStringList() : listed.longerPaths(path)};
}

Findings judgeTexts(const ExampleReport &example, const ListedTexts &listed)
{
    Findings findings;
    const auto add = [&](QLatin1StringView id, const QString &text) {
        findings.append(makeFinding(id, example.path, text));
    };
    if (!example.isPathPlain)
        add("path-not-plain"_L1, u"the path is \"%1\""_s.arg(example.path));
    if (const qsizetype count = listed.countPath(example.path); count > 1)
        add("path-twice"_L1, u"%1 projects have this path in some letter case"_s.arg(count));
    if (!example.beginsPathOf.isEmpty())
        add("path-prefix"_L1, u"so do begin: %1"_s.arg(example.beginsPathOf.join(", "_L1)));
    if (listed.countTitle(example.title) > 1)
        add("title-twice"_L1, u"the title is \"%1\""_s.arg(example.title));
    if (example.description.trimmed().isEmpty())
        add("description-missing"_L1, u"there is no description"_s);
    if (!example.hasOwnTags)
        add("tags-missing"_L1, u"there are no topics"_s);
    if (!example.lastActivity.isValid())
        add("activity-unknown"_L1, u"there is no time that can be read"_s);
    return findings;
}

} // namespace Varnel::Check
