#pragma once

#include <QImage>

#include "platform/view/VLView.h"

/// Shows a picture over the whole of its bounds, scaled where the sizes differ. The pointer passes
/// through. Main thread.
class VLImageView : public VLView {
 public:
    explicit VLImageView(VLRect frame = {}, QWidget* superview = nullptr);

    [[nodiscard]] const QImage& image() const { return image_; }
    /// A null picture shows nothing.
    void setImage(const QImage& image);

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    QImage image_;
};
