#include "capture/VLCaptureWindowController.h"

#include <utility>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/view/mouseevents.h"
#include "theme/VLCaptureThemeManager.h"
#include "windows/VLCaptureUtilities.h"

using vorla::Notification;
using vorla::ServerWindow;
using vorla::WindowServer;

namespace {

/// The host's own windows above this layer are panels and menus of its interface.
constexpr int32_t highestOrdinaryLayer = 25;

}  // namespace

std::shared_ptr<VLCaptureWindowController> VLCaptureWindowController::create(
    const VLRect& frame, const vorla::Display& screen) {
    VLLog("<VLCaptureWindowController> %s {{%g, %g}, {%g, %g}}", __func__, frame.x, frame.y,
          frame.width, frame.height);
    if (screen.displayID == 0) return nullptr;
    std::shared_ptr<VLCaptureWindowController> controller(
        new VLCaptureWindowController(frame, screen));
    controller->windowInfoArray_ =
        controller->windowInfoArrayOfScreenFrame(controller->screenFrame_);
    return controller;
}

VLCaptureWindowController::VLCaptureWindowController(const VLRect& frame,
                                                     const vorla::Display& screen)
    : frame_(frame),
      screen_(screen),
      displayID_(VLCaptureUtilities::displayIDofScreen(screen)),
      scaleFactor_(screen.scale),
      screenFrame_(screen.frame) {}

VLCaptureWindowController::~VLCaptureWindowController() {
    VLLog("<VLCaptureWindowController> dealloc");
    closeWindow();
}

void VLCaptureWindowController::openPanel() {
    window_ = VLCaptureWindow::captureWindowWithFrame(frame_, screen_);
    if (!window_) return;
    window_->setWindowDelegate(weak_from_this());
    captureViewController_ = VLCaptureViewController::create(frame_, frozen_);
    if (captureViewController_) {
        captureViewController_->setDelegate(weak_from_this());
        window_->setContentView(captureViewController_->view());
        // Before the panel is shown, so that its first picture holds all there is.
        captureViewController_->captureView()->pointerIsAt(
            pointer_ ? *pointer_ : vorla::pointerLocationInWindow(*window_));
    }
    observers_.observe(NotificationCaptureDidCancel,
                       [this](const Notification&) { captureDidCancel(); });
    registerForChangeThemeNotification();
}

void VLCaptureWindowController::registerForChangeThemeNotification() {
    observers_.observe(VLCaptureNotificationForChangeTheme,
                       [this](const Notification&) { handleChangeThemeNotification(); });
}

void VLCaptureWindowController::handleChangeThemeNotification() {
    VLLog("<VLCaptureWindowController> %s", __func__);
    if (captureViewController_) captureViewController_->configAppearanceAndLayout();
}

bool VLCaptureWindowController::paintAhead() {
    return window_ && window_->paintAhead();
}

void VLCaptureWindowController::becomeActive() {
    if (!window_) return;
    window_->makeKeyAndOrderFront();
    window_->orderFrontRegardless();
    VLLog("<VLCaptureWindowController> %s", __func__);
}

void VLCaptureWindowController::closeWindow() {
    // Let go of at once: a closed panel may serve the next session.
    if (VLCaptureWindow* panel = std::exchange(window_, nullptr)) panel->closePanel();
}

void VLCaptureWindowController::setPaintedHandler(std::function<void()> handler) {
    if (window_) window_->onFirstPaint = std::move(handler);
}

std::shared_ptr<VLCaptureWindowInfo> VLCaptureWindowController::recordOfWindow(
    const ServerWindow& window, const VLRect& frame) const {
    const bool special = window.ownerName == VLGoogleChrome || window.ownerName == VLIbisBrowser;
    auto info =
        special ? std::make_shared<VLSpecialWindowInfo>() : std::make_shared<VLCaptureWindowInfo>();
    info->windowFrame = window.bounds.offsetBy(-frame.x, -frame.y);
    info->windowID = window.number;
    info->pid = window.pid;
    info->name = window.ownerName;
    info->scaleFactor = scaleFactor_;
    info->displayID = displayID_;
    // Read when the panels are up at the earliest, and then it is complete.
    info->frozenScreen = frozen_.imageDownTo(0);
    return info;
}

std::vector<std::shared_ptr<VLCaptureWindowInfo>>
VLCaptureWindowController::windowInfoArrayOfScreenFrame(const VLRect& frame) {
    const auto server = WindowServer::shared();
    // Before the picture is asked for: while the server makes it, it answers nothing else.
    const std::string activeName = VLCaptureUtilities::getFirstActiveWindowName();
    if (server) pointer_ = server->pointerLocation(displayID_);
    const auto windows = server ? server->windows(displayID_) : std::nullopt;
    // Right after the list, so that both show the same moment.
    if (frozen_.isNull()) {
        auto picture = VLCaptureUtilities::imageOfScreen(screen_);
        frozen_ = vorla::FrozenScreen(std::move(picture.image), std::move(picture.rows));
    }
    if (!windows) return {};
    VLLog("%s 取得屏幕内(%s)的窗口数为 %zu", __func__, screen_.name.c_str(), windows->size());
    const std::string hostName = vorla::HostIdentity::displayName();
    bool metKeyWindow = false;
    std::vector<std::shared_ptr<VLCaptureWindowInfo>> records;
    for (const ServerWindow& window : *windows) {
        // A window that fills the screen is no target of its own: the Desktop record stands for it.
        if (frame.intersection(window.bounds).isZero() || window.bounds == frame) continue;
        if (window.layer < 0) continue;
        if (window.layer > highestOrdinaryLayer && window.ownerName == hostName) continue;
        const auto info = recordOfWindow(window, frame);
        if (!metKeyWindow && !activeName.empty() && activeName == window.ownerName) {
            metKeyWindow = true;
            VLLog("生成当前keyWindow截图， name:%s   windowId:%u", info->name.c_str(),
                  info->windowID);
            info->windowImageIsKeyWindow(true);
        }
        records.push_back(info);
    }
    records.push_back(VLCaptureWindowInfo::desktopInfo(frame.size(), scaleFactor_));
    VLLog("%s 经过滤后 取得屏幕内(%s)的窗口数为 %zu", __func__, screen_.name.c_str(),
          records.size());
    return records;
}

std::shared_ptr<VLCaptureWindowInfo> VLCaptureWindowController::windowInfoAtPostion(VLPoint point) {
    for (const auto& info : windowInfoArray_)
        if (info->windowFrame.containsPoint(point) && !info->isTransparent()) return info;
    return windowInfoArray_.empty() ? nullptr : windowInfoArray_.back();
}

void VLCaptureWindowController::captureDidCancel() {
    const auto keptAlive = shared_from_this();
    if (const auto delegate = delegate_.lock()) delegate->captureDidCancel();
}

void VLCaptureWindowController::captureDidFinishWithImage(const QImage& image, bool needSave) {
    const auto keptAlive = shared_from_this();
    VLLog("<VLCaptureWindowController> %s", __func__);
    if (const auto delegate = delegate_.lock())
        delegate->captureDidFinishWithImage(image, needSave, scaleFactor_ > 1.0);
}
