// A client window whose pixels are known, for tests of what captures windows. Plain xcb, so that it
// owes nothing to the toolkit of the program under test.
//
// Standard output, one line each: "window 0xID" when made, "ready" when mapped and painted,
// "menu 0xID" and "menu closed" as its menu comes and goes. Ends when its standard input does, or
// with the server.

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/raii.h"
#include "tests/support/TestPattern.h"

namespace {

using vorla::MallocPtr;
using vorla::test::TestPattern;

struct Options {
    int width = 400, height = 300, x = 100, y = 100;
    std::string className = "TestClient";
    TestPattern pattern = TestPattern::Quadrants;
    std::string type;   ///< dock, desktop, normal, utility; empty sets none
    std::string state;  ///< above, below, fullscreen; empty for none
    std::vector<uint32_t> gtkFrameExtents;
    bool argb = false;
    double alpha = 1.0;
    bool overrideRedirect = false;
    bool menu = false;
};

[[noreturn]] void usage() {
    std::fputs(
        "vorla-test-client [--geometry WxH+X+Y] [--class C] [--override-redirect]\n"
        "  [--pattern quadrants|gradient|checker] [--type dock|desktop|normal|utility]\n"
        "  [--state above|below|fullscreen] [--argb ALPHA] [--gtk-frame-extents L,R,T,B]\n"
        "  [--menu]\n",
        stderr);
    std::exit(2);
}

Options parse(const std::vector<std::string>& arguments) {
    Options o;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 >= arguments.size()) usage();
            return arguments[++i];
        };
        if (name == "--geometry") {
            if (std::sscanf(value().c_str(), "%dx%d%d%d", &o.width, &o.height, &o.x, &o.y) != 4)
                usage();
        } else if (name == "--class") {
            o.className = value();
        } else if (name == "--pattern") {
            o.pattern = vorla::test::testPatternNamed(value());
        } else if (name == "--type") {
            o.type = value();
        } else if (name == "--state") {
            o.state = value();
        } else if (name == "--argb") {
            o.argb = true;
            o.alpha = std::atof(value().c_str());
        } else if (name == "--gtk-frame-extents") {
            o.gtkFrameExtents.resize(4);
            uint32_t* e = o.gtkFrameExtents.data();
            if (std::sscanf(value().c_str(), "%u,%u,%u,%u", e, e + 1, e + 2, e + 3) != 4) usage();
        } else if (name == "--override-redirect") {
            o.overrideRedirect = true;
        } else if (name == "--menu") {
            o.menu = true;
        } else {
            usage();
        }
    }
    return o;
}

class TestClient {
 public:
    TestClient(xcb_connection_t* connection, int screenNumber, Options options)
        : c_(connection), o_(std::move(options)) {
        auto it = xcb_setup_roots_iterator(xcb_get_setup(c_));
        while (screenNumber-- > 0 && it.rem > 1) xcb_screen_next(&it);
        screen_ = it.data;
        depth_ = o_.argb ? 32 : screen_->root_depth;
    }

