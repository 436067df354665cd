// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/** Names that several folders share. Keys are relative to SETTINGS_GROUP unless they carry a group. */
namespace Varnel::Constants {

inline constexpr char SETTINGS_GROUP[] = "Varnel";
inline constexpr char REPOSITORIES[] = "Repositories";
inline constexpr char UPDATES_TIMEOUT[] = "UpdatesCheckTimeoutDays";
inline constexpr char UPDATES_CHECKED[] = "UpdatesCheckedDate";
inline constexpr char SERVICE_RESTART_TIMEOUT[] = "ServiceRestartTimeoutSeconds";

inline constexpr char INSTALLED_EXAMPLES[] = "Help/InstalledExamples";
inline constexpr char OVERRIDE_LANGUAGE[] = "General/OverrideLanguage";

inline constexpr char MANIFEST_FILE[] = "examples-manifest.xml";
/** Read by the Welcome screen as well, and written by nobody. */
inline constexpr char OTHER_MANIFEST_FILE[] = "demos-manifest.xml";
inline constexpr char PICTURE_FILE[] = "example-icon.png";
inline constexpr char ARCHIVE_EXTENSION[] = ".tar.gz";

inline constexpr char OPTIONS_CATEGORY[] = "H.Help";
inline constexpr char OPTIONS_PAGE_ID[] = "Zel.Varnel.Plugin.Settings.Page";

} // namespace Varnel::Constants
