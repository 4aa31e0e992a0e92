#include <openjpeg.h>
#include <pthread.h>
#include <signal.h>

#include <QtEndian>
#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <thread>

#include "imaging/ImageHelpers.h"
#include "imaging/MemoryFile.h"
#include "imaging/PictureModule.h"

namespace {

using namespace vorla;

constexpr int kResolutions = 6;
constexpr OPJ_UINT32 kOneThreadSide = 256;  // smaller pictures are not worth starting threads

struct ImageDeleter {
    void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};
using ImagePtr = std::unique_ptr<opj_image_t, ImageDeleter>;
struct CodecDeleter {
    void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
using CodecPtr = std::unique_ptr<opj_codec_t, CodecDeleter>;
struct StreamDeleter {
    void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
};
using StreamPtr = std::unique_ptr<opj_stream_t, StreamDeleter>;

OPJ_SIZE_T writeStream(void* data, OPJ_SIZE_T size, void* file) {
    const int64_t written = static_cast<MemoryFile*>(file)->write(data, static_cast<int64_t>(size));
    return written > 0 ? static_cast<OPJ_SIZE_T>(written) : static_cast<OPJ_SIZE_T>(-1);
}
OPJ_OFF_T skipStream(OPJ_OFF_T count, void* handle) {
    auto* file = static_cast<MemoryFile*>(handle);
    file->seek(file->position() + count);
    return count;
}
OPJ_BOOL seekStream(OPJ_OFF_T position, void* file) {
    static_cast<MemoryFile*>(file)->seek(position);
    return OPJ_TRUE;
}

StreamPtr openStream(MemoryFile& file) {
    StreamPtr stream(opj_stream_default_create(OPJ_FALSE));
    if (!stream) return stream;
    opj_stream_set_user_data(stream.get(), &file, nullptr);
    opj_stream_set_write_function(stream.get(), writeStream);
    opj_stream_set_skip_function(stream.get(), skipStream);
    opj_stream_set_seek_function(stream.get(), seekStream);
    return stream;
}

ImagePtr planesOf(const QImage& image, bool hasAlpha) {
    const QImage pixels =
        image.convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (pixels.isNull()) return nullptr;
    std::array<opj_image_cmptparm_t, 4> parameters = {};
    for (auto& plane : parameters) {
        plane.dx = plane.dy = 1;
        plane.w = static_cast<OPJ_UINT32>(image.width());
        plane.h = static_cast<OPJ_UINT32>(image.height());
        plane.prec = 8;
    }
    ImagePtr planes(opj_image_create(hasAlpha ? 4 : 3, parameters.data(), OPJ_CLRSPC_SRGB));
    if (!planes) return nullptr;
    planes->x1 = parameters[0].w;
    planes->y1 = parameters[0].h;
    constexpr std::array<int, 4> kShifts = {16, 8, 0, 24};
    for (OPJ_UINT32 c = 0; c < planes->numcomps; ++c) {
        planes->comps[c].alpha = c == 3 ? 1 : 0;
        OPJ_INT32* out = planes->comps[c].data;
        for (int y = 0; y < pixels.height(); ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            for (int x = 0; x < pixels.width(); ++x)
                *out++ = static_cast<OPJ_INT32>(line[x] >> kShifts[c] & 0xff);
        }
    }
    return planes;
}

// Appends the capture resolution to the header box (ISO/IEC 15444-1, I.5.3.7): the library writes
// none. The header box is the third, after signature and file type.
void addResolution(QByteArray& file, int dotsPerMeter) {
    qsizetype at = 0;
    while (at + 8 <= file.size() && file.mid(at + 4, 4) != "jp2h") {
        const auto size = qFromBigEndian<quint32>(file.constData() + at);
        if (size < 8) return;
        at += size;
    }
    if (at + 8 > file.size()) return;
    const auto size = qFromBigEndian<quint32>(file.constData() + at);
    QByteArray boxes("\0\0\0\x1ares \0\0\0\x12resc", 16);
    char fraction[4] = {0, 0, 0, 1};
    qToBigEndian(static_cast<quint16>(std::min(dotsPerMeter, 65535)), fraction);
    boxes.append(fraction, 4).append(fraction, 4).append(2, '\0');
    qToBigEndian(static_cast<quint32>(size + boxes.size()), file.data() + at);
    file.insert(at + size, boxes);
}

// The library starts threads of its own; signals belong to the host's threads, so these are born
// with all of them blocked, but for those that a thread raises by its own fault.
void giveThreads(opj_codec_t* codec) {
    sigset_t blocked;
    sigset_t previous;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
        sigdelset(&blocked, fault);
    pthread_sigmask(SIG_SETMASK, &blocked, &previous);
    const unsigned threads = std::max(1U, std::thread::hardware_concurrency());
    opj_codec_set_threads(codec, static_cast<int>(threads));
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

bool compress(opj_image_t* planes, MemoryFile& file) {
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    const auto shorter = std::min(planes->x1, planes->y1);
    parameters.numresolution = std::min(kResolutions, static_cast<int>(std::bit_width(shorter)));
    parameters.tcp_numlayers = 1;
    parameters.tcp_rates[0] = 0;  // lossless
    parameters.cp_disto_alloc = 1;
    parameters.tcp_mct = 1;
    const CodecPtr codec(opj_create_compress(OPJ_CODEC_JP2));
    if (!codec || !opj_setup_encoder(codec.get(), &parameters, planes)) return false;
    if (std::max(planes->x1, planes->y1) > kOneThreadSide) giveThreads(codec.get());
    const StreamPtr stream = openStream(file);
    return stream && opj_start_compress(codec.get(), planes, stream.get()) &&
           opj_encode(codec.get(), stream.get()) && opj_end_compress(codec.get(), stream.get());
}

}  // namespace

/// Lossless JP2: RGB, or RGB and straight alpha, 8 bits.
void vorlaEncodePicture(const QImage& image, QByteArray& bytes) {
    const ImagePtr planes = planesOf(image, image.hasAlphaChannel());
    MemoryFile file;
    if (!planes || !compress(planes.get(), file)) return;
    bytes = file.bytes();
    if (image.devicePixelRatio() != 1) addResolution(bytes, dotsPerMeter(image));
}
