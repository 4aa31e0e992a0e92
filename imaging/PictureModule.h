#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// What each of the modules "tiff", "gif" and "jpeg2000" returns: the picture as a file, or empty
/// bytes on failure. Throws std::bad_alloc.
using EncodePicture = void(const QImage& image, QByteArray& bytes);

}  // namespace vorla

extern "C" [[gnu::visibility("default")]] vorla::EncodePicture vorlaEncodePicture;
