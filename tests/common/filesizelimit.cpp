// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/filesizelimit.h"

#include <QtLogging>

#include <signal.h>

namespace Varnel::Test {

FileSizeLimit::FileSizeLimit(qint64 bytes)
{
    if (::getrlimit(RLIMIT_FSIZE, &m_before) != 0)
        qFatal("cannot read the limit of files");
    // Else the process would end instead of its write.
    m_handlerBefore = ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{rlim_t(bytes), m_before.rlim_max};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot limit files");
}

FileSizeLimit::~FileSizeLimit()
{
    ::setrlimit(RLIMIT_FSIZE, &m_before);
    ::signal(SIGXFSZ, m_handlerBefore);
}

} // namespace Varnel::Test
