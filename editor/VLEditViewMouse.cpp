// What a press on VLEditView does, and the drags that it starts.

#include <vorla/VLStatistics.h>

#include <QPointer>

#include "editor/VLEditNotifications.h"
#include "editor/VLEditView.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLEventTracker.h"
#include "settings/StatisticDoor.h"
#include "theme/VLCursor.h"

using vorla::NotificationCenter;

namespace {

constexpr auto trackingTimeout = std::chrono::seconds(5);

}  // namespace

// What is under the pointer --------------------------------------------------------------------

uint64_t VLEditView::cursorTypeOfResizeOperation(bool resize, uint64_t controlPointType) {
    switch (controlPointType) {
        case VLEditControlPointTopLeft:
            return resize ? VLCursorTypeResize135 : VLCursorTypeRotate135;
        case VLEditControlPointTopRight:
            return resize ? VLCursorTypeResize45 : VLCursorTypeRotate45;
        case VLEditControlPointBottomLeft:
            return resize ? VLCursorTypeResize45 : VLCursorTypeRotate225;
        case VLEditControlPointBottomRight:
            return resize ? VLCursorTypeResize135 : VLCursorTypeRotate315;
        default:
            return VLCursorTypeArrow;
    }
}

std::optional<VLEditView::Hit> VLEditView::updateFocusItem(VLPoint mousePoint) const {
    for (auto it = itemArray_.rbegin(); it != itemArray_.rend(); ++it)
        if (auto hit = hitOnItem(*it, mousePoint)) return hit;
    return std::nullopt;
}

std::optional<VLEditView::Hit> VLEditView::hitOnItem(const Item& item, VLPoint p) {
    uint64_t type = 0;
    if (item->supports(VLEditSupportResize)) {
        if (item->mouseHitCornerResizeControlPoints(p, nullptr, &type))
            return Hit{item, cursorTypeOfResizeOperation(true, type), "CornerResize"};
        if (item->mouseHitVerticalResizeControlPoints(p, nullptr))
            return Hit{item, VLCursorTypeResize90, "VerticalResize"};
        if (item->mouseHitHorizontalResizeControlPoints(p, nullptr))
            return Hit{item, VLCursorTypeResize0, "HorizontalResize"};
        if (item->mouseHitBeginResizeControlPoints(p, nullptr))
            return Hit{item, VLCursorTypeArrow, "BeginResize"};
        if (item->mouseHitEndResizeControlPoints(p, nullptr))
            return Hit{item, VLCursorTypeArrow, "EndResize"};
    }
    if (item->supports(VLEditSupportRotate) && item->mouseHitCornerRotateControlPoints(p, &type))
        return Hit{item, cursorTypeOfResizeOperation(false, type), "Rotate"};
    const bool editing = item->editType() == VLEditTypeEdit;
    if (item->supports(VLEditSupportMove) && !editing && item->mouseHitGraph(p))
        return Hit{item, VLCursorTypeMove, "Move"};
    if (item->supports(VLEditSupportReverse) && item->mouseHitReverseControlPoints(p))
        return Hit{item, VLCursorTypeArrow, "Reverse"};
    if (item->supports(VLEditSupportEdit) && editing && item->mouseHitGraph(p))
        return Hit{item, VLCursorTypeText, "Edit"};
    return std::nullopt;
}

void VLEditView::mouseMoved(const VLMouseEvent& event) {
    if (const auto hit = updateFocusItem(convertPointFromWindow(event.locationInWindow))) {
        VLLogTrace("updateFocusItem - %s", hit->operation);
        VLCursor::sharedInstance().setCursorType(hit->cursorType);
    } else {
        VLCursor::sharedInstance().restoreSystemCursor();
    }
}

void VLEditView::mouseExited(const VLMouseEvent& /*event*/) {
    VLCursor::sharedInstance().restoreSystemCursor();
}

// The press ------------------------------------------------------------------------------------

void VLEditView::mouseDown(const VLMouseEvent& event) {
    if (VLEventTracker::isTracking()) return;
    undoManager_.beginEvent();
    const VLPoint point = convertPointFromWindow(event.locationInWindow);
    const auto hit = updateFocusItem(point);
    if (!hit) {
        pressOnNothing(event, point);
        return;
    }
    VLLog("updateFocusItem - %s", hit->operation);
    setFocusItem(hit->item);
    if (!pressOnText(event, point)) offerPressToHandlers(point);
}

