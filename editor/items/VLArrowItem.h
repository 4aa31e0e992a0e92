#pragma once

#include <QPainterPath>

#include "editor/items/VLEditItem.h"

/// A filled arrow with a tapered shaft. Its two ends are its only handles, and its direction comes
/// from them: `degrees` stays 0.
class VLArrowItem : public VLEditItem {
 public:
    /// The proportions of an arrow of a length and line width, in points.
    struct Proportions {
        VLSize head;    ///< from the tip back, and out, to a barb
        VLSize shaft;   ///< from the tip back, and out, to the shaft's wide end
        VLSize tail;    ///< from the tail forward, and out, to where the shaft's side begins
        VLSize corner;  ///< from the tail's middle to its corner
        double radius;  ///< of the tail's two arcs
    };
    [[nodiscard]] static Proportions proportions(double length, double lineWidth);

    VLArrowItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeArrow; }
    void setNormalStrokeWidth(double width) override;
    /// The tail and the tip, in local coordinates.
    [[nodiscard]] VLPoint beginPoint() const { return beginPoint_; }
    [[nodiscard]] VLPoint endPoint() const { return endPoint_; }
    /// From tail to tip.
    [[nodiscard]] double rotateDegrees() const;
    /// Along the x axis, centred on the zero point.
    [[nodiscard]] const QPainterPath& arrowPath() const { return arrowPath_; }

    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    bool mouseHitVerticalResizeControlPoints(VLPoint, VLPoint*) const override { return false; }
    bool mouseHitHorizontalResizeControlPoints(VLPoint, VLPoint*) const override { return false; }
    bool mouseHitBeginResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const override;
    bool mouseHitEndResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const override;

    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void drawControlPoints(QPainter& painter) override;
    void appendGraphRects(std::vector<VLRect>& rects) const override;
    void appendDecorationRects(std::vector<VLRect>& rects) const override;

 protected:
    void transformDidChange() override;
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;

 private:
    [[nodiscard]] bool hitEnd(VLPoint point, VLPoint end, VLPoint other, VLPoint* fixedPoint) const;

    QPainterPath arrowPath_;
    VLPoint beginPoint_;
    VLPoint endPoint_;
    VLPoint resizeDotBeginPoint_;
    VLPoint resizeDotEndPoint_;
};
