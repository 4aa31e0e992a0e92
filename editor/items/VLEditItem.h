#pragma once

#include <QColor>
#include <QPainterPath>
#include <QTransform>
#include <memory>
#include <optional>
#include <vector>

#include "editor/VLEditGraphType.h"
#include "editor/VLEditTypes.h"
#include "editor/items/VLEditControlPoint.h"
#include "platform/base/geometry.h"

class QPainter;
class VLEditItem;
class VLView;

/// What an item needs of the edit view that it lies in. Items hold it weakly and work without it.
class VLEditItemSuperView {
 public:
    virtual ~VLEditItemSuperView() = default;
    /// The item looks different, or is in another place: what it covered before and what it covers
    /// now is drawn again.
    virtual void itemDidChange(const VLEditItem& item) = 0;
    /// A growing item has a new part, inside `rect` (view coordinates), and is unchanged elsewhere:
    /// only that is drawn.
    virtual void itemDidGrow(const VLEditItem& item, const VLRect& rect) = 0;
    /// The view itself, for the text view that an item shows in it; may be null.
    [[nodiscard]] virtual VLView* view() = 0;
};

/// Base of every annotation: where it is, how it is moved, resized and turned, and its handles.
///
/// An item has a local frame, centred on its `center` and turned by `degrees`; every other point is
/// in the edit view's coordinates (points, y upward). Geometry needs no view: items can be made
/// with an empty super view. Main thread.
///
/// Drawing. The view draws with a painter in its own coordinates, antialiasing on. It draws an
/// item only where it says that it is (`appendGraphRects`, `appendDecorationRects`), keeps items at
/// rest in pictures, and repaints parts of the canvas in any order: drawing must depend on nothing
/// but the item's state. A subclass calls `setNeedsDisplay` after each change of that state.
class VLEditItem : public std::enable_shared_from_this<VLEditItem> {
 public:
    /// The size has no lasting effect in the base: it collapses with the zero diagonal, and a
    /// subclass sets its own.
    VLEditItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size);
    virtual ~VLEditItem();
    VLEditItem(const VLEditItem&) = delete;
    VLEditItem& operator=(const VLEditItem&) = delete;

    /// An item of the same class with the same looks and geometry; not the edit type, and no
    /// handles.
    [[nodiscard]] virtual std::shared_ptr<VLEditItem> copyWithZone() const;

    // Looks. An invalid colour is none.
    [[nodiscard]] const QColor& normalStrokeColor() const { return normalStrokeColor_; }
    virtual void setNormalStrokeColor(const QColor& color);
    /// In points; the size of the font in items that hold text.
    [[nodiscard]] double normalStrokeWidth() const { return normalStrokeWidth_; }
    virtual void setNormalStrokeWidth(double width);
    [[nodiscard]] const QColor& activeStrokeColor() const { return activeStrokeColor_; }
    void setActiveStrokeColor(const QColor& color) { activeStrokeColor_ = color; }
    [[nodiscard]] double activeStrokeWidth() const { return activeStrokeWidth_; }
    void setActiveStrokeWidth(double width) { activeStrokeWidth_ = width; }
    QColor controlPointFillColor;        ///< the ring of a handle
    QColor controlPointStrokeColor;      ///< the inside of a handle
    double resizeReactiveRadius = 10.0;  ///< side of the square that reacts around a handle
    double rotateReactiveRadius = 15.0;  ///< outer side of the square ring that rotates

    // State.
    [[nodiscard]] uint64_t editType() const { return editType_; }
    virtual void setEditType(uint64_t editType) { editType_ = editType; }
    [[nodiscard]] uint64_t supportType() const { return supportType_; }
    [[nodiscard]] bool supports(VLEditSupport bit) const { return (supportType_ & bit) != 0; }
    [[nodiscard]] virtual VLEditGraphType graphType() const { return VLEditGraphTypeNone; }
    /// Whether there is anything to see. Nothing depends on it.
    [[nodiscard]] virtual bool isValid() const;

    // Geometry.
    [[nodiscard]] VLPoint center() const { return center_; }
    /// A plain store, like `setSize`: follow it by `updateMoveTransform` and `transformDidChange`.
    void setCenter(VLPoint center) { center_ = center; }
    [[nodiscard]] virtual VLSize size() const { return size_; }
    void setSize(VLSize size) { size_ = size; }
    /// In local coordinates; the base's are centred on the zero point.
    [[nodiscard]] virtual VLRect bounds() const;
    /// Anticlockwise, in no particular range.
    [[nodiscard]] double degrees() const { return degrees_; }
    /// Turns the item and makes its lower left and upper right corner the ends of the diagonal.
    void setDegrees(double degrees);
    void rotate(double byDegrees) { setDegrees(degrees_ + byDegrees); }
    void rotateToDegrees(double degrees);
    [[nodiscard]] VLPoint convertPointIn(VLPoint viewPoint) const;
    [[nodiscard]] VLPoint convertPointOut(VLPoint localPoint) const;
    /// Takes a local path into view coordinates.
    void applyTransformToPath(QPainterPath& path) const;
    void updateMoveTransform();
    void updateRotateTransfrom();

    /// Adds a pointer position to an item that is drawn by hand.
    virtual void addPoint(VLPoint /*viewPoint*/) {}
    virtual void move(VLPoint vector);
    void moveToPoint(VLPoint point) { move(point - center_); }

    // Resizing: a diagonal whose one end stays and whose other end follows the pointer.
    [[nodiscard]] VLPoint resizeFixedPoint() const { return resizeFixedPoint_; }
    void setResizeFixedPoint(VLPoint point) { resizeFixedPoint_ = point; }
    [[nodiscard]] VLPoint resizeChangePoint() const { return resizeChangePoint_; }
    /// Resizes as the edit type says.
    void setResizeChangePoint(VLPoint point);

    // Turning: each step turns by the angle between the two points, seen from the centre.
    void setRotateStartPoint(VLPoint point) { rotateStartPoint_ = point; }
    void setRotateEndPoint(VLPoint point);

    // Hit tests, all with points of the view. Out arguments may be null and are written on a hit;
    // the fixed point is the view point of the handle that stays.
    [[nodiscard]] virtual bool mouseHitGraph(VLPoint /*point*/) const { return false; }
    virtual bool mouseHitCornerResizeControlPoints(VLPoint point, VLPoint* fixedPoint,
                                                   uint64_t* hitPointType) const;
    virtual bool mouseHitVerticalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const;
    virtual bool mouseHitHorizontalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const;
    virtual bool mouseHitBeginResizeControlPoints(VLPoint /*point*/,
                                                  VLPoint* /*fixedPoint*/) const {
        return false;
    }
    virtual bool mouseHitEndResizeControlPoints(VLPoint /*point*/, VLPoint* /*fixedPoint*/) const {
        return false;
    }
    virtual bool mouseHitCornerRotateControlPoints(VLPoint point, uint64_t* hitPointType) const;
    virtual bool mouseHitReverseControlPoints(VLPoint /*point*/) const { return false; }
    virtual void reverse() {}

    /// The handles as of the last drawing with the focus: eight in the order of their types, or
    /// none.
    [[nodiscard]] const std::vector<VLEditControlPoint>& pointsArray() const {
        return pointsArray_;
    }
    void updateControlPoints();
    /// The handle that stays when this one is dragged; none, with a log line, for a type that there
    /// is not.
    [[nodiscard]] std::optional<VLEditControlPoint> fixedPointOfControlPoint(
        const VLEditControlPoint& point) const;

    // Drawing.
    /// `dirtyRect` (view coordinates) is the part that will be seen; drawing more is harmless.
    virtual void drawGraph(QPainter& /*painter*/, const VLRect& /*dirtyRect*/) {}
    /// The focus border.
    virtual void drawActiveBorder(QPainter& /*painter*/) {}
    /// Draws the handles, which makes them live: the base's own and, by the base, the eight points.
    virtual void drawControlPoints(QPainter& painter);

    /// Adds rectangles (view coordinates) that hold all that `drawGraph` touches, line width and
    /// antialiasing included. They should be tight: nothing outside of them is painted when the
    /// item changes, and all inside is. The default is the turned bounds and half a line width.
    virtual void appendGraphRects(std::vector<VLRect>& rects) const;
    /// The same for focus border and handles.
    virtual void appendDecorationRects(std::vector<VLRect>& rects) const;
    /// The smallest rectangle around all of that, in view coordinates.
    [[nodiscard]] VLRect boundingRect() const;

 protected:
    /// Rebuilds what depends on centre, size and angle: the outline.
    virtual void transformDidChange() {}
    virtual void resize();
    virtual void handelResizeHeight();
    virtual void handelResizeWidth();
    virtual void handelEqualRatioResize() {}
    /// A new item of this class for `copyWithZone`, made with this one's view, centre and size.
    [[nodiscard]] virtual std::shared_ptr<VLEditItem> makeSameClass() const;

    void setSupportType(uint64_t supportType) { supportType_ = supportType; }
    void setNeedsDisplay() const;
    /// For a growing item: only `rect` (view coordinates) is new.
    void setNeedsDisplayOfNewPart(const VLRect& rect) const;
    [[nodiscard]] std::shared_ptr<VLEditItemSuperView> superView() const {
        return superView_.lock();
    }

    /// The view rectangle around a local one, `margin` points (and the antialiasing) wider on each
    /// side.
    [[nodiscard]] VLRect viewRectAround(const VLRect& local, double margin) const;
    /// The view rectangle around a handle's dot.
    [[nodiscard]] VLRect viewRectOfDot(VLPoint local) const;
    /// Draws a handle's dot; the painter is in the coordinates of `at`.
    void drawDot(QPainter& painter, VLPoint at) const;

 private:
    void rotate();
    [[nodiscard]] const VLEditControlPoint* hitControlPoint(
        VLPoint point, std::initializer_list<uint64_t> types) const;
    bool hitResize(VLPoint point, std::initializer_list<uint64_t> types, VLPoint* fixedPoint,
                   uint64_t* hitPointType) const;

    std::weak_ptr<VLEditItemSuperView> superView_;
    QColor normalStrokeColor_;
    double normalStrokeWidth_ = 0.0;
    QColor activeStrokeColor_;
    double activeStrokeWidth_ = 0.0;
    uint64_t editType_ = VLEditTypeNone;
    uint64_t supportType_ = 0;
    std::vector<VLEditControlPoint> pointsArray_;
    double degrees_ = 0.0;
    QTransform moveTransform_;
    QTransform rotateTransform_;
    QTransform reverseMoveTransform_;
    QTransform reverseRotateTransform_;
    VLPoint center_;
    VLSize size_;
    VLPoint resizeFixedPoint_;
    VLPoint resizeChangePoint_;
    VLPoint rotateStartPoint_;
    VLPoint rotateEndPoint_;
};
