#include "editor/VLUndoManager.h"

#include <utility>

#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"

VLUndoManager::~VLUndoManager() {
    VLLog("%s", __func__);
}

void VLUndoManager::registerUndo(Call call) {
    std::vector<Step>& stack = phase_ == Phase::Undoing ? redo_ : undo_;
    if (phase_ == Phase::Recording) redo_.clear();
    if (!std::exchange(open_, true)) stack.emplace_back();
    stack.back().push_back(std::move(call));
    if (phase_ == Phase::Recording) postCheckpoint();
}

void VLUndoManager::undo() {
    if (!canUndo()) {
        VLLog("[MESSAGE]can not undo!");
        return;
    }
    run(undo_, Phase::Undoing);
}

void VLUndoManager::redo() {
    if (!canRedo()) {
        VLLog("[MESSAGE]can not redo!");
        return;
    }
    run(redo_, Phase::Redoing);
}

void VLUndoManager::run(std::vector<Step>& from, Phase phase) {
    // A call that undoes while an undo runs would record on the wrong stack.
    if (phase_ != Phase::Recording) return;
    const Step step = std::move(from.back());
    from.pop_back();
    phase_ = phase;
    open_ = false;
    for (auto call = step.rbegin(); call != step.rend(); ++call) (*call)();
    open_ = false;
    phase_ = Phase::Recording;
    postCheckpoint();
}

void VLUndoManager::postCheckpoint() const {
    vorla::NotificationCenter::defaultCenter().post(NSUndoManagerCheckpointNotification, this);
}