    void show() {
        window_ = makeWindow(o_.x, o_.y, o_.width, o_.height, o_.overrideRedirect);
        setText(XCB_ATOM_WM_NAME, "test client");
        setText(XCB_ATOM_WM_CLASS, o_.className + '\0' + o_.className + '\0');
        const uint32_t pid = static_cast<uint32_t>(getpid());
        xcb_change_property(c_, XCB_PROP_MODE_REPLACE, window_, atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &pid);
        // The window manager leaves alone a place that the user is said to have chosen.
        uint32_t hints[18] = {1U | 2U};
        xcb_change_property(c_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
        setAtom("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_", o_.type);
        setAtom("_NET_WM_STATE", "_NET_WM_STATE_", o_.state);
        if (!o_.gtkFrameExtents.empty())
            xcb_change_property(c_, XCB_PROP_MODE_REPLACE, window_, atom("_GTK_FRAME_EXTENTS"),
                                XCB_ATOM_CARDINAL, 32, 4, o_.gtkFrameExtents.data());
        xcb_map_window(c_, window_);
        std::printf("window 0x%x\n", window_);
        std::fflush(stdout);
    }

    /// Serves events until the input ends or the server goes away.
    void run() {
        xcb_flush(c_);
        pollfd fds[2] = {{xcb_get_file_descriptor(c_), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        while (xcb_connection_has_error(c_) == 0) {
            while (MallocPtr<xcb_generic_event_t> event{xcb_poll_for_event(c_)}) handle(*event);
            xcb_flush(c_);
            if (poll(fds, 2, -1) < 0) return;
            char sink[64];
            if ((fds[1].revents & (POLLIN | POLLHUP)) != 0 &&
                read(STDIN_FILENO, sink, sizeof sink) <= 0)
                return;
        }
    }

 private:
    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(c_, 0, static_cast<uint16_t>(name.size()), name.c_str());
        const MallocPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c_, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    void setText(xcb_atom_t property, const std::string& text) {
        xcb_change_property(c_, XCB_PROP_MODE_REPLACE, window_, property, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(text.size()), text.data());
    }

    void setAtom(const std::string& property, const std::string& prefix, std::string value) {
        if (value.empty()) return;
        std::transform(value.begin(), value.end(), value.begin(),
                       [](unsigned char ch) { return static_cast<char>(std::toupper(ch)); });
        const xcb_atom_t valueAtom = atom(prefix + value);
        xcb_change_property(c_, XCB_PROP_MODE_REPLACE, window_, atom(property), XCB_ATOM_ATOM, 32,
                            1, &valueAtom);
    }

    xcb_visualid_t visualOfDepth(uint8_t depth) {
        if (depth == screen_->root_depth) return screen_->root_visual;
        for (auto d = xcb_screen_allowed_depths_iterator(screen_); d.rem > 0; xcb_depth_next(&d))
            if (d.data->depth == depth && d.data->visuals_len > 0)
                return xcb_depth_visuals(d.data)->visual_id;
        std::fputs("no visual of this depth\n", stderr);
        std::exit(3);
    }

    /// Without a background: what the client does not paint stays as the server left it.
    xcb_window_t makeWindow(int x, int y, int width, int height, bool overrideRedirect) {
        const xcb_visualid_t visual = visualOfDepth(depth_);
        const xcb_colormap_t colormap = xcb_generate_id(c_);
        xcb_create_colormap(c_, XCB_COLORMAP_ALLOC_NONE, colormap, screen_->root, visual);
        const uint32_t values[] = {0, overrideRedirect ? 1U : 0U,
                                   XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                       XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_BUTTON_PRESS,
                                   colormap};
        const xcb_window_t window = xcb_generate_id(c_);
        xcb_create_window(
            c_, depth_, window, screen_->root, static_cast<int16_t>(x), static_cast<int16_t>(y),
            static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
            XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
            values);
        return window;
    }

    [[nodiscard]] uint32_t devicePixel(uint32_t rgb) const {
        if (depth_ == 32) {
            const auto part = [this](uint32_t v) {
                return static_cast<uint32_t>(v * o_.alpha + 0.5);
            };
            return part(255) << 24 | part(rgb >> 16 & 255) << 16 | part(rgb >> 8 & 255) << 8 |
                   part(rgb & 255);
        }
        if (depth_ != 30) return rgb;
        const auto widen = [](uint32_t v) { return v << 2 | v >> 6; };
        return widen(rgb >> 16 & 255) << 20 | widen(rgb >> 8 & 255) << 10 | widen(rgb & 255);
    }

    void paint(xcb_window_t window, TestPattern pattern, int x, int y, int width, int height) {
        const int fullWidth = window == menu_ ? menuWidth : o_.width;
        const int fullHeight = window == menu_ ? menuHeight : o_.height;
        const xcb_gcontext_t gc = xcb_generate_id(c_);
        xcb_create_gc(c_, gc, window, 0, nullptr);
        const int rows = std::max(1, 60000 / std::max(1, width));
        std::vector<uint32_t> pixels;
        for (int top = y; top < y + height; top += rows) {
            const int count = std::min(rows, y + height - top);
            pixels.clear();
            for (int row = top; row < top + count; ++row)
                for (int column = x; column < x + width; ++column)
                    pixels.push_back(devicePixel(vorla::test::testPatternPixel(
                        pattern, column, row, fullWidth, fullHeight)));
            xcb_put_image(c_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc, static_cast<uint16_t>(width),
                          static_cast<uint16_t>(count), static_cast<int16_t>(x),
                          static_cast<int16_t>(top), 0, depth_,
                          static_cast<uint32_t>(pixels.size() * 4),
                          reinterpret_cast<const uint8_t*>(pixels.data()));
        }
        xcb_free_gc(c_, gc);
    }

    void handle(const xcb_generic_event_t& event) {
        switch (event.response_type & 0x7f) {
            case XCB_EXPOSE:
                expose(reinterpret_cast<const xcb_expose_event_t&>(event));
                break;
            case XCB_CONFIGURE_NOTIFY:
                resized(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
                break;
            case XCB_FOCUS_IN:
                if (o_.menu && menu_ == XCB_NONE && !menuShown_) openMenu();
                break;
            case XCB_FOCUS_OUT:
                if (reinterpret_cast<const xcb_focus_out_event_t&>(event).mode ==
                    XCB_NOTIFY_MODE_NORMAL)
                    closeMenu();
                break;
            case XCB_BUTTON_PRESS:
                closeMenu();
                break;
            default:
                break;
        }
    }

    void expose(const xcb_expose_event_t& e) {
        const TestPattern pattern = e.window == menu_ ? TestPattern::Checker : o_.pattern;
        paint(e.window, pattern, e.x, e.y, e.width, e.height);
        if (ready_ || e.window != window_ || e.count > 0) return;
        ready_ = true;
        say("ready");
    }

    void resized(const xcb_configure_notify_event_t& e) {
        if (e.window != window_ || (e.width == o_.width && e.height == o_.height)) return;
        o_.width = e.width;
        o_.height = e.height;
        paint(window_, o_.pattern, 0, 0, o_.width, o_.height);
    }

    /// Writes a line when the server has done what it was asked for until now.
    void say(const char* line) {
        MallocPtr<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
        std::puts(line);
        std::fflush(stdout);
    }

    void openMenu() {
        menuShown_ = true;
        menu_ = makeWindow(o_.x + 20, o_.y + 20, menuWidth, menuHeight, true);
        xcb_map_window(c_, menu_);
        xcb_grab_pointer(c_, 1, menu_, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
        char line[32];
        std::snprintf(line, sizeof line, "menu 0x%x", menu_);
        say(line);
    }

    void closeMenu() {
        if (menu_ == XCB_NONE) return;
        xcb_ungrab_pointer(c_, XCB_CURRENT_TIME);
        xcb_destroy_window(c_, menu_);
        menu_ = XCB_NONE;
        say("menu closed");
    }

    static constexpr int menuWidth = 160;
    static constexpr int menuHeight = 200;

    xcb_connection_t* c_;
    Options o_;
    xcb_screen_t* screen_ = nullptr;
    uint8_t depth_ = 24;
    xcb_window_t window_ = XCB_NONE;
    xcb_window_t menu_ = XCB_NONE;
    bool ready_ = false;
    bool menuShown_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    Options options = parse(std::vector<std::string>(argv + 1, argv + argc));
    int screenNumber = 0;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, &screenNumber), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()) != 0) {
        std::fputs("no display\n", stderr);
        return 1;
    }
    TestClient client(connection.get(), screenNumber, std::move(options));
    client.show();
    client.run();
    return 0;
}
