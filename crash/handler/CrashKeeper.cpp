#include "crash/handler/CrashKeeper.h"

#include <algorithm>
#include <ctime>

#include "crash/CvrCrashHandler.h"

namespace vorla::crash {
namespace {

/// Whether a module name of the stack contains one of the texts.
bool contains(std::span<const CrashFrame> stack, const std::vector<std::string>& texts) {
    return std::ranges::any_of(stack, [&](const CrashFrame& frame) {
        return std::ranges::any_of(texts, [&](const std::string& text) {
            return frame.image->shortName.find(text) != std::string_view::npos;
        });
    });
}

/// The host's filters on the modules of the stack.
bool isWanted(std::span<const CrashFrame> stack) {
    const auto* const include = sessionState().includeShortNames.get();
    const auto* const exclude = sessionState().excludeShortNames.get();
    if (include && !include->empty() && !contains(stack, *include)) return false;
    return !exclude || exclude->empty() || !contains(stack, *exclude);
}

/// Fills hash and identifier of the record. The hash is made of the places where the modules of the
/// stack lie, not of the addresses.
void identify(CrashFacts& facts, Arena& arena) {
    TextBuffer stack(arena.takeSpan<char>(mostFrames * 20));
    for (const CrashFrame& frame : facts.crash->crashStack())
        stack.decimal(static_cast<int64_t>(frame.image->base));
    const std::string_view texts[] = {facts.prepared->appId, facts.prepared->appVersion,
                                      facts.event->type, stack.view()};
    char hash[32];
    char uuid[36];
    writeHash(texts, hash);
    writeRandomUuid(uuid);
    facts.hash = arena.keep({hash, sizeof hash});
    facts.expUid = arena.keep({uuid, sizeof uuid});
}

void notify(const CrashFacts& facts, RecordFile& record) {
    const SessionState& session = sessionState();
    const auto told = [&] {
        return std::array<const void*, 3>{session.attachLog.get(), session.userMaps.get(),
                                          session.sceneData.get()};
    };
    const auto before = told();
    if (exp_call_back_func) exp_call_back_func();
    // The host's function may have had more to tell.
    if (told() != before) record.save(false);
    CvrExpObj& exp = *session.listenersRecord;
    exp.hash.assign(facts.hash);
    exp.expUid.assign(facts.expUid);
    exp.exceptionType.assign(facts.event->type.substr(0, exp.exceptionType.capacity()));
    exp.time = facts.event->time;
    exp.cashTime = facts.cashTime();
    for (const auto& listener : session.listeners)
        if (CvrCrashListener* const hears = listener) hears->onCrashHappened(exp);
}

}  // namespace

void keepCrash(CrashFacts& facts, bool isForkedChild, KeptRecord& kept, Arena& arena) {
    const CvrPreparedCrash& state = *facts.prepared;
    const FaultFolder folder(state.folder.c_str(), state.lockFile.c_str());
    if (!folder) return;
    identify(facts, arena);
    facts.machine = MachineFacts::read();
    facts.replacedFile = kept.file.view();
    facts.replacedHash = kept.hash.view();
    RecordFile record(facts, folder, arena);
    // A forked child knows the parent's state of long ago.
    if (!isForkedChild) record.markCrash();
    if (isWanted(facts.crash->crashStack()) && record.save(sessionState().mergeUpload)) {
        kept.clear();
        kept.file.text(record.fileName());
        kept.hash.text(facts.hash);
        notify(facts, record);
    }
    if (!isForkedChild) record.saveUserInfo();
}

int64_t wallClockMilliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace vorla::crash
