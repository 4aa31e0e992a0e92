#pragma once

#include <QtCore/Qt>

#include "platform/base/geometry.h"

/// One mouse event as the views see it.
struct VLMouseEvent {
    enum class Type { LeftMouseDown, LeftMouseUp, LeftMouseDragged, RightMouseDown, MouseMoved };

    Type type = Type::MouseMoved;
    /// The middle of the device pixel under the pointer, in the panel's coordinates: points, origin
    /// at the panel's lower left.
    VLPoint locationInWindow;
    /// 1 for a single press, 2 for the second of a double click, and so on; 0 for movements.
    int clickCount = 0;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};
