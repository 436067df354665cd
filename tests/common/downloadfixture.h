// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of downloads begin with.

#pragma once

#include "client/apiclient.h"

#include "common/clientrecorder.h"
#include "server/demoserver.h"

#include <QObject>

#include <memory>

namespace Varnel::Test {

/**
 * For each test: a server with an archive and a picture for whatever is asked for, and a client that is
 * ready.
 */
class DownloadFixture : public QObject
{
    Q_OBJECT

protected:
    static inline const QString ARCHIVES = "/api/v4/projects/*";
    static inline const QString PICTURES = "/pictures/*";

    static inline const QString ABSENT = "absent"; // in place of a picture's address: the key is left out

    [[nodiscard]] static QString archiveOf(int id);

    /** An example "demo-ID" whose picture is on the server. */
    [[nodiscard]] Internal::Repository::ExamplePtr newExample(int id, const QJsonObject &changes = {}) const;
    [[nodiscard]] Internal::Repository::Examples newExamples(int count) const;

    std::unique_ptr<Demo::DemoServer> m_server;
    std::unique_ptr<Internal::ApiClient> m_client;
    std::unique_ptr<ClientRecorder> m_recorder;

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();
};

} // namespace Varnel::Test
