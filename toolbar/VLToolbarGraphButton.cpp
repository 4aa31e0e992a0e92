#include "toolbar/VLToolbarGraphButton.h"

#include "editor/VLEditGraphType.h"

QImage VLToolbarGraphButton::selectedImageOfType(int64_t type) const {
    return themedImage(VLEditGraphTypeString(type), "_selected");
}

QImage VLToolbarGraphButton::hoverImageOfType(int64_t type) const {
    return themedImage(VLEditGraphTypeString(type), "_hover");
}

QImage VLToolbarGraphButton::pressedImageOfType(int64_t type) const {
    return themedImage(VLEditGraphTypeString(type), "_pressed");
}

QImage VLToolbarGraphButton::normalImageOfType(int64_t type) const {
    return themedImage(VLEditGraphTypeString(type), "_normal");
}

const char* VLToolbarGraphButton::titleKey() const {
    switch (type()) {
        case VLEditGraphTypeRoundRect:
            return "Insert Rectangle";
        case VLEditGraphTypeOval:
            return "Insert Ellipse";
        case VLEditGraphTypeArrow:
            return "Insert Arrow";
        case VLEditGraphTypeText:
            return "Insert Characters";
        case VLEditGraphTypeCurve:
            return "Brush";
        case VLEditGraphTypeMosaicPen:
            return "Mosaic";
        case VLEditGraphTypeTag:
            return "Label Notes";
        default:
            return nullptr;
    }
}
