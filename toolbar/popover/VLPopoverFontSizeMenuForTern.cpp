#include "toolbar/popover/VLPopoverFontSizeMenuForTern.h"

#include <QApplication>

#include "imaging/ImageHelpers.h"
#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverFontSizeType.h"

VLPopoverFontSizeMenuForTern::VLPopoverFontSizeMenuForTern() : VLPopoverMenuPanel(menuSize) {
    auto* content = new VLView(bounds());
    setContentView(content);
    gaussEffectView_ = new GlassView(content);
    double y = 10.0;
    for (size_t i = 0; i < buttons_.size(); ++i, y += 24.0) {
        const uint64_t type = VLPopoverFontSizeTypeMin + i;
        buttons_[i] = new VLPopoverMenuFontSizeButton({0.0, y, 80.0, 24.0}, type, content);
        buttons_[i]->action = [this, type](VLButton&) { fontSizeDidChanged(type); };
    }
    configAppearanceAndLayout();
}

void VLPopoverFontSizeMenuForTern::configAppearanceAndLayout() {
    gaussEffectView_->setMaskImage(
        vorla::generateImageWithSize(menuSize, 4.0, qApp->devicePixelRatio()));
    gaussEffectView_->setTint(
        VLCaptureThemeManager::sharedInstance().themedColorWithKey("VLPopover_BackgroundColor"));
}

void VLPopoverFontSizeMenuForTern::fontSizeDidChanged(uint64_t type) {
    VLLog("%s type:%llu", __func__, static_cast<unsigned long long>(type));
    const QPointer<VLPopoverFontSizeMenuForTern> self(this);
    if (fontSizeDelegate_) fontSizeDelegate_->fontSizeDidChange(type);
    if (self) cancelTracking();
}
