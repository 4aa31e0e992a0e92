#pragma once

#include <vorla/VLNotifications.h>

#include <QColor>
#include <optional>

// What an edit view's broadcasts carry: `VLNotificationFocusItemDidChange` all three keys (an item
// without a colour leaves the last one out), `VLNotificationBeginCreateItem` the tool in use.

/// A colour as broadcasts carry it.
inline VLNotificationColor notificationColor(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

/// The value under a key; none when it is missing or of another type.
template <typename T>
std::optional<T> notificationValue(const VLNotificationDictionary& dictionary, const char* key) {
    const auto found = dictionary.find(key);
    const T* value = found == dictionary.end() ? nullptr : std::get_if<T>(&found->second);
    return value ? std::optional<T>(*value) : std::nullopt;
}

template <>
inline std::optional<QColor> notificationValue<QColor>(const VLNotificationDictionary& dictionary,
                                                       const char* key) {
    const auto color = notificationValue<VLNotificationColor>(dictionary, key);
    if (!color) return std::nullopt;
    const auto part = [](double value) { return static_cast<float>(value); };
    return QColor::fromRgbF(part(color->red), part(color->green), part(color->blue),
                            part(color->alpha));
}
