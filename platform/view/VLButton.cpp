#include "platform/view/VLButton.h"

#include <QAccessibleWidget>
#include <QPointer>

namespace {

class AccessibleButton : public QAccessibleWidget {
 public:
    explicit AccessibleButton(VLButton* button)
        : QAccessibleWidget(button, QAccessible::PushButton), button_(button) {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = button_ && button_->isSelected();
        state.pressed = button_ && button_->isPressed();
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction() && button_) button_->performClick();
    }

 private:
    QPointer<VLButton> button_;
};

QAccessibleInterface* accessibleButton(const QString& /*className*/, QObject* object) {
    auto* button = dynamic_cast<VLButton*>(object);
    return button ? new AccessibleButton(button) : nullptr;
}

}  // namespace

VLButton::VLButton(VLRect frame, QWidget* superview) : VLView(frame, superview) {
    static const bool installed = (QAccessible::installFactory(accessibleButton), true);
    static_cast<void>(installed);
}

void VLButton::set(bool& flag, bool value) {
    if (flag == value) return;
    flag = value;
    setNeedsDisplay();
}

void VLButton::setIsSelected(bool value) {
    if (value == selected_) return;
    set(selected_, value);
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void VLButton::setIsDisabled(bool value) {
    if (value == disabled_) return;
    disabled_ = value;
    hover_ = pressed_ = selected_ = false;
    setNeedsDisplay();
}

void VLButton::setEnabled(bool enabled) {
    VLView::setEnabled(enabled);
    setIsDisabled(!enabled);
}

void VLButton::setTitle(const QString& title) {
    setAccessibleName(title);
    setToolTip(title);
}

void VLButton::performClick() {
    if (!hears()) return;
    VLMouseEvent release;
    release.type = VLMouseEvent::Type::LeftMouseUp;
    release.locationInWindow = convertPointToWindow({bounds().midX(), bounds().midY()});
    const QPointer<VLButton> self(this);
    mouseUp(release);
    // A release leaves the button as one that the pointer is over.
    if (self && !underMouse()) setIsHover(false);
}

void VLButton::mouseEntered(const VLMouseEvent& /*event*/) {
    if (!hears()) return;
    setIsHover(true);
    setIsPressed(false);
}

void VLButton::mouseExited(const VLMouseEvent& /*event*/) {
    if (!hears()) return;
    setIsHover(false);
    setIsPressed(false);
}

void VLButton::mouseDown(const VLMouseEvent& /*event*/) {
    if (!hears()) return;
    setIsHover(true);
    setIsPressed(true);
}

/// The toolkit does not report entering and leaving while a button is held.
void VLButton::mouseDragged(const VLMouseEvent& event) {
    const bool inside = bounds().containsPoint(convertPointFromWindow(event.locationInWindow));
    if (inside && !hover_) mouseEntered(event);
    if (!inside && hover_) mouseExited(event);
}

void VLButton::mouseUp(const VLMouseEvent& /*event*/) {
    if (!hears()) return;
    const QPointer<VLButton> self(this);
    if (const auto fire = action) fire(*this);
    if (!self) return;
    setIsHover(true);
    setIsSelected(true);
    setIsPressed(false);
}
