#include "NEX/NEX/ExitGate.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <utility>

#include "platform/base/raii.h"

namespace vorla {
namespace {

thread_local int staysOfThread = 0;

}  // namespace

ExitGate& ExitGate::shared() {
    static NoDestructor<ExitGate> instance;
    return *instance;
}

void ExitGate::install() {
    if (owner_.exchange(::getpid()) == 0) std::atexit(&ExitGate::close);
}

void ExitGate::close() {
    ExitGate& gate = shared();
    // A forked child has none of our threads, and perhaps a lock that one of them held.
    if (gate.owner_ != ::getpid()) return;
    std::unique_lock lock(gate.mutex_);
    gate.closed_ = true;
    for (const auto& [ticket, wake] : gate.wakers_) wake();
    gate.left_.wait_for(lock, std::chrono::milliseconds(250), [&] { return gate.inside_ == 0; });
}

void ExitGate::park() {
    for (;;) ::pause();
}

ExitGate::Stay::Stay() {
    if (staysOfThread++ > 0) return;
    ExitGate& gate = shared();
    std::unique_lock lock(gate.mutex_);
    if (gate.closed_) {
        lock.unlock();
        park();
    }
    ++gate.inside_;
}

ExitGate::Stay::~Stay() {
    if (--staysOfThread > 0) return;
    ExitGate& gate = shared();
    std::unique_lock lock(gate.mutex_);
    --gate.inside_;
    gate.left_.notify_all();
    if (!gate.closed_) return;
    lock.unlock();
    park();
}

int ExitGate::addWaker(std::function<void()> wake) {
    const std::lock_guard lock(mutex_);
    wakers_.emplace(++lastTicket_, std::move(wake));
    return lastTicket_;
}

void ExitGate::removeWaker(int ticket) {
    const std::lock_guard lock(mutex_);
    wakers_.erase(ticket);
}

}  // namespace vorla
