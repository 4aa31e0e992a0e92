#pragma once

#include <QMouseEvent>
#include <QWidget>

#include "platform/view/VLMouseEvent.h"

namespace vorla {

/// The views' form of a toolkit event that was delivered to `receiver`. Presses get their click
/// count: a press counts on while it follows the last one within the desktop's double-click
/// interval and distance, in the same window and with the same button; the same event seen twice
/// counts once. A press that became a drag is no click: the count starts anew after it.
VLMouseEvent mouseEvent(const QMouseEvent& event, const QWidget& receiver, VLMouseEvent::Type type);
VLMouseEvent mouseEvent(const QSinglePointEvent& event, const QWidget& receiver,
                        VLMouseEvent::Type type);

/// Whether this is a double-click event for a press that was delivered as a press already.
bool repeatsPress(const QMouseEvent& event);

/// Lets the next press count as the first, wherever and however soon it comes.
void forgetClicks();

/// Where on the desktop the last press was, in the toolkit's coordinates.
QPointF lastPressPosition();

/// The exact height of a panel in points, which is where its y begins; of another widget its own.
double heightOf(const QWidget& panel);

/// Device pixels per point of the screen that a widget is on. What the toolkit says of a widget is
/// rounded to 1/65536, which is too coarse to count the pixels of a wide screen with.
double scaleOf(const QWidget& widget);

/// Where the pointer is now, in the panel's coordinates.
VLPoint pointerLocationInWindow(const QWidget& panel);

/// The middle of the device pixel at a position in the panel (y-down, points), y-up in the panel.
VLPoint locationInWindow(QPointF inPanel, const QWidget& panel);

}  // namespace vorla
