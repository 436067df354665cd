// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// One update by the plug-in's service in a bare process, from its start to the last example.
// Usage: bench_install URL EXAMPLES [split]
//        split: then takes the steps once more, to tell where the processor time goes

#include "common/ideenvironment.h"
#include "measure.h"
#include "plugin/constants.h"
#include "processorsplit.h"
#include "service/downloadservice.h"

#include <QCoreApplication>

using namespace Varnel;
using Varnel::Internal::DownloadService;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const int examples = arguments.value(2).toInt();
    const bool isSplit = arguments.value(3) == "split";
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
        QJsonObject result{
            {"seconds", seconds},
            {"peakMemory", Bench::peakMemory()},
            {"mainThread", mainSeconds},
            {"workers", Bench::processorSeconds(RUSAGE_SELF) - processor - mainSeconds},
            {"unarchivers", Bench::processorSeconds(RUSAGE_CHILDREN)}};
        if (isSplit)
            result.insert("steps", Bench::processorSplit("Demo", service.examples("Demo")));
        Bench::print(result);
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
