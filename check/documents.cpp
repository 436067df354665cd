// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "documents.h"

#include "finding.h"
#include "options.h"

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr char DESCRIPTION[] = R"(
Downloads and unpacks the projects of a public GitLab group the way that an IDE with Varnel does it, with the same code,
in a temporary place, and says what users will see: which group is found, which projects are listed, what each archive
holds, which file is opened, which picture is shown, and what keeps an example from being installed. It needs no running
IDE, sends no password or token and runs nothing that it has downloaded.

Each finding names what it is to the users and what can be done. Texts of the server are shown with control characters
and marks that turn the writing round written out, as \u{202e}.
)";

constexpr char EXAMPLES[] = R"(
What would users see?
> varnel-check https://gitlab.example.org/examples

The same as a page, and nothing on the terminal but findings:
> varnel-check --quiet --html report.html https://gitlab.example.org/examples

Examples for all users of a class room, with the settings that show them:
> varnel-check --install /opt/examples --settings QtCreator.ini https://gitlab.example.org/examples
)";

QString roffText(QString text)
{
    text.replace(u'\\', "\\e"_L1).replace(u'-', "\\-"_L1);
    return text.startsWith(u'.') || text.startsWith(u'\'') ? u"\\&"_s + text : text;
}

QString roffParagraphs(const char *text)
{
    QString result;
    const QStringList lines = QString::fromLatin1(text).trimmed().split(u'\n');
    for (const QString &line : lines) {
        if (line.isEmpty())
            result += u".PP\n"_s;
        else if (line.startsWith(u"> "_s))
            result += u".RS\n.B "_s + roffText(line.sliced(2)) + u"\n.RE\n"_s;
        else
            result += roffText(line) + u'\n';
    }
    return result;
}

QString roffOption(const OptionText &option)
{
    QString names = u"\\fB\\-\\-"_s + roffText(option.name) + u"\\fR"_s;
    if (!option.letter.isEmpty())
        names = u"\\fB\\-"_s + option.letter + u"\\fR, "_s + names;
    if (!option.valueName.isEmpty())
        names += u" \\fI"_s + roffText(option.valueName) + u"\\fR"_s;
    return u".TP\n"_s + names + u'\n' + roffText(option.details) + u'\n';
}

QString roffFinding(const FindingKind &kind)
{
    return u".TP\n\\fB"_s + roffText(kind.id) + u"\\fR ("_s + severityName(kind.severity) + u")\n"_s
           + roffText(kind.meaning) + u' ' + roffText(kind.advice) + u'\n';
}

QString shellQuoted(QString text)
{
    return u'\'' + text.replace(u'\'', "'\\''"_L1) + u'\'';
}

// Of a file the shells know the names themselves.
QString zshValue(const OptionText &option)
{
    switch (option.value) {
    case OptionText::Value::None:
        return {};
    case OptionText::Value::File:
        return u":%1:_files"_s.arg(option.valueName);
    case OptionText::Value::Directory:
        return u":%1:_files -/"_s.arg(option.valueName);
    case OptionText::Value::Severity:
        return u":%1:(warning error)"_s.arg(option.valueName);
    case OptionText::Value::Text:
        break;
    }
    return u":%1:"_s.arg(option.valueName);
}

QString zshHelp(const OptionText &option)
{
    QString help = option.help;
    return help.remove(u'[').remove(u']').replace(u':', "\\:"_L1);
}

QString fishValue(const OptionText &option)
{
    switch (option.value) {
    case OptionText::Value::None:
        return {};
    case OptionText::Value::File:
        return u" -r -F"_s;
    case OptionText::Value::Directory:
        return u" -x -a '(__fish_complete_directories)'"_s;
    case OptionText::Value::Severity:
        return u" -x -a 'warning error'"_s;
    case OptionText::Value::Text:
        break;
    }
    return u" -x"_s;
}

QString header(const QString &comment)
{
    return comment + u" Completion for "_s + PROGRAM + u", made of its table of options.\n"_s;
}

