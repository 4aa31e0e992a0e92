#include "capture/VLCaptureManager.h"

#include <vorla/VLStatistics.h>

#include <QCoreApplication>
#include <algorithm>
#include <utility>

#include "NEX/NEX/OzuNexManager.h"
#include "crash/VLCrashCvrManager.h"
#include "platform/base/MainQueue.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "platform/view/Application.h"
#include "platform/view/CursorStack.h"
#include "platform/view/PanelStack.h"
#include "settings/StatisticDoor.h"
#include "theme/VLCaptureThemeManager.h"

using vorla::Notification;
using vorla::NotificationCenter;
using vorla::WindowServer;

namespace {

constexpr std::chrono::milliseconds delayOfSwitch(200);

thread_local VLCaptureError errorOfThread = VLCaptureErrorNone;

std::function<void(int)>& panelsShownHandler() {
    static vorla::NoDestructor<std::function<void(int)>> handler;
    return *handler;
}

size_t numberOfScreens() {
    const auto server = WindowServer::shared();
    return server ? server->displays().size() : 0;
}

}  // namespace

std::shared_ptr<VLCaptureManager>& VLCaptureManager::shared() {
    // Not destroyed at exit: the toolkit that its panels need may no longer exist by then.
    static vorla::NoDestructor<std::shared_ptr<VLCaptureManager>> instance;
    return *instance;
}

std::shared_ptr<VLCaptureManager> VLCaptureManager::sharedInstance() {
    if (!shared()) {
        // A handler that asks for the instance must find it.
        const vorla::LogHold hold;
        shared().reset(new VLCaptureManager);
    }
    return shared();
}

VLCaptureManager::VLCaptureManager() {
    VLLog("<VLCaptureManager> init");
    VLCrashCvrManager::startCrashReport();
    OzuNexManager::defaultManager().startStat();
    VLCaptureThemeManager::sharedInstance().resetTheme();
    screenCount_ = numberOfScreens();
}

VLCaptureManager::~VLCaptureManager() {
    VLLog("<VLCaptureManager> dealloc");
}

void VLCaptureManager::setLastError(VLCaptureError error) {
    errorOfThread = error;
}

VLCaptureError VLCaptureManager::lastError() {
    return errorOfThread;
}

void VLCaptureManager::setPanelsShownHandler(std::function<void(int)> handler) {
    panelsShownHandler() = std::move(handler);
}

// Start ----------------------------------------------------------------------------------------

VLCaptureError VLCaptureManager::obstacle(bool hasRequest, vorla::MainLoop loop,
                                          std::vector<vorla::Display>& screens) const {
    if (isCapturing_) {
        VLLog("<VLCaptureManager> startCaptureByRequest - 已有截图任务正在进行");
        return VLCaptureErrorAlreadyCapturing;
    }
    const auto server = WindowServer::shared();
    VLCaptureError error = VLCaptureErrorNone;
    if (!hasRequest)
        error = VLCaptureErrorNoRequest;
    else if (!server)
        error = VLCaptureErrorNoDisplayServer;
    else if (error = vorla::ensureApplication(loop); error == VLCaptureErrorNone) {
        screens = server->displays();
        error = screens.empty() ? VLCaptureErrorNoDisplayServer : server->obstacle();
    }
    if (error != VLCaptureErrorNone)
        VLLogError("<VLCaptureManager> startCaptureByRequest - %s", VLCaptureErrorText(error));
    return error;
}

VLCaptureError VLCaptureManager::startCaptureByRequest(
    const std::shared_ptr<VLCaptureRequest>& request, VLCaptureEndHandler ended,
    vorla::MainLoop loop) {
    std::vector<vorla::Display> screens;
    const VLCaptureError error = obstacle(request != nullptr, loop, screens);
    setLastError(error);
    if (error != VLCaptureErrorNone) {
        vorla::fireStatisticEvent(VLStatEventStart);
        return error;
    }
    startCounted_ = windowsKept_ = false;
    VLLog("<VLCaptureManager> %s - 开始截图", __func__);
    isCapturing_ = anyCapturing_ = true;
    qAddPostRoutine(&VLCaptureManager::endWithApplication);
    request_ = request;
    delegate_ = request->delegate();
    ended_ = std::move(ended);
    screens_ = std::move(screens);
    panelsAwaited_ = screens_.size();
    for (const auto& screen : screens_) {
        VLLog("获取屏幕数:%zu", screens_.size());
        captureFrame({0.0, 0.0, screen.frame.width, screen.frame.height}, screen);
    }
    if (request->showSwitch()) offerSwitch();
    addObserver();
    return VLCaptureErrorNone;
}

