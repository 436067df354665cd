// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the first look for TLS costs a process: the loading of its library.

#include "measure.h"

#include <QCoreApplication>
#include <QSslSocket>

using namespace Varnel;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Bench::Stopwatch watch;
    const bool isSupported = QSslSocket::supportsSsl();
    Bench::print({{"seconds", watch.seconds()}});
    return isSupported ? EXIT_SUCCESS : EXIT_FAILURE;
}
