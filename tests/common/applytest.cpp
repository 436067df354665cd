// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/applytest.h"

#include "plugin/constants.h"
#include "server/demoserver.h"
#include "service/downloadservice.h"

#include <QSpinBox>
#include <QTest>

namespace Varnel::Test {

void ApplyTest::openPage()
{
    m_page = std::make_unique<OptionsWidget>();
    waitForScans();
}

void ApplyTest::openPageWithServer(const Demo::DemoServer &server)
{
    m_fixture.ide().set(Constants::REPOSITORIES, QStringList{"Demo|" + server.groupUrl().toString() + '|'});
    m_fixture.start();
    QTRY_VERIFY(!m_fixture.service().examples("Demo").isEmpty());
    openPage();
}

QSpinBox *ApplyTest::interval() const
{
    return find<QSpinBox>("timeoutSpinBox");
}

QStringList ApplyTest::storedRemovals(const QString &repository)
{
    const QStringList entries = m_fixture.ide().stored("Varnel/Repositories").toStringList();
    for (const QString &entry : entries) {
        QStringList parts = entry.split('|');
        if (parts.takeFirst() == repository) {
            parts.removeFirst();        // the address
            parts.removeAll(QString()); // an empty list reads as one empty name
            parts.sort();
            return parts;
        }
    }
    return {"no such repository"};
}

Demo::Project makeProject(qint64 id, const QString &path)
{
    Demo::Project project;
    project.id = id;
    project.path = path;
    project.name = path;
    project.tree.addFile("CMakeLists.txt", "project(demo)\n");
    project.tree.addFile("main.cpp", "int main() {}\n");
    return project;
}

QString archiveRoute(int id)
{
    return QString("/api/v4/projects/%1/repository/archive.tar.gz").arg(id);
}

} // namespace Varnel::Test
