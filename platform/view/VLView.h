#pragma once

#include <QWidget>
#include <vector>

#include "platform/base/geometry.h"
#include "platform/view/VLMouseEvent.h"

class QPainter;
class VLPanel;

/// Base of everything that is drawn on a panel: a widget whose geometry, painting and events are in
/// doubles with y upward.
///
/// The frame is in the superview's coordinates, the bounds begin at the zero point; what is drawn
/// beyond the bounds is cut off. A view is owned by its superview. It shows the cursor given to
/// `setCursor` (I-beam over text, say), else that of its superview, in the end the panel's. Main
/// thread only.
class VLView : public QWidget {
 public:
    explicit VLView(VLRect frame = {}, QWidget* superview = nullptr);

    /// What changes with the superview's size, as bits; what is named grows or shrinks in
    /// proportion, the rest stays. None: the view keeps its frame.
    enum Autoresizing : unsigned {
        MinXMarginSizable = 1U << 0,
        WidthSizable = 1U << 1,
        MaxXMarginSizable = 1U << 2,
        MinYMarginSizable = 1U << 3,
        HeightSizable = 1U << 4,
        MaxYMarginSizable = 1U << 5,
    };

    [[nodiscard]] VLRect frame() const { return frame_; }
    [[nodiscard]] VLRect bounds() const { return {0.0, 0.0, frame_.width, frame_.height}; }
    void setFrame(VLRect frame);
    void setFrameOrigin(VLPoint origin) { setFrame(VLRect::make(origin, frame_.size())); }
    void setFrameSize(VLSize size) { setFrame(VLRect::make(frame_.origin(), size)); }
    [[nodiscard]] unsigned autoresizing() const { return autoresizing_; }
    void setAutoresizing(unsigned mask) { autoresizing_ = mask; }

    /// How much of the view, its subviews included, shows: 0 (nothing) to 1. Meant for fading.
    [[nodiscard]] double alphaValue() const { return alphaValue_; }
    void setAlphaValue(double alpha);
    /// Promises that `drawRect` fills all of the bounds, so that nothing below needs drawing. Kept
    /// only where the view's edges fall on whole device pixels.
    void setOpaque(bool opaque);

    /// The view that this one is in; null for a content view and outside of any.
    [[nodiscard]] VLView* superview() const;
    /// The screen's panel that the view is in; null outside of any.
    [[nodiscard]] VLPanel* panel() const;

    /// Takes ownership of `view` and shows it above its siblings unless it was hidden explicitly.
    void addSubview(VLView* view);
    void removeFromSuperview();

    /// Schedules the view, or a rectangle of it in its own coordinates, for drawing.
    void setNeedsDisplay() { update(); }
    void setNeedsDisplayInRect(const VLRect& rect);
    void setNeedsDisplayInRects(const std::vector<VLRect>& rects);

    /// The rectangle grown to whole widget units, in the widget's own y-down coordinates.
    [[nodiscard]] QRect widgetRect(const VLRect& rect) const;
    /// The place of a point in the widget's own y-down coordinates.
    [[nodiscard]] QPointF widgetPoint(VLPoint point) const;

    [[nodiscard]] VLPoint convertPointFromWindow(VLPoint point) const;
    [[nodiscard]] VLPoint convertPointToWindow(VLPoint point) const;
    /// Window coordinates are those of the screen: points, local to it, from its lower left.
    [[nodiscard]] VLRect convertRectFromWindow(const VLRect& rect) const;
    [[nodiscard]] VLRect convertRectToWindow(const VLRect& rect) const;
    /// Between two views of one panel.
    [[nodiscard]] VLPoint convertPointToView(VLPoint point, const VLView& view) const;
    [[nodiscard]] VLRect convertRectToView(const VLRect& rect, const VLView& view) const;

    /// A key that the first responder did not take, offered from the outermost view inwards and
    /// from front to back. True if it was dealt with; the default asks the subviews.
    virtual bool performKeyEquivalent(QKeyEvent& event);

    /// Device pixels per point of the screen that the view is on.
    [[nodiscard]] double backingScale() const;

    /// Rounds a rectangle of this view inwards to whole device pixels.
    [[nodiscard]] VLRect backingAlignedInward(const VLRect& rect) const {
        return rect.alignedInward(backingScale());
    }

 protected:
    /// Fits the widget's whole-number geometry around the frame.
    void deriveGeometry();
    /// The frame has changed; `before` is what it was.
    virtual void frameDidChange(const VLRect& before);

    /// Draws the part of the view that lies in `dirtyRect`. The painter is y-up and in the view's
    /// coordinates; pictures and text are drawn with the helpers of drawing.h, which set them
    /// upright. The default draws nothing.
    virtual void drawRect(QPainter& painter, const VLRect& dirtyRect);

    /// While `drawRect` runs: the rectangles that need drawing, in the view's coordinates.
    [[nodiscard]] const std::vector<VLRect>& rectsBeingDrawn() const { return rectsBeingDrawn_; }

    /// What the view does with the mouse. The defaults pass the event on to the superview and in
    /// the end to the panel; an override that wants that too calls its base.
    virtual void mouseDown(const VLMouseEvent& event);
    virtual void mouseDragged(const VLMouseEvent& event);
    virtual void mouseUp(const VLMouseEvent& event);
    virtual void rightMouseDown(const VLMouseEvent& event);
    virtual void mouseMoved(const VLMouseEvent& event);
    /// The pointer came into or left the view's bounds, whichever of its subviews is under it.
    virtual void mouseEntered(const VLMouseEvent& event);
    virtual void mouseExited(const VLMouseEvent& event);

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

 private:
    friend class VLPanel;
    friend QImage renderViewTree(VLView& view, const VLRect& rect, double scale);
    void resizeSubviews(VLSize before);
    void applyOpacity();
    [[nodiscard]] VLPoint viewPoint(QPointF point) const;

    VLRect frame_;
    unsigned autoresizing_ = 0;
    double alphaValue_ = 1.0;
    bool opaque_ = false;
    /// The view's lower left corner in the widget's coordinates.
    QPointF originInWidget_;
    std::vector<VLRect> rectsBeingDrawn_;
    QMouseEvent* passedOn_ = nullptr;
};

/// Draws a view and everything in it by the views' ordinary drawing into a picture.
///
/// `rect` is in the view's coordinates and should be whole in device pixels of `scale`; the result
/// (ARGB32_Premultiplied) holds rect's size times `scale` pixels, transparent where no view draws,
/// and has `scale` as its device pixel ratio. Null for an empty rectangle.
QImage renderViewTree(VLView& view, const VLRect& rect, double scale);
