#include "selection/VLCaptureSizeInfoView.h"

#include <QPainter>
#include <cmath>

#include "platform/base/VLLog.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

/// Distance of the label from the selection and from the screen's edges.
constexpr double gap = 10.0;
constexpr double cornerRadius = 3.0;

}  // namespace

VLCaptureSizeInfoSubView::VLCaptureSizeInfoSubView(const VLRect& frame, QWidget* superview)
    : VLView(frame, superview) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void VLCaptureSizeInfoSubView::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    fontColor_ = theme.themedColorWithKey("VLCaptureSizeinfoView_FontColor");
    const auto font = theme.themedFontWithKey("VLCaptureSizeinfoView_Font");
    font_ = font.value_or(VLThemedFont{}).font();
    setNeedsDisplay();
}

void VLCaptureSizeInfoSubView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const VLSize size = vorla::textSize(sizeInfoStr_, font_);
    vorla::drawText(painter, sizeInfoStr_, font_, fontColor_,
                    {bounds().midX() - size.width / 2.0, bounds().midY() - size.height / 2.0});
}

VLCaptureSizeInfoView::VLCaptureSizeInfoView(const VLRect& screenFrame, QWidget* superview)
    : VLView(screenFrame, superview),
      screenFrame_(screenFrame),
      sizeView_(new VLCaptureSizeInfoSubView(bounds(), this)) {
    // A press on the label is a press on the selection's surroundings.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    configAppearanceAndLayout();
}

void VLCaptureSizeInfoView::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    backgroundColor_ = theme.themedColorWithKey("VLCaptureSizeinfoView_BackgroundColor");
    borderColor_ = theme.themedColorWithKey("VLCaptureSizeinfoView_BorderColor");
    setFrame(VLRect::make(frame().origin(), theme.themedSizeWithKey("VLCaptureSizeinfoView_Size")));
    sizeView_->configAppearanceAndLayout();
    setNeedsDisplay();
}

void VLCaptureSizeInfoView::resizeEvent(QResizeEvent* event) {
    sizeView_->setFrame(bounds());
    QWidget::resizeEvent(event);
}

VLPoint VLCaptureSizeInfoView::originForRect(const VLRect& rect) const {
    const VLSize size = frame().size();
    VLPoint origin{rect.x, rect.maxY() + gap};
    if (rect.x < screenFrame_.x) origin.x = screenFrame_.x;
    if (rect.maxX() > screenFrame_.maxX()) origin.x = screenFrame_.maxX() - size.width;
    if (origin.y < screenFrame_.y) origin.y = screenFrame_.y + size.height + gap;
    if (origin.y > screenFrame_.maxY()) origin.y = screenFrame_.maxY() - size.height - gap;
    return origin;
}

void VLCaptureSizeInfoView::setSelectedRect(const VLRect& rect) {
    setHidden(rect.isZero());
    selectRect_ = rect;
    // A whole number of points may come a hair short of one at scales such as 1.25.
    const auto points = [](double length) {
        return static_cast<long long>(std::floor(length + 1e-3));
    };
    sizeView_->setSizeInfoStr(
        QStringLiteral("%1 * %2").arg(points(rect.width)).arg(points(rect.height)));
    VLLogTrace("sizeInfoStr errorWith:{{%g, %g}, {%g, %g}}", rect.x, rect.y, rect.width,
               rect.height);
    setFrameOrigin(originForRect(rect));
    setNeedsDisplay();
}

void VLCaptureSizeInfoView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // On whole device pixels: a half covered one at the edge would show as a pale rim.
    const VLRect inside = bounds().insetBy(1.0, 1.0);
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(QRectF(inside.x, inside.y, inside.width, inside.height));
    const QRectF whole(QPointF(std::ceil(device.left()), std::ceil(device.top())),
                       QPointF(std::floor(device.right()), std::floor(device.bottom())));
    const QRectF box = toDevice.inverted().mapRect(whole);
    for (const QColor& color : {borderColor_, backgroundColor_}) {
        if (!color.isValid()) continue;
        painter.setBrush(color);
        painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    }
}
