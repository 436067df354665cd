// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/** What Varnel needs to know of the installed SDK. All calls may be made at any time from any thread. */
namespace Tolmak::Sdk {

enum class TextStyle {
    Plain, ///< as in running text
};

struct ReleaseInfo
{
    QString name; ///< stable for an installation and usable as a directory name
};

/** Display name of the operating-system variant that the SDK targets. */
[[nodiscard]] QString osVariant(TextStyle style = TextStyle::Plain);

[[nodiscard]] ReleaseInfo releaseInfo();

} // namespace Tolmak::Sdk
