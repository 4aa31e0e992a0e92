#include "PicturePreview.h"

#include <QPainter>

#include "HostIcon.h"

namespace {

constexpr int margin = 12;
constexpr int glyphSize = 64;

}  // namespace

PicturePreview::PicturePreview(QWidget* parent) : QWidget(parent) {
    setMinimumSize(240, 140);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PicturePreview::setPicture(const QImage& picture) {
    picture_ = QPixmap::fromImage(picture);
    fit();
}

void PicturePreview::setHint(const QString& hint) {
    hint_ = hint;
    setAccessibleName(hint);
    update();
}

void PicturePreview::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

void PicturePreview::fit() {
    const double scale = devicePixelRatioF();
    const QSize room = (QSizeF(size() - QSize(2 * margin, 2 * margin)) * scale).toSize();
    const bool fits = picture_.width() <= room.width() && picture_.height() <= room.height();
    fitted_ = fits || picture_.isNull()
                  ? picture_
                  : picture_.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    fitted_.setDevicePixelRatio(scale);
    update();
}

void PicturePreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    if (fitted_.isNull()) {
        paintHint(painter);
        return;
    }
    QRect place(QPoint(), fitted_.deviceIndependentSize().toSize());
    place.moveCenter(rect().center());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawPixmap(place.topLeft(), fitted_);
    QColor edge = palette().color(QPalette::Text);
    edge.setAlphaF(0.25F);
    painter.setPen(edge);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place.adjusted(-1, -1, 0, 0));
}

void PicturePreview::paintHint(QPainter& painter) const {
    const QColor color = palette().color(QPalette::PlaceholderText);
    const QRect text = rect().adjusted(margin, margin, -margin, -margin);
    const int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    const int textHeight = painter.fontMetrics().boundingRect(text, flags, hint_).height();
    const int top = (height() - glyphSize - margin - textHeight) / 2;
    captureGlyph(QPalette::PlaceholderText, QPalette::PlaceholderText)
        .paint(&painter, QRect((width() - glyphSize) / 2, top, glyphSize, glyphSize));
    painter.setPen(color);
    painter.drawText(text.adjusted(0, top + glyphSize, 0, 0), flags, hint_);
}
