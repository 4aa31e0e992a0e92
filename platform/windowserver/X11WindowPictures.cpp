#include "platform/windowserver/X11WindowPictures.h"

#include <unistd.h>
#include <xcb/composite.h>

#include <QPainter>
#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>

#include "platform/windowserver/X11Pixels.h"
#include "platform/windowserver/displayLayout.h"

namespace vorla {
namespace {

// An owner that draws only what differs from its background cannot be seen to have finished; most
// have drawn long before this.
constexpr std::chrono::milliseconds drawingTime{40};
constexpr std::chrono::milliseconds pollInterval{1};

QRect toQRect(const PixelRect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

const PixelRect& rectOf(const X11Window& window, WindowPicture picture) {
    switch (picture) {
        case WindowPicture::FrameWithShadow:
            return window.outer;
        case WindowPicture::Content:
            return window.content;
        case WindowPicture::Frame:
            break;
    }
    return window.visible;
}

/// A part of a picture of the screen, with every pixel opaque. `rect` in the picture's pixels.
QImage opaqueCopy(const QImage& image, const QRect& rect) {
    QImage part = image.copy(rect);
    part.setDevicePixelRatio(1.0);
    for (int y = 0; y < part.height(); ++y)
        finishPixels(reinterpret_cast<uint32_t*>(part.scanLine(y)),
                     static_cast<size_t>(part.width()), PixelLayout::Rgb24, AlphaByte::Set);
    return part;
}

bool isUsable(const X11WindowPictures::Fallback& fallback) {
    return fallback.image.width() == fallback.frame.width &&
           fallback.image.height() == fallback.frame.height && fallback.image.depth() == 32;
}

/// Paints the fallback's pixels over `missing`, native coordinates; `origin` is the native place of
/// the image's first pixel.
void fillFrom(const X11WindowPictures::Fallback& fallback, const QRegion& missing, QPoint origin,
              QImage& image) {
    if (missing.isEmpty() || !isUsable(fallback)) return;
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& rect : missing& toQRect(fallback.frame))
        painter.drawImage(
            rect.topLeft() - origin,
            opaqueCopy(fallback.image, rect.translated(-fallback.frame.x, -fallback.frame.y)));
}

}  // namespace

std::vector<Coverage> coverageOf(const std::vector<X11Window>& windows,
                                 const std::vector<Display>& displays) {
    std::vector<Coverage> result;
    QRegion covered;
    for (const X11Window& window : windows) {
        const QRect frame = toQRect(window.visible);
        const bool isOnOne =
            std::any_of(displays.begin(), displays.end(), [&frame](const Display& display) {
                return toQRect(display.nativeFrame).contains(frame);
            });
        const QRegion seen = QRegion(frame) - covered;
        if (seen.isEmpty()) {
            result.push_back(Coverage::Hidden);
        } else {
            result.push_back(isOnOne && seen == QRegion(frame) ? Coverage::Uncovered
                                                               : Coverage::Partly);
        }
        covered += toQRect(window.outer);
    }
    return result;
}

X11WindowPictures::X11WindowPictures(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {}

X11WindowPictures::~X11WindowPictures() {
    release();
}

xcb_get_selection_owner_cookie_t X11WindowPictures::askForCompositor() const {
    return xcb_get_selection_owner(connection_->get(),
                                   connection_->atom(X11Atom::CompositorSelection));
}

void X11WindowPictures::hearOfCompositor(xcb_get_selection_owner_cookie_t asked) {
    const auto owner = connection_->reply(&xcb_get_selection_owner_reply, asked);
    hasCompositor_ = owner && owner->owner != XCB_NONE;
}

void X11WindowPictures::prepare() {
    if (!connection_->extensions().composite) return;
    xcb_connection_t* c = connection_->get();
    constexpr uint16_t width = 2000;
    constexpr xcb_rectangle_t all = {0, 0, width, keptPixels / width};
    const xcb_gcontext_t context = xcb_generate_id(c);
    xcb_create_gc(c, context, connection_->root(), 0, nullptr);
    // An allocator gives what is as large as never before back to the system, and keeps the next.
    for (int round = 0; round < 2; ++round) {
        const xcb_pixmap_t pixmap = xcb_generate_id(c);
        xcb_create_pixmap(c, connection_->screen()->root_depth, pixmap, connection_->root(),
                          all.width, all.height);
        xcb_poly_fill_rectangle(c, pixmap, context, 1, &all);
        xcb_free_pixmap(c, pixmap);
    }
    xcb_free_gc(c, context);
    xcb_flush(c);
}

void X11WindowPictures::keep(const std::vector<X11Window>& windows,
                             const std::vector<Display>& displays) {
    release();
    isKeeping_ = true;
    if (!connection_->extensions().composite || hasCompositor_) return;
    const std::vector<Coverage> coverage = coverageOf(windows, displays);
    int64_t pixels = 0;
    for (size_t i = 0; i < windows.size(); ++i) {
        const X11Window& window = windows[i];
        coverage_[window.top] = coverage[i];
        if (coverage[i] != Coverage::Partly || window.layer < 0 || window.hasAlpha) continue;
        const int64_t own = int64_t{window.outer.width} * window.outer.height;
        if (pixels + own > keptPixels) continue;
        pixels += own;
        redirect(window);
    }
    xcb_flush(connection_->get());
}

void X11WindowPictures::release() {
    for (const auto& [top, kept] : kept_) unredirect(top, kept);
    if (!kept_.empty()) xcb_flush(connection_->get());
    kept_.clear();
    coverage_.clear();
    isKeeping_ = false;
}

X11WindowPictures::Kept& X11WindowPictures::redirect(const X11Window& window) {
    xcb_connection_t* c = connection_->get();
    Kept kept;
    kept.damage = xcb_generate_id(c);
    // One announcement at most: the extent is asked for when it is wanted.
    xcb_damage_create(c, kept.damage, window.top, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    for (xcb_xfixes_region_t* region : {&kept.seen, &kept.filled, &kept.drawn}) {
        *region = xcb_generate_id(c);
        xcb_xfixes_create_region(c, *region, 0, nullptr);
    }
    xcb_damage_subtract(c, kept.damage, XCB_NONE, kept.seen);
    xcb_composite_redirect_window(c, window.top, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_damage_subtract(c, kept.damage, XCB_NONE, kept.filled);
    kept.since = Clock::now();
    return kept_[window.top] = std::move(kept);
}

void X11WindowPictures::unredirect(xcb_window_t top, const Kept& kept) {
    xcb_connection_t* c = connection_->get();
    xcb_composite_unredirect_window(c, top, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_damage_destroy(c, kept.damage);
    for (const xcb_xfixes_region_t region : {kept.seen, kept.filled, kept.drawn})
        xcb_xfixes_destroy_region(c, region);
}

QRegion X11WindowPictures::fetch(xcb_xfixes_region_t region) {
    const auto reply = connection_->reply(&xcb_xfixes_fetch_region_reply,
                                          xcb_xfixes_fetch_region(connection_->get(), region));
    QRegion result;
    if (!reply) return result;
    const xcb_rectangle_t* rects = xcb_xfixes_fetch_region_rectangles(reply.get());
    const int count = xcb_xfixes_fetch_region_rectangles_length(reply.get());
    for (int i = 0; i < count; ++i)
        result += QRect(rects[i].x, rects[i].y, rects[i].width, rects[i].height);
    return result;
}

/// Waits until the pixels of `wanted` (the window's own coordinates) have come. Returns those
/// that have.
QRegion X11WindowPictures::waitFor(Kept& kept, const X11Window& window, const QRect& wanted) {
    if (!kept.isRead) {
        kept.seenRegion = fetch(kept.seen);
        kept.filledRegion = fetch(kept.filled);
        kept.isRead = true;
    }
    const QRect content =
        toQRect(window.content)
            .translated(-window.outer.x - window.border, -window.outer.y - window.border);
    for (;;) {
        xcb_damage_subtract(connection_->get(), kept.damage, XCB_NONE, kept.drawn);
        kept.drawnRegion += fetch(kept.drawn);
        const QRegion owners = kept.seenRegion + kept.drawnRegion;
        const QRegion all = owners + kept.filledRegion;
        const auto elapsed = Clock::now() - kept.since;
        const bool isAllThere = (QRegion(wanted) - all).isEmpty();
        const bool isDrawn = (QRegion(wanted & content) - owners).isEmpty();
        // A window of this process cannot draw while we wait here.
        const bool isOver =
            elapsed >= patience || window.pid == getpid() || !connection_->isAlive();
        if ((isAllThere && (isDrawn || elapsed >= drawingTime)) || isOver) return all;
        std::this_thread::sleep_for(pollInterval);
    }
}

QImage X11WindowPictures::readPixmap(const X11Window& window, const PixelRect& rect, bool* isKept) {
    xcb_connection_t* c = connection_->get();
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    const auto named = xcb_composite_name_window_pixmap_checked(c, window.top, pixmap);
    const auto sizeCookie = xcb_get_geometry(c, pixmap);
    *isKept = connection_->succeeded(named);
    const auto size = connection_->reply(&xcb_get_geometry_reply, sizeCookie);
    if (!*isKept) return {};
    QImage image;
    if (size) {
        PixelRect inside{rect.x - window.outer.x, rect.y - window.outer.y, rect.width, rect.height};
        inside = intersectionOf(inside, {0, 0, size->width, size->height});
        image = imageOfDrawable(*connection_, pixmap, inside, connection_->layoutOf(window.visual));
    }
    xcb_free_pixmap(c, pixmap);
    xcb_flush(c);
    return image;
}

QImage X11WindowPictures::picture(const std::optional<X11Window>& listed, const X11Window& now,
                                  WindowPicture picture, const Fallback& fallback) {
    const PixelRect rect = rectOf(now, picture);
    if (!connection_->extensions().composite) {
        if (!isUsable(fallback)) return {};
        const PixelRect seen =
            intersectionOf(rectOf(listed.value_or(now), picture), fallback.frame);
        return opaqueCopy(fallback.image,
                          toQRect(seen).translated(-fallback.frame.x, -fallback.frame.y));
    }
    auto kept = kept_.find(now.top);
    if (kept == kept_.end()) {
        bool isKept = false;
        QImage image = readPixmap(now, rect, &isKept);
        if (isKept) return image;
        const auto coverage = coverage_.find(now.top);
        if (listed && coverage != coverage_.end() && coverage->second == Coverage::Uncovered &&
            isUsable(fallback)) {
            const QRect place = toQRect(rectOf(*listed, picture));
            if (toQRect(fallback.frame).contains(place))
                return opaqueCopy(fallback.image,
                                  place.translated(-fallback.frame.x, -fallback.frame.y));
        }
        redirect(now);
        kept = kept_.find(now.top);
    }
    const QPoint origin(now.outer.x + now.border, now.outer.y + now.border);
    const QRegion there = waitFor(kept->second, now, toQRect(rect).translated(-origin));
    bool isKept = false;
    QImage image = readPixmap(now, rect, &isKept);
    if (!image.isNull()) {
        QRegion missing = QRegion(toQRect(rect)) - there.translated(origin);
        // The window's border belongs to the server, which has always drawn it.
        if (now.border > 0)
            missing &=
                toQRect(now.outer).adjusted(now.border, now.border, -now.border, -now.border);
        fillFrom(fallback, missing, {rect.x, rect.y}, image);
    }
    if (!isKeeping_) release();
    return image;
}

double X11WindowPictures::alphaAt(const X11Window& window, int x, int y) {
    if (!window.hasAlpha || !connection_->extensions().composite) return 1.0;
    xcb_connection_t* c = connection_->get();
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    const auto named = xcb_composite_name_window_pixmap_checked(c, window.top, pixmap);
    const auto cookie = xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap,
                                      static_cast<int16_t>(x - window.outer.x),
                                      static_cast<int16_t>(y - window.outer.y), 1, 1, ~0U);
    const bool isKept = connection_->succeeded(named);
    const auto pixel = connection_->reply(&xcb_get_image_reply, cookie);
    if (isKept) {
        xcb_free_pixmap(c, pixmap);
        xcb_flush(c);
    }
    if (!pixel || xcb_get_image_data_length(pixel.get()) < 4) return 1.0;
    uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(pixel.get()), sizeof value);
    return (value >> 24) / 255.0;
}

}  // namespace vorla
