#include "toolbar/PanelShadow.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <vector>

#include "platform/view/VLOverlayPanel.h"

namespace {

constexpr int reach = 5;               ///< of each of the two box filters, in points
constexpr int margin = 2 * reach + 2;  ///< of the shadow around the panel
constexpr int drop = 2;                ///< how far the shadow lies below the panel
constexpr int darkness = 110;          ///< alpha in the middle

/// A box filter over a row or column of a picture of alphas, nothing beyond its ends.
void boxFilter(uchar* first, int count, qsizetype stride, std::vector<uchar>& line) {
    line.assign(static_cast<size_t>(count) + 2 * reach + 1, 0);
    for (int i = 0; i < count; ++i) line[static_cast<size_t>(i) + reach] = first[i * stride];
    int sum = 0;
    for (int i = 0; i < 2 * reach; ++i) sum += line[static_cast<size_t>(i)];
    for (int i = 0; i < count; ++i) {
        sum += line[static_cast<size_t>(i) + 2 * reach];
        first[i * stride] = static_cast<uchar>(sum / (2 * reach + 1));
        sum -= line[static_cast<size_t>(i)];
    }
}

}  // namespace

PanelShadow::PanelShadow(VLOverlayPanel& panel) : panel_(&panel) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    panel.installEventFilter(this);
    connect(&panel, &QObject::destroyed, this, [this] { delete this; });
    follow();
}

void PanelShadow::setMaskImage(const QImage& mask) {
    mask_ = mask;
    shadow_ = {};
    update();
}

void PanelShadow::setCast(bool cast) {
    cast_ = cast;
    follow();
}

bool PanelShadow::eventFilter(QObject* /*receiver*/, QEvent* event) {
    switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::ParentChange:
        case QEvent::ZOrderChange:
            follow();
            break;
        default:
            break;
    }
    return false;
}

void PanelShadow::follow() {
    if (!panel_) return;
    if (parentWidget() != panel_->parentWidget()) setParent(panel_->parentWidget());
    setGeometry(panel_->geometry().adjusted(-margin, -margin + drop, margin, margin + drop));
    setVisible(cast_ && parentWidget() && !panel_->isHidden());
    if (!isHidden()) stackUnder(panel_);
}

/// One pixel to a point is enough: there is nothing sharp in it.
void PanelShadow::makeShadow() {
    shadow_ = QImage(size(), QImage::Format_Alpha8);
    shadow_.fill(0);
    QPainter painter(&shadow_);
    const QRectF body(margin, margin, width() - 2 * margin, height() - 2 * margin);
    if (mask_.isNull())
        painter.fillRect(body, Qt::black);
    else
        painter.drawImage(body, mask_);
    painter.end();
    std::vector<uchar> line;
    for (int pass = 0; pass < 2; ++pass) {
        for (int y = 0; y < height(); ++y) boxFilter(shadow_.scanLine(y), width(), 1, line);
        for (int x = 0; x < width(); ++x)
            boxFilter(shadow_.bits() + x, height(), shadow_.bytesPerLine(), line);
    }
    for (int y = 0; y < height(); ++y) {
        uchar* alphas = shadow_.scanLine(y);
        std::transform(alphas, alphas + width(), alphas,
                       [](uchar alpha) { return static_cast<uchar>(alpha * darkness / 255); });
    }
}

void PanelShadow::paintEvent(QPaintEvent* /*event*/) {
    if (shadow_.size() != size()) makeShadow();
    QPainter painter(this);
    painter.drawImage(0, 0, shadow_);
}
