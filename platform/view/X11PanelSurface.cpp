#include "platform/view/X11PanelSurface.h"

#include <xcb/composite.h>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <array>
#include <chrono>

#include "platform/base/raii.h"
#include "platform/view/VLPanel.h"
#include "platform/view/mouseevents.h"

namespace vorla {
namespace {

xcb_connection_t* toolkitConnection() {
    const auto* native =
        qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native ? native->connection() : nullptr;
}

xcb_window_t windowOf(const VLPanel& panel) {
    return panel.testAttribute(Qt::WA_WState_Created) ? static_cast<xcb_window_t>(panel.winId())
                                                      : XCB_NONE;
}

/// Lets a foreign window settle: a menu maps, is raised and resized in quick succession.
constexpr auto settleTime = std::chrono::milliseconds(10);
/// A window manager that switches windows by a key sets the focus when, or soon after, it lets go
/// of the keyboard.
constexpr qint64 switchMilliseconds = 400;

}  // namespace

/// Listens on the toolkit's connection to what it does not report.
class X11PanelSurface::Watch : public QAbstractNativeEventFilter {
 public:
    Watch(xcb_connection_t* connection, const std::map<xcb_window_t, uint32_t>& answered,
          std::function<void()> landedOnTop)
        : connection_(connection), answered_(answered) {
        settle_.setSingleShot(true);
        settle_.setInterval(settleTime);
        QObject::connect(&settle_, &QTimer::timeout, std::move(landedOnTop));
        selectSubstructure(true);
        qApp->installNativeEventFilter(this);
    }
    ~Watch() override {
        if (!qApp) return;
        qApp->removeNativeEventFilter(this);
        if (toolkitConnection() == connection_) selectSubstructure(false);
    }

    /// Whether the focus went at the end of a grab of the keyboard, which is how a key of the
    /// window manager's moves it. A program that just takes the focus grabs nothing.
    [[nodiscard]] bool focusWentByKey() const { return wentByKey_; }
    void forget() { wentByKey_ = false; }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) override {
        if (type != "xcb_generic_event_t") return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        switch (event->response_type & 0x7f) {
            case XCB_MAP_NOTIFY: {
                const auto* mapped = reinterpret_cast<const xcb_map_notify_event_t*>(event);
                moved(mapped->window, mapped->override_redirect);
                break;
            }
            case XCB_CONFIGURE_NOTIFY: {
                const auto* moving = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
                moved(moving->window, moving->override_redirect);
                // Told to the root because we asked: the toolkit takes it for a change of the
                // screens, and reads all of them anew.
                return moving->event != moving->window;
            }
            case XCB_EXPOSE:
                return isAnswered(reinterpret_cast<const xcb_expose_event_t*>(event)->window,
                                  event->full_sequence);
            case XCB_FOCUS_IN:
            case XCB_FOCUS_OUT:
                focusMoved(*reinterpret_cast<const xcb_focus_in_event_t*>(event));
                break;
            default:
                break;
        }
        return false;
    }

 private:
    [[nodiscard]] bool isAnswered(xcb_window_t window, uint32_t sequence) const {
        const auto found = answered_.find(window);
        // Numbers of requests begin anew after the largest.
        return found != answered_.end() && static_cast<int32_t>(sequence - found->second) <= 0;
    }

    void moved(xcb_window_t window, bool unmanaged) {
        if (unmanaged && !QWidget::find(window)) settle_.start();
    }

    void focusMoved(const xcb_focus_in_event_t& event) {
        if (!dynamic_cast<VLPanel*>(QWidget::find(event.event))) return;
        const bool out = (event.response_type & 0x7f) == XCB_FOCUS_OUT;
        if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB) {
            grabbed_ = event.mode == XCB_NOTIFY_MODE_GRAB;
            if (!grabbed_) sinceGrab_.start();
            return;
        }
        const bool byKey =
            grabbed_ || (sinceGrab_.isValid() && sinceGrab_.elapsed() < switchMilliseconds);
        wentByKey_ = out && byKey;
    }

    /// The toolkit selects root events of its own: only this bit may be touched.
    void selectSubstructure(bool on) const {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const MallocPtr<xcb_get_window_attributes_reply_t> now(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, root), nullptr));
        if (!now) return;
        const uint32_t bit = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const uint32_t mask = on ? now->your_event_mask | bit : now->your_event_mask & ~bit;
        xcb_change_window_attributes(connection_, root, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_;
    const std::map<xcb_window_t, uint32_t>& answered_;
    QTimer settle_;
    QElapsedTimer sinceGrab_;
    bool grabbed_ = false;
    bool wentByKey_ = false;
};

std::unique_ptr<X11PanelSurface> X11PanelSurface::create() {
    xcb_connection_t* connection = toolkitConnection();
    if (!connection) return nullptr;
    return std::unique_ptr<X11PanelSurface>(new X11PanelSurface(connection));
}

X11PanelSurface::X11PanelSurface(xcb_connection_t* connection) : connection_(connection) {}
X11PanelSurface::~X11PanelSurface() = default;

bool X11PanelSurface::isAlive() const {
    return toolkitConnection() == connection_;
}

