// Several screens, scaled screens, and screens that come and go.

#include <QProcess>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

bool xrandr(const std::string& arguments) {
    return QProcess::execute("xrandr", QString::fromStdString(arguments).split(' ')) == 0;
}

class Screens : public SessionTest {
 protected:
    struct Monitor {
        const char* name;
        QRect place;
    };

    void SetUp() override {
        SessionTest::SetUp();
        openWallpaper();
        screen = stillScreen();
    }
    void TearDown() override {
        for (const std::string& name : monitors) xrandr("--delmonitor " + name);
        SessionTest::TearDown();
    }

    /// The first monitor takes the one output there is, the others none.
    void add(const Monitor& m) {
        const std::string geometry = QString::asprintf("%d/100x%d/100+%d+%d", m.place.width(),
                                                       m.place.height(), m.place.x(), m.place.y())
                                         .toStdString();
        ASSERT_TRUE(xrandr("--setmonitor " + std::string(m.name) + " " + geometry +
                           (monitors.empty() ? " screen" : " none")));
        monitors.emplace_back(m.name);
    }

    static HostProgram hostWithScales(const std::string& variable) {
        return HostProgram({"--background"}, {"/usr/bin/env", variable});
    }

    /// A panel covers the screen to the pixel, and shows it unshifted up to its last row and
    /// column.
    void expectPanelOver(HostProgram& program, const QRect& place) {
        const auto panels = panelsOf(program);
        EXPECT_TRUE(std::ranges::any_of(
            panels, [&](xcb_window_t panel) { return driver->contentRect(panel) == place; }));
        driver->moveTo(place.x() + 300, place.y() + 400);
        const QRect corner(place.right() - 60, place.bottom() - 60, 59, 59);
        EXPECT_TRUE(comesToShow(screen, corner));
    }

    /// Drags a rectangle (given in the screen's own native pixels) and compares what comes.
    void expectRegion(HostProgram& program, int screens, const QRect& place, const QRect& region) {
        const QRect wanted = region.translated(place.topLeft());
        ASSERT_EQ(begin(program), screens);
        driver->drag(wanted.topLeft(), wanted.bottomRight() + QPoint(1, 1), 4);
        shot("region");
        driver->key("Return");
        EXPECT_TRUE(samePixels(program.delivered(), screen.copy(wanted)));
    }

    QImage screen;
    std::vector<std::string> monitors;
};

TEST_F(Screens, EveryArrangementAndScaleDeliversExactPixels) {
    const struct {
        const char* name;
        Monitor first, second;
        const char* scales;
    } rows[] = {
        {"side by side", {"L", {0, 0, 960, 1080}}, {"R", {960, 0, 960, 1080}}, "QT_SCALE_FACTOR=1"},
        {"one above the other, both doubled",
         {"U", {0, 540, 1920, 540}},
         {"D", {0, 0, 1920, 540}},
         "QT_SCALE_FACTOR=2"},
        {"offset, the second doubled",
         {"A", {0, 480, 800, 600}},
         {"B", {800, 0, 1120, 1080}},
         "QT_SCREEN_SCALE_FACTORS=A=1;B=2"},
        {"offset, the first doubled and the second by a quarter",
         {"A", {1120, 0, 800, 600}},
         {"B", {0, 80, 1120, 1000}},
         "QT_SCREEN_SCALE_FACTORS=A=2;B=1.25"},
        // From here on sizes that are no whole numbers of points.
        {"by a quarter and a tenth",
         {"A", {0, 0, 1366, 768}},
         {"B", {1366, 0, 553, 1080}},
         "QT_SCREEN_SCALE_FACTORS=A=1.25;B=1.1"},
        {"by three quarters, and odd sizes doubled",
         {"A", {0, 0, 1000, 803}},
         {"B", {1000, 1, 919, 1079}},
         "QT_SCREEN_SCALE_FACTORS=A=1.75;B=2"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        add(row.first);
        add(row.second);
        HostProgram program = hostWithScales(row.scales);
        ASSERT_TRUE(program.start());
        for (const Monitor& m : {row.first, row.second}) {
            SCOPED_TRACE(m.name);
            // The lines of whole points count from the lower edge.
            expectRegion(program, 2, m.place, {100, 120 + m.place.height() % 2, 320, 240});
            ASSERT_EQ(begin(program), 2);
            expectPanelOver(program, m.place);
            driver->click(m.place.x() + 300, m.place.y() + 400);
            driver->key("Return");
            EXPECT_TRUE(samePixels(program.delivered(), screen.copy(m.place)))
                << "the whole screen";
        }
        for (const Monitor& m : {row.second, row.first})
            xrandr(std::string("--delmonitor ") + m.name);
        monitors.clear();
    }
}

}  // namespace
}  // namespace vorla::test
