// Sessions leave nothing behind in the host or in the X server.

#include <algorithm>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

struct Holdings {
    int fileDescriptors;
    int sharedMemory;
    uint64_t pixmapBytes;
    std::map<std::string, uint32_t> resources;
    /// Nothing more than the other, but for the few cursors that the toolkit keeps for reuse.
    [[nodiscard]] bool isWithin(const Holdings& other) const {
        constexpr uint32_t cursorShapes = 16;
        return fileDescriptors <= other.fileDescriptors && sharedMemory <= other.sharedMemory &&
               pixmapBytes <= other.pixmapBytes &&
               std::ranges::all_of(resources, [&](const auto& type) {
                   if (type.first == "CURSOR") return type.second <= cursorShapes;
                   const auto found = other.resources.find(type.first);
                   return found != other.resources.end() && type.second <= found->second;
               });
    }
    friend std::ostream& operator<<(std::ostream& out, const Holdings& h) {
        return out << h.fileDescriptors << " descriptors, " << h.sharedMemory << " segments, "
                   << h.pixmapBytes << " bytes of pixmaps, " << testing::PrintToString(h.resources);
    }
};

class Resources : public SessionTest {
 protected:
    Holdings holdings() {
        const int pid = host().pid();
        return {fileDescriptorsOf(pid), sharedMemorySegmentsOf(pid),
                driver->pixmapBytesOfProcess(pid), driver->resourcesOfProcess(pid)};
    }
    /// Sessions of every kind, one after the other.
    void runSession(int number) {
        ASSERT_EQ(begin(host(), Screen::AsItIs), 1) << "session " << number;
        switch (number % 4) {
            case 0:  // a window, delivered
                driver->click(300, 250);
                driver->key("Return");
                ASSERT_TRUE(host().hear("finished")) << "session " << number;
                break;
            case 1:  // cancelled by the host in mid-drag
            case 3:  // cancelled by the user, whose Esc waits for the end of the drag
                driver->moveTo(300 + number, 300);
                driver->press();
                driver->moveTo(500, 500 + number);
                if (number % 4 == 1) {
                    ASSERT_TRUE(host().obey("cancel"));
                    driver->release();
                    break;
                }
                driver->key("Escape");
                driver->release();
                ASSERT_TRUE(host().hear("cancelled")) << "session " << number;
                break;
            default:  // a region with every kind of item on it, delivered
                driver->drag({300, 200}, {800, 600}, 2);
                for (int tool = 1; tool <= 7; ++tool) {
                    driver->key(std::to_string(tool));
                    driver->drag({300 + tool * 50, 250}, {340 + tool * 50, 400 + number}, 3);
                    if (tool < 6) continue;
                    driver->key("a");
                    driver->click(320, 500);  // ends the typing
                }
                driver->key("Return");
                ASSERT_TRUE(host().hear("finished")) << "session " << number;
        }
    }
};

TEST_F(Resources, TwoHundredSessionsLeaveNothingBehind) {
    openWallpaper();
    open({"--geometry", "500x400+200+150", "--pattern", "gradient"});
    open({"--geometry", "500x400+450+300", "--pattern", "checker", "--class", "Cover"});
    int number = 0;
    for (; number < 8; ++number) ASSERT_NO_FATAL_FAILURE(runSession(number));
    ASSERT_TRUE(host().obey("state"));
    const Holdings before = holdings();
    for (; number < 208; ++number) ASSERT_NO_FATAL_FAILURE(runSession(number));
    EXPECT_TRUE(eventually([&] { return holdings().isWithin(before); }))
        << "before: " << before << "\nafter:  " << holdings();
}

}  // namespace
}  // namespace vorla::test
