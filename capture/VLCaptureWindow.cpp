#include "capture/VLCaptureWindow.h"

#include <vorla/VLStatistics.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "platform/windowserver/WindowServer.h"
#include "selection/VLCaptureViewController.h"
#include "settings/StatisticDoor.h"

using vorla::Notification;
using vorla::NotificationCenter;

namespace {

constexpr int panelLevel = 27;

/// The toolkit's screen for a display of the window server.
QScreen* toolkitScreen(const vorla::Display& display) {
    const QPoint origin(display.nativeFrame.x, display.nativeFrame.y);
    for (QScreen* screen : QGuiApplication::screens())
        if (screen->geometry().topLeft() == origin &&
            screen->name() == QString::fromStdString(display.name))
            return screen;
    for (QScreen* screen : QGuiApplication::screens())
        if (screen->geometry().topLeft() == origin) return screen;
    return QGuiApplication::primaryScreen();
}

QRect nativeRect(const vorla::Display& display) {
    const vorla::PixelRect& frame = display.nativeFrame;
    return {frame.x, frame.y, frame.width, frame.height};
}

/// How many closed panels are kept for the next session.
size_t numberKeptReady = 0;

}  // namespace

VLCaptureWindow::VLCaptureWindow() : VLPanel(panelLevel) {
    observe();
}

void VLCaptureWindow::observe() {
    observers_.observe(VLNotificationCaptureDidConfirmSelection,
                       [this](const Notification&) { responseToReturn_ = true; });
}

// Panels kept ready ----------------------------------------------------------------------------

std::vector<VLCaptureWindow*>& VLCaptureWindow::spares() {
    // Used when the application object ends, which may be after the end of other static objects.
    static vorla::NoDestructor<std::vector<VLCaptureWindow*>> panels;
    return *panels;
}

VLCaptureWindow* VLCaptureWindow::takeSpare(QSize nativeSize) {
    auto& panels = spares();
    const auto fitting = std::ranges::find(panels, nativeSize,
                                           [](auto* panel) { return panel->nativeFrame().size(); });
    if (fitting == panels.end()) return nullptr;
    VLCaptureWindow* panel = *fitting;
    panels.erase(fitting);
    panel->reopen();
    panel->observe();
    return panel;
}

void VLCaptureWindow::keepReady(const std::vector<vorla::Display>& screens) {
    if (numberKeptReady == 0)
        qAddPostRoutine([] {
            numberKeptReady = 0;
            for (VLCaptureWindow* panel : std::exchange(spares(), {}))
                const std::unique_ptr<VLCaptureWindow> dropped(panel);
        });
    numberKeptReady = screens.size();
    while (spares().size() < numberKeptReady) {
        auto panel = std::unique_ptr<VLCaptureWindow>(new VLCaptureWindow);
        const vorla::Display& display = screens[spares().size()];
        if (QScreen* screen = toolkitScreen(display))
            panel->coverScreen(screen, nativeRect(display));
        panel->rehearse();
        panel->observers_.clear();
        panel->shelve();
        spares().push_back(panel.release());
    }
}

void VLCaptureWindow::dispose() {
    if (spares().size() >= numberKeptReady) {
        VLPanel::dispose();
        return;
    }
    observers_.clear();
    windowDelegate_.reset();
    responseToReturn_ = false;
    shelve();
    spares().push_back(this);
}

QPointer<VLCaptureWindow> VLCaptureWindow::captureWindowWithFrame(const VLRect& /*frame*/,
                                                                  const vorla::Display& screen) {
    QScreen* target = toolkitScreen(screen);
    if (!target) return nullptr;
    QPointer<VLCaptureWindow> panel(takeSpare(nativeRect(screen).size()));
    if (!panel) {
        // None fits since the screens have changed: an old one makes room for this one.
        if (!spares().empty()) {
            const std::unique_ptr<VLCaptureWindow> outgrown(spares().front());
            spares().erase(spares().begin());
        }
        panel = new VLCaptureWindow;
    }
    panel->coverScreen(target, nativeRect(screen));
    return panel;
}

void VLCaptureWindow::cancel() {
    if (const auto delegate = windowDelegate_.lock()) delegate->captureDidCancel();
}

bool VLCaptureWindow::performKeyEquivalent(QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) {
        VLLog("<VLCaptureWindow> %s - Esc", __func__);
        vorla::fireStatisticEvent(VLStatEventEscape);
        cancel();
        return true;
    }
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isReturn && responseToReturn_) {
        VLLog("<VLCaptureWindow> %s - Return", __func__);
        vorla::fireStatisticEvent(VLStatEventReturn);
        NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish);
        return true;
    }
    return VLPanel::performKeyEquivalent(event);
}

void VLCaptureWindow::mouseDown(const VLMouseEvent& event) {
    VLPanel::mouseDown(event);
    if (event.clickCount <= 2 || !responseToReturn_) return;
    vorla::fireStatisticEvent(VLStatEventDoubleClick);
    NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish);
}

void VLCaptureWindow::closeRequested() {
    cancel();
    VLPanel::closeRequested();
}

void VLCaptureWindow::rightMouseDown(const VLMouseEvent& event) {
    VLLog("<VLCaptureWindow> %s", __func__);
    vorla::fireStatisticEvent(VLStatEventRightButton);
    cancel();
    VLPanel::rightMouseDown(event);
}
