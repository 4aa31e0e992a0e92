#pragma once

#include <QColor>
#include <QPointer>
#include <optional>
#include <vector>

#include "platform/base/geometry.h"
#include "selection/SelectionGeometry.h"
#include "selection/VLControlPoint.h"

class QPainter;
class VLView;

class VLCaptureViewSelectedItemDelegate {
 public:
    virtual ~VLCaptureViewSelectedItemDelegate() = default;
    virtual void selectionDidChange(const VLRect& /*selectedRect*/) {}
};

/// The one rectangle that the user is selecting on a screen: its eight control points, what the
/// pointer hits of it, and its look. It knows nothing of events. All coordinates are those of the
/// view that draws it. Main thread.
class VLCaptureViewSelectedItem {
 public:
    /// Both may be none; `delegate` must outlive the item.
    VLCaptureViewSelectedItem(const VLRect& frame, VLView* superView,
                              VLCaptureViewSelectedItemDelegate* delegate = nullptr);

    QColor borderColor;
    double borderWidth = 0.0;
    QColor fillColor;
    VLSize controlPointSize;
    QColor controlPointFillColor;
    QColor controlPointStrokeColor;
    double controlPointStrokeWidth = 0.0;

    /// The rectangle as the pointer spanned it, not aligned to anything.
    [[nodiscard]] const VLRect& selectedRect() const { return selectedRect_; }
    /// Stores the rectangle, informs the delegate and has what changed drawn again; nothing happens
    /// when it is the stored one.
    void setSelectedRect(const VLRect& rect);
    void resizeToRect(const VLRect& rect) { setSelectedRect(rect); }
    void move(VLPoint offset) { setSelectedRect(selectedRect_.offsetBy(offset.x, offset.y)); }

    /// The rectangle with all edges moved inwards onto the screen's grid (`SelectionGrid`).
    [[nodiscard]] VLRect pixelSelectedRectInWindow() const;

    /// Eight points in the order of their types on the aligned rectangle; empty before the first
    /// rectangle was set.
    [[nodiscard]] const std::vector<VLControlPoint>& pointsArray() const { return pointsArray_; }

    /// Whether the point is in the rectangle or on its border.
    [[nodiscard]] bool mouseHitGraph(VLPoint point) const;
    /// Whether the point is on a control point of one kind, that is, in a square of 20 points
    /// around it. On a hit `fixedPoint`, if given, receives the point that stays when this one is
    /// dragged.
    bool mouseHitCornerResizeControlPoints(VLPoint point, VLControlPoint* fixedPoint) const;
    bool mouseHitVerticalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const;
    bool mouseHitHorizontalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const;
    /// The point that stays when the control point is dragged; nothing for a type that is none.
    [[nodiscard]] std::optional<VLControlPoint> fixedPointOfControlPoint(
        const VLControlPoint& controlPoint) const;

    void draw(QPainter& painter) const;
    void drawBorder(QPainter& painter) const;
    void drawMask(QPainter& painter) const;
    void drawControlPoints(QPainter& painter) const;

    /// The grid of the screen that the item's view is on.
    [[nodiscard]] vorla::SelectionGrid grid() const;
    /// How far the drawn parts reach, for what has to be drawn again after a change.
    [[nodiscard]] vorla::SelectionReach reach() const;

 private:
    [[nodiscard]] std::optional<VLControlPoint> fixedPointOfHit(VLPoint point,
                                                                vorla::ControlPointKind kind) const;
    void updateControlPoints();

    VLCaptureViewSelectedItemDelegate* delegate_ = nullptr;
    QPointer<VLView> superView_;
    VLRect selectedRect_;
    std::vector<VLControlPoint> pointsArray_;
};
