#include "platform/view/ChangingLine.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>

#include "platform/base/raii.h"
#include "platform/view/drawing.h"

namespace vorla {
namespace {

/// The toolkit cuts the place of a text to this fraction of a point.
constexpr double steps = 64.0;

/// The letter after the last.
constexpr char16_t end = 0;

char16_t after(const QString& text, qsizetype index) {
    return index + 1 < text.size() ? text[index + 1].unicode() : end;
}

/// Every figure, of hexadecimal numbers too, before every other.
QString pairsOfFigures() {
    const QString figures = QStringLiteral("0123456789abcdef");
    QString pairs;
    for (qsizetype i = 0; i < figures.size(); ++i)
        for (qsizetype j = i; j < figures.size(); ++j) pairs += QString{figures[i]} + figures[j];
    return pairs + figures.front();
}

}  // namespace

/// What is known of a font's letters.
class ChangingLine::Letters {
 public:
    struct Letter {
        size_t font;
        quint32 glyph;
        double advance;
    };

    static std::shared_ptr<Letters> of(const QFont& font) {
        static NoDestructor<std::map<QFont, std::shared_ptr<Letters>>> known;
        // Fonts must not outlive the application object.
        if (known->empty()) qAddPostRoutine([] { known->clear(); });
        auto& letters = (*known)[font];
        if (!letters) {
            letters = std::make_shared<Letters>();
            letters->learn(pairsOfFigures(), font);
        }
        return letters;
    }

    /// Null when the two have not been seen side by side.
    [[nodiscard]] const Letter* find(char16_t letter, char16_t next) const {
        const auto found = letters_.find(uint32_t{letter} << 16 | next);
        return found == letters_.end() ? nullptr : &found->second;
    }
    [[nodiscard]] bool know(const QString& text) const {
        for (qsizetype i = 0; i < text.size(); ++i)
            if (!find(text[i].unicode(), after(text, i))) return false;
        return true;
    }
    [[nodiscard]] const std::vector<QRawFont>& fonts() const { return fonts_; }

    /// False where the text is no row of letters with a glyph each, or where letters came out in
    /// another way before.
    bool learn(const QString& text, const QFont& font) {
        std::vector<Placed> placed = shape(text, font);
        if (static_cast<qsizetype>(placed.size()) != text.size() + 1) return false;
        for (size_t i = 0; i + 1 < placed.size(); ++i) {
            const auto index = static_cast<qsizetype>(i);
            const Letter letter{placed[i].font, placed[i].glyph, placed[i + 1].x - placed[i].x};
            const Letter& known =
                letters_
                    .try_emplace(uint32_t{text[index].unicode()} << 16 | after(text, index), letter)
                    .first->second;
            if (known.font != letter.font || known.glyph != letter.glyph ||
                std::abs(known.advance - letter.advance) >= 1.0 / steps)
                return false;
        }
        return true;
    }

 private:
    struct Placed {
        double x;
        size_t font;
        quint32 glyph;
    };

    /// The glyphs from left to right, and the end; nothing where the text runs to the left.
    std::vector<Placed> shape(const QString& text, const QFont& font) {
        QTextLayout layout(text, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        std::vector<Placed> placed;
        for (const QGlyphRun& run : layout.glyphRuns()) {
            if (run.isRightToLeft()) return {};
            const auto known = std::ranges::find(fonts_, run.rawFont());
            const auto place = static_cast<size_t>(known - fonts_.begin());
            if (known == fonts_.end()) fonts_.push_back(run.rawFont());
            const QList<quint32> glyphs = run.glyphIndexes();
            const QList<QPointF> positions = run.positions();
            for (qsizetype i = 0; i < glyphs.size(); ++i)
                placed.push_back({positions[i].x(), place, glyphs[i]});
        }
        std::ranges::stable_sort(placed, {}, &Placed::x);
        if (!placed.empty() && placed.front().x != 0.0) return {};
        placed.push_back({textSize(text, font).width, 0, 0});
        return placed;
    }

    std::vector<QRawFont> fonts_;
    /// By the letter and the one after it.
    std::unordered_map<uint32_t, Letter> letters_;
};

ChangingLine::ChangingLine(const QFont& font) : font_(font), letters_(Letters::of(font)) {
    const QFontMetricsF metrics(font);
    descent_ = metrics.descent();
    height_ = metrics.height();
}

void ChangingLine::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    plain_ = plain_ && (letters_->know(text) || letters_->learn(text, font_));
    if (plain_) {
        place();
        return;
    }
    runs_.clear();
    width_ = textSize(text_, font_).width;
}

void ChangingLine::place() {
    const auto& fonts = letters_->fonts();
    std::vector<QList<quint32>> glyphs(fonts.size());
    std::vector<QList<QPointF>> positions(fonts.size());
    double x = 0.0;
    for (qsizetype i = 0; i < text_.size(); ++i) {
        const auto& letter = *letters_->find(text_[i].unicode(), after(text_, i));
        glyphs[letter.font].push_back(letter.glyph);
        positions[letter.font].push_back({x, 0.0});
        x += letter.advance;
    }
    width_ = x;
    runs_.clear();
    for (size_t i = 0; i < fonts.size(); ++i) {
        if (glyphs[i].isEmpty()) continue;
        QGlyphRun& run = runs_.emplace_back();
        run.setRawFont(fonts[i]);
        run.setGlyphIndexes(glyphs[i]);
        run.setPositions(positions[i]);
    }
}

void ChangingLine::draw(QPainter& painter, const QColor& color, VLPoint origin) const {
    if (!color.isValid()) return;
    if (runs_.empty()) {
        drawText(painter, text_, font_, color, origin);
        return;
    }
    const QTransform yUp = painter.transform();
    painter.translate(0.0, origin.y + descent_);
    painter.scale(1.0, -1.0);
    painter.setPen(color);
    const QPointF start(std::floor(origin.x * steps) / steps, 0.0);
    for (const QGlyphRun& run : runs_) painter.drawGlyphRun(start, run);
    painter.setTransform(yUp);
}

}  // namespace vorla
