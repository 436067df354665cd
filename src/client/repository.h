// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/example.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QSharedPointer>
#include <QUrl>

#include <memory>

namespace Varnel::Internal {

class ApiClient;

/**
 * One configured repository: owns the client that talks to it and keeps the examples of its last listing.
 * Each successful group lookup is followed by a listing at once. A failed listing leaves the previous list in
 * force; nothing is reported here. Main thread only.
 */
class Repository final : public QObject
{
    Q_OBJECT

public:
    using ExamplePtr = QSharedPointer<Example>;
    using Examples = QList<ExamplePtr>;

    Repository(const QUrl &url, QObject *parent);
    ~Repository() override;

    /**
     * Replaces the client by a new one, which starts over with the group lookup; the list of examples is
     * kept. All that the old one had under way is lost: its requests are dropped, downloads that wait for a
     * worker are never started, and none of its examples is announced. A worker whose download was lost stays
     * until the application quits, and keeps its place in the pool.
     */
    void reset();

    [[nodiscard]] const QUrl &url() const { return m_url; }
    /** True once the current client knows its group. */
    [[nodiscard]] bool isReady() const;
    [[nodiscard]] const Examples &examples() const { return m_examples; }

    /**
     * Downloads the listed examples with these names; names that are not listed are skipped. Returns at once.
     */
    void download(const QSet<QString> &names);

signals:
    void fetched();
    void downloaded(const Repository::ExamplePtr &example);

public slots:
    void onFetched(const Repository::Examples &examples);

private:
    const QUrl m_url;
    Examples m_examples;
    std::unique_ptr<ApiClient> m_client;
};

} // namespace Varnel::Internal
