#pragma once

#include <vorla/export.h>

#include <string>
#include <string_view>

/// @file
/// Facts of the host's product, laid over the information dictionary `Info.json` of the resources.

/// Chooses the theme: "4000", "3000", "1000" or "2000"; any other value the default theme.
inline constexpr std::string_view VLInfoKeySupplyID = "SupplyID";
/// HTTPS address without a path to which usage statistics go; absent: counted, never sent.
inline constexpr std::string_view VLInfoKeyStatisticsURL = "StatisticsURL";
/// HTTPS address without a path to which crash reports go; absent: written, never sent.
inline constexpr std::string_view VLInfoKeyCrashSyncURL = "CrashSyncURL";
/// The page that a click on the introduction opens.
inline constexpr std::string_view VLInfoKeyIntroduceURL = "IntroduceURL";

/// Lays a value (UTF-8) over the information dictionary for the life of the process. Call it before
/// the first capture or service starts: what has been read already stays. Any thread.
VL_EXPORT void VLSetInfoValue(std::string_view key, std::string value);

/// The value of a key as text, numbers in decimal; empty when absent. Any thread.
VL_EXPORT std::string VLInfoValue(std::string_view key);

/// Names the folder of the framework's resources (themes in its "ThemeResources", string tables,
/// the sound, `Info.json`) for hosts that keep it elsewhere than next to the library, whatever the
/// environment variable VORLA_RESOURCES says. An absolute path, UTF-8. Call it before anything else
/// of the framework: what has been read already stays, and values that were laid over the
/// dictionary do too. False, with nothing changed and a line in the log, where there is no such
/// folder. Any thread.
VL_EXPORT bool VLSetResourceFolder(const std::string& path);

/// The folder of the framework's resources, without a trailing slash, UTF-8; it need not exist. Any
/// thread.
VL_EXPORT std::string VLResourceFolder();
