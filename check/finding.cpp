// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "finding.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

const QList<FindingKind> &findingKinds()
{
    using enum Severity;
    static const QList<FindingKind> KINDS{
        {"search-failed"_L1,
         Error,
         "The search for the group failed: no IDE finds any example."_L1,
         "Open the address of the request in a browser that is not logged in. A 429 or 5xx passes: try again later."_L1},
        {"search-unusable"_L1,
         Error,
         "The answer to the search is none that names a group."_L1,
         "Look at what the address answers: a log-in page or a proxy may stand before the server."_L1},
        {"group-not-found"_L1,
         Error,
         "The search finds no group."_L1,
         "Make the group public, and check its path. A path of one or two letters is never found."_L1},
        {"group-other"_L1,
         Warning,
         "IDEs take the first group that the search finds, and that is another one."_L1,
         "Give the group a path that no other group's path or name contains, or rename the others."_L1},
        {"listing-failed"_L1,
         Error,
         "The group was found, but not its projects."_L1,
         "Open the address of the request in a browser that is not logged in. A 429 or 5xx passes: try again later."_L1},
        {"listing-unusable"_L1,
         Error,
         "The answer for the group does not list its projects."_L1,
         "Look at what the address answers. The server must not leave the projects out of a group's details."_L1},
        {"listing-empty"_L1,
         Warning,
         "The group has no project that an IDE could show."_L1,
         "Put public projects directly into the group; those of subgroups are not seen."_L1},
        {"listing-cut"_L1,
         Error,
         "Projects of the group are in no IDE's list: one answer carries only so many."_L1,
         "Move projects to a second group, which users can configure beside this one."_L1},
        {"listing-not-compared"_L1,
         Warning,
         "Whether the list is complete could not be found out."_L1,
         "Open the address of the request in a browser, and count."_L1},
        {"project-dropped"_L1,
         Error,
         "A project is left out of every IDE's list."_L1,
         "The server must send its number, its title and its web address."_L1},
        {"selection-empty"_L1,
         Warning,
         "No listed project matches the pattern, so none was looked at."_L1,
         "Compare the pattern of --only with the last parts of the projects' addresses."_L1},
        {"path-not-plain"_L1,
         Error,
         "The project's path cannot be a directory's name, so it is listed and never installed."_L1,
         "Rename the path. Letters, digits, dots, underscores and hyphens are safe."_L1},
        {"path-twice"_L1,
         Error,
         "Two projects have the same path, or paths that differ only in letter case."_L1,
         "Rename one of them: only the first is installed, or each replaces the other."_L1},
        {"path-prefix"_L1,
         Warning,
         "The path is the beginning of another project's path."_L1,
         "Choose paths of which none begins another, lest old copies of one are taken for the other."_L1},
        {"title-twice"_L1,
         Warning,
         "Two tiles have the same title."_L1,
         "Give each project a title of its own."_L1},
        {"description-missing"_L1,
         Warning,
         "The tile says nothing about the example."_L1,
         "Give the project a description of one or two sentences."_L1},
        {"tags-missing"_L1,
         Warning,
         "The example is tagged \"Qt\" and \"example\", like any other without topics."_L1,
         "Give the project a few topics."_L1},
        {"activity-unknown"_L1,
         Warning,
         "The time of the last activity cannot be read, so every due check downloads the project again."_L1,
         "The server must send \"last_activity_at\" as an ISO 8601 time."_L1},
        {"archive-failed"_L1,
         Error,
         "The archive cannot be downloaded, so the example is listed and never installed."_L1,
         "Push a first commit if the project is empty, make its code public, raise the server's limits if it was a 429."_L1},
        {"archive-empty"_L1,
         Error,
         "The server sends an archive without a byte."_L1,
         "Open the address of the archive in a browser; a proxy may be in the way."_L1},
        {"archive-not-saved"_L1,
         Error,
         "The archive cannot be written to a temporary file."_L1,
         "Look at the free space and the rights of the temporary directory of this machine."_L1},
        {"archive-refused"_L1,
         Error,
         "The archive is not unpacked, since it could do harm or cannot be read to its end."_L1,
         "Remove what the reason names from the repository. If it is too large, look at this machine's free space, too; behind a proxy, look whether the archive arrives whole."_L1},
        {"archive-obstacle"_L1,
         Error,
         "The archive is not unpacked, since something is in its way."_L1,
         "Look at what is in the directory of the installation."_L1},
        {"archive-not-unpacked"_L1,
         Error,
         "The archive could not be unpacked."_L1,
         "Look at the free space and at names that this machine's file system does not take."_L1},
        {"archive-large"_L1,
         Warning,
         "The archive has more than 50 MB, and every user downloads it after every change."_L1,
         "Keep large files out of the repository, or leave them out of archives (export-ignore)."_L1},
        {"archive-scattered"_L1,
         Warning,
         "The archive has not exactly one top directory."_L1,
         "The server packs every project below one directory: look what stands before it."_L1},
        {"archive-foreign"_L1,
         Warning,
         "The archive's top directory does not begin with the project's path, so it is not found."_L1,
         "The server names that directory after the path: look what stands before it."_L1},
        {"manifest-ignored"_L1,
         Warning,
         "A file of the project bears a name that belongs to the installation, and is left out."_L1,
         "Rename or remove that file in the repository."_L1},
        {"link-out"_L1,
         Warning,
         "A symbolic link leads out of the project, or nowhere."_L1,
         "Replace the link by a copy, or add what it leads to."_L1},
        {"name-case"_L1,
         Warning,
         "Names differ only in letter case: where systems do not tell case one file replaces the other."_L1,
         "Rename one of the files."_L1},
        {"name-unportable"_L1,
         Warning,
         "A name is one that other systems refuse."_L1,
         "Rename the file: no control characters, none of <>:\"|?*\\, no dot or blank at the end, no device's name."_L1},
        {"project-file-missing"_L1,
         Error,
         "There is no project file in the top directory, so the example is listed and never installed."_L1,
         "Put a CMakeLists.txt or a .pro file into the repository's top directory."_L1},
        {"picture-failed"_L1,
         Warning,
         "The project's picture cannot be downloaded."_L1,
         "Upload the avatar again, and see that the project is public."_L1},
        {"picture-unreadable"_L1,
         Warning,
         "The project's picture is none that is decoded."_L1,
         "Upload a PNG or JPEG of at most 4,096 pixels a side."_L1},
        {"picture-missing"_L1,
         Warning,
         "The tile has no picture of its own."_L1,
         "Give the project an avatar, or the repository a PNG in icons/128x128."_L1},
        {"picture-small"_L1,
         Warning,
         "The picture has less than 128 pixels a side: it is blurred."_L1,
         "Use a picture of 128 x 128 pixels or more."_L1},
        {"picture-not-square"_L1,
         Warning,
         "The picture is far from square: it leaves much of the tile empty."_L1,
         "Use a square picture."_L1},
        {"registration-failed"_L1,
         Error,
         "The example is unpacked, but its manifest or its place cannot be had."_L1,
         "Look at the free space and at what is in the directory of the installation."_L1},
    };
    return KINDS;
}

