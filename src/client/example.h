// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QJsonObject>
#include <QMutex>
#include <QStringList>

namespace Varnel::Internal {

/**
 * One project of a repository: the object that the server sent, and the two payloads that are downloaded
 * later. The object never changes and is read from any thread; each payload has a lock of its own, so that a
 * reader sees it whole. Handed around as Repository::ExamplePtr, never copied.
 */
class Example final
{
public:
    explicit Example(const QJsonObject &project);
    Q_DISABLE_COPY_MOVE(Example)

    /** The project as the server sent it, for what has no accessor of its own. */
    [[nodiscard]] const QJsonObject &project() const { return m_project; }

    /** The project's path: the key for selections, directories and manifests. */
    [[nodiscard]] QString name() const;
    /** The project's title, for display only. */
    [[nodiscard]] QString displayName() const;
    /** Never empty: a project without tags gets two default ones. */
    [[nodiscard]] QStringList tags() const;
    /** True if there are a number, a title and a web address; the path is not looked at. */
    [[nodiscard]] bool isValid() const;
    /** Invalid if absent or malformed. */
    [[nodiscard]] QDateTime lastActivity() const;

    /** The archive, empty until it is downloaded. */
    [[nodiscard]] QByteArray data() const;
    void setData(const QByteArray &data);

    /** The picture, at most 128 x 128 pixels; null until it is downloaded, or if it cannot be decoded. */
    [[nodiscard]] QImage image() const;
    /** Takes an encoded picture, see decodePicture(). */
    void setImage(const QByteArray &bytes);

private:
    const QJsonObject m_project;
    QByteArray m_data;
    mutable QMutex m_dataLock;
    QImage m_image;
    mutable QMutex m_imageLock;
};

QDebug operator<<(QDebug debug, const Example &example);

} // namespace Varnel::Internal
