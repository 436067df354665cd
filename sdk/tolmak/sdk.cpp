// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tolmak/sdk.h"

// Both answers are fixed when this stand-in is built, because there is no SDK to ask.
namespace Tolmak::Sdk {

QString osVariant(TextStyle)
{
    return QStringLiteral(TOLMAK_OS_VARIANT);
}

ReleaseInfo releaseInfo()
{
    return {QStringLiteral(TOLMAK_SDK_RELEASE)};
}

} // namespace Tolmak::Sdk
