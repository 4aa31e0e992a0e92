#include "selection/VLCaptureView.h"

#include <vorla/VLStatistics.h>

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

}  // namespace

VLCaptureView::VLCaptureView(const VLRect& frame, const vorla::FrozenScreen& frozen,
                             QWidget* superview)
    : VLView(frame, superview), frozen_(frozen) {
    setOpaque(true);
}

VLCaptureView::~VLCaptureView() {
    VLCursor::sharedInstance().restoreSystemCursor();
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
    setNeedsDisplayInRects(
        vorla::damageOfChange({}, pixelSelectedRectInWindow(), selectedItem().reach()));
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

void VLCaptureView::selectionDidChange(const VLRect& /*selectedRect*/) {
    if (const auto delegate = delegate_.lock())
        delegate->selectionDidChange(pixelSelectedRectInWindow());
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
    if (selectedItemType_ == VLSelectedItemTypeNone)
        snapTo(convertPointFromWindow(event.locationInWindow));
}

void VLCaptureView::pointerIsAt(VLPoint point) {
    if (!bounds().containsPoint(point)) return;
    VLMouseEvent event;
    event.locationInWindow = convertPointToWindow(point);
    mouseMoved(event);
}

void VLCaptureView::snapTo(VLPoint point) {
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
    // A panel that closes under the pointer sends it away too, perhaps as the program ends.
    if (!isVisible() || !needScreenCapture_ || selectedItemType_ != VLSelectedItemTypeNone) return;
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

void VLCaptureView::mouseDown(const VLMouseEvent& event) {
    cursorUpdate(event);
    // A surface that is out takes the press and does nothing: it has no part in how things end.
    if (!needScreenCapture_) return;
    if (selectComfirmed_) {
        VLView::mouseDown(event);
        return;
    }
    if (!postedSelectBeginNotification_) {
        postedSelectBeginNotification_ = true;
        NotificationCenter::defaultCenter().post(VLNotificationSelectDidBegin, this);
    }
    if (!selectedRect().isZero() && event.clickCount > 1) {
        VLLog("%s 双击结束编辑", __func__);
        vorla::fireStatisticEvent(VLStatEventDoubleClick);
        NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish);
        return;
    }
    const VLPoint point = convertPointFromWindow(event.locationInWindow);
    Drag drag;
    drag.pressPoint = drag.fixedPoint = selectedItem().grid().corner(point);
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
    auto& item = selectedItem();
    item.resizeToRect(vorla::draggedRect(static_cast<VLSelectedItemType>(selectedItemType_),
                                         fixedPoint, lastDraggedPoint, draggedPoint,
                                         item.selectedRect(), item.grid()));
    updateMouseLocation(draggedPoint, selectedItemType_ != VLSelectedItemTypeMove);
}

void VLCaptureView::confirmSelectedItem() {
    VLLog("<VLCaptureView> %s", __func__);
    if (const auto delegate = delegate_.lock()) delegate->didConfirmSelection();
    if (captureType_ == VLCaptureTypeWindow)
        NotificationCenter::defaultCenter().post(NotificationEditDidBegin);
}
