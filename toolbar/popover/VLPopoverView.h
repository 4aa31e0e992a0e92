#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>

#include "platform/view/VLImageView.h"
#include "toolbar/GlassView.h"
#include "toolbar/popover/VLPopoverType.h"

/// The body of the popover: a rounded rectangle with an arrow on its top or bottom edge, flat or of
/// glass as the theme says, and room for a logo at the right.
class VLPopoverView : public VLView {
 public:
    explicit VLPopoverView(const VLRect& frame = {}, QWidget* superview = nullptr);

    void setArrowDirection(uint64_t direction);
    /// The arrow's tip, in the view's coordinates.
    void setArrowPoint(VLPoint point);
    void setShowLogo(bool show);

    /// The rectangle without the strip that the arrow stands in.
    [[nodiscard]] VLRect roundRectFrame() const;
    /// The shape as a picture, by its alpha; null for an empty view.
    [[nodiscard]] QImage maskImage() const;
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void frameDidChange(const VLRect& before) override;

 private:
    [[nodiscard]] QPainterPath shape() const;
    void shapeDidChange();
    void layoutLogo();

    uint64_t arrowDirection_ = VLPopoverArrowDirectionUp;
    VLPoint arrowPoint_;
    QColor backgroundColor_;
    GlassView* gaussEffectView_;
    VLImageView* seperateImageView_;
    VLImageView* logoImageView_;
};
