#include "toolbar/popover/VLPopoverMenuFontSizeButton.h"

#include <QPainter>
#include <cmath>

#include "platform/view/drawing.h"
#include "theme/HexColor.h"
#include "toolbar/popover/VLPopoverFontSizeType.h"
#include "toolbar/popover/popoverFont.h"

VLPopoverMenuFontSizeButton::VLPopoverMenuFontSizeButton(const VLRect& frame, uint64_t type,
                                                         QWidget* superview)
    : VLPickerButton(frame, superview),
      type_(type),
      text_(QString::fromStdString(labelOfButtonType(type))),
      hoverFontColor_(hx_colorWithHexString(QStringLiteral("#09b807"))),
      fontColor_(hx_colorWithHexString(QStringLiteral("#ffffff"))) {
    setAccessibleValue("Font Size", text_);
}

void VLPopoverMenuFontSizeButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const QFont font = popoverFont(12.0);
    const VLSize size = vorla::textSize(text_, font);
    vorla::drawText(painter, text_, font, isHover() ? hoverFontColor_ : fontColor_,
                    {std::floor((bounds().width - size.width) / 2.0),
                     std::floor((bounds().height - size.height) / 2.0)});
}
