#include "selection/VLCaptureView.h"

#include <cmath>

#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLEventTracker.h"
#include "settings/StatisticDoor.h"
#include "theme/VLCaptureThemeManager.h"
#include "theme/VLCursor.h"
#include "windows/VLCaptureUtilities.h"
#include "windows/VLCaptureWindowInfo.h"

using vorla::NotificationCenter;

namespace {

constexpr auto trackingTimeout = std::chrono::seconds(10);
constexpr int eventDoubleClick = 1013;

}  // namespace

VLCaptureView::VLCaptureView(const VLRect& frame, QWidget* superview) : VLView(frame, superview) {}

VLCaptureView::~VLCaptureView() {
    VLCursor::sharedInstance().restoreSystemCursor();
}

void VLCaptureView::setFrozenImage(const QImage& image) {
    frozenImage_ = image;
    setAttribute(Qt::WA_OpaquePaintEvent, !image.isNull());
    setNeedsDisplay();
}

void VLCaptureView::setNeedScreenCapture(bool value) {
    if (needScreenCapture_ == value) return;
    needScreenCapture_ = value;
    if (!value) {
        selectedItem().setSelectedRect({});
        selectedItem_.reset();
    }
    setNeedsDisplay();
}

void VLCaptureView::setSelectComfirmed(bool value) {
    selectComfirmed_ = value;
    if (!value) return;
    needDrawControlPoints_ = false;
    setNeedsDisplay();
}

void VLCaptureView::setNeedDrawControlPoints(bool value) {
    if (needDrawControlPoints_ == value) return;
    needDrawControlPoints_ = value;
    setNeedsDisplayInRects(selectedItem().damageOfChange({}, selectedRect()));
}

void VLCaptureView::setNeedDrawSelectedItem(bool value) {
    if (needDrawSelectedItem_ == value) return;
    needDrawSelectedItem_ = value;
    setNeedsDisplay();
}

void VLCaptureView::setSelectedItemType(uint64_t value) {
    selectedItemType_ = value;
    if (value != VLSelectedItemTypeNone) setNeedDrawControlPoints(true);
}

void VLCaptureView::setEndPoint(VLPoint point) {
    endPoint_ = point;
    selectedItem().setSelectedRect(
        VLCaptureUtilities::minRectWithFirstPoint(startPoint_, endPoint_));
}

VLCaptureViewSelectedItem& VLCaptureView::selectedItem() {
    if (!selectedItem_) {
        selectedItem_ = std::make_unique<VLCaptureViewSelectedItem>(VLRect{}, this, this);
        configAppearanceAndLayout();
    }
    return *selectedItem_;
}

VLRect VLCaptureView::selectedRect() const {
    return selectedItem_ ? selectedItem_->selectedRect() : VLRect{};
}

VLRect VLCaptureView::pixelSelectedRectInWindow() const {
    return selectedItem_ ? selectedItem_->pixelSelectedRectInWindow() : VLRect{};
}

void VLCaptureView::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    backgroundMaskColor_ = theme.themedColorWithKey("VLCaptureView_BackgroundColor");
    auto& item = selectedItem();
    item.borderColor = theme.themedColorWithKey("VLCaptureView_SelectRect_BorderColor");
    item.borderWidth = theme.themedWeightWithKey("VLCaptureView_SelectRect_BorderWidth");
    item.fillColor = theme.themedColorWithKey("VLCaptureView_SelectRect_FillColor");
    item.controlPointSize = theme.themedSizeWithKey("VLCaptureView_ControlPoint_Size");
    item.controlPointFillColor = theme.themedColorWithKey("VLCaptureView_ControlPoint_FillColor");
    item.controlPointStrokeColor =
        theme.themedColorWithKey("VLCaptureView_ControlPoint_StrokeColor");
    item.controlPointStrokeWidth =
        theme.themedWeightWithKey("VLCaptureView_ControlPoint_StrokeWidth");
    setNeedsDisplay();
}

void VLCaptureView::selectionDidChange() {
    if (const auto delegate = delegate_.lock()) delegate->selectionDidChange();
}

void VLCaptureView::updateMouseLocation(VLPoint location, bool needShowMagnifier) {
    if (const auto delegate = delegate_.lock())
        delegate->mouseLocationDidUpdate(location, needShowMagnifier);
}

