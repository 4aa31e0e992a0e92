#pragma once

#include <QColor>
#include <QImage>

#include "platform/view/VLView.h"

/// The background of a panel of frosted glass: what lies behind it on the screen's surface, blurred
/// and tinted, in the shape of a mask. It fills its superview, below the other views, and lets the
/// pointer pass. The picture is made when the panel is drawn at a place for the first time.
class GlassView : public VLView {
 public:
    explicit GlassView(VLView* superview);

    /// The shape, by its alpha, with the view's size in points. Without one nothing shows.
    void setMaskImage(const QImage& mask);
    /// The colour over the blurred picture; its alpha says how little of the picture comes through.
    void setTint(const QColor& tint);

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    void makeGlass(const VLRect& place);

    QImage mask_;
    QColor tint_;
    QImage glass_;
    VLRect place_;
};
