// What a session costs on the screen of $DISPLAY: from the start to all panels painted, per pointer
// move, and in memory; each compared with a yardstick measured in the same run. Run it at each
// size of interest:
//   VORLA_TEST_SCREEN=3840x2160x24 tests/support/with-display build/release/bin/bench_session

#include <sys/ipc.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <vorla/VLCapture.h>
#include "bench/measuring.h"
#include "platform/base/raii.h"
#include "tests/support/TestProgram.h"
#include "tests/support/XTestDriver.h"

namespace {

using namespace vorla::bench;

using vorla::MallocPtr;
using vorla::test::TestProgram;
using vorla::test::XTestDriver;
using Clock = std::chrono::steady_clock;

/// The least that freezing a screen can cost: one grab into kept memory, one blit of it to a
/// window.
class RawFreeze {
 public:
    explicit RawFreeze(XTestDriver& driver)
        : c_(driver.connection()), screen_(driver.screen()), size_(driver.rootSize()) {
        const size_t bytes = static_cast<size_t>(size_.width()) * size_.height() * 4;
        const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        memory_ = shmat(id, nullptr, 0);
        segment_ = xcb_generate_id(c_);
        xcb_shm_attach(c_, segment_, static_cast<uint32_t>(id), 0);
        window_ = xcb_generate_id(c_);
        const uint32_t unmanaged = 1;
        xcb_create_window(c_, XCB_COPY_FROM_PARENT, window_, screen_->root, 0, 0, size_.width(),
                          size_.height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
        context_ = xcb_generate_id(c_);
        xcb_create_gc(c_, context_, window_, 0, nullptr);
        driver.sync();
        shmctl(id, IPC_RMID, nullptr);
    }
    ~RawFreeze() {
        xcb_free_gc(c_, context_);
        xcb_destroy_window(c_, window_);
        xcb_shm_detach(c_, segment_);
        shmdt(memory_);
    }
    RawFreeze(const RawFreeze&) = delete;
    RawFreeze& operator=(const RawFreeze&) = delete;

    double milliseconds() {
        const auto start = Clock::now();
        const MallocPtr<xcb_shm_get_image_reply_t> grabbed(xcb_shm_get_image_reply(
            c_,
            xcb_shm_get_image(c_, screen_->root, 0, 0, size_.width(), size_.height(), ~0U,
                              XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, 0),
            nullptr));
        xcb_map_window(c_, window_);
        xcb_shm_put_image(c_, window_, context_, size_.width(), size_.height(), 0, 0, size_.width(),
                          size_.height(), 0, 0, screen_->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                          segment_, 0);
        sync();
        const double took = since(start);
        xcb_unmap_window(c_, window_);
        sync();
        return took;
    }

 private:
    void sync() {
        const MallocPtr<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
    }

    xcb_connection_t* c_;
    xcb_screen_t* screen_;
    QSize size_;
    void* memory_ = nullptr;
    xcb_shm_seg_t segment_ = 0;
    xcb_window_t window_ = 0;
    xcb_gcontext_t context_ = 0;
};

void report(const char* what, MoveCost ours, MoveCost bare) {
    std::printf(
        "(c) %-36s ours %6.3f ms  server %6.3f ms   bare overlay %6.3f, %6.3f   "
        "ratio %.2f, %.2f\n",
        what, ours.own, ours.server, bare.own, bare.server, ours.own / bare.own,
        ours.server / bare.server);
}

class Bench : public VLCaptureRequestDelegate, public std::enable_shared_from_this<Bench> {
 public:
    explicit Bench(XTestDriver& driver) : driver_(driver), size_(driver.rootSize()) {}

    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> imageData,
                        const std::optional<std::string>& /*saveToPath*/,
                        const std::optional<std::string>& /*error*/) override {
        delivered_ = imageData.size();
    }

    bool start() {
        shown_ = false;
        delivered_ = 0;
        request_->setDelegate(weak_from_this());
        VLSetPanelsShownHandler([this](int) { shown_ = true; });
        return VLStartCapture(request_) && spinUntil([this] { return shown_; });
    }

