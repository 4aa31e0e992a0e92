#include "toolbar/popover/overlayOf.h"

#include "platform/view/VLOverlayPanel.h"

VLOverlayPanel* overlayOf(QWidget* view) {
    for (QWidget* widget = view; widget; widget = widget->parentWidget())
        if (auto* overlay = dynamic_cast<VLOverlayPanel*>(widget)) return overlay;
    return nullptr;
}
