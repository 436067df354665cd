// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/example.h"

#include "client/picture.h"

#include <QDebug>
#include <QJsonArray>
#include <QObject>

namespace Varnel::Internal {

namespace {

constexpr int IMAGE_SIZE = 128; // pixels, the Welcome screen's tiles show no more

} // namespace

Example::Example(const QJsonObject &project)
    : m_project(project)
{
}

QString Example::name() const
{
    return m_project.value(u"path").toString();
}

QString Example::displayName() const
{
    return m_project.value(u"name").toString();
}

QStringList Example::tags() const
{
    QStringList result;
    const QJsonArray tags = m_project.value(u"tag_list").toArray();
    for (const QJsonValue tag : tags)
        result.append(tag.toString());
    if (result.isEmpty())
        return {QStringLiteral("Qt"), QObject::tr("example")};
    return result;
}

bool Example::isValid() const
{
    return m_project.value(u"id").toDouble() != 0 && !m_project.value(u"name").toString().isEmpty()
           && !m_project.value(u"web_url").toString().isEmpty();
}

QDateTime Example::lastActivity() const
{
    return QDateTime::fromString(m_project.value(u"last_activity_at").toString(), Qt::ISODate);
}

QByteArray Example::data() const
{
    const QMutexLocker locker(&m_dataLock);
    return m_data;
}

void Example::setData(const QByteArray &data)
{
    const QMutexLocker locker(&m_dataLock);
    m_data = data;
}

QImage Example::image() const
{
    const QMutexLocker locker(&m_imageLock);
    return m_image;
}

void Example::setImage(const QByteArray &bytes)
{
    QImage image = decodePicture(bytes);
    if (!image.isNull()) // the scaling of a null image warns
        image = image.scaled(IMAGE_SIZE, IMAGE_SIZE, Qt::KeepAspectRatio, Qt::FastTransformation);
    image.setText(
        QObject::tr("Description"),
        QObject::tr("This file is used by SDK to show image for example inside Welcome screen.\n"
                    "It is not the part of the example."));

    const QMutexLocker locker(&m_imageLock);
    m_image = image;
}

QDebug operator<<(QDebug debug, const Example &example)
{
    return debug << example.project().toVariantMap();
}

} // namespace Varnel::Internal
