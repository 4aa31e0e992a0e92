#include "editor/VLEditView.h"

#include <QKeyEvent>
#include <algorithm>

#include "editor/VLEditNotifications.h"
#include "editor/items/VLArrowItem.h"
#include "editor/items/VLMosaicCurveItem.h"
#include "editor/items/VLOvalItem.h"
#include "editor/items/VLRoundRectItem.h"
#include "editor/items/VLTagItem.h"
#include "editor/items/VLTextItem.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLPanel.h"
#include "theme/HexColor.h"
#include "theme/VLCursor.h"

using vorla::NotificationCenter;

/// The items' door to the view.
class VLEditView::ItemSurface : public VLEditItemSuperView {
 public:
    explicit ItemSurface(VLEditView& view) : view_(view) {}
    void itemDidChange(const VLEditItem& item) override { view_.itemDidChange(item); }
    void itemDidGrow(const VLEditItem& item, const VLRect& rect) override {
        view_.itemDidGrow(item, rect);
    }
    [[nodiscard]] VLView* view() override { return &view_; }

 private:
    VLEditView& view_;
};

VLEditView::VLEditView(VLRect frame, QWidget* superview)
    : VLView(frame, superview), surface_(std::make_shared<ItemSurface>(*this)) {}

VLEditView::~VLEditView() {
    // Items that outlive the view find none any more.
    surface_.reset();
    VLCursor::sharedInstance().restoreSystemCursor();
    VLCursor::clear();
    VLLog("%s", __func__);
}

// Items ----------------------------------------------------------------------------------------

VLEditView::Item VLEditView::newItem() const {
    // Out of sight until the drag gives it a place.
    constexpr VLPoint faraway{-1000.0, -1000.0};
    Item item;
    switch (graphType_) {
        case VLEditGraphTypeRoundRect:
            item = std::make_shared<VLRoundRectItem>(surface_, faraway, VLSize{});
            break;
        case VLEditGraphTypeOval:
            item = std::make_shared<VLOvalItem>(surface_, faraway, VLSize{});
            break;
        case VLEditGraphTypeArrow:
            item = std::make_shared<VLArrowItem>(surface_, faraway, VLSize{});
            break;
        case VLEditGraphTypeText:
            item = std::make_shared<VLTextItem>(surface_, VLPoint{}, VLSize{});
            break;
        case VLEditGraphTypeCurve:
            item = std::make_shared<VLCurveItem>(surface_, VLPoint{}, VLSize{});
            break;
        case VLEditGraphTypeMosaicPen:
            item = std::make_shared<VLMosaicCurveItem>(surface_, VLPoint{}, VLSize{});
            break;
        case VLEditGraphTypeTag:
            item = std::make_shared<VLTagItem>(surface_, VLPoint{}, VLSize{});
            break;
        default:
            return nullptr;
    }
    if (graphType_ != VLEditGraphTypeRoundRect && graphType_ != VLEditGraphTypeMosaicPen) {
        item->setActiveStrokeColor(graphType_ == VLEditGraphTypeCurve
                                       ? hx_colorWithHexString("#ffb3a6", 0.6)
                                       : hx_colorWithHexString("#ff3440", 0.4));
        item->setActiveStrokeWidth(1.0);
    }
    item->setNormalStrokeColor(normalStrokeColor_);
    item->setNormalStrokeWidth(normalStrokeWidth_);
    return item;
}

bool VLEditView::itemIsTextViewBaseItem(const VLEditItem* item) {
    return dynamic_cast<const VLTextViewBasedItem*>(item) != nullptr;
}

QString VLEditView::contentOfTextItem(const VLEditItem& item) {
    const auto* text = dynamic_cast<const VLTextViewBasedItem*>(&item);
    return text ? text->contentString() : QString();
}

void VLEditView::setContentOfTextItem(const Item& item, const QString& text) {
    auto* textItem = dynamic_cast<VLTextViewBasedItem*>(item.get());
    if (!textItem) return;
    textItem->setContentString(text);
    // An edit that is under way goes on from here: its own step holds what is typed after this.
    if (item == focusItem() && textItemContentBeforeEdit_) textItemContentBeforeEdit_ = text;
}

bool VLEditView::itemIsBottomLevel(const VLEditItem& item) {
    return dynamic_cast<const VLMosaicCurveItem*>(&item) != nullptr;
}

bool VLEditView::contains(const VLEditItem& item) const {
    return shown_.contains(&item);
}

void VLEditView::addItem(const Item& item) {
    if (!item) {
        VLLog("%s 要加入的item不能为空", __func__);
        return;
    }
    if (contains(*item)) return;
    itemArray_.insert(itemIsBottomLevel(*item) ? itemArray_.begin() : itemArray_.end(), item);
    shown_[item.get()] = rectsShown(*item);
    picturesCurrent_ = false;
    undoManager_.registerUndo([this, item] { removeItem(item); });
    setNeedsDisplayInRects(shown_[item.get()]);
}

