// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pagedlisting.h"

#include "client/transfer.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr int PAGE_SIZE = 100; // the most that a server gives
constexpr int MOST_PAGES = 100;
constexpr qint64 LARGEST_LISTING = 256LL * 1024 * 1024; // bytes of all pages, as for the one answer

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
    m_transfer = new Internal::Transfer(url, "application/json", {.body = LARGEST_LISTING, .stall = m_stall});
    connect(m_transfer, &Internal::Transfer::finished, this, &PagedListing::onPage);
    m_transfer->start();
}

void PagedListing::onPage(const Internal::TransferResult &result)
{
    m_size += result.body.size();
    const QJsonDocument document = QJsonDocument::fromJson(result.body);
    if (!result.hasSucceeded) {
        fail(result, result.error);
        return;
    }
    if (!document.isArray() || m_size > LARGEST_LISTING) {
        fail(result, document.isArray() ? u"the list is too long"_s : u"the answer is no list"_s);
        return;
    }
    const QJsonArray page = document.array();
    // A server that does not count pages sends the first one again and again.
    const bool isNew = take(page) > 0;
    m_isWhole = page.size() < PAGE_SIZE || !isNew;
    if (m_isWhole || m_page == MOST_PAGES) {
        emit finished();
        return;
    }
    ++m_page;
    requestPage();
}

void PagedListing::fail(const Internal::TransferResult &result, const QString &error)
{
    m_failure = FailedRequest{.url = result.url, .status = result.status, .error = error};
    emit finished();
}

qsizetype PagedListing::take(const QJsonArray &page)
{
    const qsizetype before = m_projects.size();
    for (const QJsonValue value : page) {
        const Project project{.id = value["id"_L1].toDouble(), .path = value["path"_L1].toString()};
        if (project.id == 0 || m_seen.contains(project.id))
            continue;
        m_seen.insert(project.id);
        m_projects.append(project);
    }
    return m_projects.size() - before;
}

} // namespace Varnel::Check
