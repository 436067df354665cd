// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Resets clients and quits the application at the very instants at which workers and main thread hand things
// over to each other. Each trial is a process of its own, forked before anything has threads, because an
// application quits but once; what a trial does follows from its seed.
//
// Usage: handover [--seconds N] [--seed N [--trials N]]

#include "client/downloadpool.h"
#include "client/repository.h"

#include "server/demoserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHash>
#include <QRandomGenerator>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Varnel;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Internal::DownloadWait;
using Internal::Repository;

namespace {

constexpr int WORKERS = 64;       // a reset costs those that wait: they end with the application only
constexpr int AT_A_TIME = 3;      // trials, which wait more than they work
constexpr int EXAMPLES = 4;       // in the repository
constexpr int WAITS = 100;        // that are finished as they begin, in each trial
constexpr unsigned PATIENCE = 30; // seconds after which a trial counts as stuck
constexpr auto DEFAULT_DURATION = 25s;
constexpr auto LONG_DURATION = 600s;

// A GIF of one pixel.
const QByteArray PICTURE
    = QByteArrayLiteral("GIF89a\1\0\1\0\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;");

/** What all trials together did; in memory that the processes share. */
struct Figures
{
    std::atomic<int> waits = 0;
    std::atomic<int> resets = 0;
    std::atomic<int> resetsWhileAnnouncing = 0;
    std::atomic<int> announced = 0;
    std::atomic<int> quits = 0;
    std::atomic<int> quitsWhileDownloading = 0;
};

Figures *figures = nullptr;
int brokenPromises = 0; // in this process

void check(bool isTrue, const char *promise)
{
    if (isTrue)
        return;
    std::fprintf(stderr, "FAIL: %s\n", promise);
    ++brokenPromises;
}

void spin(std::chrono::microseconds time)
{
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
    }
}

// Destroyed after main(), as the plug-in's service is.
std::unique_ptr<Repository> repositoryUntilExit;

class Trial final : public QObject
{
public:
    explicit Trial(quint32 seed)
        : m_random(seed)
        , m_resetsLeft(m_random.bounded(1, 40))
    {
        for (int i = 0; i < EXAMPLES; ++i) {
            Demo::Project project;
            project.id = i + 1;
            project.path = project.name = QStringLiteral("p%1").arg(i);
            project.tree.addFile("CMakeLists.txt", "project(p)\n");
            if (i % 2 == 0) {
                project.avatarFile = QStringLiteral("p.png");
                project.avatar = PICTURE;
            }
            m_server.gitlab().addProject(project);
            m_names.insert(project.path);
        }
        // One archive in ten fails, so that workers are also let go of by the first of their two requests.
        if (m_random.bounded(10) == 0)
            m_server.answer(QStringLiteral("/api/v4/projects/1/repository/archive.tar.gz"), 500);
        connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { m_isOver = true; });
    }

    void run()
    {
        QThreadPool::globalInstance()->setMaxThreadCount(WORKERS);
        finishWaitsAsTheyBegin();

        repositoryUntilExit = std::make_unique<Repository>(m_server.groupUrl(), nullptr);
        connect(repositoryUntilExit.get(), &Repository::fetched, this, &Trial::onFetched);
        connect(repositoryUntilExit.get(), &Repository::downloaded, this, &Trial::onDownloaded);
        QCoreApplication::exec();

        ++figures->quits;
        if (m_pending > 0)
            ++figures->quitsWhileDownloading;
        check(!waitAfterQuitting(), "a wait that begins after quitting ends at once");
        if (m_random.bounded(2) == 0)
            repositoryUntilExit.reset();
    }

private:
    void finishWaitsAsTheyBegin()
    {
        Internal::watchForQuit();
        for (int i = 0; i < WAITS; ++i) {
            const auto wait = std::make_shared<DownloadWait>();
            const auto isTold = std::make_shared<std::atomic<int>>(-1);
            Internal::startOnDownloadPool([wait, isTold] {
                *isTold = wait->exec();
                isTold->notify_all();
            });
            spin(std::chrono::microseconds(m_random.bounded(60)));
            wait->finish();
            wait->finish();
            isTold->wait(-1);
            check(*isTold == 1, "a finished wait says that it was finished");
            ++figures->waits;
        }
    }

    static bool waitAfterQuitting() { return DownloadWait().exec(); }

    void onFetched()
    {
        check(!m_isOver, "nothing is listed after quitting");
        repositoryUntilExit->download(m_names);
        m_pending = EXAMPLES;
        m_announcementsUntilStrike = m_random.bounded(3) == 0 ? m_random.bounded(1, EXAMPLES + 1) : -1;
        // If so many announcements do not come, because archives fail or no worker is free, time will do.
        const int delay = m_announcementsUntilStrike == -1 ? m_random.bounded(8) : 60;
        QTimer::singleShot(delay, Qt::PreciseTimer, this, [this, strikes = m_strikes] {
            if (strikes == m_strikes)
                strikeInAMoment();
        });
    }

    void onDownloaded(const Repository::ExamplePtr &example)
    {
        check(!m_isOver, "nothing is announced after quitting");
        check(!example->data().isEmpty(), "an announced example has its archive");
        ++figures->announced;
        --m_pending;
        if (m_announcementsUntilStrike > 0 && --m_announcementsUntilStrike == 0) {
            ++figures->resetsWhileAnnouncing;
            strike();
        }
    }

    // The loop does not turn meanwhile, so that what the workers post is on its way when the client goes.
    void strikeInAMoment()
    {
        spin(std::chrono::microseconds(m_random.bounded(1500)));
        strike();
    }

    void strike()
    {
        ++m_strikes;
        if (m_resetsLeft-- > 0) {
            repositoryUntilExit->reset();
            ++figures->resets;
            return;
        }
        QCoreApplication::quit();
    }

    QRandomGenerator m_random;
    Demo::DemoServer m_server;
    QSet<QString> m_names;
    int m_resetsLeft;
    int m_pending = 0;
    int m_strikes = 0;
    int m_announcementsUntilStrike = -1; // negative: time decides
    bool m_isOver = false;
};

