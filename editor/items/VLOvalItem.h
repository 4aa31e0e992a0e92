#pragma once

#include <QPainterPath>

#include "editor/items/VLEditItem.h"

/// A hollow ellipse.
class VLOvalItem : public VLEditItem {
 public:
    VLOvalItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeOval; }
    /// On the ring only; on the whole disc when the line is as wide as the ellipse.
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void drawActiveBorder(QPainter& painter) override;
    void appendGraphRects(std::vector<VLRect>& rects) const override;
    void appendDecorationRects(std::vector<VLRect>& rects) const override;

 protected:
    void transformDidChange() override;
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;

 private:
    enum class Shape { Bar, Ring, Disc };
    [[nodiscard]] Shape shape() const;

    /// In view coordinates.
    QPainterPath path_;
};
