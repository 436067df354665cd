// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// All that is found out about a group, before anybody decides how it is shown.

#pragma once

#include "finding.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QSize>
#include <QStringList>

namespace Varnel::Check {

struct GroupHit
{
    qint64 id = 0;
    QString path = {}; // with its parents, as far as the server says them
    QString title = {};
};

struct DroppedProject
{
    QString path = {};
    QString title = {};
    QStringList reasons = {};
};

struct GroupReport
{
    QString requested = {};     // the path in the address that was given
    QList<GroupHit> found = {}; // by the search, in its order: IDEs take the first
    bool isListed = false;      // the listing has arrived and counts
    qsizetype listed = 0;
    QList<DroppedProject> dropped = {};
    bool isCompared = false;        // with the paged listing
    QStringList beyondListing = {}; // paths of projects that the one answer does not carry
};

struct ArchiveReport
{
    qint64 size = 0;    // bytes
    qint64 entries = 0; // with directories that are only implied
    QDateTime commitTime = {};
    QString topDirectory = {}; // empty if there is not exactly one
    bool isAccepted = false;
    QString reason = {}; // why not
};

enum class PictureSource { None, Avatar, Icon };

struct PictureReport
{
    PictureSource source = PictureSource::None;
    QString place = {};  // an address, or a path within the project
    QSize size = {};     // as it comes, in pixels
    QByteArray png = {}; // as a tile shows it
};

struct ManifestReport
{
    QString name = {};
    QString projectPath = {};
    QString imageUrl = {};
    QString description = {};
    QStringList tags = {};
    QString fileToOpen = {};
};

struct ExampleReport
{
    QString path = {};
    QString title = {};
    QString description = {};
    QStringList tags = {}; // never empty
    bool hasOwnTags = false;
    QDateTime lastActivity = {};
    bool isPathPlain = false;
    QStringList beginsPathOf = {}; // of other projects
    std::optional<ArchiveReport> archive = {};
    std::optional<ManifestReport> manifest = {}; // of an example that can be installed
    PictureReport picture = {};
};

/** Usable once the checker has finished; what it did not come to is empty. */
struct Report
{
    QString repositoryName = {};
    QUrl url;
    bool isComplete = false; // false: the group could not be checked
    GroupReport group;
    QList<ExampleReport> examples = {}; // in the order of the listing
    Findings findings;                  // of the group first, then in the order of the examples

    [[nodiscard]] qsizetype count(Severity severity) const;
    [[nodiscard]] qsizetype installable() const;
    /** Which group was taken and what it lists; empty if none was found. */
    [[nodiscard]] QString groupText() const;
    /** "1 error, 2 warnings". */
    [[nodiscard]] QString counts() const;
    /** By the example's path; those of the group have an empty one. */
    [[nodiscard]] QHash<QString, Findings> findingsBySubject() const;
};

} // namespace Varnel::Check
