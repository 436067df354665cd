// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/testfiles.h"

#include <QBuffer>
#include <QImage>

namespace Varnel::Test {

using Internal::Repository;

QByteArray encodedPicture(const QSize &size, const char *format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format))
        qFatal("cannot encode %s", format);
    return bytes;
}

QJsonObject projectObject(const QString &path, const QJsonObject &changes)
{
    QJsonObject project{
        {"id", 42},
        {"path", path},
        {"name", "Title of " + path},
        {"description", "About " + path},
        {"web_url", "http://127.0.0.1/samples/" + path},
        {"last_activity_at", "2023-05-04T10:11:12.345Z"}};
    for (auto it = changes.begin(); it != changes.end(); ++it)
        project.insert(it.key(), it.value());
    return project;
}

Repository::ExamplePtr makeExample(const QString &path, const QJsonObject &changes)
{
    return Repository::ExamplePtr::create(projectObject(path, changes));
}

Repository::Examples makeExamples(const QStringList &paths)
{
    Repository::Examples examples;
    for (const QString &path : paths)
        examples.append(makeExample(path));
    return examples;
}

} // namespace Varnel::Test
