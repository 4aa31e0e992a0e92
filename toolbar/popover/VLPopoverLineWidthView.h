#pragma once

#include <QPointer>
#include <cstdint>
#include <memory>
#include <vector>

#include "toolbar/popover/VLPopoverLineWidthButton.h"

class VLPopoverLineWidthViewDelegate {
 public:
    virtual ~VLPopoverLineWidthViewDelegate() = default;
    virtual void widthDidChange(uint64_t /*width*/) {}
};

/// The picker of line widths: three buttons, whose values and pictures come from the theme.
class VLPopoverLineWidthView : public VLView {
 public:
    explicit VLPopoverLineWidthView(QWidget* superview = nullptr);

    void setDelegate(std::weak_ptr<VLPopoverLineWidthViewDelegate> delegate) {
        delegate_ = std::move(delegate);
    }
    [[nodiscard]] const std::vector<VLPopoverLineWidthButton*>& buttonArray() const {
        return buttonArray_;
    }

    [[nodiscard]] static uint64_t defaultWidth();
    /// The chosen button's width; 0 before anything was chosen.
    [[nodiscard]] uint64_t width() const;
    /// Chooses the button of that width, the last of several; one that no button has changes
    /// nothing. The delegate does not hear of it.
    void setWidth(uint64_t width);
    void configAppearanceAndLayout();

 private:
    void setSelectedButton(VLPopoverLineWidthButton* button);
    void onLineWidthButtonClicked(VLPopoverLineWidthButton* button);

    std::weak_ptr<VLPopoverLineWidthViewDelegate> delegate_;
    std::vector<VLPopoverLineWidthButton*> buttonArray_;
    VLPopoverLineWidthButton* selectedButton_ = nullptr;
};
