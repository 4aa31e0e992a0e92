#include "toolbar/FrostedGlass.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace vorla {
namespace {

/// Red, green and blue of the reduced picture.
using Sum = std::array<uint32_t, 3>;

struct Reduced {
    int width = 0;
    int height = 0;
    std::vector<Sum> pixels;
};

/// The part, with its surroundings, at one pixel for each `step` by `step` device pixels.
Reduced reduce(const QImage& picture, const QRect& part, int step) {
    Reduced reduced{(part.width() + step - 1) / step, (part.height() + step - 1) / step, {}};
    reduced.pixels.resize(static_cast<size_t>(reduced.width) * reduced.height);
    std::vector<int> columns(static_cast<size_t>(reduced.width) * step);
    for (size_t i = 0; i < columns.size(); ++i)
        columns[i] = std::clamp(part.left() + static_cast<int>(i), 0, picture.width() - 1);
    for (int y = 0; y < reduced.height * step; ++y) {
        const int row = std::clamp(part.top() + y, 0, picture.height() - 1);
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(row));
        Sum* sums = &reduced.pixels[static_cast<size_t>(y / step) * reduced.width];
        for (size_t x = 0; x < columns.size(); ++x) {
            const QRgb pixel = line[columns[x]];
            Sum& sum = sums[x / step];
            sum[0] += qRed(pixel);
            sum[1] += qGreen(pixel);
            sum[2] += qBlue(pixel);
        }
    }
    for (Sum& sum : reduced.pixels)
        for (uint32_t& value : sum) value /= static_cast<uint32_t>(step * step);
    return reduced;
}

/// One box filter over a row or column of `count` pixels that lie `stride` apart; beyond the ends
/// the outermost pixels go on.
void boxFilter(Sum* first, int count, int stride, int reach, std::vector<Sum>& line) {
    line.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) line[i] = first[static_cast<ptrdiff_t>(i) * stride];
    const auto at = [&](int i) -> const Sum& { return line[std::clamp(i, 0, count - 1)]; };
    Sum window{};
    for (int i = -reach; i <= reach; ++i)
        for (int c = 0; c < 3; ++c) window[c] += at(i)[c];
    const auto size = static_cast<uint32_t>(2 * reach + 1);
    for (int i = 0; i < count; ++i) {
        for (int c = 0; c < 3; ++c) {
            first[static_cast<ptrdiff_t>(i) * stride][c] = (window[c] + size / 2) / size;
            window[c] += at(i + reach + 1)[c] - at(i - reach)[c];
        }
    }
}

void blur(Reduced& picture, int reach) {
    std::vector<Sum> line;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < picture.height; ++y)
            boxFilter(&picture.pixels[static_cast<size_t>(y) * picture.width], picture.width, 1,
                      reach, line);
        for (int x = 0; x < picture.width; ++x)
            boxFilter(&picture.pixels[x], picture.height, picture.width, reach, line);
    }
}

QImage asImage(const Reduced& reduced) {
    QImage image(reduced.width, reduced.height, QImage::Format_RGB32);
    for (int y = 0; y < reduced.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < reduced.width; ++x) {
            const Sum& sum = reduced.pixels[static_cast<size_t>(y) * reduced.width + x];
            line[x] =
                qRgb(static_cast<int>(sum[0]), static_cast<int>(sum[1]), static_cast<int>(sum[2]));
        }
    }
    return image;
}

}  // namespace

QImage frostedGlass(const QImage& picture, const VLRect& part, double radius, const QColor& tint) {
    if (picture.isNull() || part.isEmpty()) return {};
    const QImage source =
        picture.depth() == 32 ? picture : picture.convertedTo(QImage::Format_RGB32);
    const double scale = picture.devicePixelRatio();
    const auto pixels = [scale](double points) {
        return static_cast<int>(std::lround(points * scale));
    };
    const QRect target(pixels(part.x), picture.height() - pixels(part.maxY()), pixels(part.width),
                       pixels(part.height));
    QImage glass(target.size(), QImage::Format_ARGB32_Premultiplied);
    if (glass.isNull()) return {};
    // Three boxes of 2r + 1 pixels have the variance r (r + 1): r is about the deviation.
    const double deviation = std::max(1.0, radius * scale);
    const int step = std::clamp(static_cast<int>(deviation / 3.0), 1, 16);
    const int reach = std::max(1, static_cast<int>(std::lround(deviation / step)));
    const int margin = 3 * reach * step;
    const QRect surroundings = target.adjusted(-margin, -margin, margin, margin);
    Reduced reduced = reduce(source, surroundings, step);
    blur(reduced, reach);
    QPainter painter(&glass);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(-margin, -margin, reduced.width * step, reduced.height * step),
                      asImage(reduced), QRectF(0, 0, reduced.width, reduced.height));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (tint.isValid()) painter.fillRect(glass.rect(), tint);
    painter.end();
    glass.setDevicePixelRatio(scale);
    return glass;
}

}  // namespace vorla
