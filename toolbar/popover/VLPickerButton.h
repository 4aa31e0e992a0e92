#pragma once

#include <QString>

#include "platform/base/Bundle.h"
#include "platform/view/VLButton.h"

/// Base of the buttons inside the pickers and their menus: they act on a release and look the same
/// while pressed.
class VLPickerButton : public VLButton {
 public:
    using VLButton::VLButton;

    /// What screen readers say: what the picker is for, by the key of its text, and the value.
    void setAccessibleValue(const char* key, const QString& value) {
        const QString what =
            QString::fromStdString(vorla::Bundle::framework().localizedString(key));
        setAccessibleName(value.isEmpty() ? what : what + QLatin1Char(' ') + value);
    }

 protected:
    void mouseDown(const VLMouseEvent& /*event*/) override {}
    void mouseUp(const VLMouseEvent& /*event*/) override { performAction(); }

    /// Calls `action`, which may delete the button.
    void performAction() {
        if (const auto fire = action) fire(*this);
    }
};
