#pragma once

#include "toolbar/VLToolbarButton.h"

/// The button of a function; its type is a `VLToolbarFunctionButtonType`. It never looks chosen.
class VLToolbarFunctionButton : public VLToolbarButton {
 public:
    using VLToolbarButton::VLToolbarButton;

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    [[nodiscard]] QImage selectedImageOfType(int64_t type) const override;
    [[nodiscard]] QImage hoverImageOfType(int64_t type) const override;
    [[nodiscard]] QImage pressedImageOfType(int64_t type) const override;
    [[nodiscard]] QImage normalImageOfType(int64_t type) const override;
    [[nodiscard]] QImage disabledImageOfType(int64_t type) const override;
    [[nodiscard]] const char* titleKey() const override;
};
