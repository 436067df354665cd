// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/clientrecorder.h"

#include "client/apiclient.h"

#include <QThread>

namespace Varnel::Test {

using Internal::ApiClient;
using Internal::Repository;

namespace {

const QString DOWNLOADED = "downloaded ";

} // namespace

ClientRecorder::ClientRecorder(const ApiClient &client)
{
    connect(&client, &ApiClient::ready, this, [this] { add("ready"); }, Qt::DirectConnection);
    connect(&client, &ApiClient::statusChanged, this, &ClientRecorder::add, Qt::DirectConnection);
    connect(
        &client,
        &ApiClient::fetched,
        this,
        [this](const Repository::Examples &examples) {
            m_listing = examples;
            add(QString("fetched %1").arg(examples.size()));
        },
        Qt::DirectConnection);
    connect(
        &client,
        &ApiClient::downloaded,
        this,
        [this](const Repository::ExamplePtr &example) { add(DOWNLOADED + example->name()); },
        Qt::DirectConnection);
}

QStringList ClientRecorder::lines() const
{
    const QMutexLocker locker(&m_lock);
    return m_lines;
}

QStringList ClientRecorder::downloads() const
{
    QStringList result;
    for (const QString &line : lines()) {
        if (line.startsWith(DOWNLOADED))
            result.append(line.sliced(DOWNLOADED.size()));
    }
    return result;
}

void ClientRecorder::clear()
{
    const QMutexLocker locker(&m_lock);
    m_lines.clear();
}

void ClientRecorder::add(const QString &line)
{
    const QMutexLocker locker(&m_lock);
    m_lines.append(QThread::currentThread() == thread() ? line : "worker: " + line);
}

} // namespace Varnel::Test
