// Real programs that really die: how they end, and what they leave behind. All of them run with an
// allocator in front that ends them with status 99 if the handler uses it.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <vorla/CrashReporter.h>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <regex>
#include <stdexcept>
#include <thread>

#include "crash/CaughtError.h"
#include "crash/CvrCrashData.h"
#include "crash/CvrCrashHandler.h"
#include "crash/facts/CvrModelBase.h"
#include "crash/store/CvrFilePersistHandler.h"
#include "platform/base/files.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// One run of crash_child in a store of its own, in which `seed` is run before.
class Death {
 public:
    explicit Death(const std::string& arguments, const std::string& loaded = VORLA_NO_ALLOCATION,
                   const std::string& seed = "") {
        fs::create_directory(store());
        fs::permissions(store(), fs::perms::owner_all);
        EXPECT_EQ(std::system(("cd " + store() + " && echo kept > ../victim; " + seed).c_str()), 0);
        const auto start = std::chrono::steady_clock::now();
        const std::string command = "LD_PRELOAD=" + loaded +
                                    " exec setarch -R timeout -s KILL 20 " VORLA_CRASH_CHILD " " +
                                    store() + " " + arguments + " 2>" + store() + ".err";
        const int status = std::system(command.c_str());
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        // The shell reports its last command's death by a signal as 128 and the number.
        status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        for (const auto& entry : fs::directory_iterator(store())) {
            struct stat facts = {};
            ::lstat(entry.path().c_str(), &facts);
            const bool ours = seed.empty() || isRecord(entry.path());
            EXPECT_TRUE(!ours || facts.st_mode == (S_IFREG | 0600)) << entry.path();
            EXPECT_THAT(entry.path().filename().string(), Not(StartsWith(".tmp")));
            if (isRecord(entry.path())) ++recordFiles;
        }
        CvrModelBase model(store(), [] { return int64_t{1}; });
        markedAsCrashed = model.isLastCloseByCrash();
        CvrFilePersistHandler files(store(), model);
        files.loadAllDatas();
        records = files.getAllCrashed(100);
    }

    [[nodiscard]] int signal() const { return status_ - 128; }
    [[nodiscard]] int exitStatus() const { return status_; }
    [[nodiscard]] std::string report() const {
        if (records.size() != 1 || records[0].attachmentList.empty()) return {};
        const auto& data = records[0].attachmentList[0].data;
        return {data.begin(), data.end()};
    }
    [[nodiscard]] std::string store() const { return folder_ / "store"; }

    double seconds = 0;
    size_t recordFiles = 0;
    bool markedAsCrashed = false;
    std::vector<CvrExpObj> records;

 private:
    static bool isRecord(const fs::path& path) {
        return path.filename().string().starts_with(".crash_2");
    }

    vorla::test::TemporaryFolder folder_;
    int status_ = 0;
};

struct Row {
    const char* arguments;
    int signal;
    const char* type;
    const char* error;
    /// Regular expressions of the address, and of the first frames' functions.
    const char* address;
    const char* frames;
};

std::ostream& operator<<(std::ostream& to, const Row& row) {
    return to << row.arguments;
}

/// Sanitizers bring an allocator, signal handlers and stacks of their own: there the child's death
/// shows theirs.
class RealDeaths : public testing::Test {
 protected:
    void SetUp() override {
        if (VORLA_SANITIZED) GTEST_SKIP();
    }
};

class Crashes : public RealDeaths, public testing::WithParamInterface<Row> {};

TEST_P(Crashes, LeaveOneCompleteRecordWithTheTrueStack) {
    const Row& row = GetParam();
    const Death death(row.arguments);
    EXPECT_EQ(death.signal(), row.signal);
    EXPECT_LT(death.seconds, 5);
    EXPECT_TRUE(death.markedAsCrashed);
    EXPECT_EQ(death.recordFiles, 1U);
    ASSERT_EQ(death.records.size(), 1U);
    const CvrExpObj& record = death.records[0];
    EXPECT_EQ(record.exceptionType, row.type);
    EXPECT_THAT(record.causedBy, StartsWith(row.error));
    EXPECT_LT(record.causedBy.size(), 20000U);
    EXPECT_TRUE(std::regex_match(record.excepitonAddress, std::regex(row.address)))
        << record.excepitonAddress;
    EXPECT_EQ(record.cashTime, record.time + 5000);
    EXPECT_EQ(record.valueMap.at("attachDatas").size(), 10240U);
    EXPECT_THAT(record.userMap, ElementsAre(testing::Pair("key", "value")));
    EXPECT_THAT(record.sessionInfo->events, ElementsAre("before", HasSubstr("sdk handle signal")));
    std::string functions;
    const std::regex line(R"(\d+ +\S+ +0x[0-9a-f]{16} (\S+) \+ \d+\n)");
    const std::sregex_iterator end;
    for (std::sregex_iterator it(record.callStack.begin(), record.callStack.end(), line); it != end;
         ++it)
        functions += (*it)[1].str() + " ";
    EXPECT_TRUE(std::regex_search(functions, std::regex(row.frames))) << functions;
    const std::string report = death.report();
    EXPECT_THAT(report, StartsWith("Handler: Sig Handler\n\nHardware Model: "));
    EXPECT_THAT(report, HasSubstr("\nException Type: " + record.exceptionType + "\n"));
    EXPECT_THAT(report, HasSubstr("Thread " + record.threadName + " Crashed: \n"));
    EXPECT_THAT(report, HasSubstr("crash_child x86_64 <" + record.appInfo->processUUID + ">"));
    EXPECT_THAT(report, EndsWith("\n"));
}