namespace {

// The network layer's texts hold the whole address.
FailedRequest withoutPassword(FailedRequest request)
{
    request.error.replace(request.url.toString(), request.url.toDisplayString());
    request.url = request.url.adjusted(QUrl::RemovePassword);
    return request;
}

} // namespace

Finding makeFinding(
    QLatin1StringView id,
    const QString &subject,
    const QString &text,
    const std::optional<FailedRequest> &request)
{
    const auto &kinds = findingKinds();
    const auto kind = std::find_if(
        kinds.cbegin(), kinds.cend(), [id](const FindingKind &candidate) { return candidate.id == id; });
    Q_ASSERT(kind != kinds.cend());
    return {
        .kind = &*kind,
        .subject = subject,
        .text = text,
        .request = request ? std::optional(withoutPassword(*request)) : std::nullopt};
}

QLatin1StringView severityName(Severity severity)
{
    return severity == Severity::Error ? "error"_L1 : "warning"_L1;
}

QString describe(const FailedRequest &request)
{
    const QString answer = request.status == 0 ? u"no answer"_s : u"status %1"_s.arg(request.status);
    const QString text = u"GET %1: %2"_s.arg(request.url.toString(), answer);
    return request.error.isEmpty() ? text : QString(text + ", "_L1 + request.error);
}

} // namespace Varnel::Check
