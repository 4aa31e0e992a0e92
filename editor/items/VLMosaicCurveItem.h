#pragma once

#include <QImage>
#include <memory>

#include "editor/items/VLCurveItem.h"

namespace vorla {
class MosaicPicture;
}

/// A stroke that shows the picture under it in coarse squares, to hide what it says.
///
/// Once made it can be neither hit nor moved, and goes by undo only. All mosaic strokes show the
/// one picture set for the class; without it they draw nothing.
class VLMosaicCurveItem : public VLCurveItem {
 public:
    VLMosaicCurveItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                      VLSize size);

    /// The picture that lies under the canvas, its lower left corner at the canvas's zero point;
    /// null at the session's end.
    static void setOriginalImage(const QImage& image);
    /// The squares will soon be wanted: they are made in the background.
    static void prepare();
    /// Null without a picture.
    [[nodiscard]] static const std::shared_ptr<vorla::MosaicPicture>& orinialCIImage();
    /// In points; zero without a picture.
    [[nodiscard]] static VLSize originalImageSize();

    [[nodiscard]] VLEditGraphType graphType() const override { return VLEditGraphTypeMosaicPen; }
    /// Does nothing: a mosaic has no colour.
    void setNormalStrokeColor(const QColor& color) override;
    /// Three times the width that was picked.
    [[nodiscard]] double actualDrawWidth() const override { return normalStrokeWidth() * 3.0; }
    void drawGraph(QPainter& painter, const VLRect& dirtyRect) override;
    void drawActiveBorder(QPainter& /*painter*/) override {}

 protected:
    [[nodiscard]] std::shared_ptr<VLEditItem> makeSameClass() const override;
};
