#pragma once

#include <functional>

#include "platform/view/VLView.h"

/// Base of the buttons: hover, press and release, told apart by four independent flags, and what
/// screen readers hear. A subclass draws the flags.
///
/// The action fires on every release that reaches the button, wherever the pointer is by then, and
/// before the flags are set; it may delete the button. A disabled button hears nothing of the
/// pointer. Main thread.
class VLButton : public VLView {
 public:
    explicit VLButton(VLRect frame = {}, QWidget* superview = nullptr);

    std::function<void(VLButton& button)> action;

    [[nodiscard]] bool isHover() const { return hover_; }
    [[nodiscard]] bool isPressed() const { return pressed_; }
    [[nodiscard]] bool isSelected() const { return selected_; }
    [[nodiscard]] bool isDisabled() const { return disabled_; }
    void setIsHover(bool value) { set(hover_, value); }
    void setIsPressed(bool value) { set(pressed_, value); }
    void setIsSelected(bool value);
    /// A change clears the other three flags; nothing brings them back.
    void setIsDisabled(bool value);
    void setEnabled(bool enabled);

    /// What screen readers say; shown as tool-tip too unless `setToolTip` sets another text.
    void setTitle(const QString& title);

    /// As if the button had been pressed and released.
    void performClick();

 protected:
    void mouseDown(const VLMouseEvent& event) override;
    void mouseDragged(const VLMouseEvent& event) override;
    void mouseUp(const VLMouseEvent& event) override;
    void mouseEntered(const VLMouseEvent& event) override;
    void mouseExited(const VLMouseEvent& event) override;

 private:
    void set(bool& flag, bool value);
    [[nodiscard]] bool hears() const { return isEnabled() && !disabled_; }

    bool hover_ = false;
    bool pressed_ = false;
    bool selected_ = false;
    bool disabled_ = false;
};
