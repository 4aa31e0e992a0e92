#include "platform/view/CursorStack.h"

#include "platform/base/raii.h"
#include "platform/view/PanelStack.h"
#include "platform/view/VLPanel.h"

namespace vorla {

CursorStack& CursorStack::shared() {
    // A session that the program's end overtakes clears it when static objects have gone.
    static NoDestructor<CursorStack> instance;
    return *instance;
}

void CursorStack::push(const QCursor& cursor) {
    cursors_.push_back(cursor);
    apply();
}

void CursorStack::pop() {
    if (cursors_.empty()) return;
    cursors_.pop_back();
    apply();
}

void CursorStack::set(const QCursor& cursor) {
    if (cursors_.empty()) return;
    cursors_.back() = cursor;
    apply();
}

const QCursor* CursorStack::current() const {
    return cursors_.empty() ? nullptr : &cursors_.back();
}

void CursorStack::clear() {
    cursors_.clear();
    apply();
}

void CursorStack::applyTo(VLPanel& panel) const {
    if (const QCursor* cursor = current())
        panel.setCursor(*cursor);
    else
        panel.unsetCursor();
}

void CursorStack::apply() const {
    for (VLPanel* panel : PanelStack::shared().panels()) applyTo(*panel);
}

}  // namespace vorla
