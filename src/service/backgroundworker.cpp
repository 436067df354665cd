// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/backgroundworker.h"

#include "plugin/constants.h"
#include "service/filesystem.h"
#include "service/nativefiles.h"

namespace Varnel::Internal {

BackgroundWorker::BackgroundWorker(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
}

BackgroundWorker::~BackgroundWorker()
{
    stop();
}

void BackgroundWorker::removeTree(const QString &path)
{
    m_removals.insert(path);
    // It may wait long. Until then it is not to be listed as one more example.
    removeFileFrom(path, QString::fromUtf8(Constants::MANIFEST_FILE));
    run(
        Removal,
        this,
        [path](const std::stop_token &token) { return Internal::removeTree(path, token); },
        [this, path](bool) { m_removals.remove(path); });
}

void BackgroundWorker::stop()
{
    m_stop.request_stop();
    m_pool.clear();
    m_pool.waitForDone();
}

} // namespace Varnel::Internal
