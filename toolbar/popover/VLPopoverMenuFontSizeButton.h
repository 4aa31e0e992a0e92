#pragma once

#include <QColor>
#include <QString>

#include "toolbar/popover/VLPickerButton.h"

/// A line of the Tern theme's menu of sizes.
class VLPopoverMenuFontSizeButton : public VLPickerButton {
 public:
    VLPopoverMenuFontSizeButton(const VLRect& frame, uint64_t type, QWidget* superview);

    [[nodiscard]] uint64_t type() const { return type_; }

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    uint64_t type_;
    QString text_;
    QColor hoverFontColor_;
    QColor fontColor_;
};
