// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Tells the thread sanitizer of hand-overs that it cannot see.

#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace Varnel::Internal {

/** What one thread prepares and another one takes up. */
enum class Handover {
    Job,   // of the download pool: from the main thread to a worker
    Reply, // to a worker's request: from the worker, with all that its handler holds, to the main thread
    Handler, // that will not run again: from its thread to the one that destroys it, a worker's or the network layer's
};

#if defined(__SANITIZE_THREAD__)
inline char handoverMarks[3];
#endif

/**
 * What this thread did so far comes before what another one does after its received(). Qt's libraries keep these
 * orders with locks of their own, but are not built for the sanitizer. Nothing in other builds.
 */
inline void handedOver([[maybe_unused]] Handover what)
{
#if defined(__SANITIZE_THREAD__)
    __tsan_release(&handoverMarks[int(what)]);
#endif
}

inline void received([[maybe_unused]] Handover what)
{
#if defined(__SANITIZE_THREAD__)
    __tsan_acquire(&handoverMarks[int(what)]);
#endif
}

/** Belongs to what a handler holds, so that the handler is received() before it is destroyed. */
struct HandlerEnd
{
    ~HandlerEnd() { received(Handover::Handler); }
};

} // namespace Varnel::Internal
