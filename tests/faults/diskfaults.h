// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Makes single steps of this process on the disk fail, and shifts its clock.

#pragma once

#include <QByteArray>
#include <QList>

#include <chrono>

namespace Varnel::Test {

enum class DiskStep { Open, Write, Link, Rename, Exchange, Delete, SetTime };

/**
 * Steps of this kind on paths that contain the text fail with the error number. A file that is made without a
 * name has a path that ends in "/#" and a number, until it is linked to one. Only opening for writing fails.
 */
struct DiskFault
{
    DiskStep step = DiskStep::Open;
    QByteArray pathPart = {};
    int error = 0;
};

/** Replaces the faults of the whole process; none without any. Those of its children are not concerned. */
void setDiskFaults(const QList<DiskFault> &faults);
/** How many steps have failed since the faults were set. */
[[nodiscard]] int failedSteps();

/** What the clock shows in addition to the time; negative for a clock that was put back. */
void shiftClock(std::chrono::seconds shift);

} // namespace Varnel::Test
