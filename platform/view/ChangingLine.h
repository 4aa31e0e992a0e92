#pragma once

#include <QColor>
#include <QFont>
#include <QGlyphRun>
#include <QString>
#include <memory>
#include <vector>

#include "platform/base/geometry.h"

class QPainter;

namespace vorla {

/// One line of text that changes with every movement of the pointer, as a place or a colour does.
///
/// It is drawn with the same pixels as by `drawText`. But the toolkit shapes a text each time that
/// it measures or draws it; here a letter's glyph, and how far it is to the next letter's, are
/// learnt the first time that the two stand side by side, for all lines of the font. Scripts in
/// which that depends on more than a letter's neighbour are left to the toolkit. Main thread.
class ChangingLine {
 public:
    explicit ChangingLine(const QFont& font);

    void setText(const QString& text);
    [[nodiscard]] const QString& text() const { return text_; }
    /// In points, as `textSize` has it.
    [[nodiscard]] VLSize size() const { return {width_, height_}; }

    /// Draws the line upright, with its lower left corner at `origin`; the painter is y-up. Leaves
    /// the painter with another pen.
    void draw(QPainter& painter, const QColor& color, VLPoint origin) const;

 private:
    class Letters;
    void place();

    QFont font_;
    double descent_;
    double height_;
    QString text_;
    double width_ = 0.0;
    /// Whether all texts so far were a row of letters, each with one glyph.
    bool plain_ = true;
    std::shared_ptr<Letters> letters_;
    /// A run for each font that the text needs; none when the toolkit has to draw it.
    std::vector<QGlyphRun> runs_;
};

}  // namespace vorla
