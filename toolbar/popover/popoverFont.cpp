#include "toolbar/popover/popoverFont.h"

#include "theme/VLCaptureThemeManager.h"

QFont popoverFont(double size) {
    return VLThemedFont{{}, size}.font();
}
