// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "plugin/logging.h"

namespace Varnel::Log {

const QLoggingCategory &main()
{
    static const QLoggingCategory category("zel.varnel.plugin", QtWarningMsg);
    return category;
}

const QLoggingCategory &api()
{
    static const QLoggingCategory category("zel.varnel.plugin.api", QtWarningMsg);
    return category;
}

const QLoggingCategory &arch()
{
    static const QLoggingCategory category("zel.varnel.plugin.archive", QtWarningMsg);
    return category;
}

const QLoggingCategory &repository()
{
    static const QLoggingCategory category("zel.varnel.plugin.repository", QtWarningMsg);
    return category;
}

const QLoggingCategory &service()
{
    static const QLoggingCategory category("zel.varnel.plugin.service", QtWarningMsg);
    return category;
}

} // namespace Varnel::Log
