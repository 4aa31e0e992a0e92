#pragma once

#include "platform/view/VLButton.h"

/// Base of the buttons inside the pickers and their menus: they act on a release and look the same
/// while pressed.
class VLPickerButton : public VLButton {
 public:
    using VLButton::VLButton;

 protected:
    void mouseDown(const VLMouseEvent& /*event*/) override {}
    void mouseUp(const VLMouseEvent& /*event*/) override { performAction(); }

    /// Calls `action`, which may delete the button.
    void performAction() {
        if (const auto fire = action) fire(*this);
    }
};
