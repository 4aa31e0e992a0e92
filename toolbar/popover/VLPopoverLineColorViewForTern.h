#pragma once

#include <vector>

#include "toolbar/popover/VLPopoverColorButtonForTern.h"
#include "toolbar/popover/VLPopoverLineColorView.h"

/// The Tern theme's colours: six swatches in a row.
class VLPopoverLineColorViewForTern : public VLPopoverLineColorView {
 public:
    explicit VLPopoverLineColorViewForTern(QWidget* superview = nullptr);

    [[nodiscard]] static const std::vector<QColor>& availableColorArray();
    [[nodiscard]] const std::vector<VLPopoverColorButtonForTern*>& buttonArray() const {
        return buttonArray_;
    }

    [[nodiscard]] QColor defaultColor() const override { return availableColorArray().front(); }
    [[nodiscard]] QColor selectedColor() const override;
    /// Chooses the swatch of that colour, the first one for any other colour.
    void setSelectedColor(const QColor& color) override;
    void configAppearanceAndLayout() override;

 private:
    void setSelectedButton(VLPopoverColorButtonForTern* button);
    void onLineColorButtonClicked(VLPopoverColorButtonForTern* button);

    std::vector<VLPopoverColorButtonForTern*> buttonArray_;
    VLPopoverColorButtonForTern* selectedButton_ = nullptr;
};
