// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the one thread for long work does, and when.

#include "common/testfiles.h"
#include "service/backgroundworker.h"

#include <QDir>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

/** Keeps the worker's thread busy as long as it lives. */
class Gate final
{
public:
    explicit Gate(BackgroundWorker &worker)
    {
        const auto wait = [open = m_open](const std::stop_token &) {
            open->acquire();
            return true;
        };
        worker.run(BackgroundWorker::Placing, &m_context, wait, [](bool) {});
    }
    ~Gate() { m_open->release(); }
    Q_DISABLE_COPY_MOVE(Gate)

private:
    QObject m_context;
    const std::shared_ptr<QSemaphore> m_open = std::make_shared<QSemaphore>();
};

} // namespace

class tst_BackgroundWorker final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void directoryThatWaitsForItsRemovalIsNoExampleAnyMore();
    void whatIsBehindALinkStays();

private:
    [[nodiscard]] QString path(const QString &relative) const { return m_directory->filePath(relative); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_BackgroundWorker::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    writeFile(path("maps/examples-manifest.xml"), "<instructionals/>");
    writeFile(path("maps/main.cpp"), "");
}

void tst_BackgroundWorker::directoryThatWaitsForItsRemovalIsNoExampleAnyMore()
{
    QVERIFY(QFile::setPermissions(path("maps"), QFile::ReadOwner | QFile::ExeOwner));
    BackgroundWorker worker;
    {
        const Gate gate(worker);

        worker.removeTree(path("maps"));

        QVERIFY(worker.isRemoving(path("maps")));
        QCOMPARE(QDir(path("maps")).entryList(QDir::Files), QStringList{"main.cpp"});
    }
    QTRY_VERIFY(!worker.isRemoving(path("maps")));
    QVERIFY(!QFileInfo::exists(path("maps")));
}

void tst_BackgroundWorker::whatIsBehindALinkStays()
{
    QVERIFY(QFile::link(path("maps"), path("linked")));
    BackgroundWorker worker;

    worker.removeTree(path("linked"));

    QTRY_VERIFY(!worker.isRemoving(path("linked")));
    QVERIFY(!QFileInfo(path("linked")).isSymLink());
    QVERIFY(QFileInfo::exists(path("maps/examples-manifest.xml")));
}

QTEST_GUILESS_MAIN(tst_BackgroundWorker)
#include "tst_backgroundworker.moc"
