// What the window server adapter costs, against the bare requests that it is made of, on the screen
// of $DISPLAY. Run it at each size of interest:
//   VORLA_TEST_SCREEN=3840x2160x24 tests/support/with-display build/release/bin/bench_grab

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/raii.h"
#include "platform/windowserver/WindowServer.h"
#include "tests/support/TestProgram.h"
#include "tests/support/XTestDriver.h"

namespace {

using vorla::MallocPtr;
using vorla::test::TestProgram;
using vorla::test::XTestDriver;

double milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    return took.count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Runs two pieces of work in turn, so that both meet the same disturbances. Returns the medians.
std::pair<double, double> compare(int rounds, const std::function<void()>& ours,
                                  const std::function<void()>& raw) {
    std::vector<double> a;
    std::vector<double> b;
    for (int i = 0; i < rounds; ++i) {
        a.push_back(milliseconds(ours));
        b.push_back(milliseconds(raw));
    }
    return {median(a), median(b)};
}

void report(const char* what, std::pair<double, double> times) {
    std::printf("%-46s %8.3f ms  %8.3f ms  ratio %.3f\n", what, times.first, times.second,
                times.first / times.second);
}

/// A System V segment and one request: the least that a grab can be.
class RawGrab {
 public:
    RawGrab(XTestDriver& driver, QSize size)
        : c_(driver.connection()), screen_(driver.screen()), size_(size) {
        const size_t bytes = static_cast<size_t>(size.width()) * size.height() * 4;
        const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        memory_ = shmat(id, nullptr, 0);
        segment_ = xcb_generate_id(c_);
        xcb_shm_attach(c_, segment_, static_cast<uint32_t>(id), 0);
        driver.sync();
        shmctl(id, IPC_RMID, nullptr);
    }
    ~RawGrab() {
        xcb_shm_detach(c_, segment_);
        shmdt(memory_);
    }
    RawGrab(const RawGrab&) = delete;
    RawGrab& operator=(const RawGrab&) = delete;

    void grab() {
        const auto cookie = xcb_shm_get_image(
            c_, screen_->root, 0, 0, static_cast<uint16_t>(size_.width()),
            static_cast<uint16_t>(size_.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, 0);
        MallocPtr<xcb_shm_get_image_reply_t>(xcb_shm_get_image_reply(c_, cookie, nullptr));
    }

 private:
    xcb_connection_t* c_;
    xcb_screen_t* screen_;
    QSize size_;
    void* memory_ = nullptr;
    xcb_shm_seg_t segment_ = 0;
};

void benchGrabs(vorla::WindowServer& server, XTestDriver& driver) {
    const vorla::Display display = server.displays().front();
    const VLRect whole{0, 0, display.frame.width, display.frame.height};
    const QSize size(display.nativeFrame.width, display.nativeFrame.height);
    server.prepare();
    RawGrab reused(driver, size);
    reused.grab();
    report(
        "grab, kept segment : raw, reused segment",
        compare(
            41, [&] { server.imageOfDisplay(display.displayID, whole); }, [&] { reused.grab(); }));
    // As long as the pictures live, each needs a segment that no page has been faulted into.
    std::vector<QImage> held{server.imageOfDisplay(display.displayID, whole)};
    report("grab, fresh segment : raw, fresh segment",
           compare(
               9, [&] { held.push_back(server.imageOfDisplay(display.displayID, whole)); },
               [&] {
                   RawGrab fresh(driver, size);
                   fresh.grab();
               }));
    held.clear();
    const VLRect part{100, 100, 800, 600};
    RawGrab small(driver, {800, 600});
    small.grab();
    report("part of 800 x 600 : raw, reused segment",
           compare(
               41, [&] { server.imageOfDisplay(display.displayID, part); }, [&] { small.grab(); }));
}

void benchWindows(vorla::WindowServer& server, XTestDriver& driver, int wanted) {
    std::list<TestProgram> programs;
    for (int i = 0; i < wanted; ++i)
        programs.emplace_back(std::vector<std::string>{
            "--geometry", "500x400+" + std::to_string(60 * i) + "+" + std::to_string(20 * i)});
    for (TestProgram& program : programs) program.waitUntilReady();
    const uint32_t id = server.displays().front().displayID;
    const size_t count = server.windows(id).value_or(std::vector<vorla::ServerWindow>()).size();
    std::printf("%zu windows, each partly covered by the next\n", count);
    const auto roundTrip = [&] { driver.sync(); };
    report("window list : one round trip", compare(
                                               41, [&] { server.windows(id); }, roundTrip));
    std::vector<double> keeps;
    std::vector<double> releases;
    for (int i = 0; i < 21; ++i) {
        server.windows(id);
        keeps.push_back(milliseconds([&] {
            server.keepWindows();
            driver.sync();
        }));
        releases.push_back(milliseconds([&] {
            server.releaseWindows();
            driver.sync();
        }));
    }
    std::printf("keepWindows until the server is done %.3f ms, releaseWindows %.3f ms\n",
                median(keeps), median(releases));
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const auto server = vorla::WindowServer::connect();
    const auto driver = XTestDriver::create();
    if (!server || !driver) return 1;
    const QSize size = driver->rootSize();
    std::printf("%d x %d, depth %d\n", size.width(), size.height(), driver->screen()->root_depth);
    benchGrabs(*server, *driver);
    benchWindows(*server, *driver, 4);
    benchWindows(*server, *driver, 24);
    return 0;
}
