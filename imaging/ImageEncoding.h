#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// The file types of the settings, by their stored numbers.
enum ImageFileType : int {
    ImageFileTypeTiff = 0,
    ImageFileTypeBmp = 1,
    ImageFileTypeGif = 2,
    ImageFileTypeJpeg = 3,
    ImageFileTypePng = 4,
    ImageFileTypeJpeg2000 = 5,
};

/// The picture as a file of that type; an unknown type means PNG. TIFF (LZW), PNG and JPEG 2000 are
/// lossless and keep alpha. GIF is exact up to 256 colours, else dithered, and keeps whether a
/// pixel is more than half transparent. JPEG and BMP are laid on white. Every format but GIF stores
/// the resolution, 72 dpi times the device pixel ratio; PNG and JPEG 2000 only where that is
/// not 72.
///
/// Empty if the picture is null, too large for the format, or memory runs out. Any thread.
QByteArray encodedImage(const QImage& image, int fileType);

}  // namespace vorla
