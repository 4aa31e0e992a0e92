#include "toolbar/VLToolbarViewForDefault.h"

VLToolbarViewForDefault::VLToolbarViewForDefault(const VLRect& frame) : VLToolbarView(frame) {
    initGaussEffect();
    setupGraphButtons();
    setupFunctionButtons();
    setupImageView();
    VLToolbarView::configAppearanceAndLayout();
    setEnableUndo(false);
}
