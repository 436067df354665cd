// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What a client of a repository reports, in the order in which it does.

#pragma once

#include "client/repository.h"

#include <QMutex>
#include <QObject>
#include <QStringList>

namespace Varnel::Internal {
class ApiClient;
}

namespace Varnel::Test {

/**
 * Records the signals of a client on whatever thread they are emitted: "ready", "fetched 3", "downloaded
 * demo", and statuses as they are. A line from another thread than the recorder's begins with "worker: ".
 */
class ClientRecorder final : public QObject
{
    Q_OBJECT

public:
    explicit ClientRecorder(const Internal::ApiClient &client);

    [[nodiscard]] QStringList lines() const;
    [[nodiscard]] int count(const QString &line) const { return int(lines().count(line)); }
    [[nodiscard]] bool isReady() const { return count("ready") > 0; }
    /** The listing that came last. */
    [[nodiscard]] Internal::Repository::Examples listing() const { return m_listing; }
    /** The paths of what was downloaded, in order of completion. */
    [[nodiscard]] QStringList downloads() const;
    void clear();

private:
    void add(const QString &line);

    mutable QMutex m_lock; // downloads report their beginning from their own threads
    QStringList m_lines;
    Internal::Repository::Examples m_listing;
};

} // namespace Varnel::Test
