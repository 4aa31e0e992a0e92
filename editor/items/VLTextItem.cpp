#include "editor/items/VLTextItem.h"

#include <cmath>
#include <utility>

namespace {
constexpr double margin = 5.0;
}

VLTextItem::VLTextItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                       VLSize size)
    : VLTextViewBasedItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportEdit);
    setupTextView();
}

std::shared_ptr<VLEditItem> VLTextItem::makeSameClass() const {
    return std::make_shared<VLTextItem>(superView(), center(), size());
}

void VLTextItem::setNormalStrokeColor(const QColor& color) {
    VLEditItem::setNormalStrokeColor(color);
    textColorDidChange();
}

QColor VLTextItem::textColor() const {
    return normalStrokeColor().isValid() ? normalStrokeColor() : QColor(Qt::black);
}

VLRect VLTextItem::textviewRect() const {
    const VLSize s = size();
    return {std::ceil(center().x - s.width / 2 + margin),
            std::ceil(center().y - s.height / 2 + margin), std::ceil(s.width - 2 * margin),
            std::ceil(s.height - 2 * margin)};
}

VLSize VLTextItem::minSizeOfTextItemWithFont(const QFont& font) const {
    const VLSize text = minSizeOfTextViewWithFont(font);
    return {std::ceil(text.width + 2 * margin), std::ceil(text.height + 2 * margin)};
}

void VLTextItem::updateFrame() {
    setCenter({textFrame().midX(), textFrame().midY()});
    setSize({textFrame().width + 2 * margin, textFrame().height + 2 * margin});
    updateMoveTransform();
    transformDidChange();
}

bool VLTextItem::mouseHitGraph(VLPoint point) const {
    const double border = activeStrokeWidth() / 2;
    return bounds().insetBy(-border, -border).containsPoint(convertPointIn(point));
}

void VLTextItem::drawActiveBorder(QPainter& painter) {
    strokeActiveBorder(painter, bounds());
}

/// The text's frame may lie up to a point away from the item's: it is on whole points.
void VLTextItem::appendGraphRects(std::vector<VLRect>& rects) const {
    rects.push_back(viewRectAround(bounds(), 1.0));
}

void VLTextItem::appendDecorationRects(std::vector<VLRect>& rects) const {
    rects.push_back(viewRectAround(bounds(), activeStrokeWidth() / 2));
}
