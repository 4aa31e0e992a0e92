#include "platform/view/Application.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <cstdlib>
#include <iterator>
#include <memory>

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

}  // namespace

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

bool ensureApplication() {
    static bool madeByUs = false;
    if (!QCoreApplication::instance()) {
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
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    if (madeByUs && !(dispatcher && dispatcher->inherits("QEventDispatcherGlib"))) {
        VLLogError(
            "no main loop can drive a capture: the host has no QApplication, and the "
            "toolkit cannot join the GLib main loop here (QT_NO_GLIB is set?)");
        return false;
    }
    return attachToApplication();
}

}  // namespace vorla
