#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <cstddef>
#include <cstdint>

#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// The image format that pixels of a layout have after `finishPixels`.
QImage::Format imageFormatOf(PixelLayout layout);

enum class AlphaByte {
    AsIs,  ///< the unused byte of opaque pixels keeps what the server left in it
    Set,   ///< opaque pixels have 255 there
};

/// Turns pixels as the server gave them into those of the layout's image format, in place.
void finishPixels(uint32_t* pixels, size_t count, PixelLayout layout, AlphaByte alpha);

/// Reads a rectangle of a window or pixmap through the connection itself, a strip at a time, so
/// that no more than a few megabytes are on their way at once. Needs no extension. `rect` is in
/// the drawable's own pixels and must lie inside it (and, for a window, on the screen). Opaque
/// pixels get 255 in their highest byte. Null when the server refuses.
QImage imageOfDrawable(X11Connection& connection, xcb_drawable_t drawable, const PixelRect& rect,
                       PixelLayout layout);

}  // namespace vorla
