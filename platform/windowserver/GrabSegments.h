#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/base/ArrivingRows.h"
#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// Shared memory that the server writes pictures of the screen into.
///
/// A segment's pages cost four times as much to fault in as the picture takes to write, so segments
/// are kept: one goes out with the image made on it, comes back when the last copy of that image
/// dies (on whichever thread), and serves the next session. Kept are at most the bytes of one
/// picture of every display; what is above that is freed.
class GrabSegments : public std::enable_shared_from_this<GrabSegments> {
 public:
    explicit GrabSegments(std::shared_ptr<X11Connection> connection);
    ~GrabSegments();
    GrabSegments(const GrabSegments&) = delete;
    GrabSegments& operator=(const GrabSegments&) = delete;

    /// How many bytes may be kept for later; frees what is above.
    void keepUpTo(size_t bytes);

    /// A picture of a rectangle of the root window, which must lie on it, as it looks at one
    /// moment; the scale is its device pixel ratio. It stays in its segment, and its rows may still
    /// be on their way. The alpha byte is left as the server gave it. Null when the server refuses.
    ArrivingImage begin(const PixelRect& rect, double scale);

    /// Ends the use of the connection: images that are still out free their memory themselves.
    void close();

    /// Bytes that are kept and not in use.
    [[nodiscard]] size_t keptBytes() const;

 private:
    class Segment;
    struct Loan;
    class Stripes;
    static void endLoan(void* loan);

    std::unique_ptr<Segment> take(size_t bytes);
    QImage lend(std::unique_ptr<Segment> segment, const PixelRect& rect, PixelLayout layout);
    void giveBack(std::unique_ptr<Segment> segment);
    void trim();

    mutable std::mutex mutex_;  ///< guards everything below
    std::shared_ptr<X11Connection> connection_;
    std::vector<std::unique_ptr<Segment>> free_;
    size_t limit_ = 0;
};

}  // namespace vorla
