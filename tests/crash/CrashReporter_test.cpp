// The whole road: a real program dies, its next start sends the report to a real server, which
// reads it with code of its own; and what it takes from servers that misbehave.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "crash/store/CvrFilePersistHandler.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using vorla::test::LoopbackServer;
using vorla::test::PipedProgram;
using vorla::test::TemporaryFolder;

class Server : public LoopbackServer {
 public:
    using LoopbackServer::LoopbackServer;
    /// The next request of the command; null when none comes.
    json request(int command, int milliseconds = 20000) {
        for (json one = nextRequest(milliseconds); !one.empty(); one = nextRequest(milliseconds))
            if (one.contains("fault") || one["request"]["cmd"] == command) return one;
        return {};
    }
};

/// The store has been read; at the first start, what is older than it is removed.
constexpr const char* loaded = "wait=userinfo";

class CrashReporterRun : public testing::Test {
 protected:
    struct Ended {
        int status;
        std::vector<std::string> lines;
    };
    Ended host(const std::vector<std::string>& actions) {
        // Equal crashes are those of one layout of the process, which is random otherwise.
        std::vector<std::string> line = {"setarch", "-R", VORLA_CRASH_HOST};
        line.insert(line.end(), actions.begin(), actions.end());
        const vorla::test::ScopedEnvironment home({{"XDG_DATA_HOME", folder.path()}});
        PipedProgram program(line);
        const auto lines = program.allLines(60000);
        return {program.wait(), lines};
    }
    [[nodiscard]] size_t stored() const {
        CvrModelBase model(store, [] { return int64_t{1}; });
        return CvrFilePersistHandler(store, model).storedCrashCount();
    }

    /// A program that has run before, and left a crash.
    void leaveCrash() {
        EXPECT_EQ(host({"start", loaded, "exit"}).status, 0);
        CvrModelBase model(store, [] { return int64_t{1}; });
        CvrExpObj crash;
        crash.hash = "A";
        ASSERT_TRUE(CvrFilePersistHandler(store, model).saveOneCrash(crash));
    }
    /// The sanitizers' own handlers stand in the way of ours.
    static bool catchesCrashes() { return VORLA_CATCHES_CRASHES != 0; }

    TemporaryFolder folder;
    const std::string store = folder / ".cvr/crash_host";
};

constexpr const char* sent = "wait=SUCC finish crash uploading";

TEST_F(CrashReporterRun, SendsACrashOnceAtTheNextStart) {
    if (!catchesCrashes()) GTEST_SKIP();
    EXPECT_EQ(host({"start", loaded, "crash=null"}).status, -SIGSEGV);
    ASSERT_EQ(stored(), 1U);
    Server server({"--server-time", "99"});
    const auto next = host({"url=" + server.url(), "start", sent, "stored", "exit"});
    EXPECT_EQ(next.status, 0);
    EXPECT_THAT(next.lines, Contains("stored 0"));
    const json request = server.request(530);
    ASSERT_FALSE(request.contains("fault")) << request.dump(2);
    EXPECT_EQ(request["path"], "/analytics/cvrsync");
    EXPECT_EQ(request["headers"]["pid"], "org.vorla.VorlaFramework");
    const json& crash = request["crashes"][0];
    EXPECT_EQ(crash["exceptionType"], "SIGSEGV");
    EXPECT_EQ(crash["causedBy"], "SEGV_MAPERR");
    EXPECT_EQ(crash["appInfo"]["processName"], "crash_host");
    EXPECT_THAT(crash["callStack"].get<std::string>(), HasSubstr("main"));
    EXPECT_EQ(crash["attachmentList"][0]["fileName"], "crash.log");
    EXPECT_THAT(crash["attachmentList"][0]["data"].get<std::string>(),
                HasSubstr("Exception Codes: SEGV_MAPERR"));
    for (const char* key : {"A1", "A2", "A5", "A8", "A13", "A23", "A24", "A33", "A34", "A36"})
        EXPECT_TRUE(crash["valueMap"].contains(key)) << key;
    // Nothing is left to send.
    const auto third = host({"url=" + server.url(), "start", loaded, "sleep=300", "exit"});
    EXPECT_EQ(third.status, 0);
    EXPECT_EQ(server.request(530, 500), json());
}

