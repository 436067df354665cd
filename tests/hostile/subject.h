// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "case.h"

#include "common/archivebuilder.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace Varnel::Test {

/** The one top directory of the subject's archive. */
inline const QByteArray TOP = "subject-main-1/";

/** What makes the subject an example; cases add to it. */
[[nodiscard]] TarBuilder project();

/** A path in the home directory, as an archive would name it. */
[[nodiscard]] QByteArray inHome(const QByteArray &name);

[[nodiscard]] Case refused(const QString &name, const std::function<TarBuilder()> &make);
[[nodiscard]] Case installed(const QString &name, const std::function<TarBuilder()> &make);

/** Of an archive that is no tar, or not whole. */
[[nodiscard]] Case ending(End end, const QString &name, const QByteArray &archive);
/** Prepares a world whose server sends this archive. */
[[nodiscard]] std::function<void(World &)> sending(const QByteArray &archive);

} // namespace Varnel::Test
