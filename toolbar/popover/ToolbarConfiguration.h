#pragma once

#include <QColor>
#include <cstdint>
#include <optional>

#include "platform/base/UserDefaults.h"

/// What the user chose for a tool. An attribute that was never chosen, or that the store holds in
/// no usable form, is absent: the pickers have defaults.
struct ToolAttributes {
    std::optional<uint64_t> width;
    QColor color;
    std::optional<uint64_t> fontSize;
};

/// Remembers each tool's attributes in the user's preferences, between captures and processes.
///
/// Every tool has a dictionary of its own under a key that ends in its number, with just the
/// attributes that its popover offers. Widths and sizes are whole numbers from 1 to 500; anything
/// else reads as absent. A colour is text, "#rrggbb" or, where it is translucent, "#aarrggbb". The
/// Tern theme, whose pickers offer other values, has keys of its own. Main thread.
class ToolbarConfiguration {
 public:
    explicit ToolbarConfiguration(
        vorla::UserDefaults& defaults = vorla::UserDefaults::standardUserDefaults())
        : defaults_(defaults) {}

    /// The stored attributes among those of the tool's pickers.
    [[nodiscard]] ToolAttributes attributesOfType(int64_t graphType) const;

    /// Replaces the tool's dictionary by the given attributes among those of its pickers, and
    /// writes it to the file. Does nothing for a type without pickers.
    void saveAttributes(const ToolAttributes& attributes, int64_t graphType);

 private:
    vorla::UserDefaults& defaults_;
};
