// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the command line says. The table of options is the one source of the help, the manual and the
// completions.

#pragma once

#include "finding.h"

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace Varnel::Check {

inline constexpr QLatin1StringView PROGRAM{"varnel-check"};

struct Options
{
    QUrl url;
    QString name;
    bool isJson = false;
    QString htmlFile;
    Severity failOn = Severity::Warning;
    QString installDirectory;
    QString settingsFile;
    bool isForced = false;
    int jobs = 1;
    std::chrono::seconds timeout{60};
    QString only;
    bool isQuiet = false;
};

/** One option as users are told of it. */
struct OptionText
{
    enum class Value { None, Text, File, Directory, Severity };

    QLatin1StringView name;
    QLatin1StringView letter; ///< empty: there is no short form
    Value value;
    QLatin1StringView valueName; ///< empty without a value
    QLatin1StringView help;      ///< short enough for one line of the help
    QLatin1StringView details;   ///< for the manual
};

[[nodiscard]] const QList<OptionText> &optionTexts();

/** What is to be done: a check, if there are options; else something is to be printed. */
struct CommandLine
{
    std::optional<Options> options = {};
    QString output = {}; ///< for the standard output
    QString error = {};  ///< why nothing can be checked
};

/** @p arguments begin with the program. Needs an application object. */
[[nodiscard]] CommandLine parse(const QStringList &arguments);

} // namespace Varnel::Check
