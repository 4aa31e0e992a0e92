#include "crash/handler/FaultHandler.h"

#include <sys/syscall.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <memory>

#include "crash/CvrNSExpHandler.h"
#include "crash/handler/CrashKeeper.h"
#include "crash/handler/FaultShield.h"
#include "crash/handler/HandlerGuard.h"
#include "crash/handler/NotedException.h"
#include "crash/handler/SignalNames.h"
#include "crash/handler/ThreadStopper.h"

namespace vorla::crash {
namespace {

/// Two attempts at a report share it. Pages that are not touched cost nothing.
constexpr size_t arenaSize = size_t{48} << 20;
constexpr size_t roomPerAttempt = size_t{24} << 20;
constexpr size_t largestReport = size_t{4} << 20;
constexpr size_t largestCallStack = size_t{256} << 10;

/// What one call of `prepareForFaults` has noted.
struct Preparation {
    InstalledImages images;
    LocalTime localTime{::time(nullptr)};
    pid_t process = ::getpid();
};

Arena arena;
Published<Preparation> preparation;

struct sigaction g_previousSignalHandlers[std::size(fatalsigs)];
/// Which of them are ours at present.
bool taken[std::size(fatalsigs)];
std::atomic<bool> installed{false};

/// Entries to the handler in this process, of the thread that handles the crash and of others.
std::atomic<pid_t> countedProcess{0};
std::atomic<pid_t> handlingThread{0};
std::atomic<int> crashCount{0};
std::atomic<bool> crashOver{false};

/// What the first attempt had stored already: the second overwrites it.
KeptRecord keptRecord;

PresentCrash present;
const CvrPreparedCrash nothing;

enum class Role : uint8_t { Reporter, Bystander };

/// Finds out who we are in the crash, and the how manieth entry this is. A forked child counts
/// anew.
Role enter(int& count) {
    const pid_t process = ::getpid();
    if (countedProcess.exchange(process) != process) {
        crashCount = 0;
        handlingThread = 0;
        keptRecord.clear();
        crashOver = false;
    }
    const pid_t thread = ::gettid();
    pid_t nobody = 0;
    if (!handlingThread.compare_exchange_strong(nobody, thread) && nobody != thread)
        return Role::Bystander;
    count = ++crashCount;
    return Role::Reporter;
}

/// Another thread is at it: it will end the process, or return to an earlier handler of the host.
void standBy() {
    const int64_t end = monotonicMilliseconds() + 3000;
    const timespec pause{0, 10'000'000};
    while (!crashOver && monotonicMilliseconds() < end) ::nanosleep(&pause, nullptr);
    const timespec timeToDie{0, 500'000'000};
    ::nanosleep(&timeToDie, nullptr);
}

/// Sends the signal once more, as it came: it arrives when the handler returns, in the code that
/// it interrupted, and goes to the earlier handler or ends the process.
void sendAgain(int signal, siginfo_t* info) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    const bool isHandled = (action.sa_flags & SA_SIGINFO) != 0 ||
                           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
    if (!isHandled) {
        if (::getpid() == 1) dieBySignal(signal);
        action.sa_handler = SIG_DFL;
        ::sigaction(signal, &action, nullptr);
    }
    if (::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), ::gettid(), signal, info) != 0)
        ::syscall(SYS_tgkill, ::getpid(), ::gettid(), signal);
}

/// One attempt at a report. Lives on the alternate stack; what is large lies in the arena.
class Attempt {
 public:
    Attempt(int signal, siginfo_t* info, ucontext_t* context, int count)
        : info_(info), context_(context), count_(count) {
        event_.signal = signal;
    }

    void run(const Preparation& prepared);

 private:
    void nameEvent();
    void writeTexts(const Preparation& prepared);

    siginfo_t* info_;
    ucontext_t* context_;
    int count_;
    CrashEvent event_;
    CollectedCrash* crash_ = nullptr;
    CrashFacts facts_;
    ShortText<16> signalText_, codeText_;
    ShortText<32> address_;
    ShortText<128> handlerEvent_;
};

/// What the second attempt reports about the first.
CrashEvent firstEvent;
const CollectedCrash* firstCrash = nullptr;

void Attempt::nameEvent() {
    event_.time = wallClockMilliseconds();
    event_.handler = "Sig Handler";
    cvr_map_sig_name(event_.signal, info_->si_code, signalText_, codeText_);
    event_.type = signalText_.view();
    event_.error = codeText_.view();
    if (const NotedException* const exception = notedException()) {
        TextBuffer type(arena.takeSpan<char>(exception->type.size() + 32));
        type.text(exception->type).text("(").text(signalText_.view()).text(")");
        event_.type = type.view();
        event_.error = exception->reason;
    }
    // Only the kernel's own codes come with an address, and SI_KERNEL comes without.
    const bool hasAddress = info_->si_code > 0 && info_->si_code < SI_KERNEL;
    address_.address(hasAddress ? reinterpret_cast<uint64_t>(info_->si_addr) : 0);
    event_.address = address_.view();
    handlerEvent_.text("sdk handle signal: ").decimal(event_.signal).text(" info(");
    handlerEvent_.decimal(info_->si_signo).text(", ").decimal(info_->si_errno).text(", ");
    handlerEvent_.decimal(info_->si_code).text(")");
    event_.onceMore = count_ > 1;
    if (!event_.onceMore) {
        firstEvent = event_;
        return;
    }
    event_.firstAttempt = firstCrash;
    event_.firstType = firstEvent.type;
    event_.firstError = firstEvent.error;
    event_.firstAddress = firstEvent.address;
}