xcb_window_t X11PanelSurface::root() const {
    return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

void X11PanelSurface::begin(std::function<void()> landedOnTop) {
    const MallocPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    focusBefore_ = focus ? focus->focus : XCB_NONE;
    revertBefore_ = focus ? focus->revert_to : 0;
    watch_ = std::make_unique<Watch>(connection_, answered_, std::move(landedOnTop));
}

void X11PanelSurface::release() {
    watch_.reset();
    answered_.clear();
    if (!isAlive() || focusBefore_ == XCB_NONE) return;
    // Checked, so that a window that no longer exists is no error event for the toolkit to report.
    const auto cookie =
        xcb_set_input_focus_checked(connection_, revertBefore_, focusBefore_, XCB_CURRENT_TIME);
    const MallocPtr<xcb_generic_error_t> refused(xcb_request_check(connection_, cookie));
    if (!refused) return;
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                        XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

bool X11PanelSurface::keepPixels(VLPanel& panel) {
    const xcb_window_t window = windowOf(panel);
    const auto* extension = xcb_get_extension_data(connection_, &xcb_composite_id);
    if (window == XCB_NONE || !extension || !extension->present) return false;
    xcb_composite_redirect_window(connection_, window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    return true;
}

void X11PanelSurface::dropPixels(VLPanel& panel) {
    xcb_composite_unredirect_window(connection_, windowOf(panel), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection_);
}

void X11PanelSurface::coverScreen(VLPanel& panel, const QRect& nativeFrame) {
    const xcb_window_t window = windowOf(panel);
    if (window == XCB_NONE) return;
    const std::array<uint32_t, 4> place = {
        static_cast<uint32_t>(nativeFrame.x()), static_cast<uint32_t>(nativeFrame.y()),
        static_cast<uint32_t>(nativeFrame.width()), static_cast<uint32_t>(nativeFrame.height())};
    xcb_configure_window(connection_, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         place.data());
    xcb_flush(connection_);
}

void X11PanelSurface::becomeKey(VLPanel& panel) {
    if (watch_) watch_->forget();
    panel.activateWindow();
    xcb_flush(connection_);
}

void X11PanelSurface::wasPainted(VLPanel& panel) {
    answered_[windowOf(panel)] = xcb_no_operation(connection_).sequence;
    xcb_flush(connection_);
}

// Order ----------------------------------------------------------------------------------------

std::vector<X11PanelSurface::Foreign> X11PanelSurface::foreignAbove(
    const std::vector<VLPanel*>& panels) const {
    const MallocPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root()), nullptr));
    if (!tree) return {};
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    const std::vector<xcb_window_t> all(first, first + xcb_query_tree_children_length(tree.get()));
    const auto lowest = std::ranges::find_if(all, [&panels](xcb_window_t window) {
        return std::ranges::any_of(panels,
                                   [window](const VLPanel* p) { return windowOf(*p) == window; });
    });
    struct Question {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_property_cookie_t name;
    };
    std::vector<Question> questions;
    for (auto it = lowest; it != all.end(); ++it)
        if (!QWidget::find(*it))
            questions.push_back(
                {*it, xcb_get_window_attributes(connection_, *it),
                 xcb_get_property(connection_, 0, *it, XCB_ATOM_WM_CLASS, XCB_ATOM_ANY, 0, 1)});
    std::vector<Foreign> foreign;
    for (const Question& question : questions) {
        const MallocPtr<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection_, question.attributes, nullptr));
        const MallocPtr<xcb_get_property_reply_t> name(
            xcb_get_property_reply(connection_, question.name, nullptr));
        if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
        // A window manager's frames are unmanaged too, but nameless: the name is on the client.
        const bool helper = attributes->override_redirect && name && name->type != XCB_NONE;
        foreign.push_back({question.window, helper});
    }
    return foreign;
}

void X11PanelSurface::stayOnTop(const std::vector<VLPanel*>& panels, Helpers helpers) {
    std::vector<Foreign> above;
    if (helpers == Helpers::Spare) {
        above = foreignAbove(panels);
        if (std::ranges::all_of(above, &Foreign::helper)) return;
    }
    for (VLPanel* panel : panels) panel->raise();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        const Qt::WindowType type = widget->windowType();
        if (widget->isVisible() && (type == Qt::Popup || type == Qt::ToolTip)) widget->raise();
    }
    for (const Foreign& foreign : above) {
        constexpr uint32_t mode = XCB_STACK_MODE_ABOVE;
        if (foreign.helper)
            xcb_configure_window(connection_, foreign.window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    }
    // Out of a timer it would wait for the next event.
    xcb_flush(connection_);
}

// Keyboard and pointer ---------------------------------------------------------------------------

PanelSurface::Keyboard X11PanelSurface::keyboard(const std::vector<VLPanel*>& panels) {
    const auto focusCookie = xcb_get_input_focus(connection_);
    const auto pointerCookie = xcb_query_pointer(connection_, root());
    const MallocPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection_, focusCookie, nullptr));
    const MallocPtr<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection_, pointerCookie, nullptr));
    if (!focus || !pointer) return Keyboard::Unknown;
    const auto isPanel = [&panels](xcb_window_t window) {
        return std::ranges::any_of(panels,
                                   [window](const VLPanel* p) { return windowOf(*p) == window; });
    };
    // While a key is grabbed, the toolkit thinks that the focus is lost.
    if (isPanel(focus->focus)) return Keyboard::Kept;
    if (watch_ && watch_->focusWentByKey()) return Keyboard::Given;
    constexpr uint16_t buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    const bool pressesElsewhere = pointer->mask & buttons && !QWidget::find(pointer->child);
    return pressesElsewhere ? Keyboard::Given : Keyboard::Stolen;
}

std::optional<QPointF> X11PanelSurface::pointer(const VLPanel& panel) {
    const xcb_window_t window = windowOf(panel);
    if (window == XCB_NONE) return std::nullopt;
    const MallocPtr<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, window), nullptr));
    if (!reply) return std::nullopt;
    return QPointF(reply->win_x, reply->win_y) / scaleOf(panel);
}

}  // namespace vorla