int runTrial(quint32 seed)
{
    ::alarm(PATIENCE); // its default is to end the process
    int argc = 1;
    char name[] = "handover";
    char *argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    Trial(seed).run();
    return brokenPromises == 0 ? 0 : 1;
}

void start(quint32 seed, QHash<pid_t, quint32> *running)
{
    const pid_t child = ::fork();
    if (child == 0)
        std::exit(runTrial(seed)); // with the static objects' destructors
    if (child > 0)
        running->insert(child, seed);
}

/** False, with a line that tells the seed, if the trial that ended next did not end as it should. */
bool waitForOne(QHash<pid_t, quint32> *running)
{
    int status = 0;
    const quint32 seed = running->take(::wait(&status));
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return true;
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM)
        std::fprintf(stderr, "FAIL: --seed %u: stuck for %u s\n", seed, PATIENCE);
    else if (WIFSIGNALED(status))
        std::fprintf(stderr, "FAIL: --seed %u: ended by signal %d\n", seed, WTERMSIG(status));
    else
        std::fprintf(stderr, "FAIL: --seed %u: exit code %d\n", seed, WEXITSTATUS(status));
    return false;
}

struct Plan
{
    quint32 seed = 0;
    int trials = -1; // as many as fit
    std::chrono::seconds duration = DEFAULT_DURATION;
};

// An application object may exist only in the trials, so the arguments are read without one.
Plan planFrom(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QCommandLineParser parser;
    parser.addOptions({{"seed", "", "n"}, {"trials", "", "n"}, {"seconds", "", "n"}});
    Plan plan;
    if (!parser.parse(arguments)) {
        std::fprintf(stderr, "%s\n", qPrintable(parser.errorText()));
        std::exit(2);
    }
    if (qEnvironmentVariableIsSet("VARNEL_LONG_TESTS"))
        plan.duration = LONG_DURATION;
    if (parser.isSet("seconds"))
        plan.duration = std::chrono::seconds(parser.value("seconds").toInt());
    plan.seed = parser.isSet("seed") ? parser.value("seed").toUInt() : quint32(::getpid()) * 1'000'003U;
    if (parser.isSet("seed"))
        plan.trials = parser.isSet("trials") ? parser.value("trials").toInt() : 1;
    return plan;
}

} // namespace

int main(int argc, char **argv)
{
    const Plan plan = planFrom(argc, argv);
    void *shared
        = ::mmap(nullptr, sizeof(Figures), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        return 2;
    figures = new (shared) Figures;

    std::printf("first seed %u, each trial adds one\n", plan.seed);
    std::fflush(stdout);
    const auto end = Clock::now() + plan.duration;
    QHash<pid_t, quint32> running;
    int trials = 0;
    int failed = 0;
    const auto isMoreToDo = [&] { return plan.trials < 0 ? Clock::now() < end : trials < plan.trials; };
    while (isMoreToDo() || !running.isEmpty()) {
        while (isMoreToDo() && running.size() < AT_A_TIME)
            start(plan.seed + quint32(trials++), &running);
        if (!running.isEmpty() && !waitForOne(&running))
            ++failed;
    }
    std::printf(
        "%d trials, %d failed; %d waits finished as they began; %d resets, %d strikes from within an "
        "announcement;\n"
        "%d examples announced; %d quits, %d of them while something was being downloaded\n",
        trials,
        failed,
        figures->waits.load(),
        figures->resets.load(),
        figures->resetsWhileAnnouncing.load(),
        figures->announced.load(),
        figures->quits.load(),
        figures->quitsWhileDownloading.load());
    return failed == 0 && figures->quits > 0 && figures->resets > 0 ? 0 : 1;
}
