// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/projectfiles.h"

#include "client/picture.h"
#include "service/filesystem.h"
#include "service/nativefiles.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTimeZone>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <set>

namespace Varnel::Internal {

namespace {

constexpr qsizetype BLOCK_SIZE = 256LL * 1024;        // bytes
constexpr int ICON_SIZE = 128;                        // pixels
constexpr qsizetype LARGEST_ICON = 4LL * 1024 * 1024; // bytes of a file

bool hasEnding(const QString &name, QLatin1StringView ending)
{
    return name.endsWith(ending, Qt::CaseInsensitive);
}

bool isProjectFile(const QString &name)
{
    return hasEnding(name, QLatin1StringView(".pro"))
           || name.compare(QLatin1StringView("CMakeLists.txt"), Qt::CaseInsensitive) == 0;
}

bool isPicture(const QString &name)
{
    static constexpr QLatin1StringView ENDINGS[]
        = {QLatin1StringView(".png"),
           QLatin1StringView(".jpeg"),
           QLatin1StringView(".jpg"),
           QLatin1StringView(".bmp")};
    return std::any_of(std::begin(ENDINGS), std::end(ENDINGS), [&name](QLatin1StringView ending) {
        return hasEnding(name, ending);
    });
}

QFileInfoList readableFiles(const QString &directory, bool (*isWanted)(const QString &))
{
    QFileInfoList files;
    const QList<FileEntry> entries = visibleEntries(directory);
    for (const FileEntry &entry : entries) {
        if (entry.isDirectory || !isWanted(entry.name))
            continue;
        const QFileInfo info(entry.path());
        if (info.isFile() && info.isReadable())
            files.append(info);
    }
    return files;
}

// The Welcome screen decodes it on its main thread, at every start.
bool isHarmlessIcon(const QFileInfo &icon)
{
    RegularFile file(icon.filePath());
    QByteArray bytes(LARGEST_ICON + 1, Qt::Uninitialized);
    qsizetype size = 0;
    while (const qint64 count = file.read(bytes.data() + size, bytes.size() - size))
        size += count;
    return file.isOpen() && size <= LARGEST_ICON && isHarmlessPicture(bytes.first(size));
}

QString findLargestIcon(const QString &iconsDirectory)
{
    QFileInfoList icons = readableFiles(iconsDirectory + QStringLiteral("/%1x%1").arg(ICON_SIZE), &isPicture);
    std::sort(icons.begin(), icons.end(), [](const QFileInfo &left, const QFileInfo &right) {
        return left.size() != right.size() ? left.size() > right.size() : left.fileName() < right.fileName();
    });
    const auto found = std::find_if(icons.cbegin(), icons.cend(), &isHarmlessIcon);
    return found == icons.cend() ? QString() : found->canonicalFilePath();
}

/**
 * Looks for a text in many files with one buffer. From each place of the text's last byte it is compared
 * backwards, and carriage returns are passed over: so one look at each block is enough.
 */
class TextSearch final
{
public:
    TextSearch(const QByteArray &needle, const std::stop_token &stop)
        : m_needle(needle)
        , m_stop(stop)
        , m_buffer(std::make_unique_for_overwrite<char[]>(size_t(needle.size() - 1 + BLOCK_SIZE)))
        , m_block(m_buffer.get() + needle.size() - 1)
    {
    }

    bool isIn(RegularFile &file)
    {
        if (!file.isOpen())
            return false;
        m_begin = m_block;
        qint64 size = 0;
        while (!m_stop.stop_requested() && (size = file.read(m_block, BLOCK_SIZE)) > 0) {
            if (isInBlock(m_block + size))
                return true;
            keepEnd(m_block + size);
            // A huge sparse file must not take minutes, and in a hole is no text.
            if (size == BLOCK_SIZE && file.skipHole())
                m_begin = m_block;
        }
        return false;
    }

private:
    [[nodiscard]] bool isInBlock(const char *end) const
    {
        for (const char *from = m_block; from < end; ++from) {
            from = static_cast<const char *>(std::memchr(from, m_needle.back(), size_t(end - from)));
            if (!from)
                return false;
            if (isBefore(from))
                return true;
        }
        return false;
    }

    // All of the text but its last byte, which is at this place.
    [[nodiscard]] bool isBefore(const char *place) const
    {
        qsizetype left = m_needle.size() - 1;
        while (left > 0 && place > m_begin) {
            if (*--place == '\r')
                continue;
            if (*place != m_needle.at(--left))
                return false;
        }
        return left == 0;
    }