std::shared_ptr<VLCaptureWindowInfo> VLCaptureView::windowInfoAtPosition(VLPoint point) {
    const auto delegate = delegate_.lock();
    return delegate ? delegate->windowInfoAtPostion(point) : nullptr;
}

// Pointer and cursor ---------------------------------------------------------------------------

void VLCaptureView::mouseMoved(const VLMouseEvent& event) {
    if (!needScreenCapture_ || selectComfirmed_) return;
    cursorUpdate(event);
    if (selectedItemType_ != VLSelectedItemTypeNone) return;
    const VLPoint point = convertPointFromWindow(event.locationInWindow);
    updateMouseLocation(point, true);
    if (const auto info = windowInfoAtPosition(point)) {
        activeWindowInfo_ = info;
        selectedItem().setSelectedRect(info->windowFrame);
    }
}

void VLCaptureView::mouseEntered(const VLMouseEvent& event) {
    VLView::mouseEntered(event);
    cursorUpdate(event);
}

void VLCaptureView::mouseExited(const VLMouseEvent& event) {
    VLCursor::sharedInstance().restoreSystemCursor();
    if (!needScreenCapture_ || selectedItemType_ != VLSelectedItemTypeNone) return;
    selectedItem().setSelectedRect({});
    updateMouseLocation(convertPointFromWindow(event.locationInWindow), false);
}

void VLCaptureView::cursorUpdate(const VLMouseEvent& event) {
    // The session may have ended inside a call that came before: the cursor is the host's again.
    if (!isVisible()) return;
    updateCursorWithMousePoint(convertPointFromWindow(event.locationInWindow));
    VLCursor::sharedInstance().setCursorType(cursorType_);
}

void VLCaptureView::updateCursorWithMousePoint(VLPoint point) {
    if (!needScreenCapture_)
        cursorType_ = VLCursorTypeArrow;
    else if (selectedItemType_ == VLSelectedItemTypeNone)
        cursorType_ = VLCursorTypeSightingTelescope;
    else if (selectComfirmed_)
        cursorType_ = VLCursorTypeArrow;
    else
        cursorType_ = hitByMousePoint(point).cursorType;
}

VLCaptureView::Hit VLCaptureView::hitByMousePoint(VLPoint point) {
    const auto& item = selectedItem();
    VLControlPoint corner;
    VLPoint fixed;
    if (item.mouseHitCornerResizeControlPoints(point, &corner)) {
        const bool falling =
            corner.type == VLControlPointTopLeft || corner.type == VLControlPointBottomRight;
        return {true, VLSelectedItemTypeCornerResize,
                falling ? VLCursorTypeResize135 : VLCursorTypeResize45, corner.point};
    }
    if (item.mouseHitVerticalResizeControlPoints(point, &fixed))
        return {true, VLSelectedItemTypeVerticalResize, VLCursorTypeResize90, fixed};
    if (item.mouseHitHorizontalResizeControlPoints(point, &fixed))
        return {true, VLSelectedItemTypeHorizontalResize, VLCursorTypeResize0, fixed};
    if (item.mouseHitGraph(point))
        return {true, VLSelectedItemTypeMove, VLCursorTypeMove, std::nullopt};
    return {};
}

// Dragging -------------------------------------------------------------------------------------

/// Selections are made of whole pixels: a drag spans from the pixel's upper left corner. On the
/// last row or column it is the screen's edge, for the pointer cannot go further and the user who
/// pushes it there wants all of the screen.
VLPoint VLCaptureView::pixelCorner(VLPoint point) const {
    const double scale = backingScale();
    const double width = bounds().width;
    const double last = 1.0 / scale;
    const double x = std::floor(point.x * scale + 1e-6) / scale;
    const double y = std::ceil(point.y * scale - 1e-6) / scale;
    return {x >= width - last && x < width ? width : x, y <= last && y > 0.0 ? 0.0 : y};
}

