// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pagedlisting.h"

#include "client/transfer.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr int PAGE_SIZE = 100; // the most that a server gives
constexpr int MOST_PAGES = 100;
constexpr qint64 LARGEST_PAGE = 256LL * 1024 * 1024; // bytes, as for the listing itself

} // namespace

PagedListing::~PagedListing()
{
    delete m_transfer.data();
}

void PagedListing::start(const QUrl &group)
{
    m_group = group;
    requestPage();
}

// Projects that other groups share are in no IDE's list, and belong to those.
void PagedListing::requestPage()
{
    QUrl url = m_group;
    url.setPath(m_group.path() + "/projects"_L1);
    url.setQuery(u"with_shared=false&per_page=%1&page=%2"_s.arg(PAGE_SIZE).arg(m_page));
    m_transfer = new Internal::Transfer(url, "application/json", {.body = LARGEST_PAGE, .stall = m_stall});
    connect(m_transfer, &Internal::Transfer::finished, this, &PagedListing::onPage);
    m_transfer->start();
}

void PagedListing::onPage(const Internal::TransferResult &result)
{
    const QJsonDocument document = QJsonDocument::fromJson(result.body);
    if (!result.hasSucceeded || !document.isArray()) {
        const QString error = result.hasSucceeded ? u"the answer is no list"_s : result.error;
        m_failure = FailedRequest{.url = result.url, .status = result.status, .error = error};
        emit finished();
        return;
    }
    const QJsonArray page = document.array();
    for (const QJsonValue project : page)
        m_projects.append(project);
    if (page.size() < PAGE_SIZE || m_page == MOST_PAGES) {
        emit finished();
        return;
    }
    ++m_page;
    requestPage();
}

} // namespace Varnel::Check