    // In front of the next block, so that a text across both is found. It is gathered apart: where it goes
    // may be what is still to be read, if the block was nearly all carriage returns.
    void keepEnd(const char *end)
    {
        QByteArray kept(m_needle.size() - 1, Qt::Uninitialized);
        qsizetype free = kept.size();
        while (end > m_begin && free > 0) {
            if (*--end != '\r')
                kept[--free] = *end;
        }
        m_begin = m_block - (kept.size() - free);
        std::copy(kept.cbegin() + free, kept.cend(), m_block - (kept.size() - free));
    }

    const QByteArray m_needle;
    const std::stop_token m_stop;
    const std::unique_ptr<char[]> m_buffer; // uninitialised
    char *const m_block;
    const char *m_begin = nullptr; // of what counts in the buffer
};

/** Looks for a text in what a walk has found: it comes directory by directory. */
class WalkSearch final
{
public:
    WalkSearch(const QByteArray &needle, const std::stop_token &stop)
        : m_text(needle, stop)
    {
    }

    bool isIn(const FileEntry &entry)
    {
        if (!m_directory || entry.directory != m_path) {
            m_path = entry.directory;
            m_directory.emplace(m_path);
        }
        RegularFile file(*m_directory, entry.name);
        return !hasSearched(entry, file) && m_text.isIn(file);
    }

private:
    // A large file of 100,000 names would take days.
    bool hasSearched(const FileEntry &entry, const RegularFile &file)
    {
        return (entry.isLink || file.hasOtherNames()) && !m_searched.insert(file.identity()).second;
    }

    TextSearch m_text;
    QString m_path;
    std::optional<Directory> m_directory;
    std::set<FileIdentity> m_searched; // of those that may come again
};

/** The names of a project, from one walk. */
struct ProjectNames
{
    explicit ProjectNames(const QString &directory, const std::stop_token &stop)
    {
        walk(directory, [&](const FileEntry &entry) {
            if (!entry.isDirectory)
                files.append(entry);
            if (entry.name.compare(QLatin1StringView("icons"), Qt::CaseInsensitive) == 0)
                icons.append(entry);
            return !stop.stop_requested();
        });
    }

    QList<FileEntry> files; // and links, which may lead to one
    QList<FileEntry> icons;
};

QString findIcon(const QList<FileEntry> &iconsDirectories)
{
    for (const FileEntry &entry : iconsDirectories) {
        const QFileInfo info(entry.path());
        const QString icon = info.isDir() && info.isReadable() ? findLargestIcon(info.filePath()) : QString();
        if (!icon.isEmpty())
            return icon;
    }
    return {};
}

// The first one, in the order of the walk; empty if there is none.
QString findFile(
    const QList<FileEntry> &files,
    QLatin1StringView ending,
    const QByteArray &needle,
    const std::stop_token &stop)
{
    WalkSearch text(needle, stop);
    const auto found = std::find_if(files.cbegin(), files.cend(), [&](const FileEntry &file) {
        return hasEnding(file.name, ending) && text.isIn(file);
    });
    return found == files.cend() ? QString() : found->path();
}

} // namespace

ProjectFiles findProjectFiles(const QString &directory, const std::stop_token &stop)
{
    const QString base = QFileInfo(directory).absoluteFilePath();
    const ProjectNames names(base, stop);
    ProjectFiles result{.project = findProject(base), .fileToOpen = {}, .icon = findIcon(names.icons)};

    QString file = findFile(names.files, QLatin1StringView(".qml"), "ApplicationWindow", stop);
    if (file.isEmpty())
        file = findFile(names.files, {}, " main(", stop);
    result.fileToOpen = file.isEmpty() ? result.project : file.remove(base);
    return result;
}

QString findProject(const QString &directory)
{
    QFileInfoList projects = readableFiles(directory, &isProjectFile);
    if (projects.isEmpty())
        return {};
    std::sort(projects.begin(), projects.end(), [](const QFileInfo &left, const QFileInfo &right) {
        const QDateTime leftTime = left.lastModified(QTimeZone::UTC);
        const QDateTime rightTime = right.lastModified(QTimeZone::UTC);
        return leftTime != rightTime ? leftTime > rightTime : left.fileName() < right.fileName();
    });
    return projects.constFirst().fileName();
}

bool fileContains(const QString &path, const QByteArray &needle, const std::stop_token &stop)
{
    RegularFile file(path);
    return TextSearch(needle, stop).isIn(file);
}

} // namespace Varnel::Internal