void VLCaptureManager::offerSwitch() {
    std::vector<VLSwitchMangager::Screen> bars;
    for (const auto& screen : screens_)
        bars.push_back({screen.frame.size(),
                        [manager = weak_from_this(), displayID = screen.displayID]() -> VLPanel* {
                            const auto self = manager.lock();
                            return self ? self->panelOfDisplay(displayID) : nullptr;
                        }});
    switchManager_ = VLSwitchMangager::create(bars);
    switchManager_->setDelegate(weak_from_this());
    observers_.observe(VLNotificationSelectDidBegin,
                       [this](const Notification&) { handleReceivedSelectDidBeginNotification(); });
    vorla::MainQueue::postAfter(delayOfSwitch, [bar = std::weak_ptr(switchManager_)] {
        if (const auto manager = bar.lock()) manager->show();
    });
}

VLPanel* VLCaptureManager::panelOfDisplay(uint32_t displayID) const {
    const auto found =
        std::ranges::find(windowControllers_, displayID, &VLCaptureWindowController::displayID);
    return found == windowControllers_.end() ? nullptr : (*found)->window();
}

void VLCaptureManager::handleReceivedSelectDidBeginNotification() {
    if (switchManager_) switchManager_->hide();
}

void VLCaptureManager::captureFrame(const VLRect& /*frame*/, const vorla::Display& screen) {
    // Held weakly: a session that is cancelled before its panels are made must not open them.
    vorla::MainQueue::post([manager = weak_from_this(), displayID = screen.displayID] {
        const auto self = manager.lock();
        if (!self || !self->isCapturing_) return;
        self->freezeScreens();
        self->openPanel(displayID);
    });
}

void VLCaptureManager::freezeScreens() {
    if (screens_.empty()) return;
    for (const vorla::Display& screen : std::exchange(screens_, {}))
        if (const auto controller = VLCaptureWindowController::create(
                {0.0, 0.0, screen.frame.width, screen.frame.height}, screen))
            windowControllers_.push_back(controller);
}

void VLCaptureManager::openPanel(uint32_t displayID) {
    const auto found =
        std::ranges::find(windowControllers_, displayID, &VLCaptureWindowController::displayID);
    if (found == windowControllers_.end()) return;
    const auto controller = *found;
    controller->openPanel();
    const auto server = WindowServer::shared();
    if (server && !std::exchange(windowsKept_, true)) {
        server->keepWindows();
        // No panel may be seen before every screen has its picture. What has come of this one is
        // painted while the server still works.
        server->finish([&controller] { return controller->paintAhead(); });
    }
    controller->setDelegate(weak_from_this());
    controller->setPaintedHandler([manager = weak_from_this()] {
        if (const auto self = manager.lock()) self->panelWasPainted();
    });
    controller->becomeActive();
}

/// Counting writes a file, which takes longer than all else on a busy disk: not before the panels
/// are up and the host has heard of it.
void VLCaptureManager::countStart() {
    if (!std::exchange(startCounted_, true)) vorla::fireStatisticEvent(VLStatEventStart);
}

void VLCaptureManager::panelWasPainted() {
    if (--panelsAwaited_ != 0) return;
    vorla::MainQueue::post([manager = weak_from_this()] {
        if (const auto self = manager.lock()) self->countStart();
    });
    // A copy: the handler may set another one.
    if (const auto handler = panelsShownHandler())
        handler(static_cast<int>(windowControllers_.size()));
}

