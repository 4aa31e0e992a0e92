#pragma once

#include <QColor>
#include <QString>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "editor/RestingItems.h"
#include "editor/VLEditGraphType.h"
#include "editor/VLUndoManager.h"
#include "editor/items/VLEditItem.h"
#include "platform/view/VLView.h"

/// The canvas: a transparent view over the selection's picture on which items are made and changed.
///
/// It keeps the items from back to front, decides what a press does (make an item, change the
/// focus, work on the focused item), tracks the drag to its end, and records each finished change.
/// Nothing keeps an item inside of the view; what lies outside is cut off. Main thread.
class VLEditView : public VLView {
 public:
    using Item = std::shared_ptr<VLEditItem>;

    explicit VLEditView(VLRect frame, QWidget* superview = nullptr);
    ~VLEditView() override;

    /// The tool: the kind of item that a drag makes. Choosing one ends every focus and text edit.
    [[nodiscard]] int64_t graphType() const { return graphType_; }
    void setGraphType(int64_t graphType);
    /// The kind of the item that last had the focus.
    [[nodiscard]] int64_t graphTypeShowed() const { return graphTypeShowed_; }
    void setGraphTypeShowed(int64_t graphType);
    /// Colour and width (font size for text) of the focused item and of all items to come.
    [[nodiscard]] const QColor& normalStrokeColor() const { return normalStrokeColor_; }
    void setNormalStrokeColor(const QColor& color);
    [[nodiscard]] double normalStrokeWidth() const { return normalStrokeWidth_; }
    void setNormalStrokeWidth(double width);

    /// Back to front.
    [[nodiscard]] const std::vector<Item>& itemArray() const { return itemArray_; }
    [[nodiscard]] Item focusItem() const { return focusItem_.lock(); }
    /// Brings the item to the top, adding it if it is new; null takes the focus away.
    void setFocusItem(const Item& item);
    /// Takes the focus, and the keyboard, away from every item.
    void unfocus();
    /// A mosaic goes below all other items, everything else on top.
    void addItem(const Item& item);
    void removeItem(const Item& item);
    void removeFocusItem() { removeItem(focusItem()); }

    /// False, with nothing changed, when there is nothing to take back or to do again.
    bool undo();
    bool redo();
    void setUndoManagerEnable(bool enable) { undoManager_.setEnable(enable); }
    [[nodiscard]] const VLUndoManager& undoManager() const { return undoManager_; }

    bool performKeyEquivalent(QKeyEvent& event) override;

    /// Draws what the view shows, focus marks included, with a painter that has the pixels of the
    /// view at `scale` as its units, y downward from the view's upper left corner.
    void drawItems(QPainter& painter, const QRegion& region, double scale);

    /// What a point touches: the topmost item, and the cursor that shows what a drag would do.
    struct Hit {
        Item item;
        uint64_t cursorType = 0;
        const char* operation = nullptr;  ///< for the log
    };
    [[nodiscard]] std::optional<Hit> updateFocusItem(VLPoint mousePoint) const;
    [[nodiscard]] static uint64_t cursorTypeOfResizeOperation(bool resize,
                                                              uint64_t controlPointType);

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseDown(const VLMouseEvent& event) override;
    void mouseMoved(const VLMouseEvent& event) override;
    void mouseExited(const VLMouseEvent& event) override;

 private:
    class ItemSurface;
    using DragStep = std::function<void(VLPoint)>;

    [[nodiscard]] Item newItem() const;
    [[nodiscard]] static bool itemIsTextViewBaseItem(const VLEditItem* item);
    [[nodiscard]] static bool itemIsBottomLevel(const VLEditItem& item);
    [[nodiscard]] bool contains(const VLEditItem& item) const;
    void leaveFocusedItem();
    void postFocusItemDidChange(const VLEditItem& item);
    [[nodiscard]] static QString contentOfTextItem(const VLEditItem& item);
    void setContentOfTextItem(const Item& item, const QString& text);

    // The press, in VLEditViewMouse.cpp.
    [[nodiscard]] static std::optional<Hit> hitOnItem(const Item& item, VLPoint point);
    void pressOnNothing(const VLMouseEvent& event, VLPoint point);
    bool pressOnText(const VLMouseEvent& event, VLPoint point);
    void offerPressToHandlers(VLPoint point);
    void handelCreateItemWithMouseDown(VLPoint point);
    bool handelCornerResizeWithMouseDown(VLPoint point);
    bool handelVerticalResizeWithMouseDown(VLPoint point);
    bool handelHorizontalResizeWithMouseDown(VLPoint point);
    bool handelBeginResizeWithMouseDown(VLPoint point);
    bool handelEndResizeWithMouseDown(VLPoint point);
    bool handelRotateWithMouseDown(VLPoint point);
    bool handelMoveWithMouseDown(VLPoint point);
    bool handelReverseWithMouseDown(VLPoint point);
    void trackResize(const Item& item, VLEditType type, VLPoint fixed, bool endsSwapped);
    void track(const DragStep& dragged, const DragStep& released);

    // Undo steps, in VLEditViewUndo.cpp.
    struct ResizeStep {
        uint64_t resizeType;
        VLPoint fixedPoint, changePoint, toFixedPoint, toChangePoint;
    };
    void undoItem(const Item& item, const ResizeStep& step);
    void redoItem(const Item& item, const ResizeStep& step);
    void undoRotate(const Item& item, double degrees, double toDegrees);
    void redoRotate(const Item& item, double degrees, double toDegrees);
    void undoMove(const Item& item, VLPoint moveVector);
    void redoMove(const Item& item, VLPoint moveVector);
    void undoEditTextViewBasedItem(const Item& item, const QString& fromString,
                                   const QString& toString);
    void redoEditTextViewBasedItem(const Item& item, const QString& fromString,
                                   const QString& toString);
    void undoReverse(const Item& item);
    void redoReverse(const Item& item);
    void undoColor(const Item& item, const QColor& color, const QColor& toColor);
    void redoColor(const Item& item, const QColor& color, const QColor& toColor);
    void undoWidth(const Item& item, double width, double toWidth);
    void redoWidth(const Item& item, double width, double toWidth);

    // What is drawn, in VLEditViewDrawing.cpp.
    void itemDidChange(const VLEditItem& item);
    void itemDidGrow(const VLEditItem& item, const VLRect& rect);
    void itemDidLeave(const VLEditItem& item);
    void markStale(const VLEditItem& item);
    [[nodiscard]] std::vector<VLRect> rectsShown(const VLEditItem& item) const;
    void updatePictures(double scale);
    void drawLive(QPainter& painter, const std::vector<Item>& items, const QRegion& region,
                  double scale);

    QColor normalStrokeColor_;
    double normalStrokeWidth_ = 0.0;
    int64_t graphTypeShowed_ = VLEditGraphTypeNone;
    int64_t graphType_ = VLEditGraphTypeNone;
    std::shared_ptr<ItemSurface> surface_;
    std::vector<Item> itemArray_;
    std::weak_ptr<VLEditItem> focusItem_;
    std::optional<QString> textItemContentBeforeEdit_;
    VLUndoManager undoManager_;

    /// Where each item was last seen to be, focus marks included.
    std::unordered_map<const VLEditItem*, std::vector<VLRect>> shown_;
    RestingItems restingMosaics_;
    RestingItems restingItems_;
    /// The focused item and what lies above it, which is drawn anew at each change.
    std::vector<Item> liveMosaics_;
    std::vector<Item> liveItems_;
    bool picturesCurrent_ = false;
};
