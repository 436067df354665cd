// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "service/backgroundworker.h"

#include "service/filesystem.h"

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
