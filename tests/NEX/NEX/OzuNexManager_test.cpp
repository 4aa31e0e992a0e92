#include "NEX/NEX/OzuNexManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>

#include "NEX/NEX/VLNEXUtilities.h"
#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/files.h"
#include "settings/plist.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using vorla::test::LoopbackServer;
using vorla::test::PipedProgram;
using Clock = std::chrono::steady_clock;

/// Runs the test host with counters of its own.
class Upload : public testing::Test {
 protected:
    vorla::test::TemporaryFolder home_;
    const vorla::test::ScopedEnvironment environment_{{{"HOME", home_.path()},
                                                       {"XDG_DATA_HOME", std::nullopt},
                                                       {"XDG_CONFIG_HOME", std::nullopt}}};
    const std::string counters_ =
        home_ / ".local/share/Containers/stat_host/Data/Documemts/VorlaSDKStat.plist";
    std::vector<std::string> lines_;
    int exitCode_ = 0;

    void host(std::vector<std::string> actions) {
        actions.insert(actions.begin(), VORLA_STAT_HOST);
        const vorla::test::ScopedEnvironment locale(
            {{"LC_ALL", "zh_CN.UTF-8"}, {"LANGUAGE", std::nullopt}});
        PipedProgram program(std::move(actions));
        lines_ = program.allLines();
        exitCode_ = program.wait();
    }
    [[nodiscard]] long logged(std::string_view text) const {
        return std::count_if(lines_.begin(), lines_.end(), [text](const std::string& line) {
            return line.find(text) != std::string::npos;
        });
    }
    [[nodiscard]] json onDisk() const {
        return readFromPlistFile(counters_).value_or(json("none"));
    }
};

