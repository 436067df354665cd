// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Choosing the file to open in an unpacked tree.
// Usage: bench_search DIRECTORY

#include "measure.h"
#include "steps.h"

#include <QCoreApplication>

using namespace Varnel;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const double before = Bench::threadSeconds();
    const QString file = Bench::chooseFile(application.arguments().value(1));
    Bench::print({{"seconds", Bench::threadSeconds() - before}, {"file", file}});
    return EXIT_SUCCESS;
}
