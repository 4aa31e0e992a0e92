#pragma once

#include "toolbar/VLToolbarView.h"

/// The toolbar of the Vorla theme: the four functions alone. Undo starts enabled.
class VLToolbarViewForVorla : public VLToolbarView {
 public:
    explicit VLToolbarViewForVorla(const VLRect& frame);
    void configAppearanceAndLayout() override;
};
