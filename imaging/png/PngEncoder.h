#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// Writes PNG files many times as fast as the usual writers. Rows are packed and filtered with
/// vector instructions; large pictures are compressed by igzip in stripes on all processors, small
/// ones by libdeflate in two or three parts, and those that nobody waits for in one.
class PngEncoder {
 public:
    enum class Goal {
        Speed,  ///< someone waits; a large file may be a seventh larger than the usual writers'
        Size,   ///< in the background: no larger than the usual writers' files
    };
    struct Options {
        Goal goal = Goal::Speed;
        /// Store an opaque picture of at most 256 colours as an indexed one. Every reader returns
        /// the same pixels, but Qt's returns them as Format_Indexed8.
        bool mayIndexColors = true;
    };

    /// The PNG file of a picture, at 8 bits a channel: RGB if all pixels are opaque, else RGBA with
    /// straight alpha. RGB32, ARGB32 and ARGB32_Premultiplied are read in place, other formats
    /// converted first. A device pixel ratio other than 1 is stored as resolution (72 dpi times
    /// the ratio).
    ///
    /// Blocks the caller, which works along with threads of the global queue, and is safe from any
    /// thread and from tasks of that queue. For a large picture and speed it needs, next to the
    /// result, less than half of the picture's own memory, else about as much as the picture.
    /// Empty if the picture is null or memory runs out.
    static QByteArray encode(const QImage& image, Options options);
    static QByteArray encode(const QImage& image) { return encode(image, Options()); }
};

}  // namespace vorla
