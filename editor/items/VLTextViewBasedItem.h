#pragma once

#include <QFont>
#include <QPointer>
#include <QString>
#include <memory>
#include <optional>

#include "editor/items/VLEditItem.h"
#include "editor/items/VLSelectedTextView.h"

class VLLayoutManager;

/// Base of the items that hold text: the text, its frame, and the editing of it.
///
/// `normalStrokeWidth` is the size of the font in points of the canvas. While the edit type is
/// `VLEditTypeEdit` a text view shows the text and takes the keyboard; else the item draws it, as
/// the same outlines in the same place. The text's frame follows the text: its left and its top
/// edge stay as it grows. Nothing wraps.
class VLTextViewBasedItem : public VLEditItem {
 public:
    /// A part of the text, in UTF-16 units.
    struct Range {
        int location = 0;
        int length = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };

    VLTextViewBasedItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                        VLSize size);
    ~VLTextViewBasedItem() override;
    [[nodiscard]] std::shared_ptr<VLEditItem> copyWithZone() const override;

    [[nodiscard]] QString contentString() const;
    void setContentString(const QString& string);

    // The text as a program changes it; these work while it is being edited only.
    void insertText(const QString& text);
    void insertText(const QString& text, int toLocation);
    /// Cuts the range out and puts the caret in its place; none when the text has no such range.
    std::optional<QString> clippingStringWithRange(Range range);
    [[nodiscard]] std::optional<QString> selectedText() const;
    void selectAll();
    [[nodiscard]] Range selctedRange() const;

    /// The text's frame in the view for the item's present centre and size.
    [[nodiscard]] virtual VLRect textviewRect() const = 0;
    /// The text's frame in the view as it is: whole points.
    [[nodiscard]] const VLRect& textFrame() const { return textFrame_; }
    /// The text view of a running edit; null otherwise, and for an item without an edit view.
    [[nodiscard]] VLSelectedTextView* textView() const { return textView_; }

    // Measuring. Text that is empty measures as `placeholder` does.
    [[nodiscard]] VLSize sizeOfTextViewWithString(const QString& string, const QFont& font) const;
    [[nodiscard]] VLSize minSizeOfTextViewWithFont(const QFont& font) const;
    [[nodiscard]] virtual VLSize minSizeOfTextItemWithFont(const QFont& font) const = 0;

    void setNormalStrokeWidth(double width) override;
    void setEditType(uint64_t editType) override;
    void move(VLPoint vector) override;
    [[nodiscard]] bool isValid() const override { return !contentString().isEmpty(); }
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void drawControlPoints(QPainter& /*painter*/) override {}
    bool mouseHitVerticalResizeControlPoints(VLPoint, VLPoint*) const override { return false; }
    bool mouseHitHorizontalResizeControlPoints(VLPoint, VLPoint*) const override { return false; }

 protected:
    /// Sets the item to the size of an empty text; once, from the subclass's constructor.
    void setupTextView();
    /// Fits the text's frame to the text.
    virtual void updateTextView();
    /// Fits the item to the text's frame.
    virtual void updateFrame() = 0;
    [[nodiscard]] virtual QString placeholder() const = 0;
    [[nodiscard]] virtual QColor textColor() const = 0;

    void setTextFrame(const VLRect& frame);
    void textColorDidChange();
    /// Strokes a local rectangle as the focus border.
    void strokeActiveBorder(QPainter& painter, const VLRect& local) const;
    [[nodiscard]] bool isEditing() const { return editType() == VLEditTypeEdit; }

 private:
    void textDidChange();
    void beginEditing();
    void endEditing();
    [[nodiscard]] QFont font() const;

    std::shared_ptr<VLLayoutManager> layoutManager_;
    QPointer<VLSelectedTextView> textView_;
    VLRect textFrame_;
};