TEST_F(Upload, EveryLayerOfWhatGoesOverTheWire) {
    LoopbackServer server;
    ASSERT_TRUE(vorla::createDirectories(counters_.substr(0, counters_.rfind('/'))));
    ASSERT_TRUE(writeToPlistFile({{"1001", 3}, {"1002", "text"}, {"7", 4294967297U}}, counters_));
    host({"url=" + server.url(), "start", "wait=reset stat success!"});
    const json request = server.nextRequest();
    EXPECT_EQ(request["method"], "POST");
    EXPECT_EQ(request["path"], "/");
    json packet = request["packet"];
    EXPECT_EQ(packet["length"], packet["bytes"]);
    EXPECT_EQ(packet["tags"], json({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    const json header = {
        {"iVersion", 2},      {"cPacketType", 0},           {"iMessageType", 0},
        {"iRequestId", 1000}, {"sServantName", "zbpcstat"}, {"sFuncName", "stat"},
        {"iTimeout", 0},      {"context", json::object()},  {"status", json::object()}};
    for (const auto& [name, value] : header.items()) EXPECT_EQ(packet[name], value) << name;
    EXPECT_EQ(packet["attributes"], json({{"crypt", {"list<char>"}}}));
    const int plain = packet["plain_bytes"];
    EXPECT_EQ(packet["encrypted_bytes"], plain + 8 - plain % 8);
    EXPECT_EQ(packet["record_tags"], json({0, 21}));

    const json machine = {
        {"sGuid", VLNEXUtilities::UUID(VLStatisticManager::statFolderPath()).value()},
        {"sTGuid", ""},
        {"iClientVersion", VLNEXUtilities::clientVersion()},
        {"sUin", ""},
        {"iSupplyID", 0},
        {"iUniOperCode", 0},
        {"sOsVersion", VLNEXUtilities::operatingSystemVersion()},
        {"iOsLanguage", 1},
        {"iOsDigit", 64},
        {"sKernelVersion", ""},
        {"sGJGuid", ""},
        {"sReserved", ""}};
    EXPECT_EQ(request["record"]["machine"], machine);
    const json counters = {{"1001", 3},
                           {"1002", "text"},
                           {"7", 1},
                           {"1018", 1},
                           {"1019", 1},
                           {"1020", 1},
                           {"1021", machine["sGuid"]},
                           {"1022", VLNEXUtilities::formattedVersion()},
                           {"1023", "VorlaSDK"}};
    EXPECT_EQ(request["counters"], counters);
    for (const json& entry : request["record"]["entries"]) EXPECT_EQ(entry.size(), 8U);
    EXPECT_EQ(request["record"]["entries"][0]["iProtocol"], 8130);
}

TEST_F(Upload, CountersAreErasedUnlessTheServerRefusesThem) {
    const struct {
        std::vector<std::string> server;
        bool erased;
        const char* reason;
    } rows[] = {
        {{}, true, "reset stat success!"},
        {{"--return-code", "5"}, false, "refuses the counters with code 5"},
        {{"--return-code", "4294967296"}, true, "reset stat success!"},
        {{"--reply", "no-code"}, true, "reset stat success!"},
        {{"--reply", "wrong-type"}, false, "return code cannot be read: type mismatch!"},
        {{"--reply", "short"}, true, "NEX Response Data Invalid"},
        {{"--reply", "wrong-length"}, true, "NEX Response Data Invalid"},
        {{"--reply", "no-fields"}, true, "reply cannot be read: required == NO"},
        {{"--reply", "garbage"}, true, "reply cannot be read: "},
        {{"--reply", "deep"}, true, "reply cannot be read: "},
        {{"--reply", "many"}, true, "reset stat success!"},
        {{"--reply", "empty"}, true, "reset stat success!"},
        {{"--reply", "close"}, true, "stat: http://127"},
        {{"--reply", "cut"}, true, "stat: http://127"},
        {{"--reply", "not-http"}, true, "stat: http://127"},
        {{"--reply", "endless"}, true, "stat: http://127"},
        {{"--reply", "bomb"}, true, "stat: http://127"},
        {{"--reply", "redirect"}, true, "reset stat success!"},
        {{"--status", "500", "--return-code", "1"}, false, "refuses the counters with code 1"},
        {{"--encoding", "gzip", "--return-code", "1"}, false, "refuses the counters with code 1"},
        {{"--encoding", "deflate", "--return-code", "1"},
         false,
         "refuses the counters with code 1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.server));
        ASSERT_TRUE(vorla::createDirectories(counters_.substr(0, counters_.rfind('/'))));
        ASSERT_TRUE(writeToPlistFile({{"1001", 3}}, counters_));
        const LoopbackServer server(row.server);
        host({"url=" + server.url(), "start", "wait=completeBlock end"});
        EXPECT_EQ(exitCode_, 0);
        EXPECT_EQ(onDisk(), row.erased ? json("none") : json({{"1001", 3}}));
        EXPECT_EQ(logged("completeBlock start"), 1);
        EXPECT_EQ(logged("reset stat success!"), row.erased ? 1 : 0);
        EXPECT_EQ(logged("stat failed!"), row.erased ? 0 : 1);
        EXPECT_EQ(logged(row.reason), 1);
    }
    host({"url=http://127.0.0.1:1", "start", "wait=completeBlock end"});
    EXPECT_EQ(logged("reset stat success!"), 1);
    EXPECT_EQ(logged("stat: http://127.0.0.1:1: Couldn't connect"), 1);
}

TEST_F(Upload, HappensOnceInAProcess) {
    LoopbackServer server;
    host({"url=" + server.url(), "start", "start", "wait=completeBlock end", "start", "sleep=200"});
    EXPECT_FALSE(server.nextRequest().empty());
    EXPECT_TRUE(server.nextRequest(200).empty());
    EXPECT_EQ(logged("startStat 进程启动期间只上传一次统计数据"), 1);
    EXPECT_EQ(logged("===> start stat!"), 1);
}

TEST_F(Upload, EventsDuringAnUploadAreLostWithIt) {
    LoopbackServer server({"--delay", "0.3"});
    host({"url=" + server.url(), "start", "sleep=150", "event=1001", "wait=completeBlock end",
          "event=1002"});
    EXPECT_FALSE(server.nextRequest()["counters"].contains("1001"));
    EXPECT_EQ(onDisk(), json({{"1002", 1}}));
}

TEST_F(Upload, WithoutAnAddressNothingIsSentAndNoThreadStarted) {
    host({"start", "start", "event=9", "sleep=50", "threads"});
    EXPECT_EQ(logged("no address for statistics"), 1);
    EXPECT_EQ(logged("threads 1"), 1);
    EXPECT_EQ(onDisk(), json({{"9", 1}}));
}

TEST_F(Upload, TheHostEndsAtOnceWhateverTheServerDoes) {
    const struct {
        const char* ending;
        int exitCode;
    } endings[] = {{"exit", 0}, {"return", 0}, {"quick", 0}, {"abort", -SIGABRT}};
    for (const char* reply : {"silent", "drip", "endless", "good"}) {
        const LoopbackServer server({"--reply", reply});
        for (const auto& [ending, exitCode] : endings) {
            for (const char* moment : {"stall=0", "stall=1", "stall=3", "stall=60"}) {
                SCOPED_TRACE(std::string(reply) + " " + ending + " " + moment);
                const auto start = Clock::now();
                host({"url=" + server.url(), "start", moment, ending});
                EXPECT_EQ(exitCode_, exitCode);
                EXPECT_LT(Clock::now() - start, 2s);
            }
        }
    }
    for (const char* url : {"http://no-such-host.invalid", "http://a.hang.test"}) {
        const auto start = Clock::now();
        host({std::string("url=") + url, "start", "stall=50", "exit"});
        EXPECT_EQ(exitCode_, 0) << url;
        EXPECT_LT(Clock::now() - start, 2s) << url;
    }
}

TEST_F(Upload, AForkedChildNeitherHangsNorSendsAgain) {
    // What only the parent's threads know of looks leaked in the child.
    const vorla::test::ScopedEnvironment sanitizer(
        {{"ASAN_OPTIONS", "detect_leaks=0"}, {"LSAN_OPTIONS", std::nullopt}});
    LoopbackServer server({"--delay", "0.3"});
    const auto start = Clock::now();
    host({"url=" + server.url(), "start", "sleep=100", "fork", "fork", "wait=completeBlock end"});
    EXPECT_EQ(logged("child 7"), 2);
    EXPECT_EQ(exitCode_, 0);
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_FALSE(server.nextRequest().empty());
    EXPECT_TRUE(server.nextRequest(200).empty());
}

TEST_F(Upload, GoesOnWhileTheMainThreadStandsStill) {
    LoopbackServer server;
    host({"url=" + server.url(), "start", "stall=1500"});
    EXPECT_EQ(logged("reset stat success!"), 1);
    EXPECT_FALSE(server.nextRequest().empty());
}

}  // namespace
