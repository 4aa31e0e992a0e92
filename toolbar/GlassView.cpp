#include "toolbar/GlassView.h"

#include <QPainter>

#include "platform/view/VLPanel.h"
#include "platform/view/drawing.h"
#include "toolbar/FrostedGlass.h"

namespace {

/// Standard deviation of the blur in points: shapes behind the panel dissolve, colours stay.
constexpr double blurRadius = 12.0;

}  // namespace

GlassView::GlassView(VLView* superview) : VLView(superview->bounds(), superview) {
    setAutoresizing(WidthSizable | HeightSizable);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void GlassView::setMaskImage(const QImage& mask) {
    mask_ = mask;
    glass_ = {};
    setNeedsDisplay();
}

void GlassView::setTint(const QColor& tint) {
    tint_ = tint;
    glass_ = {};
    setNeedsDisplay();
}

void GlassView::makeGlass(const VLRect& place) {
    place_ = place;
    VLView* surface = panel() ? panel()->contentView() : nullptr;
    if (!surface || mask_.isNull()) return;
    // The blur needs its surroundings: three deviations of a Gaussian are all that counts.
    const VLRect around = place.insetBy(-3.0 * blurRadius, -3.0 * blurRadius)
                              .integral()
                              .intersection(surface->bounds());
    const QImage behind = renderViewTree(*surface, around, backingScale());
    glass_ = vorla::frostedGlass(behind, place.offsetBy(-around.x, -around.y), blurRadius, tint_);
    if (glass_.isNull()) return;
    QPainter painter(&glass_);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(QRectF(0.0, 0.0, place.width, place.height), mask_);
}

void GlassView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const VLRect place = convertRectToWindow(bounds());
    if (glass_.isNull() || place != place_) makeGlass(place);
    vorla::drawImage(painter, glass_, bounds());
}
