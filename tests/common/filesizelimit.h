// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that is full, as far as one file can tell.

#pragma once

#include <QtClassHelperMacros>
#include <QtTypes>

#include <sys/resource.h>

namespace Varnel::Test {

/** No file of this process grows beyond @p bytes while it lives: writing more fails, as on a full disk. */
class FileSizeLimit final
{
public:
    explicit FileSizeLimit(qint64 bytes);
    ~FileSizeLimit();
    Q_DISABLE_COPY_MOVE(FileSizeLimit)

private:
    rlimit m_before{};
    void (*m_handlerBefore)(int) = nullptr;
};

} // namespace Varnel::Test
