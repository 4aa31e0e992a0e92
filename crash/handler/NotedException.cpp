#include "crash/handler/NotedException.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "crash/handler/StackWalker.h"
#include "crash/handler/TextBuffer.h"

namespace vorla::crash {
namespace {

constexpr size_t longestType = 512;
constexpr size_t longestReason = 4096;

// An escaped character is four times as long at the most.
char typeMemory[4 * longestType];
char reasonMemory[4 * longestReason];
StackEntry stackMemory[mostFrames];
NotedException noted;
std::atomic<pid_t> noting{0};
std::atomic<pid_t> notedBy{0};

}  // namespace

void noteException(std::string_view type, std::string_view reason,
                   std::span<const StackEntry> stack) {
    pid_t nobody = 0;
    if (!noting.compare_exchange_strong(nobody, ::gettid())) return;
    TextBuffer typeText(typeMemory);
    TextBuffer reasonText(reasonMemory);
    noted.type = typeText.escaped(type, longestType).view();
    noted.reason = reasonText.escaped(reason, longestReason).view();
    const size_t count = std::min(stack.size(), std::size(stackMemory));
    std::copy_n(stack.begin(), count, stackMemory);
    noted.stack = std::span(stackMemory).first(count);
    notedBy = ::gettid();
}

const NotedException* notedException() {
    return notedBy == ::gettid() ? &noted : nullptr;
}

}  // namespace vorla::crash
