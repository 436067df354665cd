// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/updatefixture.h"

#include "client/apiclient.h"
#include "plugin/constants.h"

#include "common/clientrecorder.h"
#include "common/testfiles.h"

#include <QTest>
#include <QThreadPool>

namespace Varnel::Test {

using namespace Demo;
using namespace Internal;

QString UpdateFixture::daysAgo(int days)
{
    return QDate::currentDate().addDays(-days).toString(QString("dd.MM.yyyy"));
}

void UpdateFixture::initTestCase()
{
    if (QTime::currentTime() > QTime(23, 59))
        QSKIP("The day changes while these tests run");
    m_fixture = std::make_unique<ServiceFixture>();
}

void UpdateFixture::init()
{
    QThreadPool::globalInstance()->setMaxThreadCount(1); // downloads come one after the other
    m_server = std::make_unique<DemoServer>();
}

void UpdateFixture::cleanup()
{
    std::ignore = downloads(); // none may be under way when its client goes: its worker would be lost
    m_fixture->reset();
    m_server.reset();
}

void UpdateFixture::cleanupTestCase()
{
    quitApplication();
}

void UpdateFixture::start(const QString &storedDate, const QVariant &days)
{
    m_server->hold("/api/v4/groups*");
    m_server->answer("/api/v4/projects/*", 404);
    m_fixture->ide().set(Constants::UPDATES_TIMEOUT, days);
    if (!storedDate.isNull())
        m_fixture->ide().set(Constants::UPDATES_CHECKED, QStringList{"Demo|" + storedDate});
    m_fixture->start(m_server->groupUrl());
}

QList<int> UpdateFixture::downloads()
{
    constexpr int LAST = 999;
    m_server->answer(QString("/api/v4/projects/%1/*").arg(LAST), 200, "archive");
    ApiClient last(m_server->groupUrl(), nullptr);
    const ClientRecorder recorder(last);
    last.download(Repository::Examples{makeExample("last", {{"id", LAST}})});
    // To the end: a worker whose client goes is lost.
    if (!QTest::qWaitFor([&] { return !recorder.downloads().isEmpty(); }))
        qFatal("downloads are stuck");

    QList<int> ids;
    const QList<Request> requests = m_server->requests("/api/v4/projects/*");
    for (const Request &request : requests)
        ids.append(request.path().section('/', 4, 4).toInt());
    ids.removeOne(LAST);
    std::ranges::sort(ids);
    return ids;
}

QStringList UpdateFixture::storedDates()
{
    QStringList dates = m_fixture->ide().stored("Varnel/UpdatesCheckedDate").toStringList();
    dates.sort();
    return dates;
}

} // namespace Varnel::Test
