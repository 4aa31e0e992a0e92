#include "theme/VLCursor.h"

#include <QPixmap>

#include "platform/base/raii.h"
#include "platform/view/CursorStack.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

/// Keys of the theme's drawings by type; the platform has the arrow and the text cursor itself.
constexpr std::array<const char*, 16> imageNames = {nullptr,
                                                    "move_cursor",
                                                    nullptr,
                                                    "sightingTelescopeCursor",
                                                    "resize_cursor_0",
                                                    "resize_cursor_45",
                                                    "resize_cursor_90",
                                                    "resize_cursor_135",
                                                    "rotate_cursor_0",
                                                    "rotate_cursor_45",
                                                    "rotate_cursor_90",
                                                    "rotate_cursor_135",
                                                    "rotate_cursor_180",
                                                    "rotate_cursor_225",
                                                    "rotate_cursor_270",
                                                    "rotate_cursor_315"};

}  // namespace

std::unique_ptr<VLCursor>& VLCursor::instance() {
    static vorla::NoDestructor<std::unique_ptr<VLCursor>> shared;
    return *shared;
}

VLCursor& VLCursor::sharedInstance() {
    if (!instance()) instance() = std::make_unique<VLCursor>();
    return *instance();
}

void VLCursor::clear() {
    instance().reset();
}

QCursor VLCursor::getCursorWithImageName(const char* name) {
    const QImage image = VLCaptureThemeManager::sharedInstance().themedImageWithKey(name);
    if (image.isNull()) return QCursor(Qt::ArrowCursor);
    const QSizeF points = image.deviceIndependentSize();
    return QCursor(QPixmap::fromImage(image), static_cast<int>(points.width() / 2.0),
                   static_cast<int>(points.height() / 2.0));
}

const QCursor& VLCursor::cursorOfType(uint64_t type) {
    if (type >= cursors_.size()) type = VLCursorTypeArrow;
    std::optional<QCursor>& cursor = cursors_[type];
    if (!cursor) {
        if (type == VLCursorTypeText)
            cursor.emplace(Qt::IBeamCursor);
        else if (!imageNames[type])
            cursor.emplace(Qt::ArrowCursor);
        else
            cursor = getCursorWithImageName(imageNames[type]);
    }
    return *cursor;
}

void VLCursor::setCursorType(uint64_t type) {
    auto& stack = vorla::CursorStack::shared();
    if (shownType_ != type || stack.isEmpty()) {
        if (stack.isEmpty())
            stack.push(cursorOfType(type));
        else
            stack.set(cursorOfType(type));
    }
    shownType_ = type;
    cursorType_ = type;
}

void VLCursor::restoreSystemCursor() {
    cursorType_ = VLCursorTypeArrow;
    shownType_.reset();
    vorla::CursorStack::shared().set(Qt::ArrowCursor);
}
