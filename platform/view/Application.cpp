#include "platform/view/Application.h"

#include <glib.h>
#include <unistd.h>
#include <vorla/VLCaptureOutcome.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <atomic>
#include <clocale>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/Bundle.h"
#include "platform/base/MainQueue.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

namespace vorla {
namespace {

/// Runs the main queue's tasks on the toolkit's event loop.
class EventLoopBackend : public MainQueue::Backend {
 public:
    void post(std::chrono::milliseconds delay, MainQueue::Task task) override {
        if (!qApp) return;
        if (delay.count() <= 0) {
            QMetaObject::invokeMethod(qApp, std::move(task), Qt::QueuedConnection);
            return;
        }
        QMetaObject::invokeMethod(
            qApp,
            [delay, task = std::move(task)] {
                QTimer::singleShot(delay, Qt::PreciseTimer, qApp, task);
            },
            Qt::QueuedConnection);
    }
};

void tellOfActivation(Qt::ApplicationState state) {
    NotificationCenter::defaultCenter().post(state == Qt::ApplicationActive
                                                 ? NSApplicationWillBecomeActiveNotification
                                                 : NSApplicationDidResignActiveNotification);
}

void detachFromApplication() {
    MainQueue::setBackend(nullptr);
}

bool madeByUs = false;

/// The thread that captures in a host without an application object; 0 before any has asked.
std::atomic<pid_t> capturingThread = 0;

/// Whether another thread runs GLib's default loop, which drives the toolkit where it is used.
bool anotherThreadRunsTheLoop() {
    if (!g_main_context_acquire(nullptr)) return true;
    g_main_context_release(nullptr);
    return false;
}

/// Puts the host's locale back when it ends: an application object sets the user's.
class LocaleKeeper {
 public:
    LocaleKeeper() {
        for (const int category : {LC_COLLATE, LC_MESSAGES, LC_MONETARY, LC_NUMERIC, LC_TIME})
            if (const char* name = std::setlocale(category, nullptr))
                names_.emplace_back(category, name);
    }
    ~LocaleKeeper() {
        for (const auto& [category, name] : names_) std::setlocale(category, name.c_str());
    }
    LocaleKeeper(const LocaleKeeper&) = delete;
    LocaleKeeper& operator=(const LocaleKeeper&) = delete;

 private:
    std::vector<std::pair<int, std::string>> names_;
};

void makeApplication() {
    const LocaleKeeper locale;
    // Captures go through the X server, whatever the environment of the host prefers.
    static std::string words[] = {HostIdentity::displayName(), "-platform", "xcb"};
    static int argc = static_cast<int>(std::size(words));
    static char* argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    // Ends with the process, so that the clipboard is handed over. Registered after it was made
    // and has had a window: at exit it goes before what the toolkit made on the way.
    static NoDestructor<std::unique_ptr<QApplication>> application;
    *application = std::make_unique<QApplication>(argc, argv);
    QWidget().ensurePolished();
    std::atexit([] { application->reset(); });
    QGuiApplication::setQuitOnLastWindowClosed(false);
    madeByUs = true;
}

}  // namespace

bool isCaptureThread(MainLoop loop) {
    if (const QCoreApplication* application = QCoreApplication::instance())
        return QThread::currentThread() == application->thread();
    if (anotherThreadRunsTheLoop()) return false;
    const pid_t self = ::gettid();
    if (loop == MainLoop::Host && self != ::getpid() && !g_main_context_is_owner(nullptr))
        return false;
    pid_t first = 0;
    return capturingThread.compare_exchange_strong(first, self) || first == self;
}

bool attachToApplication() {
    if (!QCoreApplication::instance()) return false;
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        VLLogError("the host's application object has no widgets: captures need a QApplication");
        return false;
    }
    if (QThread::currentThread() != qApp->thread()) {
        VLLogError("captures are started on the thread of the host's application object");
        return false;
    }
    static const QCoreApplication* attached = nullptr;
    if (attached != qApp) {
        attached = qApp;
        HostIdentity::setDisplayName(QGuiApplication::applicationDisplayName().toStdString());
        MainQueue::setBackend(std::make_shared<EventLoopBackend>());
        QObject::connect(qApp, &QGuiApplication::applicationStateChanged, qApp, tellOfActivation);
        qAddPostRoutine([] {
            attached = nullptr;
            detachFromApplication();
        });
    }
    return true;
}

VLCaptureError ensureApplication(MainLoop loop) {
    if (!QCoreApplication::instance()) makeApplication();
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    if (loop == MainLoop::Host && madeByUs &&
        !(dispatcher && dispatcher->inherits("QEventDispatcherGlib"))) {
        VLLogError(
            "no main loop can drive a capture: the host has no QApplication, and the "
            "toolkit cannot join the GLib main loop here (QT_NO_GLIB is set?)");
        return VLCaptureErrorNoMainLoop;
    }
    return attachToApplication() ? VLCaptureErrorNone : VLCaptureErrorNoWidgets;
}

bool isApplicationOurs() {
    return madeByUs && QCoreApplication::instance();
}

}  // namespace vorla
