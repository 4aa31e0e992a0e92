#pragma once

#include "toolbar/VLToolbarButton.h"

/// The button of an annotation tool; its type is a `VLEditGraphType`. It has no picture for the
/// disabled state, as a tool can always be chosen.
class VLToolbarGraphButton : public VLToolbarButton {
 public:
    using VLToolbarButton::VLToolbarButton;

 protected:
    [[nodiscard]] QImage selectedImageOfType(int64_t type) const override;
    [[nodiscard]] QImage hoverImageOfType(int64_t type) const override;
    [[nodiscard]] QImage pressedImageOfType(int64_t type) const override;
    [[nodiscard]] QImage normalImageOfType(int64_t type) const override;
    [[nodiscard]] const char* titleKey() const override;
};
