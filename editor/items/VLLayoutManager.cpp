#include "editor/items/VLLayoutManager.h"

#include <QAbstractTextDocumentLayout>
#include <QCache>
#include <QGlyphRun>
#include <QHash>
#include <QPainter>
#include <QPen>
#include <QRawFont>
#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <utility>

#include "theme/VLCaptureThemeManager.h"

namespace {

/// Text with a pen of its own is drawn by its outlines; the pen leaves no mark.
QTextCharFormat outlineFormat() {
    QTextCharFormat format;
    format.setTextOutline(QPen(Qt::transparent, 0));
    return format;
}

/// Characters that a font may have as pictures: symbols, and what takes two units.
bool mayBePicture(QChar c) {
    return c.isSurrogate() || (c.unicode() >= 0x2190 && c.unicode() < 0x2c00);
}

/// Whether the font has glyphs in colours of their own. Asking it for their outlines would do too,
/// but then the toolkit draws them no more.
bool hasPictures(const QRawFont& font) {
    static QHash<QString, bool> known;
    const QString name = font.familyName() + font.styleName();
    if (const auto found = known.constFind(name); found != known.constEnd()) return *found;
    const bool has = !font.fontTable("CBLC").isEmpty() || !font.fontTable("COLR").isEmpty() ||
                     !font.fontTable("sbix").isEmpty();
    known.insert(name, has);
    return has;
}

/// Whether a character, with all that combines with it, is drawn by a font of pictures. To lay it
/// out takes milliseconds, and each change of a text asks for all its characters.
bool isPicture(const QString& character, const QFont& font) {
    if (std::none_of(character.begin(), character.end(), mayBePicture)) return false;
    static QCache<QString, bool> known(4096);
    const QString key = character + QChar(QChar::Null) + font.family();
    if (const bool* found = known.object(key)) return *found;
    QTextLayout layout(character, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const QList<QGlyphRun> runs = layout.glyphRuns();
    const bool is = !runs.isEmpty() && hasPictures(runs.first().rawFont());
    known.insert(key, new bool(is));
    return is;
}

}  // namespace

VLLayoutManager::VLLayoutManager() {
    document_.setUndoRedoEnabled(false);
    document_.setDocumentMargin(kMargin);
    QTextOption option = document_.defaultTextOption();
    option.setWrapMode(QTextOption::NoWrap);
    document_.setDefaultTextOption(option);
    QTextCursor(&document_).setBlockCharFormat(outlineFormat());
}

QFont VLLayoutManager::systemFontOfSize(double size) {
    constexpr double systemSize = 13.0;
    QFont font = VLThemedFont{{}, size > 0 ? size : systemSize}.font();
    // The same widths and shapes at every scale of the screen.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

QString VLLayoutManager::string() const {
    QString text = document_.toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

void VLLayoutManager::setString(const QString& string) {
    QTextCursor cursor(&document_);
    cursor.select(QTextCursor::Document);
    cursor.insertText(string, outlineFormat());
    updateLayout();
}

void VLLayoutManager::setFont(const QFont& font) {
    document_.setDefaultFont(font);
    updateLayout();
}

bool VLLayoutManager::mayHavePictures(const QString& more) const {
    return !more.isEmpty() &&
           (hasHadPictures_ || std::any_of(more.begin(), more.end(), mayBePicture));
}

/// Joins the user's last step, so that undoing it takes this along.
void VLLayoutManager::chooseGlyphDrawing() {
    const QString text = document_.toRawText();
    // Typed text takes the format of what it follows, a picture's too.
    if (!hasHadPictures_ && std::none_of(text.begin(), text.end(), mayBePicture)) return;
    hasHadPictures_ = true;
    const auto isDrawnAsPicture = [](const QTextCursor& cursor) {
        return !cursor.charFormat().hasProperty(QTextFormat::TextOutline);
    };
    QTextCursor cursor(&document_);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    // One step for all: at its end the document says that it has changed, which leads here again.
    bool isOpen = false;
    qsizetype begin = 0;
    for (qsizetype end = characters.toNextBoundary(); end > begin;
         begin = end, end = characters.toNextBoundary()) {
        const bool picture = isPicture(text.mid(begin, end - begin), document_.defaultFont());
        cursor.setPosition(static_cast<int>(begin));
        cursor.setPosition(static_cast<int>(end), QTextCursor::KeepAnchor);
        if (picture == isDrawnAsPicture(cursor)) continue;
        if (!std::exchange(isOpen, true)) cursor.joinPreviousEditBlock();
        cursor.setCharFormat(picture ? QTextCharFormat() : outlineFormat());
    }
    if (isOpen) cursor.endEditBlock();
}

void VLLayoutManager::updateLayout() {
    chooseGlyphDrawing();
    const QTextBlock first = document_.firstBlock();
    const bool isEmpty = !first.next().isValid() && first.length() <= 1 &&
                         first.layout()->preeditAreaText().isEmpty();
    const double width = document_.idealWidth();
    document_.setTextWidth(std::ceil(width));
    const double height = document_.size().height();
    usedSize_ = isEmpty ? VLSize{}
                        : VLSize{std::ceil(width - 2 * kMargin), std::ceil(height - 2 * kMargin)};
}

void VLLayoutManager::drawGlyphs(QPainter& painter, const VLRect& frame, const QColor& color,
                                 const VLRect& dirtyRect) const {
    const double left = frame.x - kMargin;
    const double top = frame.maxY() + kMargin;
    painter.save();
    painter.translate(left, top);
    painter.scale(1.0, -1.0);
    drawDocument(painter, color,
                 {dirtyRect.x - left, top - dirtyRect.maxY(), dirtyRect.width, dirtyRect.height});
    painter.restore();
}

void VLLayoutManager::drawDocument(QPainter& painter, const QColor& color, const QRectF& dirtyRect,
                                   const QTextCursor& selection) const {
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = dirtyRect;
    if (selection.hasSelection()) {
        // The ground alone: the toolkit would draw selected text twice, which makes it bold.
        QTextCharFormat ground;
        ground.setBackground(QColor(64, 144, 255, 110));
        ground.setForeground(Qt::transparent);
        context.palette.setColor(QPalette::Text, Qt::transparent);
        context.selections.append({selection, ground});
        document_.documentLayout()->draw(&painter, context);
        context.selections.clear();
    }
    context.palette.setColor(QPalette::Text, color);
    document_.documentLayout()->draw(&painter, context);
}
