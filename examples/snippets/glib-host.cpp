// Embedding without a toolkit: a host on the GLib main loop captures once. The framework makes the
// application object that it needs, and GLib drives it.

#include <glib-unix.h>
#include <glib.h>

#include <csignal>
#include <cstdio>
#include <memory>

#include <vorla/VLCapture.h>

namespace {

class Receiver : public VLCaptureRequestDelegate {
 public:
    explicit Receiver(GMainLoop* loop) : loop_(loop) {}

    void captureRequestDidCancel(VLCaptureRequest& /*request*/) override { say("cancelled"); }
    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> png,
                        const std::optional<std::string>& /*saveToPath*/,
                        const std::optional<std::string>& /*error*/) override {
        say("delivered " + std::to_string(png.size()));
    }

 private:
    void say(const std::string& words) {
        std::puts(words.c_str());
        std::fflush(stdout);
        g_main_loop_quit(loop_);
    }
    GMainLoop* loop_;
};

/// A capture may still run when the program ends.
gboolean quit(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
}

}  // namespace

int main() {
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(
        g_main_loop_new(nullptr, FALSE), &g_main_loop_unref);
    g_unix_signal_add(SIGTERM, quit, loop.get());
    const auto receiver = std::make_shared<Receiver>(loop.get());
    const auto request = std::make_shared<VLCaptureRequest>();
    request->setDelegate(receiver);
    if (!VLStartCapture(request)) {
        std::puts("refused");
        return 0;
    }
    std::puts("started");
    std::fflush(stdout);
    g_main_loop_run(loop.get());
    return 0;
}
