// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of the registration begin with.

#pragma once

#include "common/servicefixture.h"

#include <QDateTime>
#include <QDomElement>
#include <QObject>
#include <QString>

#include <memory>

namespace Varnel::Test {

/** For each test: a service, and the registration that is asked of it. */
class RegistrationFixture : public QObject
{
    Q_OBJECT

protected:
    static inline const QString FAILED = "There was an error while creating example mainfest";
    static inline const QString MANIFEST = "examples-manifest.xml";

    /** A copy with a manifest of that repository. */
    static void makeInstalled(const QString &name, const QDateTime &time, const QString &module = "Demo");
    /** What the manifest of an example says of it, null if it is none. */
    [[nodiscard]] static QDomElement exampleOf(const QString &name);

    bool registerExample(const Internal::Repository::ExamplePtr &example);

    std::unique_ptr<ServiceFixture> m_fixture;

private slots:
    void initTestCase();
    void init();
    void cleanup();
};

} // namespace Varnel::Test
