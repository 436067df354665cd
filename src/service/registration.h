// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"
#include "service/projectfiles.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

QT_BEGIN_NAMESPACE
class QImage;
QT_END_NAMESPACE

namespace Varnel::Internal {

class Manifest;

/** An example's picture as it is written to the disk. Encoding takes most of a registration's time. */
struct EncodedPicture
{
    qint64 imageKey = 0; ///< QImage::cacheKey() of the picture
    QByteArray bytes = {};
};

/** For any thread. */
[[nodiscard]] EncodedPicture encodePicture(const QImage &image);

/** What unpacking an archive has left for the registration. */
struct UnpackedCopy
{
    /**
     * The archive's top directory is not named after the example. So only a directory of exactly the
     * example's path counts as its copy: what begins like it is somebody else's.
     */
    bool isPathOnly = false;
    QString directory = {}; ///< full path of the newest copy, if its project has been looked through
    ProjectFiles files = {};
    EncodedPicture picture = {}; ///< of the example, as it was then
};

/** What a registration needs beside its example. */
struct RegistrationContext
{
    QString repositoryName;
    Repository::Examples listed; ///< the repository's examples
    QStringList repositoryNames; ///< of all configured repositories
    UnpackedCopy copy = {};      ///< if it is empty, the registration looks on the disk
    /** Removes a directory of a name that only a copy has; may return before it is gone. */
    std::function<void(const QString &)> removeCopy;
    /** True for a copy that is being removed. */
    std::function<bool(const QString &)> isBeingRemoved;
};

/**
 * Makes an installed example of the newest unpacked copy. Manifest and picture are written before the copy
 * takes the example's place, so that a process killed at any moment leaves the old example, none, or the new
 * one whole. What is wrong with the project or the template is told in debug lines. Main thread.
 */
class Registration final
{
public:
    Registration(const Repository::ExamplePtr &example, const RegistrationContext &context);

    /**
     * False if it failed. Then no directory of the example is left, but what is another repository's or a
     * file of the user's.
     */
    [[nodiscard]] bool run();

private:
    [[nodiscard]] QStringList findCopies() const;
    [[nodiscard]] bool placeAndWrite(const QStringList &copies);
    [[nodiscard]] bool write(const QString &directory);
    [[nodiscard]] ProjectFiles projectFiles(const QString &directory) const;
    [[nodiscard]] QByteArray encoded(const QImage &image) const;
    void writeImage(const QString &directory, const QString &icon, Manifest *manifest);
    [[nodiscard]] QString iconUrl(const QString &directory, const QString &icon) const;
    [[nodiscard]] bool isNeighbour(const QString &name) const;
    void removeCopies(const QStringList &names);
    void removeFailed(const QStringList &copies);
    void removeMarkedCopies();
    void removeAside(const QString &directory);

    const Repository::ExamplePtr m_example;
    const RegistrationContext m_context;
    const QString m_path;
    const QString m_directory; // where the example is in the end
};

} // namespace Varnel::Internal
