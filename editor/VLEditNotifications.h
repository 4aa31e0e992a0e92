#pragma once

#include <any>
#include <map>
#include <optional>
#include <string>

/// Posted by an edit view when an item gets the focus. The object is a `VLNotificationDictionary`
/// with all three keys below; an item without a colour leaves the last one out.
inline constexpr const char* VLNotificationFocusItemDidChange = "notificationfocusitemdidchange";
/// Posted by an edit view at a press that begins a new item. The object is a
/// `VLNotificationDictionary` with `VLFocusItemGraphType`, the tool in use.
inline constexpr const char* VLNotificationBeginCreateItem = "notificationbegincreateitem";

/// `int64_t`, a VLEditGraphType.
inline constexpr const char* VLFocusItemGraphType = "focusitemgraphtype";
/// `double`, the line width in points; the font size of items that hold text.
inline constexpr const char* VLFocusItemLineWidth = "focusitemlinewidth";
/// `QColor`.
inline constexpr const char* VLFocusItemLineColor = "focusitemlinecolor";

/// What a broadcast of an edit view carries as its object.
using VLNotificationDictionary = std::map<std::string, std::any>;

/// The value under a key; none when it is missing or of another type.
template <typename T>
std::optional<T> notificationValue(const VLNotificationDictionary& dictionary, const char* key) {
    const auto found = dictionary.find(key);
    const T* value = found == dictionary.end() ? nullptr : std::any_cast<T>(&found->second);
    return value ? std::optional<T>(*value) : std::nullopt;
}
