// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/downloadfixture.h"

#include "common/ideenvironment.h"
#include "common/testfiles.h"

#include <QTest>
#include <QThreadPool>

namespace Varnel::Test {

using Internal::ApiClient;
using Internal::Repository;

QString DownloadFixture::archiveOf(int id)
{
    return QString("/api/v4/projects/%1/repository/archive.tar.gz").arg(id);
}

Repository::ExamplePtr DownloadFixture::newExample(int id, const QJsonObject &changes) const
{
    const QString path = QString("demo-%1").arg(id);
    QJsonObject project
        = projectObject(path, {{"id", id}, {"avatar_url", m_server->url("/pictures/" + path).toString()}});
    for (auto it = changes.begin(); it != changes.end(); ++it)
        project.insert(it.key(), it.value());
    if (project.value("avatar_url") == ABSENT)
        project.remove("avatar_url");
    return Repository::ExamplePtr::create(project);
}

Repository::Examples DownloadFixture::newExamples(int count) const
{
    Repository::Examples examples;
    for (int id = 1; id <= count; ++id)
        examples.append(newExample(id));
    return examples;
}

void DownloadFixture::init()
{
    QThreadPool::globalInstance()->setMaxThreadCount(2);
    m_server = std::make_unique<Demo::DemoServer>();
    m_server->answer(ARCHIVES, 200, "archive");
    m_server->answer(PICTURES, 200, encodedPicture({256, 128}));
    m_client = std::make_unique<ApiClient>(m_server->groupUrl(), nullptr);
    QTRY_VERIFY(m_client->isReady());
    m_server->clearRequests();
    m_recorder = std::make_unique<ClientRecorder>(*m_client);
}

void DownloadFixture::cleanup()
{
    m_client.reset();
    m_server.reset();
}

void DownloadFixture::cleanupTestCase()
{
    quitApplication();
}

} // namespace Varnel::Test
