#include "platform/view/CursorStack.h"

#include <QGuiApplication>

namespace vorla {

CursorStack& CursorStack::shared() {
    static CursorStack instance;
    return instance;
}

void CursorStack::push(const QCursor& cursor) {
    QGuiApplication::setOverrideCursor(cursor);
    ++depth_;
}

void CursorStack::pop() {
    if (depth_ == 0) return;
    --depth_;
    QGuiApplication::restoreOverrideCursor();
}

void CursorStack::set(const QCursor& cursor) {
    if (depth_ > 0) QGuiApplication::changeOverrideCursor(cursor);
}

void CursorStack::clear() {
    while (depth_ > 0) pop();
}

}  // namespace vorla
