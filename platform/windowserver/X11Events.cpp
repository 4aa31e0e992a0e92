#include "platform/windowserver/X11Events.h"

#include <xcb/randr.h>

#include <QGuiApplication>
#include <QObject>
#include <QScreen>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <utility>

#include "platform/windowserver/X11WindowFacts.h"

namespace vorla {
namespace {

// Long enough for the toolkit to take in a change that reached us first, and for the several
// announcements of one change to come together.
constexpr std::chrono::milliseconds settleTime{60};
constexpr uint32_t noSpace = 0xffffffffU;

}  // namespace

/// What lives as long as the application object does.
struct X11Events::Loop {
    explicit Loop(int fd) : notifier(fd, QSocketNotifier::Read) {
        displaysTimer.setSingleShot(true);
        displaysTimer.setInterval(settleTime);
        spaceTimer.setSingleShot(true);
        spaceTimer.setInterval(0);
    }
    QSocketNotifier notifier;
    QTimer displaysTimer;
    QTimer spaceTimer;
    QObject context;  ///< ends the connections to the application's signals
};

X11Events::X11Events(std::shared_ptr<X11Connection> connection, Handlers handlers)
    : connection_(std::move(connection)), handlers_(std::move(handlers)) {
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &mask);
    if (connection_->extensions().monitors)
        xcb_randr_select_input(connection_->get(), connection_->root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    space_ = currentSpace();
    attach();
}

X11Events::~X11Events() = default;

void X11Events::attach() {
    if (loop_ || qGuiApp == nullptr || !connection_->isAlive()) return;
    loop_ = std::make_unique<Loop>(xcb_get_file_descriptor(connection_->get()));
    QObject* context = &loop_->context;
    QObject::connect(&loop_->notifier, &QSocketNotifier::activated, context,
                     [this] { socketIsReadable(); });
    QObject::connect(&loop_->displaysTimer, &QTimer::timeout, context,
                     [this] { handlers_.displaysMayHaveChanged(); });
    QObject::connect(&loop_->spaceTimer, &QTimer::timeout, context,
                     [this] { spaceMayHaveChanged(); });
    QObject::connect(qGuiApp, &QObject::destroyed, context, [this] { loop_.reset(); });

    QTimer* timer = &loop_->displaysTimer;
    const auto changed = [timer] { timer->start(); };
    const auto watch = [context, changed](QScreen* screen) {
        QObject::connect(screen, &QScreen::geometryChanged, context, changed);
        QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, context, changed);
    };
    for (QScreen* screen : QGuiApplication::screens()) watch(screen);
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, context,
                     [watch, changed](QScreen* screen) {
                         watch(screen);
                         changed();
                     });
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, context, changed);
    QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, context, changed);
    // What came in before there was a loop to report it.
    timer->start();
    loop_->spaceTimer.start();
}

void X11Events::socketIsReadable() {
    while (const MallocPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())})
        handle(*event);
    if (!connection_->isAlive()) loop_->notifier.setEnabled(false);
}

void X11Events::drain() {
    while (
        const MallocPtr<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_->get())})
        handle(*event);
}

void X11Events::askAgain() {
    if (loop_) loop_->displaysTimer.start();
}

void X11Events::handle(const xcb_generic_event_t& event) {
    if (!loop_) return;
    const uint8_t type = event.response_type & 0x7f;
    const uint8_t randr = connection_->extensions().randrEvent;
    if (type == XCB_CONFIGURE_NOTIFY ||
        (randr != 0 &&
         (type == randr + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == randr + XCB_RANDR_NOTIFY))) {
        loop_->displaysTimer.start();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.atom == connection_->atom(X11Atom::NetCurrentDesktop))
            loop_->spaceTimer.start();
    }
}

uint32_t X11Events::currentSpace() {
    const auto property = connection_->property(connection_->askProperty(
        connection_->root(), connection_->atom(X11Atom::NetCurrentDesktop), 1));
    const auto words = wordsOf(property.get());
    return words.empty() ? noSpace : words[0];
}

void X11Events::spaceMayHaveChanged() {
    const uint32_t now = currentSpace();
    drain();
    const uint32_t before = std::exchange(space_, now);
    // A window manager that has just come up is no change of workspace.
    if (now != before && before != noSpace && now != noSpace) handlers_.activeSpaceChanged();
}

}  // namespace vorla
