// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/manifestscan.h"

#include "plugin/constants.h"
#include "service/filesystem.h"
#include "service/placement.h"

#include <QDir>
#include <QPromise>
#include <QtConcurrentRun>

#include <utility>

namespace Varnel::Internal {

namespace {

// A list that is filled at once need not change under the user's eyes, and nobody feels this wait.
constexpr int PATIENCE = 30; // ms

// What an update has replaced may still be on its way out.
bool isInCopy(const QString &path, const QString &directory)
{
    return isCopyName(path.sliced(directory.size()).section(u'/', 0, 0, QString::SectionSkipEmpty));
}

// Only directories and manifests cost more than being listed: there may be hundreds of files for each
// manifest.
QFileInfoList findManifests(const QString &directory, const QPromise<Manifests> &promise)
{
    QFileInfoList manifests;
    walk(directory, [&](const FileEntry &entry) {
        if (!entry.isDirectory && entry.name == QLatin1StringView(Constants::MANIFEST_FILE)
            && !isInCopy(entry.path(), directory)) {
            const QFileInfo manifest(entry.path());
            if (manifest.isFile() && manifest.isReadable())
                manifests.append(manifest);
        }
        return !promise.isCanceled();
    });
    return manifests;
}

void scan(QPromise<Manifests> &promise, const Folders &folders)
{
    Manifests manifests;
    for (auto it = folders.begin(); it != folders.end(); ++it) {
        const QFileInfoList found = findManifests(it.value(), promise);
        manifests.byRepository.insert(it.key(), found);
        for (const QFileInfo &manifest : found)
            manifests.folders.insert(manifest.filePath(), manifest.dir().canonicalPath());
    }
    promise.addResult(manifests);
}

} // namespace

ManifestScan::ManifestScan(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &ManifestScan::onFinished);
}

ManifestScan::~ManifestScan()
{
    m_watcher.cancel();
    m_pool.waitForDone();
}

void ManifestScan::start(const Folders &folders)
{
    if (m_isRunning)
        m_next = folders;
    else
        run(folders);
}

void ManifestScan::run(const Folders &folders)
{
    const QFuture<Manifests> future = QtConcurrent::run(&m_pool, scan, folders);
    if (m_pool.waitForDone(PATIENCE)) {
        emit finished(future.result());
        return;
    }
    m_isRunning = true;
    m_watcher.setFuture(future);
}

void ManifestScan::onFinished()
{
    m_isRunning = false;
    emit finished(m_watcher.result());
    if (const std::optional<Folders> next = std::exchange(m_next, std::nullopt))
        run(*next);
}

} // namespace Varnel::Internal