void VLEditView::pressOnNothing(const VLMouseEvent& event, VLPoint point) {
    if (event.clickCount >= 2) {
        vorla::fireStatisticEvent(VLStatEventDoubleClick);
        NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish);
        return;
    }
    const bool closesText = itemIsTextViewBaseItem(focusItem().get());
    unfocus();
    if (!closesText) handelCreateItemWithMouseDown(point);
}

/// A double click on an item that holds text opens it.
bool VLEditView::pressOnText(const VLMouseEvent& event, VLPoint point) {
    const Item item = focusItem();
    if (!itemIsTextViewBaseItem(item.get()) || event.clickCount < 2 || !item->mouseHitGraph(point))
        return false;
    if (item->editType() == VLEditTypeEdit) return true;
    textItemContentBeforeEdit_ = contentOfTextItem(*item);
    item->setEditType(VLEditTypeEdit);
    return true;
}

void VLEditView::offerPressToHandlers(VLPoint point) {
    const Item item = focusItem();
    if (!item) return;
    if (item->supports(VLEditSupportResize)) {
        if (handelCornerResizeWithMouseDown(point)) return;
        if (handelVerticalResizeWithMouseDown(point)) return;
        if (handelHorizontalResizeWithMouseDown(point)) return;
        if (handelBeginResizeWithMouseDown(point)) return;
        if (handelEndResizeWithMouseDown(point)) return;
    }
    if (handelRotateWithMouseDown(point)) return;
    if (handelMoveWithMouseDown(point)) return;
    handelReverseWithMouseDown(point);
}

void VLEditView::track(const DragStep& dragged, const DragStep& released) {
    VLEventTracker::trackEventsMatchingMask(
        *this, VLEventTracker::LeftMouseDragged | VLEventTracker::LeftMouseUp, trackingTimeout,
        [this, &dragged, &released](const VLMouseEvent* event) {
            if (!event) return VLEventTracker::Flow::Stop;
            undoManager_.beginEvent();
            const VLPoint point = convertPointFromWindow(event->locationInWindow);
            if (event->type == VLMouseEvent::Type::LeftMouseDragged) {
                dragged(point);
                return VLEventTracker::Flow::Continue;
            }
            released(point);
            return VLEventTracker::Flow::Stop;
        });
}

void VLEditView::handelCreateItemWithMouseDown(VLPoint point) {
    VLLog("VLEditView - VLEditTypeCreate");
    NotificationCenter::defaultCenter().post(
        VLNotificationBeginCreateItem,
        VLNotificationDictionary{{VLFocusItemGraphType, graphType_}});
    const Item item = newItem();
    const bool holdsText = itemIsTextViewBaseItem(item.get());
    if (holdsText) {
        item->moveToPoint(point);
        setFocusItem(item);
    }
    if (item) item->setResizeFixedPoint(point);
    const auto dragged = [&](VLPoint p) {
        if (!item || holdsText) return;
        if (focusItem() != item) setFocusItem(item);
        if (item->supports(VLEditSupportResize)) {
            item->setResizeChangePoint(p);
            item->setEditType(VLEditTypeCornerResize);
        } else if (item->supports(VLEditSupportAddPoint)) {
            item->addPoint(p);
        }
    };
    const auto released = [&](VLPoint) {
        if (holdsText)
            item->setEditType(VLEditTypeEdit);
        else
            setFocusItem(nullptr);
    };
    std::optional<VLEventTracker::EveryMovement> everyMovement;
    if (item && item->supports(VLEditSupportAddPoint)) everyMovement.emplace();
    track(dragged, released);
}

// Work on the focused item ---------------------------------------------------------------------

/// `endsSwapped`: the item keeps the end that stays as its change point.
void VLEditView::trackResize(const Item& item, VLEditType type, VLPoint fixed, bool endsSwapped) {
    const VLPoint ownFixed = item->resizeFixedPoint();
    const VLPoint ownChange = item->resizeChangePoint();
    ResizeStep step{0, ownFixed, ownChange, fixed, {}};
    if (endsSwapped) std::swap(step.fixedPoint, step.changePoint);
    item->setResizeFixedPoint(fixed);
    bool hasMoved = false;
    const auto dragged = [&](VLPoint p) {
        hasMoved = true;
        item->setEditType(type);
        item->setResizeChangePoint(p);
    };
    const auto released = [&](VLPoint p) {
        step.resizeType = item->editType();
        step.toChangePoint = p;
        undoManager_.registerUndo([this, item, step] { undoItem(item, step); });
    };
    track(dragged, released);
    // A handle that was only pressed: the item still lies between its own two points.
    if (!hasMoved) item->setResizeFixedPoint(ownFixed);
}

