// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options.h"

#include <QCommandLineParser>
#include <QThread>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr int MOST_JOBS = 64;
constexpr int LONGEST_TIMEOUT = 24 * 60 * 60; // seconds

QCommandLineOption optionFrom(const OptionText &text)
{
    QStringList names{text.name};
    if (!text.letter.isEmpty())
        names.prepend(text.letter);
    return {names, text.help, text.valueName};
}

// The usage line begins with the whole path that the program was called by, which says nothing to anybody.
QString helpText(const QCommandLineParser &parser)
{
    QString text = parser.helpText();
    const qsizetype end = text.indexOf(u'\n');
    return text.replace(0, end, u"Usage: %1 [options] URL"_s.arg(PROGRAM));
}

/** Takes values from the parser; the first that cannot be used is remembered. */
class Values final
{
public:
    explicit Values(const QCommandLineParser &parser)
        : m_parser(parser)
    {
    }

    [[nodiscard]] const QString &fault() const { return m_fault; }
    [[nodiscard]] bool isSet(const QString &name) const { return m_parser.isSet(name); }

    QString text(const QString &name)
    {
        const QString value = m_parser.value(name);
        if (m_parser.isSet(name) && value.isEmpty())
            fail(u"--%1 needs a value"_s.arg(name));
        return value;
    }

    int number(const QString &name, int otherwise, int most)
    {
        if (!m_parser.isSet(name))
            return otherwise;
        bool isNumber = false;
        const int value = m_parser.value(name).toInt(&isNumber);
        if (!isNumber || value < 1 || value > most)
            fail(u"--%1 needs a number from 1 to %2"_s.arg(name).arg(most));
        return value;
    }

    Severity severity(const QString &name)
    {
        const QString value = m_parser.value(name);
        if (m_parser.isSet(name) && value != "warning"_L1 && value != "error"_L1)
            fail(u"--%1 needs \"warning\" or \"error\""_s.arg(name));
        return value == "error"_L1 ? Severity::Error : Severity::Warning;
    }

    // Only what names a group; which address a client may ask is the client's business.
    QUrl group(const QStringList &positional)
    {
        if (positional.size() != 1) {
            fail(u"give the web address of one group"_s);
            return {};
        }
        const QUrl url(positional.constFirst(), QUrl::TolerantMode);
        const bool isWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
        if (!url.isValid() || !isWeb || url.host().isEmpty() || url.path().remove(u'/').isEmpty())
            fail(u"\"%1\" is no web address of a group, such as https://gitlab.example.org/group"_s.arg(
                positional.constFirst()));
        return url;
    }

    void fail(const QString &fault)
    {
        if (m_fault.isEmpty())
            m_fault = fault;
    }

private:
    const QCommandLineParser &m_parser;
    QString m_fault;
};

Options readOptions(Values &values, const QStringList &positional)
{
    Options options{
        .url = values.group(positional),
        .name = values.text(u"name"_s),
        .isJson = values.isSet(u"json"_s),
        .htmlFile = values.text(u"html"_s),
        .failOn = values.severity(u"fail-on"_s),
        .installDirectory = values.text(u"install"_s),
        .settingsFile = values.text(u"settings"_s),
        .isForced = values.isSet(u"force"_s),
        .jobs = values.number(u"jobs"_s, QThread::idealThreadCount(), MOST_JOBS),
        .timeout = std::chrono::seconds(values.number(u"timeout"_s, 60, LONGEST_TIMEOUT)),
        .only = values.text(u"only"_s),
        .isQuiet = values.isSet(u"quiet"_s)};
    if (options.name.isEmpty())
        options.name = options.url.path().section(u'/', -1, -1, QString::SectionSkipEmpty);
    if (options.name.contains(u'|'))
        values.fail(u"--name must not contain \"|\": the IDE's settings cannot hold it"_s);
    if (options.installDirectory.isEmpty() && (!options.settingsFile.isEmpty() || options.isForced))
        values.fail(u"--settings and --force go with --install only"_s);
    return options;
}

} // namespace

