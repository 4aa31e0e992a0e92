#pragma once

#include <QImage>

namespace vorla::demo {

/// Which of the pictures in the viewer's album.
enum class Landscape { Lake, Dusk, Meadow, Snow };

/// A painted landscape that looks and compresses like a photograph: ridges in haze under a sky with
/// clouds, mirrored in water, with the grain of a sensor. The same pixels for the same arguments.
QImage paintLandscape(Landscape kind, const QSize& size);

}  // namespace vorla::demo
