#include "crash/handler/StackWalker.h"

#include <dlfcn.h>
#include <unwind.h>

#include <cstring>

#include "crash/handler/FaultShield.h"

namespace vorla::crash {
namespace {

bool isInImage(uint64_t address) {
    dl_find_object found;
    return ::_dl_find_object(reinterpret_cast<void*>(address), &found) == 0;
}

uint64_t value(const Registers& registers, int name) {
    return static_cast<uint64_t>(registers.values[name]);
}

/// A walk under way. It goes on in pieces: by tables as far as they lead, then a step by the frame
/// pointer.
struct Walk {
    std::span<StackEntry> frames;
    size_t count = 0;
    /// The runtime has passed the signal's frame.
    bool beyondSignal = false;
    /// Where the last piece by tables ended.
    uint64_t lastAddress = 0, lastStack = 0, lastFrame = 0;

    bool add(uint64_t address, bool isReturn = true) {
        if (count < frames.size()) frames[count++] = {address, isReturn};
        return count < frames.size();
    }
};

_Unwind_Reason_Code visit(_Unwind_Context* context, void* argument) {
    constexpr int framePointer = 6;
    auto& walk = *static_cast<Walk*>(argument);
    int interrupted = 0;
    const uint64_t address = _Unwind_GetIPInfo(context, &interrupted);
    const bool isStart = !walk.beyondSignal && interrupted;
    if (!walk.beyondSignal && !isStart) return _URC_NO_REASON;
    walk.beyondSignal = true;
    walk.lastAddress = address;
    walk.lastStack = _Unwind_GetCFA(context);
    walk.lastFrame = _Unwind_GetGR(context, framePointer);
    // The piece's first address is known to whoever started it.
    if (isStart || address == 0) return _URC_NO_REASON;
    return walk.add(address, !interrupted) ? _URC_NO_REASON : _URC_NORMAL_STOP;
}

/// Prepares to go on from a return address: one below it lies within the call.
void goOnFrom(Registers& registers, uint64_t returnAddress, uint64_t stack, uint64_t frame) {
    registers.values[REG_RIP] = static_cast<greg_t>(returnAddress - 1);
    registers.values[REG_RSP] = static_cast<greg_t>(stack);
    registers.values[REG_RBP] = static_cast<greg_t>(frame);
}

/// Whether the code was called at a bad address: then its return address still tops the stack.
bool stepOutOfBadCall(Registers& registers, Walk& walk) {
    const uint64_t stack = value(registers, REG_RSP);
    uint64_t returnAddress = 0;
    if (!readMemory(stack, returnAddress) || !isInImage(returnAddress - 1)) return false;
    walk.add(returnAddress);
    goOnFrom(registers, returnAddress, stack + 8, value(registers, REG_RBP));
    return true;
}

bool stepByFramePointer(Registers& registers, Walk& walk) {
    const uint64_t frame = value(registers, REG_RBP);
    struct {
        uint64_t next, returnAddress;
    } link;
    if (frame < value(registers, REG_RSP) || !readMemory(frame, link) || link.returnAddress == 0)
        return false;
    goOnFrom(registers, link.returnAddress, frame + sizeof link, link.next);
    return walk.add(link.returnAddress);
}

}  // namespace

Registers::Registers(const ucontext_t& context) {
    std::memcpy(values, context.uc_mcontext.gregs, sizeof values);
}

size_t StackWalker::walk(const Registers& from, std::span<StackEntry> frames) {
    gregset_t& place = own_->uc_mcontext.gregs;
    const Registers kept(*own_);
    Registers registers = from;
    Walk walk{.frames = frames};
    walk.add(value(registers, REG_RIP), false);
    bool first = true;
    while (walk.count < frames.size()) {
        if (isInImage(value(registers, REG_RIP))) {
            const size_t before = walk.count;
            walk.beyondSignal = false;
            std::memcpy(place, registers.values, sizeof place);
            const bool whole = runShielded([&] { _Unwind_Backtrace(visit, &walk); });
            std::memcpy(place, kept.values, sizeof place);
            if (!whole) break;
            if (walk.count > before) {
                // It ended properly, or in code without tables.
                if (isInImage(walk.lastAddress - 1)) break;
                goOnFrom(registers, walk.lastAddress, walk.lastStack, walk.lastFrame);
            }
        } else if (first && stepOutOfBadCall(registers, walk)) {
            first = false;
            continue;
        }
        first = false;
        if (!stepByFramePointer(registers, walk)) break;
    }
    return walk.count;
}

void StackWalker::warmUp() {
    StackEntry frames[4];
    walkOwnStack(frames);
    uint64_t word = 0;
    readMemory(reinterpret_cast<uintptr_t>(frames), word);
    isInImage(frames[0].address);
}

size_t walkOwnStack(std::span<StackEntry> frames) {
    struct Simple {
        std::span<StackEntry> frames;
        size_t count = 0;
        bool started = false;
    } simple{.frames = frames};
    _Unwind_Backtrace(
        [](_Unwind_Context* context, void* argument) {
            auto& walk = *static_cast<Simple*>(argument);
            const uint64_t address = _Unwind_GetIP(context);
            if (walk.started && address != 0) walk.frames[walk.count++] = {address, true};
            walk.started = true;
            return walk.count < walk.frames.size() ? _URC_NO_REASON : _URC_NORMAL_STOP;
        },
        &simple);
    return simple.count;
}

}  // namespace vorla::crash
