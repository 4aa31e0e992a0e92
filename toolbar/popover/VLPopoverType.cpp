#include "toolbar/popover/VLPopoverType.h"

#include "editor/VLEditGraphType.h"

uint64_t popoverTypeByGraphType(int64_t graphType) {
    switch (graphType) {
        case VLEditGraphTypeRoundRect:
        case VLEditGraphTypeOval:
        case VLEditGraphTypeArrow:
        case VLEditGraphTypeCurve:
            return VLPopoverTypeLineWidth | VLPopoverTypeLineColor;
        case VLEditGraphTypeMosaicPen:
            return VLPopoverTypeLineWidth;
        case VLEditGraphTypeText:
        case VLEditGraphTypeTag:
            return VLPopoverTypeFontSize | VLPopoverTypeLineColor;
        default:
            return VLPopoverTypeNone;
    }
}
