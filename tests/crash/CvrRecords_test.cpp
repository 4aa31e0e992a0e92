// Records through their archive and back, read by another decoder as well, and what a broken
// archive does.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "crash/records/CvrCrashMetaData.h"
#include "crash/records/CvrExpObj.h"
#include "crash/records/CvrLocalStrategy.h"

namespace {

using nlohmann::json;

CvrExpObj sampleCrash() {
    CvrExpObj crash;
    crash.time = -1;
    crash.cashTime = 1700000000000;
    crash.dcount = 300;
    crash.hash = std::string(300, 'F');
    crash.exceptionType = "SIGSEGV";
    crash.appInfo.emplace().processName = "host";
    crash.appInfoList.resize(2);
    crash.appInfoList[1].path = "/usr/lib/x.so";
    crash.attachmentList.resize(1);
    crash.attachmentList[0].type = CvrExpAttachment::typeText;
    crash.attachmentList[0].data = {0, 255, 10};
    crash.valueMap = {{"A1", "8"}, {"A23", ""}};
    crash.sessionInfo.emplace().events = {"one", ""};
    return crash;
}

TEST(CvrRecords, ComeBackFromTheirArchiveInBothForms) {
    CvrExpObj crash = sampleCrash();
    const std::string archive = crash.encodeData();
    CvrExpObj read;
    ASSERT_TRUE(read.decode(archive));
    EXPECT_EQ(read.encLen, static_cast<int64_t>(archive.size()));
    EXPECT_EQ(read, crash);
    // Another decoder finds the names, and its form with counts in front reads the same.
    const json other = json::from_cbor(archive);
    EXPECT_EQ(other["appInfoList"][1]["path"], "/usr/lib/x.so");
    EXPECT_FALSE(other.contains("callStack"));
    std::string counted;
    json::to_cbor(other, counted);
    CvrExpObj again;
    ASSERT_TRUE(again.decode(counted));
    EXPECT_EQ(again.encodeData(), archive);
}

TEST(CvrRecords, ArchiveGrowsByCopying) {
    CvrExpObj crash = sampleCrash();
    std::string archive = crash.encodeData();
    archive.pop_back();
    vorla::ArchiveWriter writer(&vorla::appendToString, &archive);
    writer.text("dcount");
    writer.integer(301);
    writer.text("unknown");
    writer.beginList();
    writer.end();
    writer.end();
    ASSERT_TRUE(crash.decode(archive));
    EXPECT_EQ(crash.dcount, 301);
}

TEST(CvrRecords, BrokenArchivesLeaveTheRecordAsItWas) {
    CvrExpObj crash = sampleCrash();
    const std::string archive = crash.encodeData();
    for (size_t length = 0; length < archive.size(); ++length)
        ASSERT_FALSE(crash.decode(archive.substr(0, length))) << length;
    const std::string deep = "\xBF\x61x" + std::string(100000, '\x9F');
    const std::string cases[] = {archive + "x",
                                 deep,
                                 "\x9F\xFF",
                                 "\xBF\x64time\x61x\xFF",
                                 "\xBF\x66"
                                 "dcount\x1B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                                 "\xBF\x9F\xFF\x01\xFF",
                                 "\xBB\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"};
    for (const std::string& bytes : cases) {
        EXPECT_FALSE(crash.decode(bytes));
        EXPECT_TRUE(crash.setEncodeData(bytes));
    }
    EXPECT_FALSE(crash.setEncodeData(""));
    CvrExpObj expected = sampleCrash();
    EXPECT_EQ(crash.encodeData(), expected.encodeData());
}

}  // namespace