const QList<OptionText> &optionTexts()
{
    using enum OptionText::Value;
    static const QList<OptionText> TEXTS{
        {"name"_L1,
         {},
         Text,
         "NAME"_L1,
         "What users call the repository (the group)."_L1,
         "The name under which users configure the group: a word in each manifest, and the entry of the Welcome screen's combo box. By default the last part of the group's path."_L1},
        {"only"_L1,
         {},
         Text,
         "GLOB"_L1,
         "Check only projects whose path matches."_L1,
         "Downloads only the projects whose path matches the pattern (*, ?, [...]). The group and its list are looked at as a whole."_L1},
        {"fail-on"_L1,
         {},
         Severity,
         "SEVERITY"_L1,
         "Exit with 1 from here on: warning (default), error."_L1,
         "The least severity of a finding for which the exit code is 1: \"warning\", which is the default, or \"error\"."_L1},
        {"json"_L1,
         {},
         None,
         {},
         "Print the report as JSON."_L1,
         "Prints the whole report as one JSON object in place of the table. Its schema is installed beside the documentation; \"version\" grows when a key changes its meaning."_L1},
        {"html"_L1,
         {},
         File,
         "FILE"_L1,
         "Also write the report as a page."_L1,
         "Also writes the report as a page of its own, with the tiles as the Welcome screen shows them. It runs no script and asks for nothing."_L1},
        {"install"_L1,
         {},
         Directory,
         "DIR"_L1,
         "Lay the examples out in DIR as an IDE would."_L1,
         "Installs the examples in the directory as the plug-in does, and prints the settings that go with it. May be repeated and interrupted. The directory must be missing, empty, or hold such examples; one that belongs to the IDE takes --force."_L1},
        {"settings"_L1,
         {},
         File,
         "FILE"_L1,
         "With --install: write the settings there."_L1,
         "Writes the settings for --install into the file in place of printing them; what else is in it stays."_L1},
        {"force"_L1,
         {},
         None,
         {},
         "With --install: even into the IDE's directories."_L1,
         "With --install: also into the directories that the IDE of this user fills itself, and over what is no example."_L1},
        {"jobs"_L1,
         "j"_L1,
         Text,
         "N"_L1,
         "Downloads at a time; by default one a processor."_L1,
         "How many projects are downloaded at a time, from 1 to 64. By default as many as the machine has processors, as in the IDE."_L1},
        {"timeout"_L1,
         "t"_L1,
         Text,
         "SECONDS"_L1,
         "Give up on a request without a byte; 60."_L1,
         "How long a request may go without a byte before it fails. 60 by default; the IDE itself is more patient."_L1},
        {"quiet"_L1,
         "q"_L1,
         None,
         {},
         "Print findings only."_L1,
         "Prints findings only, and no progress."_L1},
        {"version"_L1, "v"_L1, None, {}, "Print the version."_L1, "Prints the version."_L1},
        {"help"_L1, "h"_L1, None, {}, "Print this help."_L1, "Prints a short help."_L1},
    };
    return TEXTS;
}

CommandLine parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Shows what IDEs with Varnel will make of a GitLab group: downloads and unpacks\n"
        "its projects as they do, in a temporary place, and says what is wrong.\n"
        "Exit code: 0 nothing to say, 1 findings, 2 could not check."_s);
    for (const OptionText &text : optionTexts())
        parser.addOption(optionFrom(text));
    parser.addPositionalArgument(u"URL"_s, u"The group's web address."_s, u"URL"_s);
    if (!parser.parse(arguments))
        return {.error = parser.errorText()};
    if (parser.isSet(u"help"_s))
        return {.output = helpText(parser)};
    if (parser.isSet(u"version"_s))
        return {.output = u"%1 %2\n"_s.arg(PROGRAM, QLatin1StringView(VARNEL_VERSION))};
    Values values(parser);
    const Options options = readOptions(values, parser.positionalArguments());
    if (!values.fault().isEmpty())
        return {.error = values.fault()};
    return {.options = options};
}

} // namespace Varnel::Check
