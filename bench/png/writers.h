#pragma once

#include <QByteArray>
#include <QImage>

// The writers that are compared, each in a file of its own so that none is compiled into the loop
// that measures it. All do the same work: from a picture in memory to the bytes of a PNG file.

namespace vorla {

/// The toolkit's writer at its defaults, the yardstick.
QByteArray writtenByToolkit(const QImage& image);
/// libpng as programs in a hurry use it: level 1, the filter "sub".
QByteArray writtenByLibpngInHaste(const QImage& image);
QByteArray writtenByVorla(const QImage& image);
QByteArray writtenByVorlaInBackground(const QImage& image);

}  // namespace vorla
