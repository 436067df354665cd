// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "htmlreport.h"

#include "visibletext.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr char STYLE[] = R"(
:root { color-scheme: light dark; --back: #ffffff; --card: #f3f4f6; --line: #d1d5db; --text: #1f2328; --faint: #57606a;
  --error: #b42318; --warning: #8a5a00; --good: #1a7f37; }
@media (prefers-color-scheme: dark) { :root { --back: #1b1d20; --card: #26292e; --line: #3d4249; --text: #e6e8eb;
  --faint: #a3abb5; --error: #ff8a80; --warning: #f2c14e; --good: #6fd08c; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 2rem 1.5rem; max-width: 72rem; background: var(--back); color: var(--text);
  font: 16px/1.5 system-ui, "DejaVu Sans", sans-serif; }
h1 { font-size: 1.5rem; margin: 0; }
h2 { font-size: 1.1rem; margin: 2rem 0 .75rem; }
p { margin: .25rem 0; overflow-wrap: anywhere; }
.faint { color: var(--faint); }
.example { display: grid; grid-template-columns: 13rem minmax(0, 1fr); gap: 1.5rem; padding: 1.25rem 0;
  border-top: 1px solid var(--line); }
.tile { background: var(--card); border: 1px solid var(--line); border-radius: 6px; padding: 1rem; align-self: start; }
.tile.fails { opacity: .55; border-style: dashed; }
.picture { height: 8rem; display: grid; place-items: center; margin-bottom: .75rem; color: var(--faint);
  background: var(--back); border-radius: 4px; }
.picture img { max-width: 8rem; max-height: 8rem; }
.title { font-weight: 600; overflow-wrap: anywhere; }
.tag { display: inline-block; font-size: .8rem; border: 1px solid var(--line); border-radius: 1rem; padding: 0 .5rem;
  margin: .25rem .25rem 0 0; overflow-wrap: anywhere; max-width: 100%; }
dl { display: grid; grid-template-columns: 8rem minmax(0, 1fr); gap: .1rem 1rem; margin: 0; font-size: .9rem; }
dt { color: var(--faint); }
dd { margin: 0; overflow-wrap: anywhere; }
.finding { border-left: 4px solid var(--warning); padding: .1rem 0 .1rem .75rem; margin: .9rem 0; }
.finding.error { border-color: var(--error); }
.finding b { color: var(--warning); }
.finding.error b { color: var(--error); }
.good { color: var(--good); font-weight: 600; }
.bad { color: var(--error); font-weight: 600; }
@media (max-width: 40rem) { .example { grid-template-columns: minmax(0, 1fr); } }
@media print { body { padding: 0; } .example { break-inside: avoid; } }
)";

QString element(const QString &name, const QString &className, const QString &markup)
{
    const QString attribute = className.isEmpty() ? QString() : u" class=\"%1\""_s.arg(className);
    return u'<' + name + attribute + u'>' + markup + u"</"_s + name + u">\n"_s;
}

// Writing from right to left stays within its own text.
QString isolated(const QString &text)
{
    return u"<bdi>"_s + visibleMarkup(shown(text)) + u"</bdi>"_s;
}

QString findingMarkup(const Finding &finding)
{
    const QString severity = severityName(finding.kind->severity);
    QString markup = element(
        u"p"_s,
        {},
        u"<b>"_s + severity + u"</b> "_s + visibleMarkup(finding.kind->meaning)
            + u" <span class=\"faint\">["_s + finding.kind->id + u"]</span>"_s);
    markup += element(u"p"_s, {}, isolated(finding.text));
    if (finding.request)
        markup += element(u"p"_s, u"faint"_s, isolated(describe(*finding.request)));
    markup += element(u"p"_s, {}, u"What to do: "_s + visibleMarkup(finding.kind->advice));
    return element(u"div"_s, u"finding "_s + severity, markup);
}

QString findingsMarkup(const Findings &findings)
{
    QString markup;
    for (const Finding &finding : findings)
        markup += findingMarkup(finding);
    return markup;
}

QString tileMarkup(const ExampleReport &example)
{
    const QString picture = example.picture.png.isEmpty()
                                ? u"<span>no picture</span>"_s
                                : u"<img alt=\"\" src=\"data:image/png;base64,"_s
                                      + QString::fromLatin1(example.picture.png.toBase64()) + u"\">"_s;
    QString tags;
    for (const QString &tag : example.tags)
        tags += element(u"span"_s, u"tag"_s, isolated(tag));
    const QString markup = element(u"div"_s, u"picture"_s, picture)
                           + element(u"div"_s, u"title"_s, isolated(example.title))
                           + element(u"div"_s, {}, tags);
    return element(u"div"_s, example.manifest ? u"tile"_s : u"tile fails"_s, markup);
}

QString fact(const QString &name, const QString &text)
{
    if (text.isEmpty())
        return {};
    return element(u"dt"_s, {}, visibleMarkup(name)) + element(u"dd"_s, {}, isolated(text));
}

QString archiveText(const ArchiveReport &archive)
{
    QString text = QLocale::c().formattedDataSize(archive.size, 1, QLocale::DataSizeSIFormat);
    if (archive.isAccepted)
        text += u", %1 entries"_s.arg(archive.entries);
    if (archive.commitTime.isValid())
        text += u", commit of "_s + archive.commitTime.toString(Qt::ISODate);
    return text;
}

QString pictureText(const PictureReport &picture)
{
    if (picture.source == PictureSource::None)
        return u"none"_s;
    const QString kind = picture.source == PictureSource::Avatar ? u"avatar"_s : u"icon"_s;
    const QString size = picture.size.isEmpty()
                             ? u"cannot be decoded"_s
                             : u"%1 x %2 pixels"_s.arg(picture.size.width()).arg(picture.size.height());
    return u"%1, %2, from %3"_s.arg(kind, size, picture.place);
}

QString factsMarkup(const ExampleReport &example)
{
    QString facts = fact(u"Path"_s, example.path) + fact(u"Description"_s, example.description)
                    + fact(u"Last activity"_s, example.lastActivity.toString(Qt::ISODate));
    if (example.archive)
        facts += fact(u"Archive"_s, archiveText(*example.archive))
                 + fact(u"Top directory"_s, example.archive->topDirectory);
    facts += fact(u"Picture"_s, pictureText(example.picture));
    if (example.manifest)
        facts += fact(u"Project file"_s, example.manifest->projectPath)
                 + fact(u"Opens"_s, example.manifest->fileToOpen);
    return element(u"dl"_s, {}, facts);
}

QString exampleMarkup(const ExampleReport &example, const Findings &findings)
{
    const QString result = example.manifest ? element(u"p"_s, u"good"_s, u"Installs"_s)
                                            : element(u"p"_s, u"bad"_s, u"Does not install"_s);
    return element(
        u"section"_s,
        u"example"_s,
        tileMarkup(example)
            + element(u"div"_s, {}, result + factsMarkup(example) + findingsMarkup(findings)));
}

QString headMarkup(const Report &report)
{
    const QString title = visibleMarkup(report.repositoryName) + u" in the IDE"_s;
    return u"<head>\n<meta charset=\"utf-8\">\n"_s
           // Should anything of the server's get through all the same, it is neither run nor asked for.
           + u"<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; style-src 'unsafe-inline'\">\n"_s
           + u"<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"_s
           + element(u"title"_s, {}, title) + element(u"style"_s, {}, QString::fromLatin1(STYLE))
           + u"</head>\n"_s;
}

QString groupMarkup(const Report &report, const Findings &findings)
{
    QString markup = element(u"h1"_s, {}, isolated(report.repositoryName));
    markup += element(u"p"_s, u"faint"_s, isolated(report.url.toDisplayString()));
    if (const QString group = report.groupText(); !group.isEmpty())
        markup += element(u"p"_s, {}, isolated(group));
    markup += report.isComplete
                  ? element(
                        u"p"_s,
                        {},
                        u"%1 of %2 examples install; "_s.arg(report.installable()).arg(report.examples.size())
                            + report.counts() + u'.')
                  : element(u"p"_s, u"bad"_s, u"The group could not be checked."_s);
    return element(u"header"_s, {}, markup + findingsMarkup(findings));
}

} // namespace

QString htmlReport(const Report &report)
{
    const QHash<QString, Findings> findings = report.findingsBySubject();
    QString body = groupMarkup(report, findings.value({}));
    if (!report.examples.isEmpty())
        body += element(u"h2"_s, {}, u"Examples, as the Welcome screen shows them"_s);
    for (const ExampleReport &example : report.examples) {
        // Without a path its findings are among the group's.
        body += exampleMarkup(example, example.path.isEmpty() ? Findings() : findings.value(example.path));
    }
    return u"<!DOCTYPE html>\n<html lang=\"en\">\n"_s + headMarkup(report)
           + element(u"body"_s, {}, element(u"main"_s, {}, body)) + u"</html>\n"_s;
}

} // namespace Varnel::Check
