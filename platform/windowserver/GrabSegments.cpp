#include "platform/windowserver/GrabSegments.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/base/raii.h"
#include "platform/windowserver/X11Pixels.h"

namespace vorla {

/// One piece of memory that the server shares; let go on both sides at its end.
class GrabSegments::Segment {
 public:
    /// Null when memory or the server's consent is missing.
    static std::unique_ptr<Segment> create(X11Connection& connection, size_t bytes) {
        UniqueFd file(memfd_create("vorla-grab", MFD_CLOEXEC));
        if (!file || ftruncate(file.get(), static_cast<off_t>(bytes)) != 0) return nullptr;
        void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
        if (memory == MAP_FAILED) return nullptr;
        std::unique_ptr<Segment> segment(new Segment(memory, bytes));
        const xcb_shm_seg_t id = xcb_generate_id(connection.get());
        const auto cookie = xcb_shm_attach_fd_checked(connection.get(), id, file.release(), 0);
        if (!connection.succeeded(cookie)) return nullptr;
        segment->id_ = id;
        return segment;
    }
    ~Segment() { munmap(memory_, bytes_); }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    void detach(X11Connection& connection) {
        xcb_shm_detach(connection.get(), std::exchange(id_, XCB_NONE));
        xcb_flush(connection.get());
    }

    [[nodiscard]] xcb_shm_seg_t id() const { return id_; }
    [[nodiscard]] size_t bytes() const { return bytes_; }
    [[nodiscard]] uint32_t* pixels() const { return static_cast<uint32_t*>(memory_); }

 private:
    Segment(void* memory, size_t bytes) : memory_(memory), bytes_(bytes) {}
    void* memory_;
    size_t bytes_;
    xcb_shm_seg_t id_ = XCB_NONE;
};

/// What an image on a segment owns.
struct GrabSegments::Loan {
    std::shared_ptr<GrabSegments> pool;
    std::unique_ptr<Segment> segment;
};

/// The answers for one picture, which is asked for in stripes so that the first rows can be used
/// while the server still copies the last.
class GrabSegments::Stripes : public ArrivingRows {
 public:
    /// Sends the requests. `image` lies on the segment `id` and keeps that from other use.
    Stripes(std::shared_ptr<X11Connection> connection, xcb_shm_seg_t id, QImage image,
            const PixelRect& rect, PixelLayout layout)
        : connection_(std::move(connection)), image_(std::move(image)), layout_(layout) {
        xcb_connection_t* c = connection_->get();
        // Nobody draws between two stripes.
        xcb_grab_server(c);
        for (int y = 0; y < rect.height; y += rowsAtATime)
            cookies_.push_back(xcb_shm_get_image(
                c, connection_->root(), static_cast<int16_t>(rect.x),
                static_cast<int16_t>(rect.y + y), static_cast<uint16_t>(rect.width),
                static_cast<uint16_t>(std::min(rowsAtATime, rect.height - y)), ~0U,
                XCB_IMAGE_FORMAT_Z_PIXMAP, id, static_cast<uint32_t>(y * image_.bytesPerLine())));
        xcb_ungrab_server(c);
        xcb_flush(c);
    }
    ~Stripes() override {
        for (; claimed_ < cookies_.size(); ++claimed_)
            xcb_discard_reply(connection_->get(), cookies_[claimed_].sequence);
    }
    Stripes(const Stripes&) = delete;
    Stripes& operator=(const Stripes&) = delete;

    void await(int count) override {
        const std::lock_guard lock(mutex_);
        while (claimed_ < cookies_.size() && arrivedRows() < count) claimNext();
    }

    /// Waits for one stripe more; false when the server refused it.
    bool claimNext() {
        const bool came =
            connection_->reply(&xcb_shm_get_image_reply, cookies_[claimed_]) != nullptr;
        const int first = arrivedRows();
        const size_t count = static_cast<size_t>(std::min(rowsAtATime, image_.height() - first)) *
                             static_cast<size_t>(image_.width());
        auto* pixels = reinterpret_cast<uint32_t*>(const_cast<uchar*>(image_.constScanLine(first)));
        // What did not come shows nothing, rather than what was in the memory before.
        if (came)
            finishPixels(pixels, count, layout_, AlphaByte::AsIs);
        else
            std::fill_n(pixels, count, 0U);
        ++claimed_;
        return came;
    }

