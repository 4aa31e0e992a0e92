#pragma once

/// @file
/// Owner names of windows that the selection treats in a way of its own, UTF-8.

inline constexpr const char* VLDESKTOP = "Desktop";  ///< stands for the whole screen
inline constexpr const char* VLDOCK = "Dock";        ///< panels and docks: never snapped to
inline constexpr const char* VLGoogleChrome = "Google Chrome";  ///< a browser
inline constexpr const char* VLIbisBrowser = "Ibis浏览器";      ///< a browser
