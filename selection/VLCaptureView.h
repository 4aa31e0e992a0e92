#pragma once

#include <vorla/VLNotifications.h>
#include <QColor>
#include <memory>

#include "platform/view/FrozenScreen.h"
#include "platform/view/VLView.h"
#include "selection/VLCaptureViewSelectedItem.h"

class VLCaptureWindowInfo;

class VLCaptureViewDelegate {
 public:
    virtual ~VLCaptureViewDelegate() = default;
    virtual void didConfirmSelection() {}
    virtual void mouseLocationDidUpdate(VLPoint /*location*/, bool /*needShowMagnifier*/) {}
    /// The rectangle that is selected from now on, on the screen's grid.
    virtual void selectionDidChange(const VLRect& /*selectedRect*/) {}
    virtual std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPostion(VLPoint /*point*/) {
        return nullptr;
    }
    virtual void gotActiveWindowInfo(const std::shared_ptr<VLCaptureWindowInfo>& /*info*/) {}
};

enum VLCaptureType : uint64_t { VLCaptureTypeRegion = 1, VLCaptureTypeWindow = 2 };

/// The layer over one screen's frozen picture that turns the pointer into a selection: it snaps to
/// windows, spans, moves and resizes the rectangle, and dims the rest.
///
/// A surface goes from snapping (before the first press) over dragging to adjusting (after a
/// release; each further release confirms again), then to editing (`selectComfirmed`), where it
/// ignores the mouse. Without `needScreenCapture` it is out of the session and only dims. Main
/// thread.
class VLCaptureView : public VLView, public VLCaptureViewSelectedItemDelegate {
 public:
    /// `frozen` is what shows through, from the view's upper left corner; the view paints every
    /// pixel of it.
    VLCaptureView(const VLRect& frame, const vorla::FrozenScreen& frozen,
                  QWidget* superview = nullptr);
    ~VLCaptureView() override;

    void setDelegate(std::weak_ptr<VLCaptureViewDelegate> delegate) { delegate_ = delegate; }

    [[nodiscard]] bool needScreenCapture() const { return needScreenCapture_; }
    /// Taking a surface out clears its rectangle.
    void setNeedScreenCapture(bool value);
    [[nodiscard]] bool selectComfirmed() const { return selectComfirmed_; }
    void setSelectComfirmed(bool value);
    [[nodiscard]] bool needDrawControlPoints() const { return needDrawControlPoints_; }
    void setNeedDrawControlPoints(bool value);
    [[nodiscard]] bool needDrawSelectedItem() const { return needDrawSelectedItem_; }
    void setNeedDrawSelectedItem(bool value);

    [[nodiscard]] uint64_t selectedItemType() const { return selectedItemType_; }
    /// Any type but none also shows the control points.
    void setSelectedItemType(uint64_t value);
    [[nodiscard]] uint64_t captureType() const { return captureType_; }
    [[nodiscard]] uint64_t cursorType() const { return cursorType_; }
    [[nodiscard]] const std::shared_ptr<VLCaptureWindowInfo>& activeWindowInfo() const {
        return activeWindowInfo_;
    }
    [[nodiscard]] VLPoint startPoint() const { return startPoint_; }
    void setStartPoint(VLPoint point) { startPoint_ = point; }
    [[nodiscard]] VLPoint endPoint() const { return endPoint_; }
    /// Also makes the rectangle the one spanned by start and end point.
    void setEndPoint(VLPoint point);

    VLCaptureViewSelectedItem& selectedItem();
    [[nodiscard]] VLRect selectedRect() const;
    /// The rectangle rounded inwards to whole pixels: what is delivered.
    [[nodiscard]] VLRect pixelSelectedRectInWindow() const;

    /// Between the two, the rectangle itself is not drawn.
    void prepareForCapture() { setNeedDrawSelectedItem(false); }
    void finishCapture() { setNeedDrawSelectedItem(true); }

    /// The pointer is at a point of the view though no event says so, as when a session begins:
    /// snaps to the window there.
    void pointerIsAt(VLPoint point);

    /// Reads the theme and draws anew.
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseDown(const VLMouseEvent& event) override;
    void mouseMoved(const VLMouseEvent& event) override;
    void mouseEntered(const VLMouseEvent& event) override;
    void mouseExited(const VLMouseEvent& event) override;

 private:
    struct Hit {
        bool onItem = false;
        uint64_t selectedItemType = VLSelectedItemTypeIdle;
        uint64_t cursorType = 0;
        std::optional<VLPoint> fixedPoint;
    };
    struct Drag {
        bool dragged = false;
        VLPoint pressPoint;
        VLPoint fixedPoint;
        VLPoint lastDraggedPoint;
    };

    void selectionDidChange(const VLRect& selectedRect) override;
    void cursorUpdate(const VLMouseEvent& event);
    void updateCursorWithMousePoint(VLPoint point);
    void snapTo(VLPoint point);
    [[nodiscard]] Hit hitByMousePoint(VLPoint point);
    void updateMouseLocation(VLPoint location, bool needShowMagnifier);
    [[nodiscard]] std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPosition(VLPoint point);
    void track(Drag drag);
    void handleMouseUp(const VLMouseEvent& event, const Drag& drag);
    void handelMouseDraggedWithFixedPoint(VLPoint fixedPoint, VLPoint lastDraggedPoint,
                                          VLPoint draggedPoint);
    void confirmSelectedItem();
    void drawFrozen(QPainter& painter);

    std::weak_ptr<VLCaptureViewDelegate> delegate_;
    vorla::FrozenScreen frozen_;
    QColor backgroundMaskColor_;
    bool needScreenCapture_ = true;
    bool selectComfirmed_ = false;
    bool needDrawControlPoints_ = false;
    bool needDrawSelectedItem_ = true;
    bool postedSelectBeginNotification_ = false;
    uint64_t selectedItemType_ = VLSelectedItemTypeNone;
    uint64_t captureType_ = VLCaptureTypeRegion;
    uint64_t cursorType_ = 3;
    VLPoint startPoint_;
    VLPoint endPoint_;
    std::unique_ptr<VLCaptureViewSelectedItem> selectedItem_;
    std::shared_ptr<VLCaptureWindowInfo> activeWindowInfo_;
};
