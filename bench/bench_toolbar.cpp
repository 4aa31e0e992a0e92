// What the toolbar costs on the screen of $DISPLAY, in processor time of this process, against one
// copy of the screen's pixels. Run it at each size of interest, and with a theme's name to see
// that theme:
//   VORLA_TEST_SCREEN=3840x2160x24 tests/support/with-display build/release/bin/bench_toolbar

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

#include "platform/base/NotificationCenter.h"
#include "platform/view/VLPanel.h"
#include "platform/windowserver/WindowServer.h"
#include "selection/VLCaptureViewController.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

double processorTime() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double cost(const std::function<void()>& work) {
    const double start = processorTime();
    work();
    return processorTime() - start;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Resident memory of our own in kibibytes: without what files and the X server share.
long residentMemory() {
    long total = 0;
    long resident = 0;
    long shared = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld %ld", &total, &resident, &shared) != 3)
            resident = shared = 0;
        std::fclose(file);
    }
    return (resident - shared) * 4;
}

class PaintCounter : public QObject {
 public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        if (event->type() == QEvent::Paint) painted = true;
        return false;
    }
    bool painted = false;
};

/// Runs the event loop until a widget was painted and nothing is left to do.
void runUntilPainted(QWidget* widget) {
    PaintCounter counter(widget);
    while (!counter.painted) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
}

/// What a user takes at the least to find a tool.
void rest() {
    QEventLoop loop;
    QTimer::singleShot(150, &loop, &QEventLoop::quit);
    loop.exec();
}

/// One session's surface on the screen, ready for a selection.
class Session {
 public:
    explicit Session(const QImage& picture) {
        const QSizeF size = picture.deviceIndependentSize();
        controller_ = VLCaptureViewController::create({0, 0, size.width(), size.height()},
                                                      vorla::FrozenScreen(picture));
        panel_->coverScreen(QGuiApplication::primaryScreen());
        panel_->setContentView(controller_->view());
        panel_->makeKeyAndOrderFront();  // painted ahead
        QCoreApplication::processEvents();
        auto& surface = *controller_->captureView();
        surface.setStartPoint({size.width() * 0.2, size.height() * 0.2});
        surface.setEndPoint({size.width() * 0.8, size.height() * 0.8});
        surface.setSelectedItemType(VLSelectedItemTypeIdle);
        runUntilPainted(&surface);
    }
    ~Session() {
        controller_.reset();
        panel_->closePanel();
        QCoreApplication::processEvents();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void confirm() {
        controller_->didConfirmSelection();
        runUntilPainted(controller_->toolbarWindowController()->toolbarView());
    }
    /// Without the opening animation, which adds a few frames' painting.
    void chooseTool(int64_t type) {
        auto& toolbar = *controller_->toolbarWindowController();
        toolbar.popoverWindowController()->alphaTransformAnimationStyleDuration = 0.0;
        if (auto* button = toolbar.toolbarView()->graphButtonByGraphType(type)) {
            button->performClick();
            runUntilPainted(toolbar.popoverWindowController()->popoverView());
        }
    }
    /// Moves the pointer along the buttons.
    void hover(int moves) {
        const VLRect place = controller_->toolbarWindowController()->window()->frame();
        for (int i = 0; i < moves; ++i) {
            const double x = place.x + 5 + std::fmod(i * 9.0, place.width - 10);
            const QPointF at(x, panel_->extent().height - place.midY());
            QMouseEvent move(QEvent::MouseMove, at, at, panel_->mapToGlobal(at), Qt::NoButton,
                             Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(panel_->windowHandle(), &move);
            QCoreApplication::processEvents();
        }
    }

 private:
    std::shared_ptr<VLCaptureViewController> controller_;
    QPointer<VLPanel> panel_ = new VLPanel(27);
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    VLCaptureThemeManager::sharedInstance().changeThemeTo(argc > 1 ? argv[1] : "default");
    QImage picture =
        QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertedTo(QImage::Format_RGB32);
    std::vector<uchar> copy(static_cast<size_t>(picture.sizeInBytes()));
    std::vector<double> copies;
    std::vector<double> confirmations;
    std::vector<double> firstClicks;
    std::vector<double> clicks;
    std::vector<double> hovers;
    long memory = 0;
    for (int round = 0; round < 15; ++round) {
        copies.push_back(cost([&] { std::memcpy(copy.data(), picture.constBits(), copy.size()); }));
        Session session(picture);
        const long before = residentMemory();
        confirmations.push_back(cost([&] { session.confirm(); }));
        rest();
        firstClicks.push_back(cost([&] { session.chooseTool(1 + round % 3); }));
        if (round == 0) memory = residentMemory() - before;
        clicks.push_back(cost([&] { session.chooseTool(4 + round % 3); }));
        hovers.push_back(cost([&] { session.hover(500); }) / 500.0);
    }
    const double copied = median(copies);
    std::printf("%d x %d, one copy of the pixels %.2f ms\n", picture.width(), picture.height(),
                copied);
    const auto report = [copied](const char* what, const std::vector<double>& times) {
        std::printf("%-36s first %7.2f ms  median %7.3f ms  ratio %.3f\n", what, times.front(),
                    median(times), median(times) / copied);
    };
    report("confirmation to toolbar painted", confirmations);
    report("first tool's click, editing begins", firstClicks);
    report("tool's click to popover painted", clicks);
    report("pointer move on the toolbar", hovers);
    std::printf("memory of toolbar and popover        %ld KiB\n", memory);
}
