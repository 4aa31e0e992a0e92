#include "toolbar/popover/VLPopoverFontSizeView.h"

void VLPopoverFontSizeView::configAppearanceAndLayout() {
    setFrame(VLRect::make(frame().origin(), viewSize()));
}
