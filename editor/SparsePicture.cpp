#include "editor/SparsePicture.h"

#include <sys/mman.h>

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <cstring>

namespace vorla {
namespace {

/// Narrow, so that an upright line touches few pages of memory; four rows make one.
constexpr int stripWidth = 256;
constexpr int blockRows = 64;

struct Mapping {
    void* address;
    size_t length;
};

/// A transparent picture whose pages the system provides at their first use.
QImage lazyImage(int width, int height) {
    const size_t length = static_cast<size_t>(width) * 4 * height;
    void* address =
        mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED) return {};
    madvise(address, length, MADV_NOHUGEPAGE);
    const auto unmap = [](void* info) {
        const std::unique_ptr<Mapping> mapping(static_cast<Mapping*>(info));
        munmap(mapping->address, mapping->length);
    };
    auto mapping = std::make_unique<Mapping>(Mapping{address, length});
    QImage image(static_cast<uchar*>(address), width, height, width * qsizetype{4},
                 QImage::Format_ARGB32_Premultiplied, unmap, mapping.get());
    if (image.isNull()) {
        unmap(mapping.release());
        return {};
    }
    mapping.release();
    return image;
}

/// One premultiplied pixel over another, both halves of the pair of channels at a time.
uint32_t over(uint32_t above, uint32_t below) {
    const uint32_t keep = 255U - (above >> 24);
    const auto scaled = [keep](uint32_t pair) {
        const uint32_t product = (pair & 0x00ff00ffU) * keep + 0x00800080U;
        return ((product + ((product >> 8) & 0x00ff00ffU)) >> 8) & 0x00ff00ffU;
    };
    return above + (scaled(below) | scaled(below >> 8) << 8);
}

/// Where a painter paints. Its own blending of pictures rounds in one way or another, as the region
/// to be painted is simple or not: parts painted at different times would not match.
class PixelTarget {
 public:
    explicit PixelTarget(QPainter& painter) : painter_(painter) {
        auto* image = dynamic_cast<QImage*>(painter.paintEngine()->paintDevice());
        const QTransform transform = painter.deviceTransform();
        if (!image || image->depth() != 32 || transform.type() > QTransform::TxTranslate) return;
        image_ = image;
        origin_ = QPointF(transform.dx(), transform.dy()).toPoint();
    }

    void blend(const QImage& source, const QRect& part, QPoint at) const {
        if (!image_) {
            painter_.drawImage(at, source, part);
            return;
        }
        const QRect place = QRect(at + origin_, part.size()) & image_->rect();
        const QPoint shift = part.topLeft() - at - origin_;
        for (int y = place.top(); y <= place.bottom(); ++y) {
            const auto* from =
                reinterpret_cast<const uint32_t*>(source.constScanLine(y + shift.y())) + shift.x();
            auto* to = reinterpret_cast<uint32_t*>(image_->scanLine(y));
            for (int x = place.left(); x <= place.right(); ++x) {
                const uint32_t above = from[x];
                if (above >= 0xff000000U)
                    to[x] = above;
                else if (above != 0)
                    to[x] = over(above, to[x]);
            }
        }
    }

 private:
    QPainter& painter_;
    QImage* image_ = nullptr;
    QPoint origin_;
};

/// The parts to draw one after the other. The painter's cost is that of all the rows it is given,
/// also of those outside its clip: the far apart edges of a large shape are worth a drawing each,
/// the many small parts of a region are not.
std::vector<QRegion> drawnAtOnce(const QRegion& region) {
    constexpr int fewRects = 4;
    if (region.rectCount() > fewRects) return {region};
    return {region.begin(), region.end()};
}

/// A part of a picture as a picture of its own, on the same memory.
QImage partOf(QImage& image, const QRect& part) {
    return {image.scanLine(part.top()) + part.left() * qsizetype{4}, part.width(), part.height(),
            image.bytesPerLine(), image.format()};
}

QRect stripRect(size_t index, QSize size) {
    return QRect(static_cast<int>(index) * stripWidth, 0, stripWidth, size.height()) &
           QRect(QPoint(), size);
}

}  // namespace

void SparsePicture::setSize(QSize pixels) {
    size_ = pixels;
    strips_.clear();
    if (!pixels.isEmpty())
        strips_.resize((static_cast<size_t>(pixels.width()) + stripWidth - 1) / stripWidth);
}

bool SparsePicture::provide(Strip& strip) const {
    if (strip.image.isNull()) {
        strip.image = lazyImage(stripWidth, size_.height());
        strip.painted.assign(static_cast<size_t>(size_.height() / blockRows + 1), false);
    }
    return !strip.image.isNull();
}

void SparsePicture::erase(const QRegion& region) {
    for (size_t i = 0; i < strips_.size(); ++i) {
        Strip& strip = strips_[i];
        if (strip.image.isNull()) continue;
        const QRect place = stripRect(i, size_);
        for (const QRect& rect : region) {
            const QRect part = rect & place;
            for (int y = part.top(); y <= part.bottom(); ++y) {
                if (!strip.painted[static_cast<size_t>(y / blockRows)]) continue;
                std::memset(strip.image.scanLine(y) + (part.left() - place.left()) * 4, 0,
                            static_cast<size_t>(part.width()) * 4);
            }
        }
    }
}

void SparsePicture::paint(const QRegion& region, const Draw& draw) {
    for (size_t i = 0; i < strips_.size(); ++i) {
        const QRect place = stripRect(i, size_);
        const QRegion part = region & place;
        if (part.isEmpty() || !provide(strips_[i])) continue;
        for (const QRect& rect : part)
            for (int block = rect.top() / blockRows; block <= rect.bottom() / blockRows; ++block)
                strips_[i].painted[static_cast<size_t>(block)] = true;
        for (const QRegion& piece : drawnAtOnce(part)) {
            const QRect bounds = piece.boundingRect();
            QImage target = partOf(strips_[i].image, bounds.translated(-place.topLeft()));
            QPainter painter(&target);
            painter.setClipRegion(piece.translated(-bounds.topLeft()));
            painter.translate(-bounds.topLeft());
            draw(painter);
        }
    }
}

void SparsePicture::drawTo(QPainter& painter, const QRegion& region) const {
    const PixelTarget target(painter);
    for (size_t i = 0; i < strips_.size(); ++i) {
        const Strip& strip = strips_[i];
        if (strip.image.isNull()) continue;
        const QRect place = stripRect(i, size_);
        for (const QRect& rect : region) {
            const QRect part = rect & place;
            if (part.isEmpty()) continue;
            const int last = part.bottom() / blockRows;
            for (int block = part.top() / blockRows; block <= last; ++block) {
                if (!strip.painted[static_cast<size_t>(block)]) continue;
                const QRect rows =
                    part & QRect(place.x(), block * blockRows, stripWidth, blockRows);
                target.blend(strip.image, rows.translated(-place.topLeft()), rows.topLeft());
            }
        }
    }
}

}  // namespace vorla
