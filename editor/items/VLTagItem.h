#pragma once

#include "editor/items/VLTextViewBasedItem.h"

/// A dot that marks a place, and a dark label with white text that points at it.
///
/// The dot's x is the item's centre, so the bounds are twice as wide as what is seen; the label
/// lies on one side of it and changes sides by `reverse`. The dot keeps its distance from the top
/// of the label as the text grows downward. The picked colour is the dot's.
class VLTagItem : public VLTextViewBasedItem {
 public:
    VLTagItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeTag; }
    /// True at first: the label is on the dot's right.
    [[nodiscard]] bool ovalControlOnLeft() const { return ovalControlOnLeft_; }
    void reverse() override;

    // In local coordinates.
    [[nodiscard]] VLPoint centerConvertedIn() const;
    [[nodiscard]] VLRect ovalControlPointFrame() const;
    [[nodiscard]] VLRect arrowFrame() const;
    [[nodiscard]] VLRect roundRectFrame() const;
    [[nodiscard]] VLRect moveReactiveRect() const;

    [[nodiscard]] VLRect textviewRect() const override;
    [[nodiscard]] VLSize minSizeOfTextItemWithFont(const QFont& font) const override;
    [[nodiscard]] bool mouseHitReverseControlPoints(VLPoint point) const override;
    /// The dot counts too: when not editing, a press on it moves the tag.
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void drawActiveBorder(QPainter& painter) override;
    void appendGraphRects(std::vector<VLRect>& rects) const override;
    void appendDecorationRects(std::vector<VLRect>& rects) const override;

 protected:
    void updateTextView() override;
    void updateFrame() override;
    [[nodiscard]] QString placeholder() const override { return QStringLiteral("a"); }
    [[nodiscard]] QColor textColor() const override { return Qt::white; }
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;

 private:
    void drawOvalControlPoint(QPainter& painter) const;
    void drawArrowRoundRect(QPainter& painter) const;

    bool ovalControlOnLeft_ = true;
};
