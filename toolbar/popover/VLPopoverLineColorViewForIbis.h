#pragma once

#include <array>

#include "toolbar/popover/VLPopoverButton.h"
#include "toolbar/popover/VLPopoverColorButton.h"
#include "toolbar/popover/VLPopoverLineColorView.h"
#include "toolbar/popover/VLPopoverMenu.h"

/// The colours of all themes but Tern's: the present one in a box, with a menu of ten.
class VLPopoverLineColorViewForIbis : public VLPopoverLineColorView {
 public:
    explicit VLPopoverLineColorViewForIbis(QWidget* superview = nullptr);
    ~VLPopoverLineColorViewForIbis() override;

    [[nodiscard]] VLPopoverButton* colorButton() const { return colorButton_; }
    [[nodiscard]] VLPopoverMenu* colorMenu() const { return colorMenu_; }

    /// Plain red, which is not in the menu.
    [[nodiscard]] QColor defaultColor() const override { return Qt::red; }
    [[nodiscard]] QColor selectedColor() const override { return colorButton_->selectedColor(); }
    /// Any colour will do.
    void setSelectedColor(const QColor& color) override { colorButton_->setSelectedColor(color); }
    void hideMenu() override;
    void configAppearanceAndLayout() override;

 private:
    void showPopoverColorMenu();
    void colorButtonDidClick(const VLPopoverColorButton* button);

    VLPopoverButton* colorButton_;
    VLPopoverButton* pullDownArrowButton_;
    QPointer<VLPopoverMenu> colorMenu_;
    std::vector<VLPopoverColorButton*> items_;
};
