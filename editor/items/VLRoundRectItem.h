#pragma once

#include <QPainterPath>

#include "editor/items/VLEditItem.h"

/// A hollow rectangle with slightly rounded corners.
class VLRoundRectItem : public VLEditItem {
 public:
    VLRoundRectItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeRoundRect; }
    /// On the outline only: a press inside goes through.
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void appendGraphRects(std::vector<VLRect>& rects) const override;

 protected:
    void transformDidChange() override;
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;

 private:
    /// In local coordinates.
    QPainterPath path_;
};
