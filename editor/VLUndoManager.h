#pragma once

#include <functional>
#include <vector>

/// Posted after what can be undone has changed; the object is the manager
/// (`const VLUndoManager*`), valid while the broadcast runs.
inline constexpr const char* NSUndoManagerCheckpointNotification =
    "NSUndoManagerCheckpointNotification";

/// Two stacks of recorded calls, for undo and redo.
///
/// A recorded call makes its change and records the opposite: what is recorded while an undo runs
/// goes to the redo stack, while a redo runs to the undo stack; anything else goes to the undo
/// stack and empties the redo stack. Calls recorded between two `beginEvent` form one step and run
/// last to first. A call keeps alive whatever it holds. Main thread.
class VLUndoManager {
 public:
    using Call = std::function<void()>;

    VLUndoManager() = default;
    ~VLUndoManager();
    VLUndoManager(const VLUndoManager&) = delete;
    VLUndoManager& operator=(const VLUndoManager&) = delete;

    /// While off, nothing can be undone or redone; the stacks stay as they are.
    void setEnable(bool enable) { enable_ = enable; }
    [[nodiscard]] bool enable() const { return enable_; }

    [[nodiscard]] bool canUndo() const { return enable_ && !undo_.empty(); }
    [[nodiscard]] bool canRedo() const { return enable_ && !redo_.empty(); }

    /// Ends the step that is being recorded: what comes next is a step of its own.
    void beginEvent() { open_ = false; }
    void registerUndo(Call call);
    void undo();
    void redo();

 private:
    using Step = std::vector<Call>;
    enum class Phase { Recording, Undoing, Redoing };

    void run(std::vector<Step>& from, Phase phase);
    void postCheckpoint() const;

    bool enable_ = true;
    bool open_ = false;
    Phase phase_ = Phase::Recording;
    std::vector<Step> undo_;
    std::vector<Step> redo_;
};
