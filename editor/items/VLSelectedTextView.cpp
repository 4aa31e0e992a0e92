#include "editor/items/VLSelectedTextView.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyleHints>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "editor/items/VLLayoutManager.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLView.h"

VLSelectedTextView::VLSelectedTextView(std::shared_ptr<VLLayoutManager> layoutManager,
                                       VLView& superview)
    : QTextEdit(&superview), layoutManager_(std::move(layoutManager)), superview_(superview) {
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::NoWrap);
    // Has lines that run to the left end at the right edge of the text.
    setLineWrapMode(FixedPixelWidth);
    setLineWrapColumnOrWidth(static_cast<int>(layoutManager_->document().textWidth()));
    setAttribute(Qt::WA_TranslucentBackground);
    viewport()->setAutoFillBackground(false);
    setAcceptRichText(false);
    setAcceptDrops(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setCursorWidth(0);  // the toolkit's caret has no colour
    setDocument(&layoutManager_->document());
    connect(this, &QTextEdit::cursorPositionChanged, this, [this] { restartCaret(); });
    connect(this, &QTextEdit::selectionChanged, this, [this] { selectionDidChange(); });
    connect(document(), &QTextDocument::contentsChanged, this, [this] {
        if (onTextDidChange) onTextDidChange();
    });
    connect(&caretBlink_, &QTimer::timeout, this, [this] {
        caretShown_ = !caretShown_;
        viewport()->update(caretRect().toAlignedRect());
    });
}

VLSelectedTextView::~VLSelectedTextView() {
    document()->disconnect(this);
    setDocument(nullptr);  // it may end before the base does
}

void VLSelectedTextView::setTextFrame(const VLRect& frame) {
    constexpr double margin = VLLayoutManager::kMargin;
    const VLRect around = frame.insetBy(-margin, -margin);
    const QRect whole = superview_.widgetRect(around);
    origin_ = superview_.widgetPoint({around.x, around.maxY()}) - whole.topLeft();
    setLineWrapColumnOrWidth(static_cast<int>(document()->textWidth()));
    setGeometry(whole);
    updateMicroFocus();
}

void VLSelectedTextView::setColor(const QColor& color) {
    color_ = color;
    viewport()->update();
}

void VLSelectedTextView::finishComposition() {
    const auto composed = [this] { return textCursor().block().layout()->preeditAreaText(); };
    if (composed().isEmpty()) return;
    QGuiApplication::inputMethod()->commit();
    if (composed().isEmpty()) return;
    // An input method that keeps it to itself.
    QInputMethodEvent rest;
    rest.setCommitString(composed());
    inputMethodEvent(&rest);
}

// Caret ----------------------------------------------------------------------------------------

QRectF VLSelectedTextView::caretRect() const {
    const QRect line = cursorRect();
    const int width = std::clamp(line.height() / 24, 1, 3);
    return {line.topLeft() + origin_, QSizeF(width, line.height())};
}

void VLSelectedTextView::restartCaret() {
    viewport()->update();
    caretShown_ = hasFocus() && !caretHiddenByInputMethod_;
    const int flashTime = QGuiApplication::styleHints()->cursorFlashTime();
    if (caretShown_ && flashTime > 1)
        caretBlink_.start(flashTime / 2);
    else
        caretBlink_.stop();
}

void VLSelectedTextView::selectionDidChange() {
    const QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    const int length = cursor.selectionEnd() - start;
    if (length == 0) lastAnchorPoint_ = start;
    if (length > 0) {
        if (lastAnchorPoint_ > start && lastAnchorPoint_ - start != length)
            lastAnchorPoint_ = start == selectionStart_ ? start : start + length;
        const bool grows = selectionLength_ < length;
        const bool toTheRight = lastAnchorPoint_ == start;
        VLLogTrace("Will select %s in overall %s selection", grows == toTheRight ? "right" : "left",
                   toTheRight ? "right" : "left");
    }
    selectionStart_ = start;
    selectionLength_ = length;
}

void VLSelectedTextView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(origin_);
    layoutManager_->drawDocument(painter, color_, QRectF(event->rect()).translated(-origin_),
                                 textCursor());
    painter.resetTransform();
    painter.setRenderHint(QPainter::Antialiasing, false);
    if (caretShown_) painter.fillRect(caretRect(), color_);
}

void VLSelectedTextView::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    restartCaret();
}

void VLSelectedTextView::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    restartCaret();
}

// Input ----------------------------------------------------------------------------------------

void VLSelectedTextView::keyPressEvent(QKeyEvent* event) {
    const bool undo = event->matches(QKeySequence::Undo);
    const bool redo = event->matches(QKeySequence::Redo);
    // What was not typed here is the canvas's to undo.
    if ((undo && !document()->isUndoAvailable()) || (redo && !document()->isRedoAvailable()))
        event->ignore();
    else if (!undo && !redo && layoutManager_->mayHavePictures(event->text()))
        asOneStep([&] { QTextEdit::keyPressEvent(event); });
    else
        QTextEdit::keyPressEvent(event);
    restartCaret();
}

void VLSelectedTextView::insertFromMimeData(const QMimeData* source) {
    asOneStep([&] { QTextEdit::insertFromMimeData(source); });
}

/// Only to such a step can the choice of glyphs be joined that follows it.
void VLSelectedTextView::asOneStep(const std::function<void()>& change) {
    QTextCursor step(document());
    step.beginEditBlock();
    change();
    step.endEditBlock();
}

void VLSelectedTextView::inputMethodEvent(QInputMethodEvent* event) {
    caretHiddenByInputMethod_ = false;
    for (const QInputMethodEvent::Attribute& attribute : event->attributes())
        if (attribute.type == QInputMethodEvent::Cursor && attribute.length == 0)
            caretHiddenByInputMethod_ = true;
    QTextEdit::inputMethodEvent(event);
    if (onTextDidChange) onTextDidChange();
    restartCaret();
}

void VLSelectedTextView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        event->ignore();
        return;
    }
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)) {
        // A press on selected text begins a new selection, never a drag out of the capture.
        QTextCursor cursor = textCursor();
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextEdit::mousePressEvent(event);
}

void VLSelectedTextView::mouseMoveEvent(QMouseEvent* event) {
    QTextEdit::mouseMoveEvent(event);
    if (event->buttons() == Qt::NoButton) event->ignore();  // the edit view chooses the cursor
}

void VLSelectedTextView::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

QMimeData* VLSelectedTextView::createMimeDataFromSelection() const {
    auto data = std::make_unique<QMimeData>();
    QString text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    data->setText(text);
    return data.release();
}
