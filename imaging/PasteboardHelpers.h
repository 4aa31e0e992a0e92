#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// Puts a picture on the general pasteboard as the PNG that was made of it. True on success; false,
/// with the pasteboard as it was, without a picture. Main thread.
bool writePNGDataToPasteboard(const QImage& image, const QByteArray& png);

}  // namespace vorla
