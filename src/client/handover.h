// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Tells the thread sanitizer of hand-overs that it cannot see.

#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace Varnel::Internal {

/**
 * What this thread did so far comes before what follows the receivedFrom() of the same address. Qt's libraries keep
 * such orders with locks of their own, but are not built for the sanitizer. Nothing in other builds.
 */
inline void handedOver([[maybe_unused]] void *address)
{
#if defined(__SANITIZE_THREAD__)
    __tsan_release(address);
#endif
}

inline void receivedFrom([[maybe_unused]] void *address)
{
#if defined(__SANITIZE_THREAD__)
    __tsan_acquire(address);
#endif
}

} // namespace Varnel::Internal