void VLEditView::removeItem(const Item& item) {
    if (!item) {
        VLLog("%s 要删除的item不能为空", __func__);
        return;
    }
    if (!contains(*item)) return;
    if (focusItem() == item) unfocus();
    std::erase(itemArray_, item);
    itemDidLeave(*item);
    undoManager_.registerUndo([this, item] { addItem(item); });
}

// Focus ----------------------------------------------------------------------------------------

void VLEditView::setFocusItem(const Item& item) {
    const Item before = focusItem();
    if (item == before) return;
    if (before) leaveFocusedItem();
    focusItem_ = item;
    picturesCurrent_ = false;
    if (before) itemDidChange(*before);
    if (!item) return;
    setGraphTypeShowed(item->graphType());
    postFocusItemDidChange(*item);
    if (!contains(*item)) {
        VLLog("add item %s", VLEditGraphTypeString(item->graphType()).value_or("").c_str());
        item->setEditType(VLEditTypeNormal);
        addItem(item);
    } else {
        item->setEditType(VLEditTypeFocus);
        std::erase(itemArray_, item);
        itemArray_.push_back(item);
        picturesCurrent_ = false;
        VLLog("focus item %s", VLEditGraphTypeString(item->graphType()).value_or("").c_str());
    }
    itemDidChange(*item);
}

void VLEditView::leaveFocusedItem() {
    const Item item = focusItem();
    item->setEditType(VLEditTypeNormal);  // a composition becomes text
    if (itemIsTextViewBaseItem(item.get())) {
        const auto earlier = std::exchange(textItemContentBeforeEdit_, std::nullopt);
        const QString now = contentOfTextItem(*item);
        if (earlier && *earlier != now)
            undoManager_.registerUndo(
                [this, item, from = *earlier, now] { undoEditTextViewBasedItem(item, from, now); });
    }
    VLLog("unfocus item %s", VLEditGraphTypeString(item->graphType()).value_or("").c_str());
}

void VLEditView::postFocusItemDidChange(const VLEditItem& item) {
    VLNotificationDictionary facts{
        {VLFocusItemGraphType, static_cast<int64_t>(item.graphType())},
        {VLFocusItemLineWidth, item.normalStrokeWidth()},
    };
    if (item.normalStrokeColor().isValid())
        facts[VLFocusItemLineColor] = notificationColor(item.normalStrokeColor());
    NotificationCenter::defaultCenter().post(VLNotificationFocusItemDidChange, std::move(facts));
}

void VLEditView::unfocus() {
    setFocusItem(nullptr);
    if (VLPanel* screen = panel()) screen->makeFirstResponder(this);
}

// Properties -----------------------------------------------------------------------------------

void VLEditView::setGraphType(int64_t graphType) {
    undoManager_.beginEvent();
    unfocus();
    graphType_ = graphType;
}

void VLEditView::setGraphTypeShowed(int64_t graphType) {
    if (const Item focus = focusItem(); focus && focus->graphType() != graphType) unfocus();
    graphTypeShowed_ = graphType;
}

void VLEditView::setNormalStrokeColor(const QColor& color) {
    if (!color.isValid()) return;
    undoManager_.beginEvent();
    const Item focus = focusItem();
    if (focus && focus->graphType() == graphTypeShowed_ && !itemIsBottomLevel(*focus)) {
        undoManager_.registerUndo([this, focus, before = focus->normalStrokeColor(), color] {
            undoColor(focus, before, color);
        });
        focus->setNormalStrokeColor(color);
    }
    normalStrokeColor_ = color;
}

void VLEditView::setNormalStrokeWidth(double width) {
    undoManager_.beginEvent();
    const Item focus = focusItem();
    if (focus && focus->graphType() == graphTypeShowed_) {
        focus->setNormalStrokeWidth(width);
        undoManager_.registerUndo(
            [this, focus, before = normalStrokeWidth_, width] { undoWidth(focus, before, width); });
    }
    normalStrokeWidth_ = width;
}

// Keys -----------------------------------------------------------------------------------------

bool VLEditView::performKeyEquivalent(QKeyEvent& event) {
    undoManager_.beginEvent();
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const bool command = modifiers == Qt::ControlModifier;
    if (command && event.key() == Qt::Key_Z) return undo();
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && event.key() == Qt::Key_Z)
        return redo();
    if (command && event.key() == Qt::Key_Y) return redo();
    if (event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace) {
        if (!focusItem()) return false;
        removeFocusItem();
        return true;
    }
    return VLView::performKeyEquivalent(event);
}
