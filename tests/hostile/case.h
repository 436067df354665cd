// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "world.h"

#include "common/archivebuilder.h"

#include <QList>

#include <chrono>
#include <functional>

namespace Varnel::Test {

// The address sanitizer copies what else would only grow, and keeps what is freed for a while.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

/** As long as a user does not notice it, for one event on the main thread. */
constexpr auto LONGEST_WORK = std::chrono::milliseconds(IS_SANITIZED ? 500 : 100);
/** The same asleep: for another thread, that may get no processor on a busy machine, or for a disk. */
constexpr auto LONGEST_SLEEP = std::chrono::seconds(2);

/** Where the project "subject" ends up when its server, or the disk, is as the case has it. */
enum class End {
    Installed,     // with its manifest
    NotConfigured, // the settings name no such repository
    NotReady,      // the repository is tried again and again
    NotAnswered,   // what the server answers for the group is no answer
    NotListed,     // the listing arrives, without it
    NotUpdated,    // listed, and left alone
    NotDownloaded, // a network error in place of its archive
    NotReceived,   // a network error, or an archive that is empty or cut short, as the network layer likes
    NoData,        // an empty archive
    NoArchive,     // not unpacked, since its file is none
    NotUnpacked,   // refused, or the unarchiver failed
    NotRegistered, // unpacked, but there is no example in it
};

struct Case
{
    QString name;
    End end = End::Installed;
    std::function<void(World &)> prepare = {}; ///< makes the honest world a hostile one
    std::function<TarBuilder()> tar = {};      ///< the subject's archive; known only when the case runs
    std::function<void(World &)> act = {};     ///< in place of only starting the service
    std::function<void(World &)> check = {};   ///< what else must hold in the end
    QString installedAs = "subject";
    qint64 memory = Q_INT64_C(400) * 1024 * 1024; ///< bytes that the process may grow by
    QStringList remains = {};       ///< what else may be in the repository's directory in the end
    QStringList clears = {};        ///< what was there before and goes
    bool failsWithoutCmake = false; ///< half-way, since GNU tar cannot do what it says
    bool mayHoldLoop = false;       ///< the main loop may be held for longer than a moment
    bool isCuredByRestart = false;  ///< an honest example follows only after a restart with honest settings
};

struct Family
{
    QString name;
    QList<Case> cases;
};

/** All there are. */
[[nodiscard]] const QList<Family> &families();

[[nodiscard]] QList<Case> archiveCases();
/** A part of those above. */
[[nodiscard]] QList<Case> archiveFormCases();
[[nodiscard]] QList<Case> readerCases();
[[nodiscard]] QList<Case> diskCases();
[[nodiscard]] QList<Case> sequenceCases();
/** The same cases, those that have a tar, with all files and directories in it of each of some odd rights. */
[[nodiscard]] QList<Case> withOddRights(const QList<Case> &cases);
/** The same cases, those that have a tar, unpacked by what the IDE takes where there is no cmake. */
[[nodiscard]] QList<Case> withoutCmake(const QList<Case> &cases);
[[nodiscard]] QList<Case> descriptionCases();
[[nodiscard]] QList<Case> httpCases();
[[nodiscard]] QList<Case> jsonCases();
[[nodiscard]] QList<Case> nameCases();
[[nodiscard]] QList<Case> pictureCases();
[[nodiscard]] QList<Case> settingsCases();
[[nodiscard]] QList<Case> tlsCases();

} // namespace Varnel::Test
