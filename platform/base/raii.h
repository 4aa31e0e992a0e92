#pragma once

#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace vorla {

/// Owns memory that a C library allocated with malloc (window server replies, for one).
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using MallocPtr = std::unique_ptr<T, FreeDeleter>;

/// Owns a file descriptor; -1 stands for none.
class UniqueFd {
 public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        reset(std::exchange(other.fd_, -1));
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { reset(); }

    [[nodiscard]] int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = fd;
    }

 private:
    int fd_ = -1;
};

/// A static object that is never destroyed: threads of the process may still use it while the
/// host's exit runs, so it must outlive every destructor. Use for singletons only.
template <typename T>
class NoDestructor {
 public:
    template <typename... Args>
    explicit NoDestructor(Args&&... args) {
        new (storage_) T(std::forward<Args>(args)...);
    }
    NoDestructor(const NoDestructor&) = delete;
    NoDestructor& operator=(const NoDestructor&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }
    T* operator->() { return &**this; }

 private:
    alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace vorla