bool VLEditView::handelCornerResizeWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    VLPoint fixed;
    if (!item->supports(VLEditSupportResize) ||
        !item->mouseHitCornerResizeControlPoints(point, &fixed, nullptr))
        return false;
    VLLog("VLEditView - VLEditTypeCornerResize");
    const bool equalRatio = item->supports(VLEditSupportEqualRatioResize);
    trackResize(item, equalRatio ? VLEditTypeEqualRatioResize : VLEditTypeCornerResize, fixed,
                false);
    return true;
}

bool VLEditView::handelVerticalResizeWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    VLPoint fixed;
    if (!item->supports(VLEditSupportResize) ||
        !item->mouseHitVerticalResizeControlPoints(point, &fixed))
        return false;
    VLLog("VLEditView - VLEditTypeVerticalResize");
    trackResize(item, VLEditTypeVerticalResize, fixed, false);
    return true;
}

bool VLEditView::handelHorizontalResizeWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    VLPoint fixed;
    if (!item->supports(VLEditSupportResize) ||
        !item->mouseHitHorizontalResizeControlPoints(point, &fixed))
        return false;
    VLLog("VLEditView - VLEditTypeHorizontalResize");
    trackResize(item, VLEditTypeHorizontalResize, fixed, false);
    return true;
}

// An arrow whose tail was dragged last has its tail as the change point, any other its tip. The
// step notes them so that its own resize type restores the arrow.

bool VLEditView::handelBeginResizeWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    VLPoint fixed;
    if (!item->supports(VLEditSupportResize) ||
        !item->mouseHitBeginResizeControlPoints(point, &fixed))
        return false;
    VLLog("VLEditView - VLEditTypeBeginResize");
    trackResize(item, VLEditTypeBeginResize, fixed, item->editType() != VLEditTypeBeginResize);
    return true;
}

bool VLEditView::handelEndResizeWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    VLPoint fixed;
    if (!item->supports(VLEditSupportResize) ||
        !item->mouseHitEndResizeControlPoints(point, &fixed))
        return false;
    VLLog("VLEditView - VLEditTypeEndResize");
    trackResize(item, VLEditTypeEndResize, fixed, item->editType() == VLEditTypeBeginResize);
    return true;
}

bool VLEditView::handelRotateWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    if (!item->supports(VLEditSupportRotate) ||
        !item->mouseHitCornerRotateControlPoints(point, nullptr))
        return false;
    VLLog("VLEditView - VLEditTypeRotate");
    const double before = item->degrees();
    VLPoint last = point;
    track(
        [&](VLPoint p) {
            item->setRotateStartPoint(last);
            item->setRotateEndPoint(p);
            last = p;
        },
        [&](VLPoint) {
            undoManager_.registerUndo(
                [this, item, before, after = item->degrees()] { undoRotate(item, before, after); });
        });
    return true;
}

bool VLEditView::handelMoveWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    if (!item->supports(VLEditSupportMove) || item->editType() == VLEditTypeEdit ||
        !item->mouseHitGraph(point))
        return false;
    VLLog("VLEditView - VLEditTypeMove");
    VLPoint last = point;
    track(
        [&](VLPoint p) {
            const VLPoint vector = p - last;
            VLLogTrace("%s {%g, %g}", "handelMoveWithMouseDown", vector.x, vector.y);
            item->move(vector);
            last = p;
        },
        [&](VLPoint p) {
            undoManager_.registerUndo([this, item, vector = p - point] { undoMove(item, vector); });
        });
    return true;
}

bool VLEditView::handelReverseWithMouseDown(VLPoint point) {
    const Item item = focusItem();
    if (!item->supports(VLEditSupportReverse) || !item->mouseHitReverseControlPoints(point))
        return false;
    VLLog("VLEditView - VLEditTypeReverse");
    item->reverse();
    undoManager_.registerUndo([this, item] { undoReverse(item); });
    return true;
}
