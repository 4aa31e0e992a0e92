#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace vorla {

/// The keyboard focus of the X server as it was, to be given back. Does nothing on other platforms
/// or when the window has gone.
class SavedFocus {
 public:
    /// Reads the present focus from the server.
    static SavedFocus current();
    void restore() const;

 private:
    uint32_t window_ = 0;
    uint8_t revertTo_ = 0;
};

/// Sends what the toolkit has asked of the X server and not sent yet: out of a timer it would wait
/// for the next event. Does nothing on other platforms.
void flushToServer();

/// Calls back on the main thread when a foreign unmanaged window was mapped or raised, which puts
/// it above ours. Works on the toolkit's own connection; does nothing on other platforms.
class ForeignWindowWatch {
 public:
    explicit ForeignWindowWatch(std::function<void()> landedOnTop);
    ~ForeignWindowWatch();
    ForeignWindowWatch(const ForeignWindowWatch&) = delete;
    ForeignWindowWatch& operator=(const ForeignWindowWatch&) = delete;

 private:
    struct Filter;
    std::unique_ptr<Filter> filter_;
};

}  // namespace vorla
