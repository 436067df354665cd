// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "finding.h"

#include <QJsonArray>
#include <QObject>
#include <QPointer>

#include <chrono>

namespace Varnel::Internal {
class Transfer;
struct TransferResult;
} // namespace Varnel::Internal

namespace Varnel::Check {

/** All projects of a group, asked for page by page, which the plug-in never does. */
class PagedListing final : public QObject
{
    Q_OBJECT

public:
    explicit PagedListing(std::chrono::milliseconds stall)
        : m_stall(stall)
    {
    }
    ~PagedListing() override;

    /** @p group is the address of the group's details. To be called once. */
    void start(const QUrl &group);

    /** Set if a page did not come, or was none. */
    [[nodiscard]] const std::optional<FailedRequest> &failure() const { return m_failure; }
    [[nodiscard]] const QJsonArray &projects() const { return m_projects; }

signals:
    void finished();

private:
    void requestPage();
    void onPage(const Internal::TransferResult &result);

    const std::chrono::milliseconds m_stall;
    QUrl m_group;
    int m_page = 1;
    QJsonArray m_projects;
    std::optional<FailedRequest> m_failure;
    QPointer<Internal::Transfer> m_transfer;
};

} // namespace Varnel::Check
