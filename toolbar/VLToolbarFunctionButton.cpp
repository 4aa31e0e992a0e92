#include "toolbar/VLToolbarFunctionButton.h"

#include "toolbar/VLToolbarFunctionButtonType.h"

QImage VLToolbarFunctionButton::selectedImageOfType(int64_t type) const {
    return themedImage(VLToolbarFunctionButtonTypeString(type), "_selected");
}

QImage VLToolbarFunctionButton::hoverImageOfType(int64_t type) const {
    return themedImage(VLToolbarFunctionButtonTypeString(type), "_hover");
}

QImage VLToolbarFunctionButton::pressedImageOfType(int64_t type) const {
    return themedImage(VLToolbarFunctionButtonTypeString(type), "_pressed");
}

QImage VLToolbarFunctionButton::normalImageOfType(int64_t type) const {
    return themedImage(VLToolbarFunctionButtonTypeString(type), "_normal");
}

QImage VLToolbarFunctionButton::disabledImageOfType(int64_t type) const {
    return themedImage(VLToolbarFunctionButtonTypeString(type), "_disabled");
}

const char* VLToolbarFunctionButton::titleKey() const {
    switch (type()) {
        case VLToolbarFunctionButtonTypeUndo:
            return "Undo";
        case VLToolbarFunctionButtonTypeSave:
            return "Save";
        case VLToolbarFunctionButtonTypeCancel:
            return "Exist";
        case VLToolbarFunctionButtonTypeOK:
            return "Finish";
        default:
            return nullptr;
    }
}

void VLToolbarFunctionButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (isDisabled())
        drawImageOf(painter, Disabled);
    else if (isPressed())
        drawFirst(painter, {Pressed, Selected, Normal});
    else if (isHover())
        drawFirst(painter, {Hover, Normal});
    else
        drawFirst(painter, {Normal});
}
