// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One update by the plug-in's service in a bare process, from its start to the last example.
// Usage: bench_install URL EXAMPLES

#include "common/ideenvironment.h"
#include "measure.h"
#include "plugin/constants.h"
#include "service/downloadservice.h"

#include <QCoreApplication>

using namespace Varnel;
using Varnel::Internal::DownloadService;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const int examples = arguments.value(2).toInt();
    Test::IdeEnvironment environment;
    environment.set(Constants::REPOSITORIES, QStringList{"Demo|" + arguments.value(1) + '|'});

    const double processor = Bench::processorSeconds(RUSAGE_SELF);
    const double mainThread = Bench::threadSeconds();
    const Bench::Stopwatch watch;
    DownloadService service(nullptr);

    // Once after the listing, then once for each example.
    int updates = 0;
    QObject::connect(&service, &DownloadService::updated, &application, [&] {
        if (++updates < 1 + examples)
            return;
        const double seconds = watch.seconds();
        const double mainSeconds = Bench::threadSeconds() - mainThread;
        Bench::print(
            {{"seconds", seconds},
             {"peakMemory", Bench::peakMemory()},
             {"mainThread", mainSeconds},
             {"workers", Bench::processorSeconds(RUSAGE_SELF) - processor - mainSeconds},
             {"unarchivers", Bench::processorSeconds(RUSAGE_CHILDREN)}});
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
