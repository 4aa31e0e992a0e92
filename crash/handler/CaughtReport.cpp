#include "crash/handler/CaughtReport.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <ctime>
#include <mutex>

#include "crash/handler/CrashKeeper.h"
#include "crash/handler/FaultHandler.h"
#include "crash/handler/ThreadStopper.h"
#include "platform/base/raii.h"

namespace vorla::crash {
namespace {

constexpr size_t arenaSize = size_t{24} << 20;
constexpr size_t largestStack = size_t{256} << 10;

struct Reporting {
    std::timed_mutex mutex;
    Arena arena;
    /// The thread that reports at present.
    std::atomic<pid_t> reporter{0};
    /// Of its own lock: the host's function may ask for it in the midst of a report.
    std::mutex latestMutex;
    LatestCaught latest;
};

struct StateInUse {
    StateInUse() { ++publishedStateUsers; }
    ~StateInUse() { --publishedStateUsers; }
    StateInUse(const StateInUse&) = delete;
    StateInUse& operator=(const StateInUse&) = delete;
};

/// One report at a time. Not waited for without end: the host's function, which runs in the midst
/// of a report, may itself wait for a thread that has an error to report.
class Turn {
 public:
    explicit Turn(Reporting& state) : state_(state), lock_(state.mutex, longestWait) {
        if (lock_) state_.reporter = ::gettid();
    }
    ~Turn() {
        if (lock_) state_.reporter = 0;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    explicit operator bool() const { return lock_.owns_lock(); }

 private:
    static constexpr std::chrono::seconds longestWait{2};

    Reporting& state_;
    const std::unique_lock<std::timed_mutex> lock_;
};

Reporting& reporting() {
    static NoDestructor<Reporting> instance;
    return *instance;
}

void collectOwnAndOthers(CollectedCrash& crash, bool others) {
    std::array<StackEntry, mostFrames> stack;
    const size_t count = walkOwnStack(stack);
    crash.addExceptionStack(std::span(stack).first(count));
    if (!others || !areSignalHandlersSet()) return;
    ThreadStopper::chooseSignal();
    ThreadStopper().callInHandler(
        [](void* argument, ucontext_t& context) {
            static_cast<CollectedCrash*>(argument)->collectThreads(Registers(context), context,
                                                                   false);
        },
        &crash);
}

}  // namespace

bool reportCaught(const CaughtFacts& caught) {
    Reporting& state = reporting();
    if (state.reporter == ::gettid()) return false;
    const Turn turn(state);
    if (!turn) return false;
    const StateInUse inUse;
    const CvrPreparedCrash* const prepared = sessionState().prepared.get();
    if (!prepared || !state.arena.reserve(arenaSize)) return false;
    const InstalledImages installed;
    const LocalTime localTime(::time(nullptr));
    state.arena.rewind(0);
    CollectedCrash crash(installed, state.arena, sessionState().needSymbol,
                         sessionState().needSymbol || sessionState().hasProcName);
    collectOwnAndOthers(crash, caught.threads);

    TextBuffer stack(state.arena.takeSpan<char>(largestStack));
    if (caught.stack.empty())
        writeStack(crash.exceptionStack(), stack);
    else
        stack.text(caught.stack);
    CrashEvent event;
    event.time = wallClockMilliseconds();
    event.handler = "Caught Error Handler";
    event.type = caught.type;
    event.error = caught.error;
    CrashFacts facts;
    facts.event = &event;
    facts.crash = &crash;
    facts.prepared = prepared;
    facts.localTime = &localTime;
    facts.callStack = stack.view();
    {
        const std::lock_guard lock(state.latestMutex);
        state.latest = {std::string(caught.type), std::string(caught.error),
                        std::string(stack.view())};
    }
    KeptRecord record;
    keepCrash(facts, false, record, state.arena);
    state.arena.discard();
    return record.hash.length() > 0;
}

LatestCaught latestCaught() {
    Reporting& state = reporting();
    const std::lock_guard lock(state.latestMutex);
    return state.latest;
}

}  // namespace vorla::crash
