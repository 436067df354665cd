// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <utils/mimeutils.h>

namespace Varnel::Internal {

/**
 * For programs that have no IDE around them: the unarchiver is chosen by a file's type, which the IDE knows
 * when all its plug-ins are loaded. Main thread, once.
 */
inline void learnFileTypes()
{
    using Phase = Utils::MimeStartupPhase;
    for (const Phase phase :
         {Phase::PluginsLoading,
          Phase::PluginsInitializing,
          Phase::PluginsDelayedInitializing,
          Phase::UpAndRunning})
        Utils::setMimeStartupPhase(phase);
}

} // namespace Varnel::Internal