void VLCaptureManager::addObserver() {
    const auto cancel = [this](const Notification& n) { handleCaptureCancelNotification(n); };
    observers_.observe(vorla::NSApplicationWillResignActiveNotification, cancel);
    observers_.observe(vorla::NSApplicationWillHideNotification, cancel);
    observers_.observe(NSWorkspaceActiveSpaceDidChangeNotification, cancel);
    observers_.observe(NSApplicationDidChangeScreenParametersNotification,
                       [this](const Notification&) { handleScreenParametersNotification(); });
    if (const auto server = WindowServer::shared()) {
        server->onDisplaysChanged = [] {
            NotificationCenter::defaultCenter().post(
                NSApplicationDidChangeScreenParametersNotification);
        };
        server->onActiveSpaceChanged = [] {
            NotificationCenter::defaultCenter().post(NSWorkspaceActiveSpaceDidChangeNotification);
        };
    }
}

// End ------------------------------------------------------------------------------------------

void VLCaptureManager::tellEnd(const VLCaptureOutcome& outcome) {
    if (const auto ended = std::exchange(ended_, nullptr)) ended(outcome);
}

void VLCaptureManager::endWithApplication() {
    if (shared()) {
        // At the end of the program there may be nobody left to tell.
        shared()->ended_ = nullptr;
        shared()->clean();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void VLCaptureManager::cancelCapture() {
    const auto keptAlive = shared_from_this();
    clean();
    tellEnd({.kind = VLCaptureOutcomeCancelledByHost});
}

void VLCaptureManager::captureDidCancel() {
    const auto keptAlive = shared_from_this();
    VLLog("%s 取消截图", __func__);
    // The host may show a window in the call, or start the next capture: by then nothing of this
    // one is left that could call it again.
    const auto delegate = std::exchange(delegate_, nullptr);
    clean();
    if (delegate) delegate->captureRequestDidCancel(*request_);
    tellEnd({.kind = VLCaptureOutcomeCancelled});
}

void VLCaptureManager::prepareToRecord() {
    VLLog("<VLCaptureManager> %s", __func__);
    NotificationCenter::defaultCenter().post(VLNotificationPrepareToRecord);
}

void VLCaptureManager::changeToRecord() {
    const auto keptAlive = shared_from_this();
    VLLog("<VLCaptureManager> %s", __func__);
    // All is over by the time the host hears of it: it may start the next capture in the call.
    const auto delegate = delegate_;
    const auto request = request_;
    clean();
    if (delegate) delegate->captureRequestDidChange(*request);
    tellEnd({.kind = VLCaptureOutcomeRecorder});
}

void VLCaptureManager::handleCaptureCancelNotification(const Notification& notification) {
    VLLog("收到通知 %s，取消截屏", notification.name.c_str());
    captureDidCancel();
}

void VLCaptureManager::handleScreenParametersNotification() {
    const char* name = NSApplicationDidChangeScreenParametersNotification;
    VLLog("收到通知 %s，取消截屏", name);
    if (screenCount_ != numberOfScreens())
        captureDidCancel();
    else
        VLLog("收到通知 %s，但是屏幕个数没有变", name);
}

void VLCaptureManager::cleanCaptureWindow() {
    for (const auto& controller : std::exchange(windowControllers_, {})) {
        VLLog("关闭窗体%p", static_cast<void*>(controller->window()));
        controller->closeWindow();
    }
    if (const auto manager = std::exchange(switchManager_, nullptr)) manager->hide();
    vorla::CursorStack::shared().clear();
    if (const auto server = WindowServer::shared()) server->releaseWindows();
}

void VLCaptureManager::clean() {
    const auto keptAlive = shared_from_this();
    // What a session ended long ago still calls must leave the next one's windows alone.
    if (std::exchange(isCapturing_, false)) {
        anyCapturing_ = false;
        countStart();
        observers_.clear();
        cleanCaptureWindow();
        if (QCoreApplication::instance()) qRemovePostRoutine(&VLCaptureManager::endWithApplication);
    }
    delegate_.reset();
    // A save that ends late must not drop the manager of the next session.
    if (shared().get() == this) shared().reset();
}
