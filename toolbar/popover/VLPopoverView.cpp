#include "toolbar/popover/VLPopoverView.h"

#include <QPainter>
#include <QPolygonF>
#include <cmath>

#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

constexpr double cornerRadius = 4.0;

VLSize arrowSize() {
    return VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLPopoverViewArrowSize");
}

VLSize pointSize(const QImage& image) {
    const QSizeF size = image.deviceIndependentSize();
    return {size.width(), size.height()};
}

}  // namespace

VLPopoverView::VLPopoverView(const VLRect& frame, QWidget* superview)
    : VLView(frame, superview),
      gaussEffectView_(new GlassView(this)),
      seperateImageView_(new VLImageView({}, this)),
      logoImageView_(new VLImageView({}, this)) {
    configAppearanceAndLayout();
}

void VLPopoverView::setArrowDirection(uint64_t direction) {
    if (direction == arrowDirection_) return;
    arrowDirection_ = direction;
    shapeDidChange();
}

void VLPopoverView::setArrowPoint(VLPoint point) {
    if (point == arrowPoint_) return;
    arrowPoint_ = point;
    shapeDidChange();
}

void VLPopoverView::setShowLogo(bool show) {
    logoImageView_->setHidden(!show);
    seperateImageView_->setHidden(!show);
}

VLRect VLPopoverView::roundRectFrame() const {
    const VLRect all = frame();
    const double strip = arrowSize().height;
    const bool arrowOnTop = arrowDirection_ == VLPopoverArrowDirectionUp;
    return {all.x, arrowOnTop ? all.y : all.y + strip, all.width, all.height - strip};
}

/// One outline for both parts: where two would meet, antialiasing leaves a seam. The arrow reaches
/// into the body, for two that just touch do not become one.
QPainterPath VLPopoverView::shape() const {
    const VLRect body = roundRectFrame();
    const VLSize arrow = arrowSize();
    const double down = arrowDirection_ == VLPopoverArrowDirectionUp ? -1.0 : 1.0;
    const double base = arrowPoint_.y + down * arrow.height;
    const double left = arrowPoint_.x - arrow.width / 2.0;
    const double right = arrowPoint_.x + arrow.width / 2.0;
    QPainterPath pointer;
    pointer.addPolygon(QPolygonF{{arrowPoint_.x, arrowPoint_.y},
                                 {left, base},
                                 {left, base + down},
                                 {right, base + down},
                                 {right, base}});
    pointer.closeSubpath();
    QPainterPath outline;
    outline.addRoundedRect(QRectF(body.x, body.y, body.width, body.height), cornerRadius,
                           cornerRadius);
    return outline.united(pointer);
}

QImage VLPopoverView::maskImage() const {
    if (bounds().isEmpty()) return {};
    const double scale = backingScale();
    QImage mask(static_cast<int>(std::ceil(bounds().width * scale)),
                static_cast<int>(std::ceil(bounds().height * scale)),
                QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.0, mask.height());
    painter.scale(scale, -scale);
    painter.fillPath(shape(), Qt::black);
    painter.end();
    mask.setDevicePixelRatio(scale);
    return mask;
}

void VLPopoverView::shapeDidChange() {
    if (!gaussEffectView_->isHidden()) gaussEffectView_->setMaskImage(maskImage());
    setNeedsDisplay();
}

void VLPopoverView::frameDidChange(const VLRect& before) {
    VLView::frameDidChange(before);
    if (before.size() == frame().size()) return;
    shapeDidChange();
    layoutLogo();
}

void VLPopoverView::layoutLogo() {
    const double strip =
        VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLPopoverViewSize_Logo").width;
    const VLSize line = pointSize(seperateImageView_->image());
    const VLSize logo = pointSize(logoImageView_->image());
    seperateImageView_->setFrame({frame().maxX() - strip, 10.0, line.width, line.height});
    logoImageView_->setFrame({frame().maxX() - 10.0 - logo.width, 14.0, logo.width, logo.height});
}

void VLPopoverView::configAppearanceAndLayout() {
    VLLog("<VLPopoverView> %s", __func__);
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    const QColor color = theme.themedColorWithKey("VLPopover_BackgroundColor");
    const bool glass = theme.themedEnableWithKey("VLCaptureSizeInfoView_EnableGaussEffect");
    gaussEffectView_->setHidden(!glass);
    gaussEffectView_->setTint(color);
    backgroundColor_ = glass ? QColor() : color;
    seperateImageView_->setImage(theme.themedImageWithKey("VLToolbarSeperateLine", backingScale()));
    logoImageView_->setImage(theme.themedImageWithKey("VLPopoverLogo", backingScale()));
    layoutLogo();
    shapeDidChange();
}

void VLPopoverView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (!backgroundColor_.isValid()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape(), backgroundColor_);
}
