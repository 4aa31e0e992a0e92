// The undo steps of VLEditView. Each makes its change and records the opposite one.

#include "editor/VLEditView.h"
#include "platform/base/VLLog.h"

bool VLEditView::undo() {
    if (!undoManager_.canUndo()) return false;
    VLLog("undo");
    undoManager_.undo();
    return true;
}

bool VLEditView::redo() {
    if (!undoManager_.canRedo()) return false;
    VLLog("redo");
    undoManager_.redo();
    return true;
}

void VLEditView::undoItem(const Item& item, const ResizeStep& step) {
    if (!item) return;
    item->setEditType(step.resizeType);
    item->setResizeFixedPoint(step.fixedPoint);
    item->setResizeChangePoint(step.changePoint);
    undoManager_.registerUndo([=, this] { redoItem(item, step); });
}

void VLEditView::redoItem(const Item& item, const ResizeStep& step) {
    if (!item) return;
    item->setEditType(step.resizeType);
    item->setResizeFixedPoint(step.toFixedPoint);
    item->setResizeChangePoint(step.toChangePoint);
    undoManager_.registerUndo([=, this] { undoItem(item, step); });
}

void VLEditView::undoRotate(const Item& item, double degrees, double toDegrees) {
    if (!item) return;
    item->rotateToDegrees(degrees);
    undoManager_.registerUndo([=, this] { redoRotate(item, degrees, toDegrees); });
}

void VLEditView::redoRotate(const Item& item, double degrees, double toDegrees) {
    if (!item) return;
    item->rotateToDegrees(toDegrees);
    undoManager_.registerUndo([=, this] { undoRotate(item, degrees, toDegrees); });
}

void VLEditView::undoMove(const Item& item, VLPoint moveVector) {
    if (!item) return;
    item->move(VLPoint{} - moveVector);
    undoManager_.registerUndo([=, this] { redoMove(item, moveVector); });
}

void VLEditView::redoMove(const Item& item, VLPoint moveVector) {
    if (!item) return;
    item->move(moveVector);
    undoManager_.registerUndo([=, this] { undoMove(item, moveVector); });
}

void VLEditView::undoEditTextViewBasedItem(const Item& item, const QString& fromString,
                                           const QString& toString) {
    if (!item) return;
    setContentOfTextItem(item, fromString);
    undoManager_.registerUndo([=, this] { redoEditTextViewBasedItem(item, fromString, toString); });
}

void VLEditView::redoEditTextViewBasedItem(const Item& item, const QString& fromString,
                                           const QString& toString) {
    if (!item) return;
    setContentOfTextItem(item, toString);
    undoManager_.registerUndo([=, this] { undoEditTextViewBasedItem(item, fromString, toString); });
}

void VLEditView::undoReverse(const Item& item) {
    if (!item) return;
    item->reverse();
    undoManager_.registerUndo([=, this] { redoReverse(item); });
}

void VLEditView::redoReverse(const Item& item) {
    if (!item) return;
    item->reverse();
    undoManager_.registerUndo([=, this] { undoReverse(item); });
}

void VLEditView::undoColor(const Item& item, const QColor& color, const QColor& toColor) {
    if (!item) return;
    item->setNormalStrokeColor(color);
    undoManager_.registerUndo([=, this] { redoColor(item, color, toColor); });
}

void VLEditView::redoColor(const Item& item, const QColor& color, const QColor& toColor) {
    if (!item) return;
    item->setNormalStrokeColor(toColor);
    undoManager_.registerUndo([=, this] { undoColor(item, color, toColor); });
}

void VLEditView::undoWidth(const Item& item, double width, double toWidth) {
    if (!item) return;
    item->setNormalStrokeWidth(width);
    undoManager_.registerUndo([=, this] { redoWidth(item, width, toWidth); });
}

void VLEditView::redoWidth(const Item& item, double width, double toWidth) {
    if (!item) return;
    item->setNormalStrokeWidth(toWidth);
    undoManager_.registerUndo([=, this] { undoWidth(item, width, toWidth); });
}
