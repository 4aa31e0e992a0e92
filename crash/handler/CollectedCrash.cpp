#include "crash/handler/CollectedCrash.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <cstring>

#include <algorithm>

#include "crash/handler/FaultFolder.h"
#include "crash/handler/FaultShield.h"
#include "crash/handler/ThreadStopper.h"

namespace vorla::crash {
namespace {

constexpr size_t cacheSlots = 8192;
constexpr size_t mostThreads = 4096;
constexpr size_t mostSeenImages = 512;
constexpr int64_t timeForThreads = 800;
/// What must be left for the texts once the stacks are there.
constexpr size_t roomForTexts = size_t{10} << 20;

}  // namespace

void CrashFrame::writeLine(TextBuffer& to) const {
    size_t start = to.length();
    to.decimal(index).padTo(2, start).text(" ");
    start = to.length();
    to.text(image->shortName).padTo(30, start).text(" ").address(address).text(" ");
    if (!symbol.name.empty())
        to.text(symbol.name).text(" + ").decimal(static_cast<int64_t>(symbol.distance));
    else
        to.address(image->base).text(" + ").decimal(static_cast<int64_t>(address - image->base));
}

FrameCache::FrameCache(ImageList& images, Arena& arena, bool symbolsOfProgram, bool symbolsOfOthers)
    : images_(&images),
      slots_(arena.takeSpan<CrashFrame>(cacheSlots)),
      symbolsOfProgram_(symbolsOfProgram),
      symbolsOfOthers_(symbolsOfOthers) {}

CrashFrame FrameCache::frame(const StackEntry& entry, int32_t index) {
    size_t place = entry.address * 0x9E3779B97F4A7C15 >> 51;
    for (size_t tries = 0; tries < 64 && !slots_.empty(); ++tries, ++place) {
        CrashFrame& slot = slots_[place % slots_.size()];
        if (slot.address == entry.address && slot.image) return slot;
        if (!slot.image) return slot = make(entry, index);
    }
    return make(entry, index);
}

CrashFrame FrameCache::make(const StackEntry& entry, int32_t index) {
    const uint64_t address = entry.address;
    CrashFrame frame{.index = index, .address = address, .symbol = {}};
    frame.image = images_->imageAt(address & ~uint64_t{15});
    if (!frame.image) return frame;
    if (frame.image->isProgram ? !symbolsOfProgram_ : !symbolsOfOthers_) return frame;
    // A return address may already belong to the next function.
    const uint64_t wanted = entry.isReturn ? address - 1 : address;
    const bool read = runShielded([&] { frame.symbol = findSymbol(*frame.image, wanted); });
    if (!read) frame.symbol = {};
    frame.symbol.distance += address - wanted;
    return frame;
}

CollectedCrash::CollectedCrash(const InstalledImages& installed, Arena& arena,
                               bool symbolsOfProgram, bool symbolsOfOthers)
    : arena_(&arena),
      images_(installed, arena),
      cache_(images_, arena, symbolsOfProgram, symbolsOfOthers),
      seen_(arena.takeSpan<const LoadedImage*>(mostSeenImages)) {}

std::span<const CrashFrame> CollectedCrash::crashStack() const {
    if (hasException_) return exception_;
    return crashed_ ? crashed_->frames : std::span<const CrashFrame>();
}

bool CollectedCrash::isOnStacks(const LoadedImage& image) const {
    return std::ranges::find(seen_.first(seenCount_), &image) !=
           seen_.begin() + static_cast<ptrdiff_t>(seenCount_);
}

std::span<const CrashFrame> CollectedCrash::makeFrames(std::span<const StackEntry> stack) {
    if (arena_->left() < roomForTexts + stack.size_bytes() * 8) return {};
    const auto frames = arena_->takeSpan<CrashFrame>(stack.size());
    size_t count = 0;
    for (size_t i = 0; i < stack.size(); ++i) {
        const CrashFrame frame = cache_.frame(stack[i], static_cast<int32_t>(i));
        if (!frame.image) continue;
        frames[count++] = frame;
        if (!isOnStacks(*frame.image) && seenCount_ < seen_.size())
            seen_[seenCount_++] = frame.image;
    }
    return frames.first(count);
}

void CollectedCrash::addExceptionStack(std::span<const StackEntry> stack) {
    hasException_ = true;
    exception_ = makeFrames(stack);
}

std::span<const pid_t> CollectedCrash::listThreads() {
    const auto threads = arena_->takeSpan<pid_t>(mostThreads);
    size_t count = 0;
    const int folder = ::open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    alignas(8) char entries[4096];
    // As the kernel writes them; the C library's reader takes memory.
    struct Entry {
        uint64_t inode;
        int64_t offset;
        uint16_t length;
        uint8_t type;
        char name[1];
    };
    while (folder >= 0) {
        const long bytes = ::syscall(SYS_getdents64, folder, entries, sizeof entries);
        if (bytes <= 0) break;
        for (long place = 0; place < bytes;) {
            const auto* const entry = reinterpret_cast<const Entry*>(entries + place);
            pid_t id = 0;
            for (const char* digit = entry->name; *digit >= '0' && *digit <= '9'; ++digit)
                id = id * 10 + (*digit - '0');
            if (id > 0 && count < threads.size()) threads[count++] = id;
            place += entry->length;
        }
    }
    if (folder >= 0) ::close(folder);
    if (count == 0 && !threads.empty()) threads[count++] = ::gettid();
    return threads.first(count);
}

void CollectedCrash::collectThreads(const Registers& from, ucontext_t& own, bool hasCrashed) {
    registers = from;
    deadline_ = monotonicMilliseconds() + timeForThreads;
    const auto ids = listThreads();
    threads_ = arena_->takeSpan<CrashThread>(ids.size());
    for (size_t i = 0; i < threads_.size(); ++i) {
        threads_[i] = CrashThread();
        threads_[i].index = static_cast<int32_t>(i);
        threads_[i].id = ids[i];
        threads_[i].crashed = hasCrashed && ids[i] == ::gettid();
        if (threads_[i].crashed) crashed_ = &threads_[i];
    }
    StackWalker walker(own);
    for (CrashThread& thread : threads_)
        if (thread.id == ::gettid()) collectThread(thread, walker);
    for (CrashThread& thread : threads_)
        if (thread.id != ::gettid()) collectThread(thread, walker);
}

void CollectedCrash::collectThread(CrashThread& thread, StackWalker& walker) {
    ShortText<64> path;
    path.text("/proc/self/task/").decimal(thread.id).text("/comm").text({"", 1});
    char name[64];
    std::string_view read = readSystemFile(path.view().data(), name);
    if (read.ends_with('\n')) read.remove_suffix(1);
    thread.name = arena_->keep(read);

    StackEntry stack[mostFrames];
    size_t count = 0;
    if (thread.id == ::gettid()) {
        count = walker.walk(registers, stack);
    } else if (monotonicMilliseconds() < deadline_) {
        ThreadStopper stopper;
        Registers others;
        if (stopper.stop(thread.id, others)) {
            count = walker.walk(others, stack);
            stopper.resume();
        }
    }
    thread.frames = makeFrames(std::span(stack).first(count));
}

}  // namespace vorla::crash
