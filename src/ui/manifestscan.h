// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFileInfoList>
#include <QFutureWatcher>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QThreadPool>

#include <optional>

namespace Varnel::Internal {

/** The folders of repositories, by the repositories' names. */
using Folders = QMap<QString, QString>;

/** What a scan has found. */
struct Manifests
{
    QMap<QString, QFileInfoList> byRepository;
    QHash<QString, QString> folders; ///< canonical path of a manifest's directory, by the manifest's path
};

/**
 * Looks for the readable manifests at any depth below the folders of repositories. Hidden entries and names
 * that are not UTF-8 are left out, and so are copies that take or have lost an example's place; links to
 * directories are not followed; the manifests are in no order. A thread of its own does it, as a single
 * archive may bring a hundred thousand directories. Main thread only.
 */
class ManifestScan final : public QObject
{
    Q_OBJECT

public:
    explicit ManifestScan(QObject *parent = nullptr);
    /** Ends what runs. */
    ~ManifestScan() override;

    /**
     * Leads to finished(): before it returns where few directories are to be looked at, else from the event
     * loop. A scan that is under way comes to its end first; of those that wait for it only the last is made.
     */
    void start(const Folders &folders);
    [[nodiscard]] bool isRunning() const { return m_isRunning; }

signals:
    void finished(const Manifests &manifests);

private:
    void run(const Folders &folders);
    void onFinished();

    QThreadPool m_pool;
    QFutureWatcher<Manifests> m_watcher;
    bool m_isRunning = false; // until its end is delivered, which the watcher does not know
    std::optional<Folders> m_next;
};

} // namespace Varnel::Internal
