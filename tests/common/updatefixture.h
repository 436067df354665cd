// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of the update cycle begin with.

#pragma once

#include "common/servicefixture.h"
#include "server/demoserver.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace Varnel::Test {

/** For each test: a server, and a service that asks it. */
class UpdateFixture : public QObject
{
    Q_OBJECT

protected:
    /** As the settings hold a date. */
    [[nodiscard]] static QString daysAgo(int days);

    /** A service with these settings; listings of its own are held back. */
    void start(const QString &storedDate, const QVariant &days = 1);
    /** The numbers of the projects whose archives are asked for, now that a last one is. */
    [[nodiscard]] QList<int> downloads();
    [[nodiscard]] QStringList storedDates();

    std::unique_ptr<ServiceFixture> m_fixture;
    std::unique_ptr<Demo::DemoServer> m_server;

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
};

} // namespace Varnel::Test
