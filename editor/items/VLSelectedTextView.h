#pragma once

#include <QTextEdit>
#include <QTimer>
#include <functional>
#include <memory>

#include "platform/base/geometry.h"

class VLLayoutManager;
class VLView;

/// Where the user types the text of an item: caret, selection, clipboard and input methods.
///
/// It lies in the edit view over the item's place, draws the item's own text and stays clear
/// elsewhere. The widget is wider than the text by the document's margin on each side. Presses of
/// the right button, and keys that mean nothing to a text, go on to the edit view.
class VLSelectedTextView : public QTextEdit {
 public:
    /// Edits the manager's document, and keeps it for as long. The superview owns the view.
    VLSelectedTextView(std::shared_ptr<VLLayoutManager> layoutManager, VLView& superview);
    ~VLSelectedTextView() override;

    /// Puts the text's lower left corner, and its size, at a rectangle of the edit view.
    void setTextFrame(const VLRect& frame);
    /// The colour of text and caret.
    void setColor(const QColor& color);

    /// Ends a composition of an input method; what is shown of it becomes text.
    void finishComposition();

    /// Called when the text, or a composition in it, has changed.
    std::function<void()> onTextDidChange;

    /// The end of the selection that stays as it grows; with none, the caret.
    [[nodiscard]] int lastAnchorPoint() const { return lastAnchorPoint_; }

 protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;

 private:
    [[nodiscard]] QRectF caretRect() const;
    void restartCaret();
    void selectionDidChange();
    void asOneStep(const std::function<void()>& change);

    std::shared_ptr<VLLayoutManager> layoutManager_;
    VLView& superview_;
    QColor color_;
    /// Where the document begins: widgets lie on whole units, the edit view need not.
    QPointF origin_;
    int lastAnchorPoint_ = 0;
    int selectionStart_ = 0;
    int selectionLength_ = 0;
    QTimer caretBlink_;
    bool caretShown_ = false;
    /// An input method may draw a caret of its own, and asks for none then.
    bool caretHiddenByInputMethod_ = false;
};
