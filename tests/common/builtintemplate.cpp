// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/builtintemplate.h"

#include <QResource>

// Outside of any namespace, as the functions behind the macros are.

static void removeBuiltInTemplate()
{
    Q_CLEANUP_RESOURCE(varnel_plugin);
}

static void restoreBuiltInTemplate()
{
    Q_INIT_RESOURCE(varnel_plugin);
}

namespace Varnel::Test {

WithoutBuiltInTemplate::WithoutBuiltInTemplate()
{
    removeBuiltInTemplate();
}

WithoutBuiltInTemplate::~WithoutBuiltInTemplate()
{
    restoreBuiltInTemplate();
}

} // namespace Varnel::Test