    void measureStart() {
        RawFreeze raw(driver_);
        std::vector<double> ours;
        std::vector<double> yardstick;
        for (int round = 0; round < 9; ++round) {
            rest(200);
            yardstick.push_back(raw.milliseconds());
            const auto begin = Clock::now();
            if (!start()) std::exit(1);
            driver_.sync();
            ours.push_back(since(begin));
            VLCancelCapture();
        }
        std::printf(
            "(b) start to all panels painted: first %.1f ms, median %.1f ms; raw grab and "
            "blit %.1f ms; ratio %.2f\n",
            ours.front(), median(ours), median(yardstick), median(ours) / median(yardstick));
    }

    void measureMoves() {
        const QPoint middle(size_.width() / 2, size_.height() / 2);
        const auto wander = [middle](int i) { return middle + QPoint(i % 40 * 3, i % 25 * 2); };
        const int reach = std::min(size_.width(), size_.height()) / 2;
        const auto stretch = [middle, reach](int i) {
            const int length = reach / 2 + (i % 50) * reach / 100;
            return middle / 2 + QPoint(length, length * 3 / 4);
        };
        const auto smallStretch = [middle](int i) {
            return middle / 2 + QPoint(100 + (i % 50) * 4, 80 + (i % 50) * 3);
        };
        MoveCost bare;
        MoveCost bareSmall;
        {
            BareOverlay overlay;
            rest(300);
            bare = costOfMoves(driver_, stretch);
            bareSmall = costOfMoves(driver_, smallStretch);
        }
        if (!start()) std::exit(1);
        rest(200);
        report("snapping, inside one window", costOfMoves(driver_, wander), bareSmall);
        driver_.moveTo(middle.x() / 2, middle.y() / 2);
        driver_.press();
        report("dragging, as large as the screen", costOfMoves(driver_, stretch), bare);
        report("dragging, 300 points", costOfMoves(driver_, smallStretch), bareSmall);
        driver_.release();
        rest(100);
        VLCancelCapture();
    }

    /// A session that delivers the whole screen, with rectangles and strokes drawn on it.
    void measureMemory(double idle, int items) {
        rest(300);
        resetPeak();
        if (!start()) std::exit(1);
        driver_.click(5, 5);
        rest(200);
        for (int i = 0; i < items; ++i) {
            driver_.key(i % 2 ? "1" : "4");
            const QPoint from(size_.width() * (i % 10 + 1) / 13, size_.height() * (i % 7 + 1) / 10);
            driver_.drag(from, from + QPoint(size_.width() / 8, size_.height() / 6), 6);
            rest(60);
        }
        driver_.key("Return");
        spinUntil([this] { return delivered_ > 0; });
        const double screen = static_cast<double>(size_.width()) * size_.height() * 4.0 / 1024.0;
        const double peak = statusValue("VmHWM") - idle;
        std::printf(
            "(e) peak of a session that delivers the whole screen with %2d items: %.0f MiB above "
            "the idle host; multiple of the screen %.2f (PNG of %zu KiB)\n",
            items, peak / 1024.0, peak / screen, delivered_ / 1024);
        std::fflush(stdout);
    }

 private:
    XTestDriver& driver_;
    QSize size_;
    std::shared_ptr<VLCaptureRequest> request_ = std::make_shared<VLCaptureRequest>();
    bool shown_ = false;
    size_t delivered_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    VLSetLogHandler([](std::string_view) {});
    const auto driver = XTestDriver::create();
    if (!driver) return 1;
    const QSize size = driver->rootSize();
    std::list<TestProgram> clients;
    for (const char* place : {"60x60+5+5", "50x60+20+15", "45x50+50+40", "30x30+65+10"}) {
        int w = 0;
        int h = 0;
        int x = 0;
        int y = 0;
        std::sscanf(place, "%dx%d+%d+%d", &w, &h, &x, &y);
        const auto part = [](int percent, int whole) {
            return std::to_string(percent * whole / 100);
        };
        clients.emplace_back(
            std::vector<std::string>{"--geometry",
                                     part(w, size.width()) + "x" + part(h, size.height()) + "+" +
                                         part(x, size.width()) + "+" + part(y, size.height()),
                                     "--pattern", "gradient"});
        clients.back().waitUntilReady();
    }
    rest(500);
    const double idle = statusValue("VmRSS");
    VLPrepareCapture();
    rest(300);
    std::printf("screen %d x %d\n", size.width(), size.height());
    const auto bench = std::make_shared<Bench>(*driver);
    bench->measureStart();
    bench->measureMoves();
    bench->measureMemory(idle, 0);
    bench->measureMemory(idle, 50);
    return 0;
}