void Attempt::run(const Preparation& prepared) {
    nameEvent();
    void* const place = arena.take(sizeof(CollectedCrash));
    if (!place) return;
    crash_ = new (place) CollectedCrash(prepared.images, arena, sessionState().needSymbol,
                                        sessionState().needSymbol || sessionState().hasProcName);
    if (count_ == 1) firstCrash = crash_;
    if (const NotedException* const exception = notedException())
        crash_->addExceptionStack(exception->stack);
    crash_->collectThreads(Registers(*context_), *context_, true);
    writeTexts(prepared);
    if (sessionState().prepared.get())
        keepCrash(facts_, prepared.process != ::getpid(), keptRecord, arena);
}

void Attempt::writeTexts(const Preparation& prepared) {
    const CvrPreparedCrash* const state = sessionState().prepared.get();
    facts_.event = &event_;
    facts_.crash = crash_;
    facts_.prepared = state ? state : &nothing;
    facts_.localTime = &prepared.localTime;
    TextBuffer callStack(arena.takeSpan<char>(largestCallStack));
    writeStack(crash_->crashStack(), callStack);
    facts_.callStack = callStack.length() ? callStack.view() : "empty stack";
    TextBuffer log(arena.takeSpan<char>(largestReport));
    writeReport(event_, *crash_, *facts_.prepared, prepared.localTime, log);
    facts_.log = log.view();
    facts_.handlerEvent = handlerEvent_.view();
    present = {event_.type, event_.error, facts_.log, facts_.callStack};
}

/// The host's own signals would run its handlers in the midst of ours, and a limit on the size of
/// files would end the process. The fatal signals and the guard's stay as they are.
void blockOtherSignals() {
    sigset_t others;
    ::sigfillset(&others);
    for (const int signal : fatalsigs) ::sigdelset(&others, signal);
    HandlerGuard::exclude(others);
    ::pthread_sigmask(SIG_BLOCK, &others, nullptr);
}

/// The steps between the fault and the end, for the thread that reports it.
void handle(int signal, siginfo_t* info, ucontext_t* context, int count) {
    if (count > 2) return;
    const HandlerGuard guard(signal);
    ++publishedStateUsers;
    blockOtherSignals();
    releaseDescriptors();
    const Preparation* const prepared = preparation.get();
    if (!prepared) return;
    arena.rewind(count == 1 ? 0 : std::max(arena.used(), roomPerAttempt));
    Attempt(signal, info, context, count).run(*prepared);
}

}  // namespace

void cvr_signal_handler(int signal, siginfo_t* info, void* context) {
    leaveShieldedWork();
    const int before = errno;
    int count = 0;
    if (installed && enter(count) == Role::Bystander) {
        standBy();
    } else if (installed) {
        handle(signal, info, static_cast<ucontext_t*>(context), count);
        removeSignalHandlers();
        removeTerminateHandler();
        crashOver = true;
    } else {
        struct sigaction byDefault {};
        byDefault.sa_handler = SIG_DFL;
        ::sigaction(signal, &byDefault, nullptr);
    }
    sendAgain(signal, info);
    errno = before;
}

PresentCrash presentCrash() {
    return present;
}

bool prepareForFaults() {
    if (!arena.reserve(arenaSize)) return false;
    HandlerGuard::chooseSignal();
    ThreadStopper::chooseSignal();
    keepDescriptors();
    StackWalker::warmUp();
    char hash[32];
    writeHash({}, hash);
    sessionState().reserveListenersRecord();
    preparation.publish(std::make_unique<const Preparation>());
    return true;
}

bool areSignalHandlersSet() {
    return installed;
}

bool isHandlerInPlace() {
    struct sigaction action {};
    return ::sigaction(SIGSEGV, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) != 0 &&
           action.sa_sigaction == cvr_signal_handler;
}

bool setSignalHandlers() {
    struct sigaction action {};
    action.sa_sigaction = cvr_signal_handler;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ::sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(fatalsigs); ++i) {
        struct sigaction earlier {};
        taken[i] = false;
        // A host that ignores broken pipes goes on to.
        if (fatalsigs[i] == SIGPIPE && ::sigaction(SIGPIPE, nullptr, &earlier) == 0 &&
            (earlier.sa_flags & SA_SIGINFO) == 0 && earlier.sa_handler == SIG_IGN)
            continue;
        if (::sigaction(fatalsigs[i], &action, &g_previousSignalHandlers[i]) != 0) {
            removeSignalHandlers();
            return false;
        }
        taken[i] = true;
    }
    handlingThread = 0;
    // A host that has lived through a crash, and installs again, starts afresh.
    if (crashOver.exchange(false)) {
        crashCount = 0;
        keptRecord.clear();
        present = {};
        firstCrash = nullptr;
        arena.discard();
    }
    installed = true;
    return true;
}

void removeSignalHandlers() {
    installed = false;
    for (size_t i = std::size(fatalsigs); i-- > 0;)
        if (taken[i]) ::sigaction(fatalsigs[i], &g_previousSignalHandlers[i], nullptr);
}

}  // namespace vorla::crash
