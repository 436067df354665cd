// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/unpackingfixture.h"

#include "common/archivebuilder.h"
#include "common/testfiles.h"

#include <QDir>
#include <QProcess>
#include <QTest>

namespace Varnel::Test {

using Internal::Repository;

QByteArray UnpackingFixture::projectArchive(const QByteArray &top, const QByteArray &content)
{
    return TarBuilder().directory(top).file(top + "/app.pro", content).tarGz();
}

QStringList UnpackingFixture::temporaryArchives()
{
    return QDir(QDir::tempPath()).entryList({"*.tar.gz"}, QDir::AllEntries | QDir::Hidden);
}

void UnpackingFixture::initTestCase()
{
    m_fixture = std::make_unique<ServiceFixture>();
}

void UnpackingFixture::init()
{
    m_fixture->start();
}

void UnpackingFixture::cleanup()
{
    m_fixture->reset();
    QCOMPARE(temporaryArchives(), QStringList());
}

void UnpackingFixture::cleanupTestCase()
{
    quitApplication();
}

Repository::ExamplePtr UnpackingFixture::download(const QString &path, const QByteArray &archive)
{
    const Repository::ExamplePtr example = makeExample(path);
    example->setData(archive);
    emit m_fixture->repository().downloaded(example);
    return example;
}

bool UnpackingFixture::waitForLines(qsizetype count) const
{
    return QTest::qWaitFor([&] { return m_fixture->lines().size() >= count; }, 15'000);
}

bool UnpackingFixture::waitForVetting()
{
    // They are vetted one after the other; once the first of these has been, the ways of those before it are
    // cleared before the next one.
    for (int i = 0; i < 2; ++i) {
        const qsizetype failures = m_fixture->lines().count(UNPACKING_FAILED);
        download("last", "no archive");
        const auto hasFailed = [&] { return m_fixture->lines().count(UNPACKING_FAILED) > failures; };
        if (!QTest::qWaitFor(hasFailed))
            return false;
    }
    // By the time that this has run, so has the beginning of what was started before.
    return QProcess::execute("sh", {"-c", "tar --version > /dev/null"}) == 0;
}

} // namespace Varnel::Test
