#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include "toolbar/popover/VLPickerButton.h"

/// The box that shows the chosen one of the Tern theme's three sizes and opens their menu.
class VLPopoverFontButton : public VLPickerButton {
 public:
    VLPopoverFontButton(const VLRect& frame, uint64_t type, QWidget* superview);

    [[nodiscard]] uint64_t type() const { return type_; }
    void setType(uint64_t type);
    [[nodiscard]] const QString& text() const { return text_; }
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    uint64_t type_ = 0;
    QString text_;
    QColor backgroundColor_ = Qt::white;
    QImage arrowImage_;
};
