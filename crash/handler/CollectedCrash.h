#pragma once

#include <sys/types.h>

#include <span>
#include <string_view>

#include "crash/handler/Arena.h"
#include "crash/handler/ImageList.h"
#include "crash/handler/StackWalker.h"
#include "crash/handler/TextBuffer.h"

namespace vorla::crash {

/// One address of a stack that lies in an image.
struct CrashFrame {
    /// Its place in the stack in which the address was first seen.
    int32_t index = 0;
    uint64_t address = 0;
    const LoadedImage* image = nullptr;
    /// Empty when no symbol is known.
    FoundSymbol symbol;

    /// "%-2d", the module's name up to 30 columns, the address, and the symbol with the distance or
    /// the image's base with it.
    void writeLine(TextBuffer& to) const;
};

struct CrashThread {
    /// The position in the system's list of the process's threads.
    int32_t index = 0;
    pid_t id = 0;
    bool crashed = false;
    std::string_view name;
    std::span<const CrashFrame> frames;
};

/// The frames of one address each, so that stacks with common parts are looked up once; a frame
/// that repeats keeps the index of its first sighting.
class FrameCache {
 public:
    FrameCache(ImageList& images, Arena& arena, bool symbolsOfProgram, bool symbolsOfOthers);

    /// The frame, or one without image when the address lies in none.
    CrashFrame frame(const StackEntry& entry, int32_t index);

 private:
    CrashFrame make(const StackEntry& entry, int32_t index);

    ImageList* images_;
    std::span<CrashFrame> slots_;
    bool symbolsOfProgram_;
    bool symbolsOfOthers_;
};

/// What is gathered of a process that dies, before any of it is written. May run after a fault.
class CollectedCrash {
 public:
    CollectedCrash(const InstalledImages& installed, Arena& arena, bool symbolsOfProgram,
                   bool symbolsOfOthers);

    /// Reads the stacks of all threads: first the calling one's, which is walked from `from`, then
    /// each of the others, held still for that. `own` is the context of the running signal handler,
    /// `hasCrashed` whether the calling thread is the one that has crashed. Threads that cannot be
    /// held, or for which there is no time (0.8 s for all) or room, have no frames.
    void collectThreads(const Registers& from, ucontext_t& own, bool hasCrashed);

    /// The stack of an exception that was noted where nobody caught it.
    void addExceptionStack(std::span<const StackEntry> stack);

    [[nodiscard]] std::span<const CrashThread> threads() const { return threads_; }
    [[nodiscard]] const CrashThread* crashedThread() const { return crashed_; }
    [[nodiscard]] bool hasExceptionStack() const { return hasException_; }
    /// What counts as the stack of the crash: the exception's, else the crashed thread's.
    [[nodiscard]] std::span<const CrashFrame> crashStack() const;
    [[nodiscard]] std::span<const CrashFrame> exceptionStack() const { return exception_; }
    [[nodiscard]] const ImageList& images() const { return images_; }
    /// Whether a frame of any thread lies in the image.
    [[nodiscard]] bool isOnStacks(const LoadedImage& image) const;
    Registers registers;

 private:
    std::span<const pid_t> listThreads();
    void collectThread(CrashThread& thread, StackWalker& walker);
    std::span<const CrashFrame> makeFrames(std::span<const StackEntry> stack);

    Arena* arena_;
    ImageList images_;
    FrameCache cache_;
    std::span<CrashThread> threads_;
    const CrashThread* crashed_ = nullptr;
    bool hasException_ = false;
    std::span<const CrashFrame> exception_;
    /// The images that occur in stacks, each once.
    std::span<const LoadedImage*> seen_;
    size_t seenCount_ = 0;
    int64_t deadline_ = 0;
};

}  // namespace vorla::crash
