// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// A download service whose one repository is called "Demo".

#pragma once

#include "client/repository.h"
#include "common/ideenvironment.h"
#include "service/downloadservice.h"

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <memory>

namespace Varnel::Test {

/** Has the signals of a repository, and the signal and slot names, but is none. */
class NoRepository final : public QObject
{
    Q_OBJECT

public:
    using Repository = Internal::Repository; // the signal's name is compared with the slot's as it is written

signals:
    void fetched();
    void downloaded(const Repository::ExamplePtr &example);
};

/** Settings, service and what it reports. Of an address without a group nothing is ever asked. */
class ServiceFixture final : public QObject
{
    Q_OBJECT

public:
    ServiceFixture();

    /** Forgets settings, files and records; the service is then to be started anew. */
    void reset();
    /**
     * Starts a service that updates nothing by itself, unless the settings say otherwise. @p others are
     * stored beside its repository, as the settings hold them.
     */
    void start(const QUrl &url = QUrl("http://127.0.0.1"), const QStringList &others = {});
    void stop() { m_service.reset(); }

    [[nodiscard]] IdeEnvironment &ide() { return m_ide; }
    [[nodiscard]] Internal::DownloadService &service() const { return *m_service; }
    [[nodiscard]] Internal::Repository &repository() const { return *service().findRepository("Demo"); }
    /** As if the server had listed these. */
    void list(const Internal::Repository::Examples &examples) const { repository().onFetched(examples); }

    /** Connects the signals of something that is no repository of the service to its private slots. */
    void connectStranger(QObject *stranger) const;

    /** In their order: statuses as they are, "updated", "documentation changed". */
    [[nodiscard]] QStringList lines() const { return m_lines; }
    void clearLines() { m_lines.clear(); }

    /** The directory of a name in that of the repository. */
    [[nodiscard]] static QString path(const QString &name);
    [[nodiscard]] static QStringList installed();

private:
    IdeEnvironment m_ide;
    std::unique_ptr<Internal::DownloadService> m_service;
    QStringList m_lines;
};

} // namespace Varnel::Test
