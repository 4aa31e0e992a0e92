#pragma once

#include <vector>

#include "editor/items/CurvePath.h"
#include "editor/items/StrokeLayer.h"
#include "editor/items/VLEditItem.h"

/// A free-hand stroke of the pen.
///
/// The path is in the view's coordinates as of its drawing; a move shifts `center`, which begins at
/// the zero point, and nothing else. A stroke has no handles and is hit on its line only.
class VLCurveItem : public VLEditItem {
 public:
    VLCurveItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeCurve; }
    [[nodiscard]] std::shared_ptr<VLEditItem> copyWithZone() const override;

    /// Lengthens the stroke, smoothly, to the middle between the last two points.
    void addPoint(VLPoint viewPoint) override;
    [[nodiscard]] static VLPoint midPointOfP1(VLPoint p1, VLPoint p2);
    [[nodiscard]] const vorla::CurvePath& path() const { return path_; }
    /// Every point received, in order.
    [[nodiscard]] const std::vector<VLPoint>& mousePointArray() const { return mousePointArray_; }

    /// Around the path and its control points; the line's width not included.
    [[nodiscard]] VLRect bounds() const override { return path_.bounds(); }
    [[nodiscard]] VLSize size() const override { return bounds().size(); }

    void setEditType(uint64_t editType) override;
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const override;
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    /// A thin line along the middle of the stroke.
    void drawActiveBorder(QPainter& painter) override;
    void drawControlPoints(QPainter& /*painter*/) override {}
    void appendGraphRects(std::vector<VLRect>& rects) const override;
    void appendDecorationRects(std::vector<VLRect>& rects) const override;

 protected:
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;

    /// How wide the stroke is drawn, in points.
    [[nodiscard]] virtual double actualDrawWidth() const { return normalStrokeWidth(); }
    void drawStroke(QPainter& painter, const VLRect& dirtyRect, const vorla::StrokeLayer::Ink& ink);

 private:
    /// The view rectangle around a part of the path, with the line and the border on it.
    [[nodiscard]] VLRect viewRectAroundStroke(const VLRect& local) const;

    vorla::CurvePath path_;
    std::vector<VLPoint> mousePointArray_;
    VLPoint previousPoint_;
    vorla::StrokeLayer stroke_;
    vorla::StrokeLayer border_;
};