 private:
    static constexpr int rowsAtATime = 128;

    [[nodiscard]] int arrivedRows() const { return static_cast<int>(claimed_) * rowsAtATime; }

    std::shared_ptr<X11Connection> connection_;
    QImage image_;
    PixelLayout layout_;
    std::mutex mutex_;  ///< guards what follows
    std::vector<xcb_shm_get_image_cookie_t> cookies_;
    size_t claimed_ = 0;
};

GrabSegments::GrabSegments(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {}

GrabSegments::~GrabSegments() {
    close();
}

void GrabSegments::close() {
    keepUpTo(0);
    const std::lock_guard lock(mutex_);
    connection_ = nullptr;
}

void GrabSegments::keepUpTo(size_t bytes) {
    const std::lock_guard lock(mutex_);
    limit_ = bytes;
    trim();
}

size_t GrabSegments::keptBytes() const {
    const std::lock_guard lock(mutex_);
    size_t sum = 0;
    for (const auto& segment : free_) sum += segment->bytes();
    return sum;
}

void GrabSegments::trim() {
    size_t sum = 0;
    for (const auto& segment : free_) sum += segment->bytes();
    while (!free_.empty() && sum > limit_) {
        sum -= free_.front()->bytes();
        if (connection_) free_.front()->detach(*connection_);
        free_.erase(free_.begin());
    }
}

std::unique_ptr<GrabSegments::Segment> GrabSegments::take(size_t bytes) {
    const std::lock_guard lock(mutex_);
    auto best = free_.end();
    for (auto it = free_.begin(); it != free_.end(); ++it)
        if ((*it)->bytes() >= bytes && (best == free_.end() || (*it)->bytes() < (*best)->bytes()))
            best = it;
    if (best == free_.end()) return connection_ ? Segment::create(*connection_, bytes) : nullptr;
    std::unique_ptr<Segment> segment = std::move(*best);
    free_.erase(best);
    return segment;
}

void GrabSegments::giveBack(std::unique_ptr<Segment> segment) {
    const std::lock_guard lock(mutex_);
    if (!connection_) return;
    free_.push_back(std::move(segment));
    trim();
}

void GrabSegments::endLoan(void* loan) {
    const std::unique_ptr<Loan> owned(static_cast<Loan*>(loan));
    owned->pool->giveBack(std::move(owned->segment));
}

QImage GrabSegments::lend(std::unique_ptr<Segment> segment, const PixelRect& rect,
                          PixelLayout layout) {
    auto* memory = reinterpret_cast<uchar*>(segment->pixels());
    auto loan = std::make_unique<Loan>(Loan{shared_from_this(), std::move(segment)});
    return QImage(memory, rect.width, rect.height, rect.width * 4, imageFormatOf(layout), &endLoan,
                  loan.release());
}

ArrivingImage GrabSegments::begin(const PixelRect& rect, double scale) {
    const std::shared_ptr<X11Connection> connection = connection_;
    if (!connection) return {};
    const PixelLayout layout = connection->layoutOf(connection->screen()->root_visual);
    if (layout == PixelLayout::Unsupported) return {};
    std::unique_ptr<Segment> segment;
    if (connection->extensions().sharedMemory)
        segment = take(static_cast<size_t>(rect.width) * rect.height * 4);
    if (!segment) {
        QImage image = imageOfDrawable(*connection, connection->root(), rect, layout);
        image.setDevicePixelRatio(scale);
        return {image, nullptr};
    }
    const xcb_shm_seg_t id = segment->id();
    QImage image = lend(std::move(segment), rect, layout);
    image.setDevicePixelRatio(scale);  // while nobody shares it
    const auto stripes = std::make_shared<Stripes>(connection, id, image, rect, layout);
    // The server refuses all of them or none.
    if (!stripes->claimNext()) return {};
    return {image, stripes};
}

}  // namespace vorla
