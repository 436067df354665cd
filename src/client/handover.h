// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Tells the thread sanitizer of hand-overs that it cannot see.

#pragma once

#include <QScopeGuard>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace Varnel::Internal {

/**
 * Rides along in what one thread hands to another: the last member of a job, the last capture of a handler,
 * the last field of a signal's argument. Making, copying or moving it gives; using it takes first,
 * and gives back in the end; destroying it takes. Qt's libraries keep these orders with
 * locks of their own, but are not built for the sanitizer. Each object is a mark of its own, told by its
 * address alone, so that it can be taken before anything of the hand-over is read, and hides nothing of any
 * other. Nothing in other builds.
 */
class Handover final
{
public:
    Handover() { give(); }
    Handover(const Handover & /*other*/) { give(); }
    Handover &operator=(const Handover &) = delete;
    ~Handover() { take(); }

    /** What this thread did so far comes before what another one does after its take(). */
    void give() const
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(const_cast<Handover *>(this));
#endif
    }

    void take() const
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(const_cast<Handover *>(this));
#endif
    }

    /** Takes, and gives back when what is returned goes. */
    [[nodiscard]] auto hold() const
    {
        take();
        return qScopeGuard([this] { give(); });
    }
};

} // namespace Varnel::Internal
