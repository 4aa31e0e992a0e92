#pragma once

#include <vector>

#include "toolbar/popover/VLPopoverMenuPanel.h"
#include "toolbar/popover/VLRoundRectView.h"

/// The drop-down of the pickers for colours and font sizes: its items one below the other.
class VLPopoverMenu : public VLPopoverMenuPanel {
 public:
    VLPopoverMenu();

    /// Appends an item at the bottom and owns it; null is ignored.
    void addItem(VLView* item);
    [[nodiscard]] const std::vector<VLView*>& itemArray() const { return itemArray_; }
    /// The panel's size for its items; zero without any.
    [[nodiscard]] VLSize menuSize() const;
    void configAppearanceAndLayout();

 protected:
    void prepareToOpen() override;

 private:
    void updateItemFrame();

    std::vector<VLView*> itemArray_;
    VLRoundRectView* background_;
};
