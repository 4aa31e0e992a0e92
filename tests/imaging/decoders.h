#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla::test {

/// A decoded file: straight ARGB32 pixels (null if the reader refused the file) and the resolution
/// in dots per inch, 0 if the file states none.
struct Decoded {
    QImage image;
    double dotsPerInch = 0;
};

// Each uses the reference library of its format.
Decoded decodedTiff(const QByteArray& file);
Decoded decodedJpeg2000(const QByteArray& file);
/// Qt's reader for the named format.
Decoded decodedByQt(const QByteArray& file, const char* format);

}  // namespace vorla::test
