// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/registration.h"

#include "plugin/constants.h"
#include "plugin/logging.h"
#include "service/filesystem.h"
#include "service/manifest.h"
#include "service/placement.h"
#include "service/projectfiles.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

namespace Varnel::Internal {

namespace {

const QString ICON_NAME = QStringLiteral("example-icon.png");
constexpr char16_t NO_IMAGE[] = u"dummy.png"; // resolved by the IDE

enum class WriteResult { Written, NotOpened, Incomplete };

// Never through a link that the archive brought under the same name.
WriteResult writeFile(const QString &path, const QByteArray &content)
{
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return WriteResult::NotOpened;
    return file.write(content) == content.size() && file.flush() ? WriteResult::Written
                                                                 : WriteResult::Incomplete;
}

QByteArray encoded(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return bytes;
}

} // namespace

Registration::Registration(
    const QString &repositoryName, const Repository::ExamplePtr &example, const Repository::Examples &listed)
    : m_repositoryName(repositoryName)
    , m_example(example)
    , m_listed(listed)
    , m_path(example->name())
    , m_directory(exampleDirectory(repositoryName, m_path))
{
}

bool Registration::run()
{
    if (!isPlainName(m_path))
        return false;
    const QStringList copies = findDirNames(m_repositoryName, m_path, m_listed);
    if (placeAndWrite(copies))
        return true;
    removeFailed(copies);
    return false;
}

bool Registration::placeAndWrite(const QStringList &copies)
{
    if (copies.isEmpty() || copies.constLast() == m_path) {
        removeCopies(copies);
        return write(m_directory);
    }
    const QString newest = exampleDirectory(m_repositoryName, copies.constLast());
    const QString aside = exampleDirectory(m_repositoryName, newCopyName(m_path));
    if (!write(newest) || !exchange(newest, m_directory, aside))
        return false;
    // What the example was before now has the copy's name.
    removeTree(newest);
    removeCopies(copies.first(copies.size() - 1));
    return true;
}

bool Registration::write(const QString &directory)
{
    if (QFileInfo(directory).isSymLink()) {
        qCDebug(Log::service) << "Example directory is a link:" << directory;
        return false;
    }
    std::optional<Manifest> manifest = Manifest::fromTemplate(m_repositoryName);
    if (!manifest)
        return false;
    manifest->setName(m_example->displayName());

    const QString project = findProject(directory);
    if (project.isEmpty()) {
        qCDebug(Log::service) << "Project file not found";
        return false;
    }
    manifest->setProjectPath(project);
    if (!writeImage(directory, &*manifest))
        return false;
    manifest->setDescription(m_example->project().value(u"description").toString());
    manifest->setTags(m_example->tags());
    manifest->setFileToOpen(findFileToOpen(directory));

    const QString fileName = QString::fromUtf8(Constants::MANIFEST_FILE);
    const WriteResult result = writeFile(directory + u'/' + fileName, manifest->toByteArray());
    if (result == WriteResult::NotOpened)
        qCDebug(Log::service) << "Unable to save manifest:" << QString(m_directory + u'/' + fileName);
    return result == WriteResult::Written;
}

// A picture that cannot be written at all is done without; half of one, on a full disk, is a failure.
bool Registration::writeImage(const QString &directory, Manifest *manifest)
{
    const QImage image = m_example->image();
    if (image.isNull()) {
        qCDebug(Log::service) << "Repository contains no image for example:" << m_example->displayName();
        manifest->setImageUrl(iconUrl(directory));
        return true;
    }
    manifest->setImageUrl(m_directory + u'/' + ICON_NAME);
    return writeFile(directory + u'/' + ICON_NAME, encoded(image)) != WriteResult::Incomplete;
}

QString Registration::iconUrl(const QString &directory) const
{
    QString icon = findIcon(directory);
    if (icon.isEmpty())
        return QString(NO_IMAGE);
    // The icon moves with the copy when that takes the example's place.
    const QString copy = QFileInfo(directory).canonicalFilePath() + u'/';
    if (directory == m_directory || !icon.startsWith(copy))
        return icon;
    const QString parent = QFileInfo(repositoryDirectory(m_repositoryName)).canonicalFilePath();
    return parent + u'/' + m_path + u'/' + icon.sliced(copy.size());
}

// A directory of another name with a manifest is no copy but another example, or one that the user made.
void Registration::removeCopies(const QStringList &names)
{
    for (const QString &name : names) {
        const QString directory = exampleDirectory(m_repositoryName, name);
        if (name != m_path && (isMarkedCopy(name, m_path) || !holdsManifest(directory, m_repositoryName)))
            removeTree(directory);
    }
}

void Registration::removeFailed(const QStringList &copies)
{
    removeTree(m_directory);
    if (!copies.isEmpty())
        removeCopies({copies.constLast()});
    // The listing of copies leaves hidden directories out, so those of a path with a dot in front are still there.
    removeLeftOverCopies(m_repositoryName, {m_path});
}

} // namespace Varnel::Internal
