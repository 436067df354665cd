// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "jsonreport.h"

#include "visibletext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr int FORMAT_VERSION = 1; // grows when a key changes its meaning or goes

QJsonValue timeOrNull(const QDateTime &time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODate)) : QJsonValue(QJsonValue::Null);
}

QJsonValue sizeOrNull(const QSize &size)
{
    if (size.isEmpty())
        return QJsonValue::Null;
    return QJsonObject{{"width"_L1, size.width()}, {"height"_L1, size.height()}};
}

QJsonObject groupObject(const GroupReport &group)
{
    QJsonArray found;
    for (const GroupHit &hit : group.found)
        found.append(QJsonObject{{"id"_L1, hit.id}, {"path"_L1, hit.path}, {"title"_L1, hit.title}});
    QJsonArray dropped;
    for (const DroppedProject &project : group.dropped)
        dropped.append(QJsonObject{
            {"path"_L1, project.path},
            {"title"_L1, project.title},
            {"reasons"_L1, QJsonArray::fromStringList(project.reasons)}});
    return {
        {"requested"_L1, group.requested},
        {"found"_L1, found},
        {"isListed"_L1, group.isListed},
        {"listed"_L1, group.listed},
        {"dropped"_L1, dropped},
        {"isCompared"_L1, group.isCompared},
        {"beyondListing"_L1, QJsonArray::fromStringList(group.beyondListing)}};
}

QJsonObject findingObject(const Finding &finding)
{
    QJsonObject object{
        {"id"_L1, finding.kind->id},
        {"severity"_L1, severityName(finding.kind->severity)},
        {"subject"_L1,
         finding.subject.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(finding.subject)},
        {"meaning"_L1, finding.kind->meaning},
        {"text"_L1, finding.text},
        {"advice"_L1, finding.kind->advice}};
    if (finding.request) {
        object.insert(
            "request"_L1,
            QJsonObject{
                {"url"_L1, finding.request->url.toString()},
                {"status"_L1, finding.request->status},
                {"error"_L1, finding.request->error}});
    }
    return object;
}

QJsonArray findingsArray(const Findings &findings)
{
    QJsonArray array;
    for (const Finding &finding : findings)
        array.append(findingObject(finding));
    return array;
}

QJsonValue archiveOrNull(const std::optional<ArchiveReport> &archive)
{
    if (!archive)
        return QJsonValue::Null;
    return QJsonObject{
        {"size"_L1, archive->size},
        {"entries"_L1, archive->entries},
        {"commitTime"_L1, timeOrNull(archive->commitTime)},
        {"topDirectory"_L1, archive->topDirectory},
        {"isAccepted"_L1, archive->isAccepted},
        {"reason"_L1, archive->reason}};
}

QJsonValue manifestOrNull(const std::optional<ManifestReport> &manifest)
{
    if (!manifest)
        return QJsonValue::Null;
    return QJsonObject{
        {"name"_L1, manifest->name},
        {"projectPath"_L1, manifest->projectPath},
        {"imageUrl"_L1, manifest->imageUrl},
        {"description"_L1, manifest->description},
        {"tags"_L1, QJsonArray::fromStringList(manifest->tags)},
        {"fileToOpen"_L1, manifest->fileToOpen}};
}

QLatin1StringView sourceName(PictureSource source)
{
    switch (source) {
    case PictureSource::Avatar:
        return "avatar"_L1;
    case PictureSource::Icon:
        return "icon"_L1;
    case PictureSource::None:
        break;
    }
    return "none"_L1;
}

QJsonObject exampleObject(const ExampleReport &example)
{
    return {
        {"path"_L1, example.path},
        {"title"_L1, example.title},
        {"description"_L1, example.description},
        {"tags"_L1, QJsonArray::fromStringList(example.tags)},
        {"hasOwnTags"_L1, example.hasOwnTags},
        {"lastActivity"_L1, timeOrNull(example.lastActivity)},
        {"isPathPlain"_L1, example.isPathPlain},
        {"beginsPathOf"_L1, QJsonArray::fromStringList(example.beginsPathOf)},
        {"archive"_L1, archiveOrNull(example.archive)},
        {"picture"_L1,
         QJsonObject{
             {"source"_L1, sourceName(example.picture.source)},
             {"place"_L1, example.picture.place},
             {"size"_L1, sizeOrNull(example.picture.size)}}},
        {"manifest"_L1, manifestOrNull(example.manifest)}};
}

} // namespace

QByteArray jsonReport(const Report &report, int exitCode)
{
    QJsonArray examples;
    for (const ExampleReport &example : report.examples)
        examples.append(exampleObject(example));
    const QJsonObject object{
        {"format"_L1, "varnel-check"_L1},
        {"version"_L1, FORMAT_VERSION},
        {"program"_L1, QLatin1StringView(VARNEL_VERSION)},
        {"repository"_L1, report.repositoryName},
        {"url"_L1, report.url.toDisplayString()},
        {"group"_L1, groupObject(report.group)},
        {"examples"_L1, examples},
        {"findings"_L1, findingsArray(report.findings)},
        {"summary"_L1,
         QJsonObject{
             {"isComplete"_L1, report.isComplete},
             {"errors"_L1, report.count(Severity::Error)},
             {"warnings"_L1, report.count(Severity::Warning)},
             {"installable"_L1, report.installable()},
             {"exitCode"_L1, exitCode}}}};
    return visibleJson(QJsonDocument(object).toJson());
}

} // namespace Varnel::Check
