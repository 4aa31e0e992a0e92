#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QTextCursor>
#include <QTextDocument>

#include "platform/base/geometry.h"

class QPainter;

/// The text of an item, laid out, and its drawing.
///
/// Text is plain, in one font and one colour; a line ends where the user ended it. Glyphs are drawn
/// as filled outlines, by the text view of an edit just as here: what is typed and what is
/// delivered are the same drawing. Main thread.
class VLLayoutManager {
 public:
    /// How far the text lies inside of its document, on each side: room for the caret and for
    /// glyphs that lean out.
    static constexpr double kMargin = 5.0;

    VLLayoutManager();
    VLLayoutManager(const VLLayoutManager&) = delete;
    VLLayoutManager& operator=(const VLLayoutManager&) = delete;

    /// The face of all text, `size` points high; the system's own size for a size of 0.
    [[nodiscard]] static QFont systemFontOfSize(double size);

    [[nodiscard]] QString string() const;
    /// Replaces the whole text.
    void setString(const QString& string);
    void setFont(const QFont& font);

    /// Width and height of the text, that of a composition in it included, rounded up to whole
    /// points; zero without any.
    [[nodiscard]] VLSize usedSize() const { return usedSize_; }
    /// Measures the text again, and lays lines that run to the left out at its right edge.
    void updateLayout();

    /// Draws the text with its upper left corner at that of `frame`. The painter is y-up;
    /// `dirtyRect` is in its coordinates.
    void drawGlyphs(QPainter& painter, const VLRect& frame, const QColor& color,
                    const VLRect& dirtyRect) const;

    /// The same with a painter that is y-down, the document's upper left corner being its zero
    /// point, and with a part of the text shown as selected.
    void drawDocument(QPainter& painter, const QColor& color, const QRectF& dirtyRect,
                      const QTextCursor& selection = {}) const;

    /// Whether the text, with `more` typed into it, may hold characters that are drawn as pictures.
    [[nodiscard]] bool mayHavePictures(const QString& more) const;
    [[nodiscard]] QTextDocument& document() { return document_; }

 private:
    void chooseGlyphDrawing();

    QTextDocument document_;
    VLSize usedSize_;
    bool hasHadPictures_ = false;
};
