// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Many update cycles in one process leave nothing behind in it.

#include "common/ideenvironment.h"
#include "faults/versions.h"
#include "service/downloadservice.h"

#include "server/demoserver.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <malloc.h>

using namespace Varnel::Test;
using Varnel::Demo::DemoServer;
using Varnel::Internal::DownloadService;

namespace {

constexpr int SERVICES = 20;
constexpr int CYCLES_OF_A_SERVICE = 10;
constexpr int WARM_UP = 40; // cycles after which all caches are filled
constexpr int EXAMPLES = 3;
constexpr int FILES = 10;
constexpr int PATIENCE = 60'000; // ms

// The address sanitizer keeps what is freed, to see later uses of it.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool IS_FREED_MEMORY_FREE = false;
#else
constexpr bool IS_FREED_MEMORY_FREE = true;
#endif

/** What the process holds. */
struct Holdings
{
    qint64 residentKilobytes = 0;
    qint64 heapKilobytes = 0; // in use
    qsizetype descriptors = 0;
    qsizetype threads = 0;
    qsizetype objects = 0; // of the service
    qsizetype temporaryFiles = 0;
};

QByteArray statusLine(const QByteArray &name)
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArrayList lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name + ':'))
            return line.sliced(name.size() + 1).simplified().split(' ').first();
    }
    return {};
}

Holdings holdings(const DownloadService &service)
{
    ::malloc_trim(0);
    return {
        .residentKilobytes = statusLine("VmRSS").toLongLong(),
        .heapKilobytes = qint64(::mallinfo2().uordblks / 1024),
        .descriptors = QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size(),
        .threads = statusLine("Threads").toInt(),
        .objects = service.findChildren<QObject *>().size(),
        .temporaryFiles = QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size()};
}

void print(const char *when, const Holdings &held)
{
    qInfo(
        "%s: %lld KiB resident, %lld KiB of heap in use, %lld descriptors, %lld threads, %lld objects of the "
        "service, "
        "%lld temporary files",
        when,
        held.residentKilobytes,
        held.heapKilobytes,
        qint64(held.descriptors),
        qint64(held.threads),
        qint64(held.objects),
        qint64(held.temporaryFiles));
}

} // namespace

class tst_Soak final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_environment = std::make_unique<IdeEnvironment>(); }
    void updateCyclesLeaveNothingBehind();
    void cleanupTestCase()
    {
        quitApplication();
        m_environment.reset();
    }

private:
    std::unique_ptr<IdeEnvironment> m_environment;
};

void tst_Soak::updateCyclesLeaveNothingBehind()
{
    QThreadPool::globalInstance()->setMaxThreadCount(EXAMPLES);
    DemoServer server;
    QSet<QString> names;
    for (int i = 0; i < EXAMPLES; ++i)
        names.insert(versionedName(i));

    Holdings before;
    Holdings after;
    int cycles = 0;
    for (int i = 0; i < SERVICES; ++i) {
        m_environment->reset();
        m_environment->set(
            "Repositories", QStringList{QString(REPOSITORY) + '|' + server.groupUrl().toString() + '|'});
        publish(&server, EXAMPLES, ++cycles, FILES);
        DownloadService service(nullptr);
        QSignalSpy updated(&service, &DownloadService::updated);
        QTRY_COMPARE_WITH_TIMEOUT(updated.size(), 1 + EXAMPLES, PATIENCE);

        for (int k = 1; k < CYCLES_OF_A_SERVICE; ++k) {
            publish(&server, EXAMPLES, ++cycles, FILES);
            updated.clear();
            service.findRepository(REPOSITORY)->reset();
            QTRY_COMPARE_WITH_TIMEOUT(updated.size(), 1, PATIENCE);
            service.save(REPOSITORY, names);
            QTRY_COMPARE_WITH_TIMEOUT(updated.size(), 1 + EXAMPLES, PATIENCE);
        }
        for (int k = 0; k < EXAMPLES; ++k) {
            QCOMPARE(installed(k, FILES).fault, QString());
            QCOMPARE(installed(k, FILES).version, cycles);
        }
        QTRY_COMPARE_WITH_TIMEOUT(markedCopies(), QStringList(), PATIENCE); // they go in the background
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        server.clearRequests();
        if (cycles == WARM_UP)
            before = holdings(service);
        after = holdings(service);
    }

    print("after the warm-up", before);
    print("at the end", after);
    qInfo("%d cycles, %d installations", cycles, cycles * EXAMPLES);
    QCOMPARE(cycles, SERVICES * CYCLES_OF_A_SERVICE);
    QCOMPARE(after.objects, before.objects);
    QCOMPARE(after.temporaryFiles, before.temporaryFiles);
    QCOMPARE_LE(after.threads, before.threads + EXAMPLES);
    QCOMPARE_LE(after.descriptors, before.descriptors + 8);
    // What grows meanwhile is the server, which is in this process: it remembers ports and names of archives.
    if (IS_FREED_MEMORY_FREE) {
        QCOMPARE_LE(after.heapKilobytes, before.heapKilobytes + 1024);
        QCOMPARE_LE(after.residentKilobytes, before.residentKilobytes + 8 * 1024);
    }
}

QTEST_GUILESS_MAIN(tst_Soak)

#include "tst_soak.moc"