QStringList namesOf(const OptionText &option)
{
    QStringList names{u"--"_s + option.name};
    if (!option.letter.isEmpty())
        names.append(u"-"_s + option.letter);
    return names;
}

// The names of all options with such a value, as a pattern of bash.
QString bashPattern(OptionText::Value value)
{
    QStringList names;
    for (const OptionText &option : optionTexts()) {
        if (option.value == value)
            names += namesOf(option);
    }
    return names.join(u'|');
}

} // namespace

QString manualPage()
{
    QString options;
    for (const OptionText &option : optionTexts())
        options += roffOption(option);
    QString findings;
    for (const FindingKind &kind : findingKinds())
        findings += roffFinding(kind);
    return u".TH VARNEL\\-CHECK 1 \"\" \"Varnel "_s + QLatin1StringView(VARNEL_VERSION) + u"\"\n"_s
           + u".SH NAME\nvarnel\\-check \\- show what IDEs make of a group of examples\n"_s
           + u".SH SYNOPSIS\n.B varnel\\-check\n[\\fIoptions\\fR] \\fIURL\\fR\n"_s + u".SH DESCRIPTION\n"_s
           + roffParagraphs(DESCRIPTION) + u".SH OPTIONS\n"_s + options + u".SH EXIT STATUS\n"_s
           + u".TP\n.B 0\nThere is nothing to say.\n"_s
           + u".TP\n.B 1\nThere are findings, at least as severe as \\fB\\-\\-fail\\-on\\fR says.\n"_s
           + u".TP\n.B 2\nThe group could not be checked, or something could not be written.\n"_s
           + u".TP\n.B 130\nIt was interrupted; nothing is left behind.\n"_s + u".SH FINDINGS\n"_s + findings
           + u".SH EXAMPLES\n"_s + roffParagraphs(EXAMPLES);
}

QString bashCompletion()
{
    using enum OptionText::Value;
    QStringList names;
    for (const OptionText &option : optionTexts())
        names += namesOf(option);
    return header(u"#"_s)
           + u"_varnel_check() {\n"
             "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
             "    case $before in\n"_s
           + u"        "_s + bashPattern(File) + u") compopt -o default; COMPREPLY=(); return ;;\n"_s
           + u"        "_s + bashPattern(Directory)
           + u") mapfile -t COMPREPLY < <(compgen -d -- \"$word\"); return ;;\n"_s + u"        "_s
           + bashPattern(Severity)
           + u") mapfile -t COMPREPLY < <(compgen -W 'warning error' -- \"$word\"); return ;;\n"_s
           + u"        "_s + bashPattern(Text) + u") COMPREPLY=(); return ;;\n"_s + u"    esac\n"_s
           + u"    mapfile -t COMPREPLY < <(compgen -W '"_s + names.join(u' ') + u"' -- \"$word\")\n}\n"_s
           + u"complete -F _varnel_check varnel-check\n"_s;
}

QString zshCompletion()
{
    QString text = u"#compdef varnel-check\n"_s + header(u"#"_s) + u"_arguments -s \\\n"_s;
    for (const OptionText &option : optionTexts()) {
        const QStringList names = namesOf(option);
        const QString help = u'[' + zshHelp(option) + u']' + zshValue(option);
        for (const QString &name : names)
            text += u"    "_s + shellQuoted(u'(' + names.join(u' ') + u')' + name + help) + u" \\\n"_s;
    }
    return text + u"    '1:URL:_urls'\n"_s;
}

QString fishCompletion()
{
    QString text = header(u"#"_s) + u"complete -c varnel-check -f\n"_s;
    for (const OptionText &option : optionTexts()) {
        text += u"complete -c varnel-check -l "_s + option.name;
        if (!option.letter.isEmpty())
            text += u" -s "_s + option.letter;
        text += fishValue(option) + u" -d "_s + shellQuoted(option.help) + u'\n';
    }
    return text;
}

} // namespace Varnel::Check
