// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in's manifest template, which is a resource of its library.

#pragma once

#include <QtClassHelperMacros>

namespace Varnel::Test {

/** Takes the template away while it lives. */
class WithoutBuiltInTemplate final
{
public:
    WithoutBuiltInTemplate();
    ~WithoutBuiltInTemplate();
    Q_DISABLE_COPY_MOVE(WithoutBuiltInTemplate)
};

} // namespace Varnel::Test
