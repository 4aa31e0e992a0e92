#pragma once

#include "editor/items/VLTextViewBasedItem.h"

/// A free text. Its bounds are the text's frame and a margin of 5 points; all of it is live.
class VLTextItem : public VLTextViewBasedItem {
 public:
    VLTextItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeText; }
    /// The colour of the text.
    void setNormalStrokeColor(const QColor& color) override;
    [[nodiscard]] VLRect textviewRect() const override;
    [[nodiscard]] VLSize minSizeOfTextItemWithFont(const QFont& font) const override;
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    void drawActiveBorder(QPainter& painter) override;
    void appendGraphRects(std::vector<VLRect>& rects) const override;
    void appendDecorationRects(std::vector<VLRect>& rects) const override;

 protected:
    void updateFrame() override;
    [[nodiscard]] QString placeholder() const override { return QStringLiteral("1"); }
    [[nodiscard]] QColor textColor() const override;
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;
};
