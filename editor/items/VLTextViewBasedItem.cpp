#include "editor/items/VLTextViewBasedItem.h"

#include <QPainter>
#include <QTextCursor>
#include <algorithm>
#include <cmath>
#include <utility>

#include "editor/items/VLLayoutManager.h"
#include "platform/view/VLPanel.h"
#include "platform/view/VLView.h"

VLTextViewBasedItem::VLTextViewBasedItem(std::weak_ptr<VLEditItemSuperView> superView,
                                         VLPoint centerPoint, VLSize size)
    : VLEditItem(std::move(superView), centerPoint, size),
      layoutManager_(std::make_shared<VLLayoutManager>()) {}

VLTextViewBasedItem::~VLTextViewBasedItem() {
    if (!textView_) return;
    textView_->onTextDidChange = nullptr;
    endEditing();
}

std::shared_ptr<VLEditItem> VLTextViewBasedItem::copyWithZone() const {
    auto copy = VLEditItem::copyWithZone();
    auto& item = static_cast<VLTextViewBasedItem&>(*copy);
    item.setTextFrame(textFrame_);
    item.setContentString(contentString());
    return copy;
}

void VLTextViewBasedItem::setupTextView() {
    layoutManager_->setFont(font());
    setSize(minSizeOfTextItemWithFont(font()));
    setTextFrame(textviewRect());
    updateFrame();
}

QFont VLTextViewBasedItem::font() const {
    return VLLayoutManager::systemFontOfSize(normalStrokeWidth());
}

// Text -----------------------------------------------------------------------------------------

QString VLTextViewBasedItem::contentString() const {
    return layoutManager_->string();
}

void VLTextViewBasedItem::setContentString(const QString& string) {
    layoutManager_->setString(string);
    // It is no typing of the user's: typing is undone here, this by whoever did it.
    layoutManager_->document().clearUndoRedoStacks();
    textDidChange();
}

void VLTextViewBasedItem::insertText(const QString& text) {
    if (textView_) textView_->textCursor().insertText(text);
}

void VLTextViewBasedItem::insertText(const QString& text, int toLocation) {
    if (!textView_) return;
    QTextCursor cursor = textView_->textCursor();
    cursor.setPosition(std::clamp(toLocation, 0, static_cast<int>(contentString().size())));
    cursor.insertText(text);
}

std::optional<QString> VLTextViewBasedItem::clippingStringWithRange(Range range) {
    const QString all = contentString();
    const bool isIn = range.location >= 0 && range.length >= 0 && range.location <= all.size() &&
                      range.length <= all.size() - range.location;
    if (!textView_ || !isIn) return std::nullopt;
    QTextCursor cursor = textView_->textCursor();
    cursor.setPosition(range.location);
    cursor.setPosition(range.location + range.length, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    textView_->setTextCursor(cursor);
    return all.mid(range.location, range.length);
}

std::optional<QString> VLTextViewBasedItem::selectedText() const {
    if (!textView_) return std::nullopt;
    const Range range = selctedRange();
    return contentString().mid(range.location, range.length);
}

void VLTextViewBasedItem::selectAll() {
    if (textView_) textView_->selectAll();
}

VLTextViewBasedItem::Range VLTextViewBasedItem::selctedRange() const {
    if (!textView_) return {};
    const QTextCursor cursor = textView_->textCursor();
    return {cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()};
}

void VLTextViewBasedItem::textDidChange() {
    layoutManager_->updateLayout();
    updateTextView();
    updateFrame();
    setNeedsDisplay();
}

// Frames ---------------------------------------------------------------------------------------

VLSize VLTextViewBasedItem::sizeOfTextViewWithString(const QString& string,
                                                     const QFont& font) const {
    VLLayoutManager measure;
    measure.setFont(font);
    measure.setString(string.isEmpty() ? placeholder() : string);
    return measure.usedSize();
}

VLSize VLTextViewBasedItem::minSizeOfTextViewWithFont(const QFont& font) const {
    return sizeOfTextViewWithString({}, font);
}

void VLTextViewBasedItem::setTextFrame(const VLRect& frame) {
    textFrame_ = frame;
    if (textView_) textView_->setTextFrame(frame);
}

void VLTextViewBasedItem::updateTextView() {
    VLSize size = layoutManager_->usedSize();
    if (size == VLSize{}) size = minSizeOfTextViewWithFont(font());
    if (size == textFrame_.size()) return;
    const double top = std::floor(textFrame_.maxY());
    setTextFrame({std::floor(textFrame_.x), top - size.height, size.width, size.height});
}

void VLTextViewBasedItem::setNormalStrokeWidth(double width) {
    VLEditItem::setNormalStrokeWidth(width);
    layoutManager_->setFont(font());
    textDidChange();
}

void VLTextViewBasedItem::move(VLPoint vector) {
    VLEditItem::move(vector);
    setTextFrame(VLRect::make(textviewRect().origin(), textFrame_.size()));
}

// Editing --------------------------------------------------------------------------------------

void VLTextViewBasedItem::setEditType(uint64_t editType) {
    const uint64_t before = this->editType();
    if (editType == before) return;
    if (editType == VLEditTypeEdit) beginEditing();
    if (before == VLEditTypeEdit) endEditing();
    VLEditItem::setEditType(editType);
    setNeedsDisplay();
}

void VLTextViewBasedItem::beginEditing() {
    const auto above = superView();
    VLView* view = above ? above->view() : nullptr;
    if (!view) return;
    textView_ = new VLSelectedTextView(layoutManager_, *view);
    textView_->setColor(textColor());
    textView_->setTextFrame(textFrame_);
    textView_->moveCursor(QTextCursor::End);
    textView_->document()->setUndoRedoEnabled(true);
    textView_->onTextDidChange = [this] { textDidChange(); };
    textView_->show();
    if (auto* panel = dynamic_cast<VLPanel*>(textView_->window()))
        panel->makeFirstResponder(textView_);
    else
        textView_->setFocus();
}

void VLTextViewBasedItem::endEditing() {
    if (!textView_) return;
    textView_->finishComposition();
    textView_->onTextDidChange = nullptr;
    textView_->hide();
    // It may be in the middle of an event.
    textView_->deleteLater();
    textView_ = nullptr;
    layoutManager_->document().setUndoRedoEnabled(false);
}

void VLTextViewBasedItem::textColorDidChange() {
    if (textView_) textView_->setColor(textColor());
}

// Drawing --------------------------------------------------------------------------------------

void VLTextViewBasedItem::drawGraph(QPainter& painter, const VLRect& dirtyRect) {
    if (textView_) return;
    const double margin = VLLayoutManager::kMargin;
    const VLRect clip = textFrame_.insetBy(-margin, -margin);
    painter.save();
    painter.setClipRect(QRectF(clip.x, clip.y, clip.width, clip.height), Qt::IntersectClip);
    layoutManager_->drawGlyphs(painter, textFrame_, textColor(), dirtyRect);
    painter.restore();
}

void VLTextViewBasedItem::strokeActiveBorder(QPainter& painter, const VLRect& local) const {
    if (!activeStrokeColor().isValid() || !(activeStrokeWidth() > 0)) return;
    painter.save();
    painter.translate(center().x, center().y);
    painter.rotate(degrees());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(activeStrokeColor(), activeStrokeWidth(), Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
    painter.drawRect(QRectF(local.x, local.y, local.width, local.height));
    painter.restore();
}
