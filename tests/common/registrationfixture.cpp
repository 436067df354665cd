// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/registrationfixture.h"

#include "common/copies.h"
#include "common/testfiles.h"

#include <QDomDocument>

namespace Varnel::Test {

using Internal::Repository;

void RegistrationFixture::makeInstalled(const QString &name, const QDateTime &time, const QString &module)
{
    makeCopy(name, time, "installed");
    writeFile(pathOf(name) + '/' + MANIFEST, "<instructionals module=\"" + module.toUtf8() + "\"/>");
    setTime(pathOf(name), time);
}

QDomElement RegistrationFixture::exampleOf(const QString &name)
{
    QDomDocument document;
    if (!document.setContent(readFile(pathOf(name) + '/' + MANIFEST)))
        return {};
    return document.documentElement().firstChildElement("examples").firstChildElement("example");
}

void RegistrationFixture::initTestCase()
{
    m_fixture = std::make_unique<ServiceFixture>();
}

void RegistrationFixture::init()
{
    m_fixture->start();
}

void RegistrationFixture::cleanup()
{
    m_fixture->reset();
}

bool RegistrationFixture::registerExample(const Repository::ExamplePtr &example)
{
    m_fixture->clearLines();
    m_fixture->service().registerExample("Demo", example);
    return !m_fixture->lines().contains(FAILED);
}

} // namespace Varnel::Test
