#include <tiffio.h>

#include <algorithm>
#include <memory>

#include "imaging/ImageHelpers.h"
#include "imaging/MemoryFile.h"
#include "imaging/PictureModule.h"

namespace {

using namespace vorla;

constexpr uint32_t kStripBytes = 64 << 10;

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffPtr = std::unique_ptr<TIFF, TiffCloser>;

tmsize_t readProc(thandle_t file, void* data, tmsize_t size) {
    return static_cast<MemoryFile*>(file)->read(data, size);
}
tmsize_t writeProc(thandle_t file, void* data, tmsize_t size) {
    return static_cast<MemoryFile*>(file)->write(data, size);
}
toff_t seekProc(thandle_t handle, toff_t offset, int from) {
    auto* file = static_cast<MemoryFile*>(handle);
    const int64_t base = from == SEEK_CUR ? file->position() : from == SEEK_END ? file->size() : 0;
    file->seek(base + static_cast<int64_t>(offset));
    return static_cast<toff_t>(file->position());
}
int closeProc(thandle_t) {
    return 0;
}
toff_t sizeProc(thandle_t file) {
    return static_cast<toff_t>(static_cast<MemoryFile*>(file)->size());
}

bool setFields(TIFF* tiff, const QImage& image, bool hasAlpha) {
    const uint16_t samples = hasAlpha ? 4 : 3;
    const auto rowBytes = static_cast<uint32_t>(image.width()) * samples;
    const uint16_t straightAlpha = EXTRASAMPLE_UNASSALPHA;
    const double dpi = dotsPerInch(image);
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width()) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height()) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
           TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::max(1U, kStripBytes / rowBytes)) &&
           TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
           TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dpi) &&
           TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dpi) &&
           (!hasAlpha || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &straightAlpha));
}

}  // namespace

/// RGB, or RGBA with straight alpha, 8 bits, LZW with horizontal differencing, which every reader
/// understands.
void vorlaEncodePicture(const QImage& image, QByteArray& bytes) {
    const bool hasAlpha = image.hasAlphaChannel();
    QImage packed =
        image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    if (packed.isNull()) return;
    MemoryFile file;
    TiffPtr tiff(TIFFClientOpen("image", "w", &file, readProc, writeProc, seekProc, closeProc,
                                sizeProc, nullptr, nullptr));
    bool done = tiff && setFields(tiff.get(), image, hasAlpha);
    for (int y = 0; done && y < packed.height(); ++y)
        done = TIFFWriteScanline(tiff.get(), packed.scanLine(y), static_cast<uint32_t>(y), 0) == 1;
    done = done && TIFFFlush(tiff.get()) == 1;
    tiff.reset();
    if (done) bytes = file.bytes();
}
