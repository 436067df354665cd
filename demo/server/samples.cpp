// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "server/samples.h"

#include "server/picture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;

namespace Varnel::Demo {

namespace {

constexpr char DESCRIPTION_FILE[] = "project.json";
constexpr char CONTENT_FOLDER[] = "files";

/** Takes values out of a description; the first one that is missing or of a wrong kind is remembered. */
class Reader final
{
public:
    explicit Reader(const QJsonObject &object)
        : m_object(object)
    {
    }

    QJsonValue take(const QString &key, QJsonValue::Type type, bool isNeeded)
    {
        const QJsonValue value = m_object.take(key);
        if (value.isUndefined() ? isNeeded : value.type() != type)
            fail(
                value.isUndefined() ? u"\"%1\" is missing"_s.arg(key)
                                    : u"\"%1\" is of a wrong kind"_s.arg(key));
        return value;
    }

    QString text(const QString &key) { return take(key, QJsonValue::String, true).toString(); }
    QString optionalText(const QString &key) { return take(key, QJsonValue::String, false).toString(); }

    QDateTime time(const QString &key)
    {
        const QString value = text(key);
        const QDateTime result = QDateTime::fromString(value, Qt::ISODateWithMs);
        if (!result.isValid())
            fail(u"\"%1\" is not a time: \"%2\""_s.arg(key, value));
        return result;
    }

    QStringList texts(const QString &key)
    {
        const QJsonArray values = take(key, QJsonValue::Array, false).toArray();
        QStringList result;
        for (const auto &value : values)
            result.append(value.toString());
        return result;
    }

    Tile tile(const QString &key, const QJsonValue &value, int size)
    {
        Reader reader(value.toObject());
        const Tile result{
            .text = reader.text(u"text"_s), .colour = QColor(reader.text(u"colour"_s)), .size = size};
        if (!reader.error().isEmpty() || !result.colour.isValid())
            fail(u"\"%1\" needs a \"text\" and a \"colour\""_s.arg(key));
        return result;
    }

    /** Complains about what nothing has taken, which is misspelt then. */
    void finish()
    {
        if (!m_object.isEmpty())
            fail(u"\"%1\" means nothing"_s.arg(m_object.keys().constFirst()));
    }

    [[nodiscard]] const QString &error() const { return m_error; }

private:
    void fail(const QString &error)
    {
        if (m_error.isEmpty())
            m_error = error;
    }

    QJsonObject m_object;
    QString m_error;
};

QString readDescription(const QJsonObject &object, Project &project)
{
    constexpr int AVATAR_SIZE = 256; // pixels
    constexpr int ICON_SIZE = 128;   // pixels

    Reader reader(object);
    project.id = reader.take(u"id"_s, QJsonValue::Double, true).toInteger();
    project.name = reader.text(u"title"_s);
    project.description = reader.optionalText(u"description"_s);
    project.topics = reader.texts(u"topics"_s);
    project.branch = reader.text(u"branch"_s);
    project.createdAt = reader.time(u"created"_s);
    project.commitTime = reader.time(u"commit"_s);
    project.lastActivityAt = reader.time(u"activity"_s);
    project.isEmpty = reader.take(u"empty"_s, QJsonValue::Bool, false).toBool();
    if (const QJsonValue avatar = reader.take(u"avatar"_s, QJsonValue::Object, false); avatar.isObject()) {
        project.avatarFile = u"logo.png"_s;
        project.avatar = paint(reader.tile(u"avatar"_s, avatar, AVATAR_SIZE));
    }
    const QJsonObject icons = reader.take(u"icons"_s, QJsonValue::Object, false).toObject();
    for (auto it = icons.begin(); it != icons.end(); ++it)
        project.tree.addFile(it.key().toUtf8(), paint(reader.tile(it.key(), it.value(), ICON_SIZE)));
    reader.finish();
    return reader.error();
}

QString readProject(const QDir &folder, Project &project)
{
    QFile file(folder.filePath(QLatin1StringView(DESCRIPTION_FILE)));
    if (!file.open(QIODevice::ReadOnly))
        return u"%1: %2"_s.arg(file.fileName(), file.errorString());
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &problem);
    if (problem.error != QJsonParseError::NoError)
        return u"%1: %2, at byte %3"_s.arg(file.fileName(), problem.errorString()).arg(problem.offset);
    if (const QString error = readDescription(document.object(), project); !error.isEmpty())
        return u"%1: %2"_s.arg(file.fileName(), error);

    project.path = folder.dirName();
    return project.isEmpty
               ? QString()
               : project.tree.addFrom(folder.filePath(QLatin1StringView(CONTENT_FOLDER))).value_or(QString());
}

} // namespace

Samples readSamples(const QString &folder)
{
    const QDir dir(folder);
    if (!dir.exists())
        return {{}, u"%1: there is no such folder"_s.arg(folder)};

    Samples samples;
    QSet<qint64> ids;
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        Project project;
        samples.error = readProject(QDir(dir.filePath(name)), project);
        if (samples.error.isEmpty() && ids.contains(project.id))
            samples.error
                = u"%1: another project, too, has the id %2"_s.arg(dir.filePath(name)).arg(project.id);
        if (!samples.error.isEmpty())
            return samples;
        ids.insert(project.id);
        samples.projects.append(project);
    }
    if (samples.projects.isEmpty())
        samples.error = u"%1: there is no project in this folder"_s.arg(folder);
    return samples;
}

} // namespace Varnel::Demo
