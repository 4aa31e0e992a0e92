#include "platform/view/X11Focus.h"

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <chrono>

#include "platform/base/raii.h"

namespace vorla {
namespace {

xcb_connection_t* toolkitConnection() {
    const auto* native =
        qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native ? native->connection() : nullptr;
}

/// Lets a foreign window settle: a menu maps, is raised and resized in quick succession.
constexpr auto settleTime = std::chrono::milliseconds(10);

}  // namespace

SavedFocus SavedFocus::current() {
    SavedFocus saved;
    xcb_connection_t* connection = toolkitConnection();
    if (!connection) return saved;
    const MallocPtr<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (reply) {
        saved.window_ = reply->focus;
        saved.revertTo_ = reply->revert_to;
    }
    return saved;
}

void SavedFocus::restore() const {
    xcb_connection_t* connection = toolkitConnection();
    if (!connection || window_ == XCB_NONE) return;
    // Checked, so that a window that has gone is no error event for the toolkit to complain of.
    const auto cookie =
        xcb_set_input_focus_checked(connection, revertTo_, window_, XCB_CURRENT_TIME);
    const MallocPtr<xcb_generic_error_t> refused(xcb_request_check(connection, cookie));
    if (refused) {
        xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                            XCB_CURRENT_TIME);
        xcb_flush(connection);
    }
}

void flushToServer() {
    if (xcb_connection_t* connection = toolkitConnection()) xcb_flush(connection);
}

struct ForeignWindowWatch::Filter : QAbstractNativeEventFilter {
    xcb_connection_t* connection;
    QTimer settle;

    explicit Filter(xcb_connection_t* c) : connection(c) {
        settle.setSingleShot(true);
        settle.setInterval(settleTime);
    }

    /// The toolkit selects root events of its own: only this bit may be touched.
    void selectSubstructure(bool on) const {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        const MallocPtr<xcb_get_window_attributes_reply_t> now(xcb_get_window_attributes_reply(
            connection, xcb_get_window_attributes(connection, root), nullptr));
        if (!now) return;
        const uint32_t bit = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const uint32_t mask = on ? now->your_event_mask | bit : now->your_event_mask & ~bit;
        xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(connection);
    }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) override {
        if (type != "xcb_generic_event_t") return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        xcb_window_t window = XCB_NONE;
        bool unmanaged = false;
        switch (event->response_type & 0x7f) {
            case XCB_MAP_NOTIFY: {
                const auto* mapped = reinterpret_cast<const xcb_map_notify_event_t*>(event);
                window = mapped->window;
                unmanaged = mapped->override_redirect;
                break;
            }
            case XCB_CONFIGURE_NOTIFY: {
                const auto* moved = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
                window = moved->window;
                unmanaged = moved->override_redirect;
                break;
            }
            default:
                return false;
        }
        if (unmanaged && !QWidget::find(window)) settle.start();
        return false;
    }
};

ForeignWindowWatch::ForeignWindowWatch(std::function<void()> landedOnTop) {
    xcb_connection_t* connection = toolkitConnection();
    if (!connection) return;
    filter_ = std::make_unique<Filter>(connection);
    QObject::connect(&filter_->settle, &QTimer::timeout, std::move(landedOnTop));
    filter_->selectSubstructure(true);
    qApp->installNativeEventFilter(filter_.get());
}

ForeignWindowWatch::~ForeignWindowWatch() {
    if (!filter_ || !qApp) return;
    qApp->removeNativeEventFilter(filter_.get());
    if (toolkitConnection() == filter_->connection) filter_->selectSubstructure(false);
}

}  // namespace vorla
