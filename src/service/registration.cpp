// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/registration.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/filesystem.h"
#include "service/manifest.h"
#include "service/nativefiles.h"
#include "service/placement.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Varnel::Internal {

namespace {

const QString ICON_NAME = QString::fromUtf8(Constants::PICTURE_FILE);
constexpr char16_t NO_IMAGE[] = u"dummy.png"; // resolved by the IDE

// What is neither is the user's own.
bool isNeitherDirectoryNorLink(const QFileInfo &info)
{
    return info.exists() && !info.isDir() && !info.isSymLink();
}

} // namespace

EncodedPicture encodePicture(const QImage &image)
{
    EncodedPicture result{.imageKey = image.cacheKey()};
    QBuffer buffer(&result.bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.isNull())
        image.save(&buffer, "png");
    return result;
}

Registration::Registration(const Repository::ExamplePtr &example, const RegistrationContext &context)
    : m_example(example)
    , m_context(context)
    , m_path(example->name())
    , m_directory(exampleDirectory(context.repositoryName, m_path))
{
}

bool Registration::run()
{
    if (!isPlainName(m_path))
        return false;
    if (holdsRepository(m_directory, m_context.repositoryNames)) {
        removeMarkedCopies();
        return false;
    }
    const QStringList copies = findCopies();
    if (placeAndWrite(copies))
        return true;
    removeFailed(copies);
    return false;
}

QStringList Registration::findCopies() const
{
    if (m_context.copy.isPathOnly)
        return QFileInfo(m_directory).isDir() ? QStringList{m_path} : QStringList();
    QStringList copies = findDirNames(m_context.repositoryName, m_path, m_context.listed);
    copies.removeIf([this](const QString &name) {
        const QString directory = exampleDirectory(m_context.repositoryName, name);
        return m_context.isBeingRemoved(directory) || holdsRepository(directory, m_context.repositoryNames);
    });
    return copies;
}

bool Registration::placeAndWrite(const QStringList &copies)
{
    const QFileInfo place(m_directory);
    if (place.isSymLink() || isNeitherDirectoryNorLink(place)) {
        qCDebug(Log::service) << "Example directory is none:" << m_directory;
        return false;
    }
    if (copies.isEmpty() || copies.constLast() == m_path) {
        removeCopies(copies);
        return write(m_directory);
    }
    const QString newest = exampleDirectory(m_context.repositoryName, copies.constLast());
    const QString aside = exampleDirectory(m_context.repositoryName, newCopyName(m_path));
    if (!write(newest) || !exchange(newest, m_directory, aside))
        return false;
    // What the example was before now has the copy's name.
    removeAside(newest);
    removeCopies(copies.first(copies.size() - 1));
    return true;
}

bool Registration::write(const QString &directory)
{
    if (QFileInfo(directory).isSymLink()) {
        qCDebug(Log::service) << "Example directory is a link:" << directory;
        return false;
    }
    std::optional<Manifest> manifest = Manifest::fromTemplate(m_context.repositoryName);
    if (!manifest)
        return false;
    manifest->setName(m_example->displayName());

    const ProjectFiles files = projectFiles(directory);
    if (files.project.isEmpty()) {
        qCDebug(Log::service) << "Project file not found";
        return false;
    }
    manifest->setProjectPath(files.project);
    writeImage(directory, files.icon, &*manifest);
    manifest->setDescription(m_example->project().value(u"description").toString());
    manifest->setTags(m_example->tags());
    manifest->setFileToOpen(files.fileToOpen);

    const QString fileName = QString::fromUtf8(Constants::MANIFEST_FILE);
    if (writeFileInto(directory, fileName, manifest->toByteArray()))
        return true;
    qCDebug(Log::service) << "Unable to save manifest:" << QString(m_directory + u'/' + fileName);
    return false;
}

ProjectFiles Registration::projectFiles(const QString &directory) const
{
    return m_context.copy.directory == directory ? m_context.copy.files : findProjectFiles(directory);
}

QByteArray Registration::encoded(const QImage &image) const
{
    const EncodedPicture &picture = m_context.copy.picture;
    return picture.imageKey == image.cacheKey() ? picture.bytes : encodePicture(image).bytes;
}

// A picture that cannot be written is left out; the example is installed all the same.
void Registration::writeImage(const QString &directory, const QString &icon, Manifest *manifest)
{
    const QImage image = m_example->image();
    if (image.isNull()) {
        qCDebug(Log::service) << "Repository contains no image for example:" << m_example->displayName();
        manifest->setImageUrl(iconUrl(directory, icon));
        return;
    }
    manifest->setImageUrl(m_directory + u'/' + ICON_NAME);
    writeFileInto(directory, ICON_NAME, encoded(image));
}

QString Registration::iconUrl(const QString &directory, const QString &icon) const
{
    if (icon.isEmpty())
        return QString(NO_IMAGE);
    // The icon moves with the copy when that takes the example's place.
    const QString copy = QFileInfo(directory).canonicalFilePath() + u'/';
    if (directory == m_directory || !icon.startsWith(copy))
        return icon;
    const QString parent = QFileInfo(repositoryDirectory(m_context.repositoryName)).canonicalFilePath();
    return parent + u'/' + m_path + u'/' + icon.sliced(copy.size());
}

// A directory of another name with a manifest is no copy but another example, or one that the user made.
bool Registration::isNeighbour(const QString &name) const
{
    return !isMarkedCopy(name, m_path)
           && holdsManifest(exampleDirectory(m_context.repositoryName, name), m_context.repositoryName);
}

void Registration::removeCopies(const QStringList &names)
{
    for (const QString &name : names) {
        if (name != m_path && !isNeighbour(name))
            removeAside(exampleDirectory(m_context.repositoryName, name));
    }
}

void Registration::removeFailed(const QStringList &copies)
{
    if (!isNeitherDirectoryNorLink(QFileInfo(m_directory)))
        removeAside(m_directory);
    if (!copies.isEmpty())
        removeCopies({copies.constLast()});
    removeMarkedCopies();
}

void Registration::removeMarkedCopies()
{
    // The listing of copies leaves hidden directories out, so those of a path with a dot in front are still
    // there.
    const QStringList marked = findMarkedCopies(m_context.repositoryName, {m_path});
    for (const QString &copy : marked) {
        if (!holdsRepository(copy, m_context.repositoryNames))
            m_context.removeCopy(copy);
    }
}

// A large directory takes a while, in which nobody is to see half of it under a name that means something.
void Registration::removeAside(const QString &directory)
{
    const QString aside = exampleDirectory(m_context.repositoryName, newCopyName(m_path));
    if (isMarkedCopy(QFileInfo(directory).fileName(), m_path))
        m_context.removeCopy(directory);
    else if (move(directory, aside))
        m_context.removeCopy(aside);
    else
        removeTree(directory);
}

} // namespace Varnel::Internal
