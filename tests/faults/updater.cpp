// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in's service in a process of its own, which can be killed: one update, then it ends.
//
// Usage: updater EXAMPLES

#include "common/ideenvironment.h"
#include "faults/versions.h"
#include "service/downloadservice.h"

#include <QCoreApplication>
#include <QTimer>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const int examples = application.arguments().value(1).toInt();
    Varnel::Test::IdeEnvironment environment;
    Varnel::Internal::DownloadService service(nullptr);

    // What an example was before goes in the background.
    QTimer waiting;
    QObject::connect(&waiting, &QTimer::timeout, &application, [] {
        if (Varnel::Test::markedCopies().isEmpty())
            QCoreApplication::quit();
    });
    // Once after the listing, then once for each example.
    int updates = 0;
    QObject::connect(&service, &Varnel::Internal::DownloadService::updated, &waiting, [&] {
        if (++updates == 1 + examples)
            waiting.start(std::chrono::milliseconds(5));
    });
    return QCoreApplication::exec();
}
