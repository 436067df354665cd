// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "finding.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <chrono>

QT_BEGIN_NAMESPACE
class QJsonArray;
QT_END_NAMESPACE

namespace Varnel::Internal {
class Transfer;
struct TransferResult;
} // namespace Varnel::Internal

namespace Varnel::Check {

/**
 * All projects of a group, asked for page by page, which the plug-in never does. Ends whatever the server
 * sends: after so many pages or bytes, and with a page that brings nothing new.
 */
class PagedListing final : public QObject
{
    Q_OBJECT

public:
    explicit PagedListing(std::chrono::milliseconds stall)
        : m_stall(stall)
    {
    }
    ~PagedListing() override;

    struct Project
    {
        double id = 0;
        QString path = {};
    };

    /** @p group is the address of the group's details. To be called once. */
    void start(const QUrl &group);

    /** Set if a page did not come, or was none. */
    [[nodiscard]] const std::optional<FailedRequest> &failure() const { return m_failure; }
    /** Each once. */
    [[nodiscard]] const QList<Project> &projects() const { return m_projects; }
    /** False if there are more, which were not asked for. */
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

signals:
    void finished();

private:
    void requestPage();
    void onPage(const Internal::TransferResult &result);
    void fail(const Internal::TransferResult &result, const QString &error);
    /** How many of the page are new. */
    qsizetype take(const QJsonArray &page);

    const std::chrono::milliseconds m_stall;
    QUrl m_group;
    int m_page = 1;
    qint64 m_size = 0; // bytes of all pages so far
    QList<Project> m_projects;
    QSet<double> m_seen; // their numbers
    bool m_isWhole = true;
    std::optional<FailedRequest> m_failure;
    QPointer<Internal::Transfer> m_transfer;
};

} // namespace Varnel::Check
