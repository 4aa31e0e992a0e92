#include "imaging/LanczosScaler.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <numbers>
#include <thread>
#include <vector>

#include "platform/base/ParallelWork.h"

namespace vorla {
namespace {

constexpr double kLobes = 3;
constexpr int kRowsPerPiece = 64;

// The four channels of a pixel side by side.
typedef float Pixel __attribute__((vector_size(16)));
typedef int32_t Channels __attribute__((vector_size(16)));

double lanczos(double x) {
    if (std::abs(x) < 1e-9) return 1;
    if (std::abs(x) >= kLobes) return 0;
    const double angle = std::numbers::pi * x;
    return kLobes * std::sin(angle) * std::sin(angle / kLobes) / (angle * angle);
}

// For each output position along one axis: the first input position and the weights from there on,
// positions beyond the border folded onto it.
struct Axis {
    struct Span {
        int first;
        int count;
        size_t weights;
    };
    std::vector<Span> spans;
    std::vector<float> weights;

    Axis(int input, int output) {
        const double scale = static_cast<double>(input) / output;
        const double reach = kLobes * std::max(1.0, scale);
        for (int i = 0; i < output; ++i) {
            const double center = (i + 0.5) * scale - 0.5;
            const int low = static_cast<int>(std::ceil(center - reach));
            const int high = static_cast<int>(std::floor(center + reach));
            const int first = std::clamp(low, 0, input - 1);
            const int last = std::clamp(high, 0, input - 1);
            std::vector<double> sums(static_cast<size_t>(last - first + 1));
            double total = 0;
            for (int at = low; at <= high; ++at) {
                const double weight = lanczos((at - center) / std::max(1.0, scale));
                sums[static_cast<size_t>(std::clamp(at, first, last) - first)] += weight;
                total += weight;
            }
            spans.push_back({first, last - first + 1, weights.size()});
            for (const double sum : sums) weights.push_back(static_cast<float>(sum / total));
        }
    }
};

class Scaling {
 public:
    Scaling(const QImage& from, QImage& to)
        : from_(from),
          lines_(to.bits()),
          bytesPerLine_(to.bytesPerLine()),
          size_(to.size()),
          hasAlpha_(to.hasAlphaChannel()),
          columns_(from.width(), to.width()),
          rows_(from.height(), to.height()) {}

    void run(int first, int end) const {
        const int inputFirst = rows_.spans[static_cast<size_t>(first)].first;
        const Axis::Span& last = rows_.spans[static_cast<size_t>(end) - 1];
        const auto width = static_cast<size_t>(size_.width());
        std::vector<Pixel> narrow(static_cast<size_t>(last.first + last.count - inputFirst) *
                                  width);
        std::vector<Pixel> line(static_cast<size_t>(from_.width()));
        Pixel* out = narrow.data();
        for (int y = inputFirst; y < last.first + last.count; ++y, out += width)
            narrowRow(y, line, out);
        for (int y = first; y < end; ++y) {
            const Axis::Span& span = rows_.spans[static_cast<size_t>(y)];
            mixRows(narrow.data() + static_cast<size_t>(span.first - inputFirst) * width, span, y);
        }
    }

 private:
    void narrowRow(int y, std::vector<Pixel>& line, Pixel* out) const {
        const auto* pixels = reinterpret_cast<const QRgb*>(from_.constScanLine(y));
        for (size_t x = 0; x < line.size(); ++x) {
            const Channels channels = {qBlue(pixels[x]), qGreen(pixels[x]), qRed(pixels[x]),
                                       qAlpha(pixels[x])};
            line[x] = __builtin_convertvector(channels, Pixel);
        }
        for (const Axis::Span& span : columns_.spans) {
            const float* weights = columns_.weights.data() + span.weights;
            const Pixel* from = line.data() + span.first;
            Pixel sum = {};
            for (int i = 0; i < span.count; ++i) sum += weights[i] * from[i];
            *out++ = sum;
        }
    }

    void mixRows(const Pixel* rows, const Axis::Span& span, int y) const {
        const auto width = static_cast<size_t>(size_.width());
        const float* weights = rows_.weights.data() + span.weights;
        auto* out = reinterpret_cast<QRgb*>(lines_ + y * bytesPerLine_);
        for (size_t x = 0; x < width; ++x) {
            Pixel sum = {};
            for (int i = 0; i < span.count; ++i)
                sum += weights[i] * rows[static_cast<size_t>(i) * width + x];
            out[x] = rounded(sum);
        }
    }

    // The filter overshoots at edges; no colour may exceed its alpha.
    [[nodiscard]] QRgb rounded(const Pixel& sum) const {
        const int alpha = hasAlpha_ ? std::clamp(static_cast<int>(sum[3] + 0.5F), 0, 255) : 255;
        const auto channel = [&](int c) {
            return std::clamp(static_cast<int>(sum[c] + 0.5F), 0, alpha);
        };
        return qRgba(channel(2), channel(1), channel(0), alpha);
    }

    const QImage& from_;
    uchar* lines_;
    qsizetype bytesPerLine_;
    QSize size_;
    bool hasAlpha_;
    Axis columns_;
    Axis rows_;
};

QImage scaled(const QImage& image, QSize size) {
    const auto format =
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    const QImage from = image.convertToFormat(format);
    QImage to(size, format);
    if (from.isNull() || to.isNull()) return {};
    const Scaling scaling(from, to);
    const auto pieces = static_cast<size_t>((size.height() + kRowsPerPiece - 1) / kRowsPerPiece);
    std::atomic<bool> failed = false;
    workInParallel(pieces, std::max(1U, std::thread::hardware_concurrency()) - 1,
                   [&](unsigned, size_t piece) {
                       const int first = static_cast<int>(piece) * kRowsPerPiece;
                       try {
                           scaling.run(first, std::min(first + kRowsPerPiece, size.height()));
                       } catch (const std::exception&) {
                           failed = true;
                       }
                   });
    return failed ? QImage() : to;
}

}  // namespace

QImage lanczosScaled(const QImage& image, QSize size) {
    if (image.isNull() || size.isEmpty()) return {};
    try {
        return scaled(image, size);
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace vorla
