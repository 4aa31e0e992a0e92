#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include "platform/view/ChangingLine.h"
#include "platform/view/FrozenScreen.h"
#include "platform/view/VLView.h"

inline constexpr double MagnifierViewWidth = 110.0;
inline constexpr double MagnifierViewHeight = 122.0;
inline constexpr double XOffsetWithMouseLocation = 15.0;
inline constexpr double YOffsetWithMouseLocation = 15.0;
inline constexpr double MinOffsetWithScreenEdge = 15.0;

/// The little window that follows the pointer while the user aims: the frozen picture five times
/// enlarged, a cross, the pointer's coordinates and the colour there. It never looks at the live
/// screen. Main thread.
class VLCaptureMagnifierView : public VLView {
 public:
    /// `screenFrame` is the surface's frame: its size limits where the view may be placed.
    VLCaptureMagnifierView(vorla::FrozenScreen screen, const VLRect& screenFrame,
                           QWidget* superview = nullptr);

    void setScreenFrame(const VLRect& frame) { screenFrame_ = frame; }

    /// Shows what is around a point of the surface and places the view next to it. Outside of the
    /// screen the picture stands still and the view still moves.
    void setMouseLocation(VLPoint location);

    [[nodiscard]] VLPoint imageOrigin() const { return imageOrigin_; }
    [[nodiscard]] const QString& mouseInfoStr() const { return mouseInfo_.text(); }
    /// Empty before the pointer was on the screen.
    [[nodiscard]] QString colorInfoStr() const;

    /// Where the view goes for a pointer: the first free place of left below, right below, right
    /// above, left above; the pointer itself if none is wholly on the screen.
    [[nodiscard]] VLPoint adjustFrameOriginByMouseLocation(VLPoint location) const;

    /// The part of the screen that is shown, in points of the frozen picture.
    [[nodiscard]] VLRect sourceRect() const;

    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    void updateImageOrigin(VLPoint location);
    [[nodiscard]] QColor getColorValueByPoint(VLPoint point) const;
    [[nodiscard]] QImage makeBackground(double scale) const;

    vorla::FrozenScreen screen_;
    VLRect screenFrame_;
    VLPoint mouseLocation_;
    VLPoint imageOrigin_;
    /// The coordinates' text in the user's language, with a place for each number.
    QString coordinatesFormat_;
    vorla::ChangingLine mouseInfo_;
    vorla::ChangingLine colorInfo_;
    QColor magnifierCrossColor_;
    QColor magnifierBackgroundColor_;
    QColor magnifierInfoBackgroundColor_;
    QColor magnifierFontColor_;
    QImage background_;
};
