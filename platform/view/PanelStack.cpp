#include "platform/view/PanelStack.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <optional>

#include "platform/base/MainQueue.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/raii.h"
#include "platform/view/CursorStack.h"
#include "platform/view/PanelSurface.h"
#include "platform/view/VLPanel.h"

namespace vorla {
namespace {

/// The focus passes through "nobody" whenever it goes from one window to another.
constexpr int focusSettleMilliseconds = 30;
/// A program that takes the keyboard back this often within the window of time is meant by the
/// user.
constexpr int patience = 8;
constexpr int patienceMilliseconds = 2000;

/// Reports when the last of the host's own windows is minimised: that is how a program is hidden
/// here.
class HostWindowWatch : public QObject {
 public:
    HostWindowWatch() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (event->type() != QEvent::WindowStateChange || !receiver->isWidgetType()) return false;
        const auto* window = static_cast<const QWidget*>(receiver);
        // Posted for later, for it ends the session and this watch with it.
        if (isHostWindow(window) && window->isMinimized() && !hostIsSeen())
            MainQueue::post([] {
                NotificationCenter::defaultCenter().post(NSApplicationWillHideNotification);
            });
        return false;
    }

 private:
    static bool isHostWindow(const QWidget* widget) {
        return widget->isWindow() && widget->isVisible() && !dynamic_cast<const VLPanel*>(widget);
    }
    static bool hostIsSeen() {
        return std::ranges::any_of(QApplication::topLevelWidgets(), [](const QWidget* widget) {
            return isHostWindow(widget) && !widget->isMinimized();
        });
    }
};

}  // namespace

struct PanelStack::State {
    std::vector<VLPanel*> panels;
    QPointer<VLPanel> key;
    std::unique_ptr<PanelSurface> surface;
    std::optional<HostWindowWatch> hostWatch;
    QMetaObject::Connection focusConnection;
    QTimer settle;
    QTimer forgive;
    int stolen = 0;
};

PanelStack::PanelStack() : state_(std::make_unique<State>()) {
    state_->settle.setSingleShot(true);
    state_->settle.setInterval(focusSettleMilliseconds);
    state_->forgive.setSingleShot(true);
    state_->forgive.setInterval(patienceMilliseconds);
    QObject::connect(&state_->settle, &QTimer::timeout, [this] { takeFocusBack(); });
    QObject::connect(&state_->forgive, &QTimer::timeout, [this] { state_->stolen = 0; });
}

PanelStack::~PanelStack() = default;

PanelStack& PanelStack::shared() {
    static NoDestructor<std::unique_ptr<PanelStack>> instance(new PanelStack);
    return **instance;
}

void PanelStack::add(VLPanel* panel) {
    if (state_->panels.empty()) {
        surface().begin([this] { restack(); });
        state_->hostWatch.emplace();
        watchFocus();
    }
    std::erase(state_->panels, panel);
    const auto above =
        std::ranges::upper_bound(state_->panels, panel->level(), {}, &VLPanel::level);
    state_->panels.insert(above, panel);
    CursorStack::shared().applyTo(*panel);
    restack();
}

void PanelStack::remove(VLPanel* panel) {
    if (std::erase(state_->panels, panel) == 0) return;
    if (!state_->panels.empty()) {
        if (state_->key == panel) makeKey(state_->panels.back());
        return;
    }
    QObject::disconnect(state_->focusConnection);
    state_->settle.stop();
    state_->forgive.stop();
    state_->stolen = 0;
    state_->key.clear();
    state_->hostWatch.reset();
    if (const auto surface = std::exchange(state_->surface, nullptr)) surface->release();
}

void PanelStack::makeKey(VLPanel* panel) {
    state_->key = panel;
    surface().becomeKey(*panel);
}

void PanelStack::restack() {
    const bool editsText = std::ranges::any_of(state_->panels, &VLPanel::editsText);
    surface().stayOnTop(state_->panels,
                        editsText ? PanelSurface::Helpers::Spare : PanelSurface::Helpers::Cover);
}

const std::vector<VLPanel*>& PanelStack::panels() const {
    return state_->panels;
}

PanelSurface& PanelStack::surface() {
    if (!state_->surface) state_->surface = PanelSurface::create();
    return *state_->surface;
}

void PanelStack::watchFocus() {
    state_->focusConnection = QObject::connect(qApp, &QGuiApplication::focusWindowChanged, [this] {
        if (hasKeyboard())
            state_->settle.stop();
        else
            state_->settle.start();
    });
}

/// Whether a panel, or a window that belongs to one, has the keyboard; another window of the host
/// is as foreign as any.
bool PanelStack::hasKeyboard() const {
    for (const QWindow* window = QGuiApplication::focusWindow(); window;
         window = window->parent(QWindow::IncludeTransients))
        for (const VLPanel* panel : state_->panels)
            if (panel->windowHandle() == window) return true;
    return false;
}

void PanelStack::takeFocusBack() {
    if (!state_->key || hasKeyboard()) return;
    const PanelSurface::Keyboard keyboard = surface().keyboard(state_->panels);
    if (keyboard == PanelSurface::Keyboard::Kept) return;
    if (!state_->forgive.isActive()) state_->forgive.start();
    if (++state_->stolen > patience || keyboard == PanelSurface::Keyboard::Given) {
        state_->stolen = 0;
        NotificationCenter::defaultCenter().post(NSApplicationWillResignActiveNotification);
        return;
    }
    surface().becomeKey(*state_->key);
    state_->settle.start();
}

}  // namespace vorla
