#pragma once

#include <QCursor>
#include <vector>

class VLPanel;

namespace vorla {

/// The pointer's shape on the panels, as a stack: the uppermost one shows wherever a view has none
/// of its own. Every change takes effect at once. The host's windows keep theirs. Main thread.
class CursorStack {
 public:
    static CursorStack& shared();

    void push(const QCursor& cursor);
    /// Takes the uppermost cursor away; nothing happens on an empty stack.
    void pop();
    /// Replaces the uppermost cursor; nothing happens on an empty stack.
    void set(const QCursor& cursor);
    [[nodiscard]] bool isEmpty() const { return cursors_.empty(); }
    /// The uppermost one; null on an empty stack.
    [[nodiscard]] const QCursor* current() const;
    void clear();

    /// Sets the current cursor on a panel that has just come up.
    void applyTo(VLPanel& panel) const;

 private:
    void apply() const;
    std::vector<QCursor> cursors_;
};

}  // namespace vorla
