// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "installation.h"

#include "filelock.h"

#include "plugin/constants.h"
#include "service/filesystem.h"
#include "service/manifest.h"
#include "service/placement.h"
#include "settings/encodings.h"
#include "settings/settings.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

using namespace Internal;

namespace {

constexpr char LOCK_FILE[] = ".varnel-check.lock";

// What the IDE of this user fills by itself: the directories of all repositories, settings, extensions.
QStringList directoriesOfIde()
{
    const auto below = [](QStandardPaths::StandardLocation location, QLatin1StringView path) {
        return QString(QStandardPaths::writableLocation(location) + path);
    };
    return {
        QFileInfo(Settings::location().arg(u"any"_s)).path(),
        below(QStandardPaths::GenericConfigLocation, "/QtProject"_L1),
        below(QStandardPaths::GenericDataLocation, "/data/QtProject"_L1),
        below(QStandardPaths::GenericCacheLocation, "/QtProject"_L1),
    };
}

// The path without links, also of what is not there yet.
QString realPath(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() || info.isRoot())
        return info.canonicalFilePath();
    return realPath(info.path()) + u'/' + info.fileName();
}

// The lowest first.
QStringList missingDirectories(const QString &directory)
{
    QStringList missing;
    for (QString path = directory; !QFileInfo::exists(path); path = QFileInfo(path).path())
        missing.append(path);
    return missing;
}

bool isOrHolds(const QString &directory, const QString &other)
{
    return other == directory || other.startsWith(directory.endsWith(u'/') ? directory : directory + u'/');
}

// Of two entries of one repository the IDE takes the first.
void replaceEntry(QSettings &settings, const QString &key, const QString &name, const QString &entry)
{
    QStringList entries = settings.value(key).toStringList();
    const auto old = std::ranges::find_if(
        entries, [&name](const QString &text) { return text.startsWith(name + u'|'); });
    if (old == entries.end())
        entries.append(entry);
    else
        *old = entry;
    settings.setValue(key, entries);
}

QString repositoriesKey()
{
    return QLatin1StringView(Constants::SETTINGS_GROUP) + u'/' + QLatin1StringView(Constants::REPOSITORIES);
}

} // namespace

Installation::Installation(const QString &directory, const QString &repositoryName, const QUrl &url)
    : m_directory(QDir::cleanPath(QFileInfo(directory).absoluteFilePath()))
    , m_repositoryName(repositoryName)
    , m_url(url)
{
}

Installation::~Installation()
{
    m_lock.reset();
    for (const QString &directory : std::as_const(m_new))
        QDir().rmdir(directory); // which takes an empty one only
}

QString Installation::open(bool isForced)
{
    if (!isForced && isWithinIde())
        return u"%1 belongs to the IDE: take another directory, or close the IDE and add --force"_s.arg(
            m_directory);
    if (m_directory.contains(u'|'))
        return u"the path of %1 contains \"|\", which the IDE's settings cannot hold"_s.arg(m_directory);
    m_new = missingDirectories(m_directory);
    if (!QDir().mkpath(m_directory))
        return u"%1 cannot be made"_s.arg(m_directory);
    m_lock = std::make_unique<FileLock>(m_directory + u'/' + QLatin1StringView(LOCK_FILE));
    switch (m_lock->state()) {
    case FileLock::State::Held:
        break;
    case FileLock::State::Taken:
        return u"another installation into %1 is under way"_s.arg(m_directory);
    case FileLock::State::Failed:
        return u"%1 cannot be written to"_s.arg(m_directory);
    }
    if (const QString foreign = foreignEntry(); !isForced && !foreign.isEmpty())
        return u"%1 holds \"%2\", which is no example of \"%3\" and could be lost: take an empty directory, or add --force"_s
            .arg(m_directory, foreign, m_repositoryName);
    for (const FileEntry &entry : allEntries(m_directory))
        m_before.insert(entry.name);
    return {};
}

void Installation::removeLeftOvers(const QStringList &paths) const
{
    const QStringList copies = findMarkedCopies(m_repositoryName, QSet(paths.cbegin(), paths.cend()));
    for (const QString &copy : copies)
        removeTree(copy);
}

void Installation::removeRemains(const QStringList &paths, const QSet<QString> &topNames) const
{
    removeLeftOvers(paths);
    for (const QString &name : topNames) {
        if (!m_before.contains(name)
            && !holdsManifest(exampleDirectory(m_repositoryName, name), m_repositoryName))
            removeTree(exampleDirectory(m_repositoryName, name));
    }
}

QString Installation::settingsText() const
{
    const auto quoted
        = [](QString text) { return u'"' + text.replace(u'\\', "\\\\"_L1).replace(u'"', "\\\""_L1) + u'"'; };
    QString text = u"[Help]\nInstalledExamples=%1\n"_s.arg(quoted(exampleEntry()));
    if (isPlaceOfIde())
        text += u"\n[Varnel]\nRepositories=%1\n"_s.arg(quoted(repositoryEntry()));
    return text;
}

bool Installation::writeSettings(const QString &file) const
{
    if (const QFileInfo info(file); info.exists() && !info.isFile())
        return false; // a device would be replaced
    QSettings settings(file, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError)
        return false;
    replaceEntry(
        settings, QLatin1StringView(Constants::INSTALLED_EXAMPLES), m_repositoryName, exampleEntry());
    if (isPlaceOfIde())
        replaceEntry(settings, repositoriesKey(), m_repositoryName, repositoryEntry());
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool Installation::isWithinIde() const
{
    const QString real = realPath(m_directory);
    const QStringList ideDirectories = directoriesOfIde();
    return std::ranges::any_of(ideDirectories, [&real](const QString &directory) {
        const QString ide = realPath(directory);
        return isOrHolds(ide, real) || isOrHolds(real, ide);
    });
}

// Only there does the plug-in of this user look: elsewhere it would turn the entry to its own directory.
bool Installation::isPlaceOfIde() const
{
    return realPath(m_directory) == realPath(QDir::cleanPath(Settings::location().arg(m_repositoryName)));
}

// The registration takes a directory that is named like an example for an old copy of it.
QString Installation::foreignEntry() const
{
    static const QString LOCK = QLatin1StringView(LOCK_FILE);
    const QList<FileEntry> entries = allEntries(m_directory);
    const auto foreign = std::ranges::find_if(entries, [this](const FileEntry &entry) {
        const bool isOurs = entry.isDirectory
                            && (holdsManifest(entry.path(), m_repositoryName) || endsInCommit(entry.name)
                                || isCopyName(entry.name));
        return !isOurs && entry.name != LOCK;
    });
    return foreign == entries.end() ? QString() : foreign->name;
}

QString Installation::exampleEntry() const
{
    return u"%1|%2|%2"_s.arg(m_repositoryName, m_directory);
}

QString Installation::repositoryEntry() const
{
    Settings::RepositoryInfo info;
    info.url = m_url;
    return toStringList({{m_repositoryName, info}}).constFirst();
}

} // namespace Varnel::Check
