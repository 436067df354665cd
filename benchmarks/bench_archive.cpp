// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What lies between an archive's arrival and its unpacking.
// Usage: bench_archive FILE

#include "measure.h"
#include "steps.h"

#include <QCoreApplication>

using namespace Varnel;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QFile file(application.arguments().value(1));
    if (!file.open(QIODevice::ReadOnly))
        return EXIT_FAILURE;
    const QByteArray archive = file.readAll();

    const double before = Bench::threadSeconds();
    const bool isAccepted = Bench::vet(archive);
    Bench::print({{"seconds", Bench::threadSeconds() - before}});
    return isAccepted ? EXIT_SUCCESS : EXIT_FAILURE;
}
