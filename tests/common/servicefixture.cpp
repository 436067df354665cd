// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/servicefixture.h"

#include "common/copies.h"
#include "common/testfiles.h"
#include "plugin/constants.h"

#include <coreplugin/helpmanager.h>
#include <utils/qtcsettings.h>

namespace Varnel::Test {

using Internal::DownloadService;

ServiceFixture::ServiceFixture()
{
    connect(
        Core::HelpManager::Signals::instance(),
        &Core::HelpManager::Signals::documentationChanged,
        this,
        [this] { m_lines.append("documentation changed"); });
}

void ServiceFixture::reset()
{
    m_service.reset();
    m_ide.reset();
    m_lines.clear();
}

void ServiceFixture::start(const QUrl &url, const QStringList &others)
{
    m_ide.set(Constants::REPOSITORIES, QStringList{"Demo|" + url.toString() + "|removed"} + others);
    if (!m_ide.isStored("Varnel/UpdatesCheckTimeoutDays"))
        m_ide.set(Constants::UPDATES_TIMEOUT, 0);
    m_service = std::make_unique<DownloadService>(nullptr);
    connect(m_service.get(), &DownloadService::statusChanged, this, [this](const QString &status) {
        m_lines.append(status);
    });
    connect(m_service.get(), &DownloadService::updated, this, [this] { m_lines.append("updated"); });
}

void ServiceFixture::connectStranger(QObject *stranger) const
{
    // By name, as the slots are private.
    connect(stranger, SIGNAL(fetched()), m_service.get(), SLOT(onFetched()));
    connect(
        stranger,
        SIGNAL(downloaded(Repository::ExamplePtr)),
        m_service.get(),
        SLOT(onDownloaded(Repository::ExamplePtr)));
}

QString ServiceFixture::path(const QString &name)
{
    return pathOf(name);
}

QStringList ServiceFixture::installed()
{
    return entriesOf(path({}));
}

} // namespace Varnel::Test
