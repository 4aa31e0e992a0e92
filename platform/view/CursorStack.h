#pragma once

#include <QCursor>

namespace vorla {

/// The pointer's shape while panels are up, as a stack over the host's own. Every change takes
/// effect at once on all windows of the process. Main thread.
class CursorStack {
 public:
    static CursorStack& shared();

    void push(const QCursor& cursor);
    /// Takes the uppermost cursor away; nothing happens on an empty stack.
    void pop();
    /// Replaces the uppermost cursor; nothing happens on an empty stack.
    void set(const QCursor& cursor);
    [[nodiscard]] bool isEmpty() const { return depth_ == 0; }
    /// Gives the host its own cursors back.
    void clear();

 private:
    int depth_ = 0;
};

}  // namespace vorla