TEST_F(CrashReporterRun, SendsNothingWithoutAnAddress) {
    if (!catchesCrashes()) GTEST_SKIP();
    EXPECT_EQ(host({"start", loaded, "crash=abort"}).status, -SIGABRT);
    const auto next = host({"start", loaded, "sleep=300", "stored", "exit"});
    EXPECT_THAT(next.lines, Contains("stored 1"));
    for (const std::string& line : next.lines) EXPECT_THAT(line, Not(HasSubstr("send an request")));
    // Those of an older version are not kept.
    EXPECT_THAT(host({"version=2", "start", "wait=delete crash file", "stored"}).lines,
                Contains("stored 0"));
}

TEST_F(CrashReporterRun, MergesEqualCrashes) {
    if (!catchesCrashes()) GTEST_SKIP();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(host({"merge", "start", loaded, "crash=null"}).status, -SIGSEGV);
    EXPECT_EQ(stored(), 1U);
    Server server;
    host({"merge", "url=" + server.url(), "start", sent, "exit"});
    const json crash = server.request(530)["crashes"][0];
    EXPECT_EQ(crash["dcount"], 2);
    EXPECT_EQ(crash["crashType"], "200");
    EXPECT_EQ(crash["attachmentList"][1]["fileName"], "crash_times.log");
    const auto times = crash["attachmentList"][1]["data"].get<std::string>();
    EXPECT_EQ(std::ranges::count(times, ';'), 1) << times;
    // It stays today, for the next ones to be merged into.
    EXPECT_EQ(stored(), 1U);
}

TEST_F(CrashReporterRun, SurvivesAnyServer) {
    leaveCrash();
    const std::string failed = "wait=CrashUploadHandler failed";
    for (const char* kind : {"garbage", "deep", "wrong-type", "empty", "no-length", "endless",
                             "headers", "close", "cut", "redirect", "not-http"}) {
        Server server({"--reply", kind});
        const auto ended = host({"url=" + server.url(), "start", failed, "exit"});
        EXPECT_EQ(ended.status, 0) << kind;
        EXPECT_THAT(ended.lines, Not(Contains("timeout"))) << kind;
        EXPECT_EQ(stored(), 1U) << kind;
    }
    for (const char* refusal : {"--result=5", "--status=500"}) {
        Server server({refusal});
        EXPECT_EQ(host({"url=" + server.url(), "start", failed, "exit"}).status, 0);
        EXPECT_EQ(stored(), 1U) << refusal;
    }
    // A strategy that cannot be read: the last one stays, which is none here.
    for (const char* kind : {"wrong-key", "not-zipped", "inner-bomb", "no-enable"}) {
        Server server({"--reply", kind, "--strategy", R"({"enable": false})"});
        leaveCrash();
        const auto ended = host({"url=" + server.url(), "start", sent, "sleep=50", "exit"});
        EXPECT_EQ(ended.status, 0) << kind;
        for (const std::string& line : ended.lines)
            EXPECT_THAT(line, Not(HasSubstr("module is disable"))) << kind;
    }
}

TEST_F(CrashReporterRun, ExitsAtAnyMomentWithARequestUnderWay) {
    leaveCrash();
    Server server({"--reply", "silent"});
    for (const char* moment : {"sleep=0", "sleep=1", "sleep=5", "sleep=30", "wait=with 530"})
        for (const char* end : {"exit", "quick"})
            EXPECT_EQ(host({"url=" + server.url(), "start", moment, end}).status, 0) << moment;
    EXPECT_EQ(stored(), 1U);
}

TEST_F(CrashReporterRun, FollowsAStrategyThatClosesIt) {
    if (!catchesCrashes()) GTEST_SKIP();
    Server server({"--strategy", R"({"enable": false, "encKey": "12345678", "encPubKey": ""})"});
    EXPECT_EQ(
        host({"url=" + server.url(), "start", "wait=crash module is disable", "crash=null"}).status,
        -SIGSEGV);
    EXPECT_EQ(stored(), 0U);
    const auto next = host({"start", "wait=sdk crash module is disable", "crash=null"});
    EXPECT_EQ(next.status, -SIGSEGV);
    EXPECT_EQ(stored(), 0U);
}

}  // namespace
