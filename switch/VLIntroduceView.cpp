#include "switch/VLIntroduceView.h"

#include <vorla/VLInfo.h>
#include <vorla/VLStatistics.h>

#include <QApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QPainter>
#include <QTimer>
#include <QUrl>
#include <cmath>

#include "platform/base/VLLog.h"
#include "platform/view/drawing.h"
#include "settings/StatisticDoor.h"
#include "theme/HexColor.h"
#include "theme/VLCaptureThemeManager.h"

VLIntroduceView::VLIntroduceView(const VLRect& frame)
    : VLView(frame),
      natural_(frame.size()),
      hoverColor_(hx_colorWithHexString("#1174e8")),
      backgroundColor_(Qt::transparent),
      normalImage_(VLImage::imageNamed("logoIntroduce_normal")),
      hoverImage_(VLImage::imageNamed("logoIntroduce_hover")) {
    setAccessibleName(QStringLiteral("Vorla"));
}

QSize VLIntroduceView::sizeHint() const {
    return {static_cast<int>(std::ceil(natural_.width)),
            static_cast<int>(std::ceil(natural_.height))};
}

void VLIntroduceView::setIsHover(bool value) {
    if (hover_ == value) return;
    hover_ = value;
    setNeedsDisplay();
}

void VLIntroduceView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    // Centred in the whole view: a menu may draw parts of it.
    const VLRect all = bounds();
    painter.fillRect(QRectF(all.x, all.y, all.width, all.height),
                     hover_ ? hoverColor_ : backgroundColor_);
    if (normalImage_.isNull()) return;
    const QSizeF size = normalImage_.deviceIndependentSize();
    vorla::drawImage(painter, hover_ ? hoverImage_ : normalImage_,
                     {(all.width - size.width()) / 2.0, (all.height - size.height()) / 2.0,
                      size.width(), size.height()});
}

bool VLIntroduceView::mouseInView() const {
    return isVisible() && rect().contains(mapFromGlobal(QCursor::pos()));
}

void VLIntroduceView::updateTrackingAreas() {
    VLLog("<VLIntroduceView> %s", __func__);
    setIsHover(mouseInView());
}

void VLIntroduceView::showEvent(QShowEvent* event) {
    VLView::showEvent(event);
    // The menu is not in its place yet.
    QTimer::singleShot(0, this, [this] { updateTrackingAreas(); });
}

void VLIntroduceView::resizeEvent(QResizeEvent* event) {
    VLView::resizeEvent(event);
    setFrame({frame().x, frame().y, static_cast<double>(width()), static_cast<double>(height())});
}

void VLIntroduceView::mouseEntered(const VLMouseEvent& /*event*/) {
    setIsHover(true);
}

void VLIntroduceView::mouseExited(const VLMouseEvent& /*event*/) {
    setIsHover(false);
}

void VLIntroduceView::mouseDown(const VLMouseEvent& /*event*/) {
    vorla::fireStatisticEvent(VLStatEventIntroduction);
}

void VLIntroduceView::mouseUp(const VLMouseEvent& /*event*/) {
    VLLog("<VLIntroduceView> %s", __func__);
    setIsHover(false);
    openURL(VLInfoValue(VLInfoKeyIntroduceURL));
    while (QWidget* menu = QApplication::activePopupWidget())
        if (!menu->close()) break;
}

void VLIntroduceView::openURL(const std::string& url) {
    const QUrl page(QString::fromStdString(url));
    if (page.scheme() != QLatin1String("http") && page.scheme() != QLatin1String("https")) return;
    if (!QDesktopServices::openUrl(page))
        VLLogError("<VLIntroduceView> cannot open %s", url.c_str());
}
