#include "tests/imaging/decoders.h"

#include <openjpeg.h>
#include <tiffio.h>

#include <QTemporaryFile>
#include <QtEndian>
#include <memory>
#include <vector>

namespace vorla::test {
namespace {

constexpr double kMetersPerInch = 0.0254;

QImage pixelsOf(const opj_image_t& planes) {
    QImage image(static_cast<int>(planes.x1), static_cast<int>(planes.y1), QImage::Format_ARGB32);
    for (int y = 0, at = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x, ++at) {
            const auto value = [&](int plane) { return planes.comps[plane].data[at]; };
            line[x] = qRgba(value(0), value(1), value(2), planes.numcomps == 4 ? value(3) : 255);
        }
    }
    return image;
}

}  // namespace

Decoded decodedTiff(const QByteArray& file) {
    QTemporaryFile onDisk;
    if (!onDisk.open() || onDisk.write(file) != file.size() || !onDisk.flush()) return {};
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
        TIFFOpen(onDisk.fileName().toLocal8Bit().constData(), "r"), TIFFClose);
    if (!tiff) return {};
    uint32_t width = 0, height = 0;
    uint16_t samples = 0;
    float dpi = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &dpi);
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32);
    std::vector<uint8_t> row(static_cast<size_t>(TIFFScanlineSize(tiff.get())));
    for (uint32_t y = 0; y < height; ++y) {
        if (TIFFReadScanline(tiff.get(), row.data(), y, 0) != 1) return {};
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(static_cast<int>(y)));
        const uint8_t* at = row.data();
        for (uint32_t x = 0; x < width; ++x, at += samples)
            line[x] = qRgba(at[0], at[1], at[2], samples == 4 ? at[3] : 255);
    }
    return {image, dpi};
}

Decoded decodedJpeg2000(const QByteArray& file) {
    QTemporaryFile onDisk;
    if (!onDisk.open() || onDisk.write(file) != file.size() || !onDisk.flush()) return {};
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    const std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)> stream(
        opj_stream_create_default_file_stream(onDisk.fileName().toLocal8Bit().constData(),
                                              OPJ_TRUE),
        opj_stream_destroy);
    const std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)> codec(
        opj_create_decompress(OPJ_CODEC_JP2), opj_destroy_codec);
    opj_image_t* planes = nullptr;
    opj_setup_decoder(codec.get(), &parameters);
    const bool done = opj_read_header(stream.get(), codec.get(), &planes) &&
                      opj_decode(codec.get(), stream.get(), planes) &&
                      opj_end_decompress(codec.get(), stream.get());
    Decoded decoded;
    if (done) decoded.image = pixelsOf(*planes);
    opj_image_destroy(planes);
    const auto at = file.indexOf("resc");
    if (at >= 0)
        decoded.dotsPerInch = qFromBigEndian<quint16>(file.constData() + at + 4) * kMetersPerInch;
    return decoded;
}

Decoded decodedByQt(const QByteArray& file, const char* format) {
    const QImage image = QImage::fromData(file, format);
    if (image.isNull()) return {};
    return {image.convertToFormat(QImage::Format_ARGB32), image.dotsPerMeterX() * kMetersPerInch};
}

}  // namespace vorla::test
