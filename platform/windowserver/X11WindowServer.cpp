#include "platform/windowserver/X11WindowServer.h"

#include <vorla/VLCaptureOutcome.h>
#include <xcb/xcbext.h>

#include <QGuiApplication>
#include <algorithm>
#include <utility>

#include "platform/base/VLLog.h"
#include "platform/windowserver/displayLayout.h"

namespace vorla {
namespace {

constexpr qsizetype pageBytes = 4096;

}  // namespace

std::unique_ptr<X11WindowServer> X11WindowServer::create() {
    std::shared_ptr<X11Connection> connection = X11Connection::open();
    if (!connection) return nullptr;
    return std::unique_ptr<X11WindowServer>(new X11WindowServer(std::move(connection)));
}

X11WindowServer::X11WindowServer(std::shared_ptr<X11Connection> connection)
    : connection_(connection),
      segments_(std::make_shared<GrabSegments>(connection)),
      displays_(connection),
      windowList_(connection),
      pictures_(connection),
      events_(connection, {[this] { displaysMayHaveChanged(); },
                           [this] {
                               if (onActiveSpaceChanged) onActiveSpaceChanged();
                           }}) {
    told_ = readDisplays();
}

X11WindowServer::~X11WindowServer() {
    segments_->close();
}

std::vector<Display> X11WindowServer::readDisplays() {
    std::vector<Display> displays = displays_.read();
    size_t bytes = 0;
    for (const Display& display : displays)
        bytes += static_cast<size_t>(display.nativeFrame.width) * display.nativeFrame.height * 4;
    segments_->keepUpTo(bytes);
    return displays;
}

/// What surrounds every call: the event loop is joined once there is one, and events that came
/// along with answers are looked at.
class X11WindowServer::Call {
 public:
    explicit Call(X11WindowServer& server) : server_(server) { server_.events_.attach(); }
    ~Call() { server_.events_.drain(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

 private:
    X11WindowServer& server_;
};

void X11WindowServer::displaysMayHaveChanged() {
    if (!displaysHaveChanged()) return;
    // At the very end: who hears of it may put another server in the place of this one.
    if (const auto tell = onDisplaysChanged) tell();
}

bool X11WindowServer::displaysHaveChanged() {
    const Call call(*this);
    constexpr int mostChecks = 20;
    // The toolkit hears of a change through a connection of its own, which may be later.
    if (!displays_.toolkitAgrees() && ++checks_ < mostChecks) {
        events_.askAgain();
        return false;
    }
    checks_ = 0;
    std::vector<Display> now = readDisplays();
    if (now == told_ || !connection_->isAlive()) return false;
    told_ = std::move(now);
    return true;
}

VLCaptureError X11WindowServer::obstacle() {
    // Panels of another platform would not be on this server's screens.
    if (qGuiApp && QGuiApplication::platformName() != QLatin1String("xcb")) {
        VLLogError("the host's toolkit runs on the platform \"%s\", and captures need \"xcb\"",
                   qPrintable(QGuiApplication::platformName()));
        return VLCaptureErrorPlatform;
    }
    const xcb_screen_t* screen = connection_->screen();
    if (connection_->layoutOf(screen->root_visual) != PixelLayout::Unsupported)
        return VLCaptureErrorNone;
    VLLogError("the screen's depth of %d bits, or its order of colours, is not served",
               screen->root_depth);
    return VLCaptureErrorScreenFormat;
}

std::vector<Display> X11WindowServer::displays() {
    const Call call(*this);
    return readDisplays();
}

bool X11WindowServer::readList() {
    const auto compositor = pictures_.askForCompositor();
    auto list = windowList_.read(displays_.current());
    pictures_.hearOfCompositor(compositor);
    if (list) lastList_ = std::move(*list);
    return list.has_value();
}

std::optional<std::vector<ServerWindow>> X11WindowServer::windows(uint32_t displayID) {
    const Call call(*this);
    const Display* display = displays_.find(displayID);
    if (display == nullptr) return std::nullopt;
    if (!readList()) return std::nullopt;
    std::vector<ServerWindow> windows;
    windows.reserve(lastList_.size());
    for (const X11Window& window : lastList_)
        windows.push_back(
            {window.client, window.pid, window.layer, window.ownerName,
             pointsFromNative(window.visible, *display, displays_.current().front())});
    return windows;
}

ArrivingImage X11WindowServer::grab(uint32_t displayID, const std::optional<VLRect>& part) {
    // A rectangle beyond the root is refused: the display may have shrunk without our knowing.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Display* display = displays_.find(displayID);
        if (display == nullptr) return {};
        const PixelRect native = part ? nativeFromLocal(*part, *display) : display->nativeFrame;
        if (native.width == 0) return {};
        ArrivingImage picture = segments_->begin(native, display->scale);
        if (!picture.image.isNull()) return picture;
        readDisplays();
    }
    return {};
}

QImage X11WindowServer::imageOfDisplay(uint32_t displayID, VLRect rect) {
    const Call call(*this);
    const auto [image, rows] = grab(displayID, rect);
    if (!rows) return image;
    rows->await(image.height());
    const Display* display = displays_.find(displayID);
    const bool isWhole = display != nullptr && image.width() == display->nativeFrame.width &&
                         image.height() == display->nativeFrame.height;
    // A part is copied out, so that it does not hold a large segment.
    return isWhole ? image : image.copy();
}

ArrivingImage X11WindowServer::arrivingImageOfDisplay(uint32_t displayID) {
    const Call call(*this);
    return grab(displayID, std::nullopt);
}

std::optional<X11Window> X11WindowServer::listed(uint32_t number) const {
    const auto found =
        std::find_if(lastList_.begin(), lastList_.end(),
                     [number](const X11Window& window) { return window.client == number; });
    return found == lastList_.end() ? std::nullopt : std::optional(*found);
}

QImage X11WindowServer::imageOfWindow(uint32_t displayID, uint32_t number, WindowPicture picture,
                                      const QImage& fallback) {
    const Call call(*this);
    const Display* display = displays_.find(displayID);
    if (display == nullptr) return {};
    const std::optional<X11Window> now = windowList_.readOne(number);
    if (!now) return {};
    QImage image =
        pictures_.picture(listed(number), *now, picture, {fallback, display->nativeFrame});
    image.setDevicePixelRatio(display->scale);
    return image;
}

double X11WindowServer::alphaAtCentre(uint32_t number) {
    const Call call(*this);
    std::optional<X11Window> window = listed(number);
    if (!window) window = windowList_.readOne(number);
    if (!window || !window->hasAlpha) return 1.0;
    return pictures_.alphaAt(*window, window->visible.x + window->visible.width / 2,
                             window->visible.y + window->visible.height / 2);
}

void X11WindowServer::keepWindows() {
    const Call call(*this);
    if (lastList_.empty()) readList();
    pictures_.keep(lastList_, displays_.current());
}

void X11WindowServer::releaseWindows() {
    const Call call(*this);
    pictures_.release();
    lastList_.clear();
}

void X11WindowServer::finish(const std::function<bool()>& meanwhile) {
    const Call call(*this);
    xcb_connection_t* c = connection_->get();
    // The server serves a connection's requests in turn: the answer to this one is the last.
    const auto cookie = xcb_get_input_focus(c);
    xcb_flush(c);
    void* answer = nullptr;
    while (xcb_poll_for_reply(c, cookie.sequence, &answer, nullptr) == 0)
        if (!meanwhile()) {
            static_cast<void>(connection_->reply(&xcb_get_input_focus_reply, cookie));
            return;
        }
    const MallocPtr<void> owned(answer);
}

std::optional<VLPoint> X11WindowServer::pointerLocation(uint32_t displayID) {
    const Call call(*this);
    const Display* display = displays_.find(displayID);
    const auto pointer = connection_->reply(
        &xcb_query_pointer_reply, xcb_query_pointer(connection_->get(), connection_->root()));
    if (display == nullptr || !pointer) return std::nullopt;
    const PixelRect& frame = display->nativeFrame;
    return VLPoint{(pointer->root_x - frame.x + 0.5) / display->scale,
                   (frame.y + frame.height - pointer->root_y - 0.5) / display->scale};
}

std::string X11WindowServer::activeApplicationName() {
    const Call call(*this);
    return windowList_.activeOwnerName();
}

void X11WindowServer::prepare() {
    const Call call(*this);
    const std::vector<Display> displays = readDisplays();
    // Held together, so that there is a segment for each. Its writing faults the server's side of
    // their pages in, our reading faults ours.
    std::vector<QImage> images;
    for (const Display& display : displays) {
        const auto [image, rows] = segments_->begin(display.nativeFrame, display.scale);
        if (rows) rows->await(image.height());
        images.push_back(image);
        const volatile uchar* bytes = image.constBits();
        for (qsizetype at = 0; at < images.back().sizeInBytes(); at += pageBytes)
            static_cast<void>(bytes[at]);
    }
    pictures_.prepare();
    finish([] { return false; });
}

}  // namespace vorla
