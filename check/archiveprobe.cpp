// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "archiveprobe.h"

#include "samples.h"

#include "service/archivejudge.h"
#include "service/archivereader.h"
#include "service/placement.h"

#include <QSet>
#include <QTimeZone>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

using Internal::ArchiveEntry;
using Internal::PathTree;
using Node = PathTree::Node;

constexpr qint64 LARGE_ARCHIVE = 50'000'000; // bytes

using Visit = std::function<void(const QByteArray &path, const QByteArray &name, const Node &node)>;

void visitAll(const Node &parent, const QByteArray &parentPath, const Visit &visit)
{
    for (const auto &[name, node] : parent.children) {
        const QByteArray path = parentPath.isEmpty() ? name : QByteArray(parentPath + '/' + name);
        visit(path, name, *node);
        visitAll(*node, path, visit);
    }
}

bool isDeviceName(const QString &name)
{
    static const QSet<QString> DEVICES = [] {
        QSet<QString> names{u"con"_s, u"prn"_s, u"aux"_s, u"nul"_s};
        for (int number = 1; number <= 9; ++number) {
            names.insert(u"com%1"_s.arg(number));
            names.insert(u"lpt%1"_s.arg(number));
        }
        return names;
    }();
    return DEVICES.contains(name.section(u'.', 0, 0).toLower());
}

bool isPortable(const QByteArray &name)
{
    if (!name.isValidUtf8())
        return false;
    const QString text = QString::fromUtf8(name);
    const bool hasOddCharacter = std::ranges::any_of(text, [](QChar character) {
        return character < u' ' || character == u'\x7f' || u"<>:\"|?*\\"_s.contains(character);
    });
    return !hasOddCharacter && !text.endsWith(u'.') && !text.endsWith(u' ') && !isDeviceName(text);
}

QString caseOf(const QByteArray &name)
{
    return QString::fromUtf8(name).toCaseFolded();
}

// One for each name beyond the first that differs from another in case only.
void collectCases(const Node &directory, const QByteArray &path, Samples *samples)
{
    QHash<QString, QByteArray> seen;
    for (const auto &[name, node] : directory.children) {
        const QString folded = caseOf(name);
        if (seen.contains(folded))
            samples->add(QString::fromUtf8(path + '/' + seen.value(folded) + " and " + name));
        else
            seen.insert(folded, name);
    }
}

} // namespace

QDateTime commitTimeOf(const QByteArray &archive, const std::stop_token &stop)
{
    Internal::ArchiveReader reader(archive, stop);
    const std::optional<ArchiveEntry> entry = reader.nextEntry();
    return entry ? QDateTime::fromSecsSinceEpoch(entry->time, QTimeZone::UTC) : QDateTime();
}

Findings judgeArchive(const QString &path, qint64 size, const Internal::ArchiveVerdict &verdict)
{
    Findings findings;
    if (size > LARGE_ARCHIVE)
        findings.append(makeFinding("archive-large"_L1, path, u"it has %1 MB"_s.arg(size / 1'000'000)));
    if (!verdict.isAccepted) {
        findings.append(makeFinding("archive-refused"_L1, path, verdict.reason));
        return findings;
    }
    if (verdict.topDirectory.isEmpty())
        findings.append(makeFinding(
            "archive-scattered"_L1,
            path,
            u"%1 names are at the top"_s.arg(verdict.paths->root().children.size())));
    else if (!Internal::isNamedLikeCopy(verdict.topDirectory, path))
        findings.append(
            makeFinding("archive-foreign"_L1, path, u"the directory is \"%1\""_s.arg(verdict.topDirectory)));
    return findings;
}

Findings judgeNames(const QString &path, const PathTree &tree)
{
    Samples ignored;
    Samples cases;
    Samples unportable;
    collectCases(tree.root(), {}, &cases);
    visitAll(tree.root(), {}, [&](const QByteArray &nodePath, const QByteArray &name, const Node &node) {
        if (node.isLeftOut)
            ignored.add(QString::fromUtf8(nodePath));
        if (!isPortable(name))
            unportable.add(QString::fromUtf8(nodePath));
        collectCases(node, nodePath, &cases);
    });

    Findings findings;
    const auto add = [&](QLatin1StringView id, const Samples &samples) {
        if (!samples.isEmpty())
            findings.append(makeFinding(id, path, samples.text()));
    };
    add("manifest-ignored"_L1, ignored);
    add("name-case"_L1, cases);
    add("name-unportable"_L1, unportable);
    return findings;
}

} // namespace Varnel::Check
