// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "faults/versions.h"

#include "common/ideenvironment.h"
#include "common/testfiles.h"

#include "server/demoserver.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>

namespace Varnel::Test {

namespace {

QByteArray text(int index, int version)
{
    return "example " + QByteArray::number(index) + " version " + QByteArray::number(version) + "\n";
}

QString repositoryRoot()
{
    return dataRoot() + '/' + REPOSITORY;
}

QString lastChecked(int daysAgo)
{
    return QString(REPOSITORY) + '|' + QDate::currentDate().addDays(-daysAgo).toString("dd.MM.yyyy");
}

// The version that the manifest speaks of, 0 with a fault if it is not the manifest of a whole example.
Installed manifestOf(const QString &directory, int index, Picture wanted)
{
    QFile file(directory + "/examples-manifest.xml");
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly))
        return {0, "there is no manifest"};
    if (!document.setContent(&file))
        return {0, "the manifest is not XML"};
    const QDomElement root = document.documentElement();
    const QDomElement example = root.firstChildElement("examples").firstChildElement("example");
    if (root.attribute("module") != REPOSITORY || example.attribute("name") != versionedName(index))
        return {0, "the manifest is another one's"};
    if (!QFile::exists(QDir(directory).absoluteFilePath(example.attribute("projectPath"))))
        return {0, "the manifest's project is not there: " + example.attribute("projectPath")};
    const QString picture = example.attribute("imageUrl");
    if (index % 2 == 0 && wanted == Picture::Required
        && (!picture.startsWith(directory + '/') || !QFile::exists(picture)))
        return {0, "the manifest's picture is not there: " + picture};
    return {example.firstChildElement("description").text().section(' ', -1).toInt(), {}};
}

} // namespace

QString versionedName(int index)
{
    return QString("sample-%1").arg(index, 2, 10, QChar(u'0'));
}

Demo::Project versionedProject(int index, int version, int files)
{
    Demo::Project project;
    project.id = 100 + index;
    project.path = project.name = versionedName(index);
    project.description = QString::fromLatin1(text(index, version)).trimmed();
    project.commits = version;
    project.lastActivityAt = QDateTime::currentDateTimeUtc();
    if (index % 2 == 0) {
        project.avatarFile = "picture.png";
        project.avatar = encodedPicture({64, 64});
    }
    project.tree.addFile("CMakeLists.txt", "project(sample) # " + text(index, version));
    for (int i = 1; i < files; ++i)
        project.tree.addFile("files/" + QByteArray::number(i) + ".txt", text(index, version).repeated(200));
    return project;
}

void publish(Demo::DemoServer *server, int count, int version, int files)
{
    for (int i = 0; i < count; ++i)
        server->gitlab().addProject(versionedProject(i, version, files));
}

Installed installed(int index, int files, Picture picture)
{
    const QString directory = repositoryRoot() + '/' + versionedName(index);
    if (!QFileInfo::exists(directory))
        return {};
    const Installed manifest = manifestOf(directory, index, picture);
    if (!manifest.fault.isEmpty())
        return manifest;

    const QByteArray expected = text(index, manifest.version);
    const QStringList names = entriesOf(directory + "/files");
    if (names.size() != files - 1)
        return {0, QString("%1 of %2 files").arg(names.size()).arg(files - 1)};
    if (!readFile(directory + "/CMakeLists.txt").endsWith(expected))
        return {0, "the project file is of another version than the manifest"};
    for (const QString &name : names) {
        if (readFile(directory + "/files/" + name) != expected.repeated(200))
            return {0, name + " is of another version than the manifest, or cut off"};
    }
    return manifest;
}

QStringList leftOvers(int count)
{
    QStringList entries = entriesOf(repositoryRoot());
    for (int i = 0; i < count; ++i)
        entries.removeOne(versionedName(i));
    return entries;
}

QStringList markedCopies()
{
    static const QRegularExpression MARK("@[0-9a-f]{32}\\z");
    return leftOvers(0).filter(MARK);
}

void writeSettings(const QString &groupUrl, int daysAgo)
{
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    settings.clear();
    settings.setValue("Varnel/Repositories", QStringList{QString(REPOSITORY) + '|' + groupUrl + '|'});
    settings.setValue("Varnel/UpdatesCheckedDate", QStringList{lastChecked(daysAgo)});
}

QString settingsFault(const QString &groupUrl, int daysAgo)
{
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QStringList repositories = settings.value("Varnel/Repositories").toStringList();
    const QStringList dates = settings.value("Varnel/UpdatesCheckedDate").toStringList();
    if (settings.status() != QSettings::NoError)
        return "the settings cannot be read";
    if (repositories.size() != 1 || !repositories.first().startsWith(QString(REPOSITORY) + '|' + groupUrl))
        return "the repositories are " + repositories.join(" and ");
    if (dates != QStringList{lastChecked(daysAgo)} && dates != QStringList{lastChecked(0)})
        return "the last checks are " + dates.join(" and ");
    return {};
}

QString settingsFileName()
{
    static const QString NAME = QDir::tempPath() + "/settings.ini"; // wherever that is later
    return NAME;
}

QStringList temporaryArchives()
{
    return QDir(QDir::tempPath()).entryList({"*.tar.gz*"}, QDir::Files);
}

} // namespace Varnel::Test
