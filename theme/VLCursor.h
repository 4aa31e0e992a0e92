#pragma once

#include <QCursor>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>

/// Shapes of the pointer. The numbers are what the surfaces ask for: never renumber.
enum VLCursorType : uint64_t {
    VLCursorTypeArrow = 0,
    VLCursorTypeMove = 1,
    VLCursorTypeText = 2,
    VLCursorTypeSightingTelescope = 3,
    VLCursorTypeResize0 = 4,
    VLCursorTypeResize45 = 5,
    VLCursorTypeResize90 = 6,
    VLCursorTypeResize135 = 7,
    VLCursorTypeRotate0 = 8,
    VLCursorTypeRotate45 = 9,
    VLCursorTypeRotate90 = 10,
    VLCursorTypeRotate135 = 11,
    VLCursorTypeRotate180 = 12,
    VLCursorTypeRotate225 = 13,
    VLCursorTypeRotate270 = 14,
    VLCursorTypeRotate315 = 15,
};

/// The table of cursors, each made from the theme's drawing at its first use and kept, also when
/// the theme changes. Main thread.
class VLCursor {
 public:
    static VLCursor& sharedInstance();
    /// Drops the instance, and with it all cursors made so far.
    static void clear();

    /// The arrow for a type outside the table, and where the theme lacks the drawing.
    const QCursor& cursorOfType(uint64_t type);

    /// The type last set.
    [[nodiscard]] uint64_t cursorType() const { return cursorType_; }
    /// Makes the cursor the current one in the place of the one set before.
    void setCursorType(uint64_t type);
    /// Shows the arrow, without taking anything off the cursor stack.
    void restoreSystemCursor();

 private:
    static std::unique_ptr<VLCursor>& instance();
    [[nodiscard]] static QCursor getCursorWithImageName(const char* name);

    std::array<std::optional<QCursor>, 16> cursors_;
    uint64_t cursorType_ = VLCursorTypeArrow;
    std::optional<uint64_t> shownType_;
};
