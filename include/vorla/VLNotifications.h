#pragma once

#include <vorla/export.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>

/// @file
/// The named broadcasts of a capture session. All are posted on the main thread.

/// A surface got its first press of a session.
inline constexpr const char* VLNotificationSelectDidBegin = "VLNotificationSelectDidBegin";
/// A selection was confirmed on one screen: its toolbar comes up, the other screens drop out.
inline constexpr const char* VLNotificationCaptureDidConfirmSelection =
    "VLNotificationCaptureDidConfirmSelection";
/// Annotating begins: a window was clicked, or a tool is used for the first time.
inline constexpr const char* NotificationEditDidBegin = "notificationeditdidbegin";
/// The user is done. A true flag says that a file is to be saved.
inline constexpr const char* NotificationCaptureDidFinish = "notificationcapturedidfinish";
/// The user pressed the Cancel button. The flag is false.
inline constexpr const char* NotificationCaptureDidCancel = "notificationcapturedidcancel";
/// The user turns to the recorder: selections are cleared.
inline constexpr const char* VLNotificationPrepareToRecord = "VLNotificationPrepareToRecord";
/// Another theme is in force.
inline constexpr const char* VLCaptureNotificationForChangeTheme =
    "VLCaptureNotificationForChangeTheme";
/// Another annotation has the focus, or none. Carries the keys below.
inline constexpr const char* VLNotificationFocusItemDidChange = "notificationfocusitemdidchange";
/// The user begins to draw an annotation. Carries `VLFocusItemGraphType`.
inline constexpr const char* VLNotificationBeginCreateItem = "notificationbegincreateitem";

/// Integer: the kind of annotation, 0 none, 1 rectangle, 2 ellipse, 3 arrow, 4 text, 5 pen,
/// 6 mosaic, 7 tag.
inline constexpr const char* VLFocusItemGraphType = "focusitemgraphtype";
/// Number: the line's width in points, for text and tags the size of the font.
inline constexpr const char* VLFocusItemLineWidth = "focusitemlinewidth";
/// Colour.
inline constexpr const char* VLFocusItemLineColor = "focusitemlinecolor";

/// A colour by its parts, each from 0 to 1, not premultiplied.
struct VLNotificationColor {
    double red = 0.0;    ///< its red part
    double green = 0.0;  ///< its green part
    double blue = 0.0;   ///< its blue part
    double alpha = 1.0;  ///< how opaque it is

    /// Whether all parts are the same.
    friend bool operator==(const VLNotificationColor&, const VLNotificationColor&) = default;
};

/// What a broadcast carries by key.
using VLNotificationDictionary =
    std::map<std::string, std::variant<int64_t, double, VLNotificationColor>, std::less<>>;

/// What a broadcast carries: nothing (or a sender that is of no use outside), a flag, or values.
using VLNotificationObject = std::variant<std::monostate, bool, VLNotificationDictionary>;

/// Hears a broadcast. It may run a nested loop, post, add and remove observers.
using VLNotificationHandler =
    std::function<void(std::string_view name, const VLNotificationObject& object)>;

/// Calls `handler` at each broadcast of that name, on the poster's thread, in the order of adding.
/// Returns a ticket, never 0. Any thread.
VL_EXPORT uint64_t VLAddNotificationObserver(std::string_view name, VLNotificationHandler handler);

/// Ends an observation; nothing happens for a ticket that is not in force. A handler that runs on
/// another thread at that moment may still finish. Any thread.
VL_EXPORT void VLRemoveNotificationObserver(uint64_t ticket);
