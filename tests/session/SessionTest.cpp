#include "tests/session/SessionTest.h"

#include <xcb/res.h>

#include <cstdlib>

#include "platform/base/raii.h"

namespace vorla::test {

std::unique_ptr<HostProgram>& SessionTest::sharedHost() {
    static std::unique_ptr<HostProgram> host;
    return host;
}

HostProgram& SessionTest::host() {
    auto& shared = sharedHost();
    if (!shared) {
        shared = std::make_unique<HostProgram>();
        EXPECT_TRUE(shared->start());
    }
    return *shared;
}

void SessionTest::endHost() {
    sharedHost().reset();
}

int SessionTest::begin(HostProgram& program, Screen screen) {
    // A client paints what a panel has left behind when it comes to it.
    if (screen == Screen::Still) eventually([&] { return stillScreen() == atRest_; }, 1000);
    const int panels = program.capture();
    const bool keyboard = eventually([&] {
        const auto windows = panelsOf(program);
        return std::ranges::find(windows, driver->focus()) != windows.end();
    });
    EXPECT_TRUE(panels == 0 || keyboard) << "no panel has the keyboard";
    return panels;
}

void SessionTest::TearDownTestSuite() {
    if (!sharedHost()) return;
    sharedHost()->send("quit");
    EXPECT_EQ(sharedHost()->program().waitForExit(20000), 0) << sharedHost()->log();
    endHost();
}

void SessionTest::SetUp() {
    driver = XTestDriver::create();
    ASSERT_TRUE(driver);
    driver->moveTo(3, 3);
}

void SessionTest::TearDown() {
    if (sharedHost() && sharedHost()->isCapturing()) {
        EXPECT_TRUE(HasFailure()) << "a session was left running";
        sharedHost()->obey("cancel");
    }
    if (sharedHost() && HasFailure()) std::fputs(sharedHost()->log().c_str(), stderr);
    closeClients();
}

xcb_window_t SessionTest::open(const std::vector<std::string>& options) {
    const xcb_window_t window = openCovered(options);
    // A first window now and then gets its exposure while the window manager still adopts it.
    clients_.back().waitForLine("ready", nullptr, 2000);
    atRest_ = stillScreen();
    return window;
}

xcb_window_t SessionTest::openCovered(const std::vector<std::string>& options) {
    clients_.emplace_back(options);
    std::string id;
    if (!clients_.back().waitForLine("window ", &id)) return XCB_NONE;
    const auto window = static_cast<xcb_window_t>(std::stoul(id, nullptr, 16));
    EXPECT_TRUE(eventually([&] { return driver->isViewable(window); }));
    return window;
}

void SessionTest::openWallpaper() {
    const QSize size = driver->rootSize();
    open({"--type", "desktop", "--pattern", "gradient", "--class", "Wallpaper", "--geometry",
          std::to_string(size.width()) + "x" + std::to_string(size.height()) + "+0+0"});
}

void SessionTest::closeClients() {
    clients_.clear();
}

QImage SessionTest::stillScreen() {
    QImage before;
    QImage now = driver->rootPixels();
    for (int i = 0; i < 200 && before != now; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        before = now;
        now = driver->rootPixels();
    }
    return now;
}

testing::AssertionResult SessionTest::comesToShow(const QImage& picture, const QRect& part) {
    const QImage wanted = picture.copy(part);
    eventually([&] { return driver->rootPixels(part) == wanted; }, 3000);
    return samePixels(driver->rootPixels(part), wanted);
}

void SessionTest::shot(const std::string& step) {
    const char* folder = std::getenv("VORLA_TEST_SHOTS");
    if (!folder) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    QString name =
        QString::asprintf("%s/%s-%02d-%s.png", folder, test->name(), ++shots_, step.c_str());
    stillScreen().save(name);
}

QRect SessionTest::frameOf(xcb_window_t window) {
    return driver->contentRect(rootChildOf(window));
}

std::vector<xcb_window_t> SessionTest::rootChildren() {
    xcb_connection_t* c = driver->connection();
    const MallocPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(c, xcb_query_tree(c, driver->screen()->root), nullptr));
    if (!tree) return {};
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t SessionTest::rootChildOf(xcb_window_t window) {
    xcb_connection_t* c = driver->connection();
    for (;;) {
        const MallocPtr<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
        if (!tree || tree->parent == tree->root || tree->parent == XCB_NONE) return window;
        window = tree->parent;
    }
}

std::vector<xcb_window_t> SessionTest::panelsOf(HostProgram& program) {
    const auto bases = driver->clientsOfProcess(program.pid());
    const uint32_t mask = xcb_get_setup(driver->connection())->resource_id_mask;
    std::vector<xcb_window_t> panels;
    for (const xcb_window_t window : rootChildren()) {
        const bool ours = std::ranges::any_of(
            bases, [&](uint32_t base) { return (base & ~mask) == (window & ~mask); });
        if (ours && driver->isViewable(window)) panels.push_back(window);
    }
    return panels;
}

bool SessionTest::panelsAreOnTop(HostProgram& program) {
    const auto panels = panelsOf(program);
    std::vector<xcb_window_t> viewable;
    for (const xcb_window_t window : rootChildren())
        if (driver->isViewable(window)) viewable.push_back(window);
    return !panels.empty() && panels.size() <= viewable.size() &&
           std::equal(panels.rbegin(), panels.rend(), viewable.rbegin());
}

testing::AssertionResult samePixels(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure()
               << "it is " << actual.width() << " x " << actual.height() << " and not "
               << expected.width() << " x " << expected.height();
    int unlike = 0;
    QPoint first;
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
            if ((actual.pixel(x, y) & 0xffffffU) != (expected.pixel(x, y) & 0xffffffU) &&
                unlike++ == 0)
                first = {x, y};
    if (unlike == 0) return testing::AssertionSuccess();
    const auto hex = [&](const QImage& image) {
        return QString::number(image.pixel(first), 16).toStdString();
    };
    return testing::AssertionFailure()
           << unlike << " pixels differ, first at " << first.x() << ", " << first.y() << ": "
           << hex(actual) << " and not " << hex(expected);
}

QImage patternImage(TestPattern pattern, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(
                x, y, 0xff000000U | testPatternPixel(pattern, x, y, size.width(), size.height()));
    return image;
}

}  // namespace vorla::test
