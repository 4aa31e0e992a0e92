#pragma once

#include <cstdint>
#include <memory>
#include <vector>

class VLPanel;

namespace vorla {

class PanelSurface;

/// Posted when the last of the host's own windows is minimised while panels are up.
inline constexpr const char* NSApplicationWillHideNotification =
    "NSApplicationWillHideNotification";

/// Keeps the shown panels in order and the keyboard with them. The order is by level, inside a
/// level by showing; it is made again when a foreign window lands on top. Main thread only.
class PanelStack {
 public:
    static PanelStack& shared();
    ~PanelStack();
    PanelStack(const PanelStack&) = delete;
    PanelStack& operator=(const PanelStack&) = delete;

    void add(VLPanel* panel);
    void remove(VLPanel* panel);
    /// Gives the keyboard to the panel and remembers it as the key panel.
    void makeKey(VLPanel* panel);
    /// Raises all panels, lowest level first. While a text is edited, unmanaged windows of other
    /// programs stay above: they are the input method's.
    void restack();
    /// The shown panels, lowest first.
    [[nodiscard]] const std::vector<VLPanel*>& panels() const;
    [[nodiscard]] PanelSurface& surface();

 private:
    PanelStack();
    void watchFocus();
    void takeFocusBack();
    [[nodiscard]] bool hasKeyboard() const;

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vorla