constexpr const char* none = "0{18}";
constexpr const char* code = "0x0000[57].*";

INSTANTIATE_TEST_SUITE_P(
    EveryKind, Crashes,
    testing::Values(
        Row{"null", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"wild", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", "0x000000000dead000",
            "^\\S*writeTo\\S* \\S*crashWild\\S* main "},
        Row{"readonly", SIGSEGV, "SIGSEGV", "SEGV_ACCERR", code,
            "^\\S*writeTo\\S* \\S*crashReadonly\\S* main "},
        Row{"nullcall", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none, "^\\S*crashNullcall\\S* main "},
        Row{"bus", SIGBUS, "SIGBUS", "BUS_ADRERR", code, "^\\S*writeTo\\S* \\S*crashBus\\S* main "},
        Row{"fpe", SIGFPE, "SIGFPE", "FPE_INTDIV", code, "^\\S*crashFpe\\S* main "},
        Row{"trap", SIGILL, "SIGILL", "ILL_ILLOPN", code, "^\\S*crashTrap\\S* main "},
        Row{"breakpoint", SIGTRAP, "SIGTRAP", "128", none, "^\\S*crashBreakpoint\\S* main "},
        Row{"sys", SIGSYS, "SIGSYS", "-6", none, "gsignal \\S*crashSys\\S* main "},
        Row{"abort", SIGABRT, "SIGABRT", "-6", none, "abort \\S*crashAbort\\S* main "},
        Row{"exception", SIGABRT, "std::runtime_error(SIGABRT)", "nobody catches this", none,
            "^\\S*throwIt\\S* \\S*crashException\\S* main "},
        Row{"exception-in-thread", SIGABRT, "std::runtime_error(SIGABRT)",
            "nobody catches this in a thread", none, "^\\S*throwIt\\S* "},
        Row{"noexcept", SIGABRT, "std::runtime_error(SIGABRT)", "this must not leave", none,
            "^\\S*throwIt\\S* \\S*throwThroughNoexcept\\S* \\S*crashNoexcept\\S* main "},
        Row{"bad-what", SIGABRT, "std::runtime_error(SIGABRT)", "line\\nline\\x01\\xff\\n", none,
            "^\\S*throwIt\\S* \\S*crashBadWhat\\S* main "},
        Row{"overflow", SIGSEGV, "SIGSEGV", "SEGV_", "0x00007.*", "^(\\S*descend\\S* ){256}$"},
        Row{"overflow-thread", SIGSEGV, "SIGSEGV", "SEGV_", "0x00007.*",
            "^(\\S*descend\\S* ){256}$"},
        Row{"heap", SIGABRT, "SIGABRT", "-6", none, "free \\S*crashHeap\\S* main "},
        Row{"in-malloc", SIGABRT, "SIGABRT", "-6", none, "malloc \\S*crashInMalloc\\S* main "},
        Row{"locked-stdio", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* \\S*crashLockedStdio\\S* main "},
        Row{"two", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* \\S*crashInThreads"},
        Row{"twenty", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* \\S*crashInThreads"},
        Row{"smashed-frames", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* \\S*crashSmashedFrames"},
        Row{"pipe", SIGPIPE, "SIGPIPE", "0", none, "write \\S*crashPipe\\S* main "},
        Row{"null threads", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"null threads loader-locked", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"null no-descriptors", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"null no-memory", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"null folder-removed", SIGSEGV, "SIGSEGV", "SEGV_MAPERR", none,
            "^\\S*writeTo\\S* \\S*crashNull\\S* main "},
        Row{"abort callback-hangs", SIGABRT, "SIGABRT", "-6", none,
            "abort \\S*crashAbort\\S* main "}));

TEST_F(RealDeaths, ShowsEveryThread) {
    const std::string report = Death("null threads loader-locked").report();
    const std::regex waiting(R"(Thread \d+: \n0 .* pause \+ \d+\n1 .*waitForEver)");
    EXPECT_EQ(std::distance(std::sregex_iterator(report.begin(), report.end(), waiting), {}), 50);
    EXPECT_THAT(report, HasSubstr(" dl_iterate_phdr + "));
}

TEST_F(RealDeaths, LeavesTheFaultToTheEarlierHandlerAsItWas) {
    const Death death("null earlier-handler");
    EXPECT_EQ(death.exitStatus(), 42);
    EXPECT_EQ(death.records.size(), 1U);
}

TEST_F(RealDeaths, TriesOnceMoreWhenItsOwnWorkFaults) {
    const Death death("abort callback-faults");
    EXPECT_EQ(death.signal(), SIGSEGV);
    EXPECT_EQ(death.recordFiles, 1U);
    ASSERT_EQ(death.records.size(), 1U);
    EXPECT_EQ(death.records[0].exceptionType, "SIGSEGV");
    EXPECT_THAT(death.report(), HasSubstr("Last Exception :\nException Type: SIGABRT\n"));
}

TEST_F(RealDeaths, StoresWhatTheHostsFunctionTells) {
    // This function does take memory, at its own risk.
    const Death death("null callback-tells", "");
    EXPECT_EQ(death.recordFiles, 1U);
    ASSERT_EQ(death.records.size(), 1U);
    EXPECT_EQ(death.records[0].valueMap.at("attachDatas"), "told");
}

TEST_F(RealDeaths, ReportsAForkedChildWithoutTouchingTheParentsFiles) {
    const Death death("null fork");
    EXPECT_EQ(death.exitStatus(), SIGSEGV);
    EXPECT_EQ(death.records.size(), 1U);
    EXPECT_FALSE(fs::exists(death.store() + "/.cvrios.plist"));
}

TEST(CaughtErrors, LeaveARecordAndLetTheProcessLive) {
    const vorla::test::TemporaryFolder folder;
    CvrPreparedCrash state;
    state.folder = folder.path();
    state.crashMetaFile = folder / ".crash_meta.data";
    CvrCrashHandler::sharedInstance().prepare(state);
    CvrCrashHandler::sharedInstance().installHandler();
    std::atomic<bool> done = false;
    std::vector<std::jthread> busy;
    for (int i = 0; i < 4; ++i)
        busy.emplace_back([&] {
            while (!done) CvrCrashData::sharedInstance().setScene(1);
        });
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(CaughtError(std::out_of_range("too far"), "while counting").throwException());
    // What the host's function asks and reports in the midst of it neither waits nor counts.
    static std::string heard;
    exp_call_back_func = [] {
        heard = CvrCrashData::type();
        EXPECT_FALSE(CaughtError("Another", "", "", "").throwException());
    };
    EXPECT_TRUE(CaughtError("Error", "reason", "the host's stack", "").throwException());
    exp_call_back_func = nullptr;
    EXPECT_EQ(heard, "Error");
    done = true;
    busy.clear();
    CvrCrashHandler::sharedInstance().uninstallHandler();
    CvrModelBase model(folder.path(), [] { return int64_t{1}; });
    CvrFilePersistHandler files(folder.path(), model);
    files.loadAllDatas();
    const auto records = files.getAllCrashed(100);
    ASSERT_EQ(records.size(), 2U);
    const auto& caught = records[records[0].exceptionType == "Error" ? 1 : 0];
    EXPECT_EQ(caught.exceptionType, "std::out_of_range");
    EXPECT_EQ(caught.causedBy, "too far\t***[Message: while counting]");
    EXPECT_THAT(caught.callStack, HasSubstr("LeaveARecord"));
    EXPECT_THAT(caught.attachmentList, IsEmpty());
    EXPECT_EQ(CvrCrashData::type(), "Error");
    EXPECT_EQ(CvrCrashData::crashStack(), "the host's stack");
}

TEST_F(RealDeaths, LeavesNoHalfRecord) {
    for (const char* const arguments : {"blocked", "null no-room", "null only-elsewhere"}) {
        const Death death(arguments);
        EXPECT_EQ(death.signal(), SIGSEGV) << arguments;
        EXPECT_EQ(death.recordFiles, 0U) << arguments;
        EXPECT_THAT(death.records, IsEmpty()) << arguments;
    }
}

TEST_F(RealDeaths, TrustNothingThatLiesInTheStore) {
    struct Seed {
        const char* command;
        size_t records;
    };
    for (const auto& [command, records] : {
             Seed{"printf '\\277\\141a' > .crash_meta.data", 1},
             Seed{"ln -s ../victim .crash_meta.data", 1},
             Seed{"ln -s ../victim .cvrios.plist", 1},
             Seed{"ln -s ../victim .lock", 1},
             Seed{"mkfifo .crash_meta.data .lock", 1},
             Seed{"truncate -s 1G .crash_meta.data", 1},
             Seed{"mkdir .crash_meta.data .cvrios.plist", 1},
             Seed{"chmod 777 .", 0},
             Seed{"cd .. && mv store elsewhere && ln -s elsewhere store", 0},
         }) {
        const Death death("null merge", VORLA_NO_ALLOCATION, command);
        EXPECT_EQ(death.signal(), SIGSEGV) << command;
        EXPECT_LT(death.seconds, 5) << command;
        EXPECT_EQ(death.recordFiles, records) << command;
        EXPECT_EQ(vorla::readFile(death.store() + "/../victim"), "kept\n") << command;
    }
}

}  // namespace