void VLCaptureView::mouseDown(const VLMouseEvent& event) {
    cursorUpdate(event);
    if (!needScreenCapture_ || selectComfirmed_) {
        VLView::mouseDown(event);
        return;
    }
    if (!postedSelectBeginNotification_) {
        postedSelectBeginNotification_ = true;
        NotificationCenter::defaultCenter().post(VLNotificationSelectDidBegin, this);
    }
    if (!selectedRect().isZero() && event.clickCount > 1) {
        VLLog("%s 双击结束编辑", __func__);
        vorla::fireStatisticEvent(eventDoubleClick);
        NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish);
        return;
    }
    const VLPoint point = convertPointFromWindow(event.locationInWindow);
    Drag drag;
    drag.pressPoint = drag.fixedPoint = pixelCorner(point);
    drag.lastDraggedPoint = point;
    if (selectedItemType_ != VLSelectedItemTypeNone) {
        const Hit hit = hitByMousePoint(point);
        setSelectedItemType(hit.selectedItemType);
        if (!hit.onItem) return;
        if (hit.fixedPoint) drag.fixedPoint = *hit.fixedPoint;
    }
    track(drag);
}

void VLCaptureView::track(Drag drag) {
    VLEventTracker::trackEventsMatchingMask(
        *this, VLEventTracker::LeftMouseDragged | VLEventTracker::LeftMouseUp, trackingTimeout,
        [this, &drag](const VLMouseEvent* event) {
            if (!event) return VLEventTracker::Flow::Stop;
            if (event->type == VLMouseEvent::Type::LeftMouseUp) {
                handleMouseUp(*event, drag);
                return VLEventTracker::Flow::Stop;
            }
            if (!drag.dragged) {
                drag.dragged = true;
                setStartPoint(drag.pressPoint);
            }
            const VLPoint point = convertPointFromWindow(event->locationInWindow);
            handelMouseDraggedWithFixedPoint(drag.fixedPoint, drag.lastDraggedPoint, point);
            drag.lastDraggedPoint = point;
            return VLEventTracker::Flow::Continue;
        });
}

void VLCaptureView::handleMouseUp(const VLMouseEvent& event, const Drag& drag) {
    if (selectedItemType_ == VLSelectedItemTypeNone) {
        if (drag.dragged) {
            VLLog("%s 区域截图", "mouseDown");
        } else {
            VLLog("%s 窗体截图", "mouseDown");
            captureType_ = VLCaptureTypeWindow;
            const VLPoint point = convertPointFromWindow(event.locationInWindow);
            if (const auto info = windowInfoAtPosition(point)) {
                activeWindowInfo_ = info;
                selectedItem().setSelectedRect(info->windowFrame);
            }
            if (const auto delegate = delegate_.lock())
                delegate->gotActiveWindowInfo(activeWindowInfo_);
        }
        setSelectedItemType(VLSelectedItemTypeIdle);
    }
    confirmSelectedItem();
    cursorUpdate(event);
}

void VLCaptureView::handelMouseDraggedWithFixedPoint(VLPoint fixedPoint, VLPoint lastDraggedPoint,
                                                     VLPoint draggedPoint) {
    const VLRect selected = selectedRect();
    const VLPoint corner = pixelCorner(draggedPoint);
    const auto spanned = [fixedPoint](VLPoint to) {
        return VLCaptureUtilities::minRectWithFirstPoint(fixedPoint, to);
    };
    VLRect result;
    switch (selectedItemType_) {
        case VLSelectedItemTypeNone:
        case VLSelectedItemTypeCornerResize:
            result = spanned(corner);
            break;
        case VLSelectedItemTypeMove: {
            const VLPoint moved = corner - pixelCorner(lastDraggedPoint);
            result = VLCaptureUtilities::fixedRect(selected.offsetBy(moved.x, moved.y), bounds());
            break;
        }
        case VLSelectedItemTypeHorizontalResize:
            result = spanned({corner.x, selected.maxY()});
            break;
        case VLSelectedItemTypeVerticalResize:
            result = spanned({selected.maxX(), corner.y});
            break;
        default:
            break;
    }
    selectedItem().resizeToRect(VLCaptureUtilities::cropRect(result, bounds()));
    updateMouseLocation(draggedPoint, selectedItemType_ != VLSelectedItemTypeMove);
}

void VLCaptureView::confirmSelectedItem() {
    VLLog("<VLCaptureView> %s", __func__);
    if (const auto delegate = delegate_.lock()) delegate->didConfirmSelection();
    if (captureType_ == VLCaptureTypeWindow)
        NotificationCenter::defaultCenter().post(NotificationEditDidBegin);
}
