#pragma once

#include <memory>
#include <vector>

#include "editor/SparsePicture.h"
#include "platform/base/geometry.h"

class VLEditItem;

/// The picture of items that stay as they are, so that they are not drawn again while another one
/// is moved. What changes among them is mended where it shows, and nowhere else.
class RestingItems {
 public:
    using Items = std::vector<std::shared_ptr<VLEditItem>>;

    /// Size of the view in points, which must be whole pixels at that scale. True if it is the one
    /// that it was; another one empties the picture.
    bool setGeometry(VLSize size, double scale);
    /// The item looks different from when it was drawn. False if it is not in the picture.
    bool itemDidChange(const VLEditItem& item);
    /// Brings the picture up to these items, drawn first to last.
    void update(const Items& items);
    /// Blends the picture's part in `region` onto a painter with device pixels as its units, y
    /// downward, and the view's upper left corner as its zero point.
    void drawTo(QPainter& painter, const QRegion& region) const {
        picture_.drawTo(painter, region);
    }
    /// The device pixels that hold a rectangle of the view.
    [[nodiscard]] QRect devicePixels(const VLRect& rect) const;

 private:
    struct Entry {
        std::shared_ptr<VLEditItem> item;
        /// What was painted.
        QRegion region;
        bool stale = false;
    };

    [[nodiscard]] QRegion regionOf(const VLEditItem& item) const;
    /// Takes out what is not among the items any more; true if the rest are their beginning.
    [[nodiscard]] bool keepBeginning(const Items& items, QRegion& broken);
    void mend(const QRegion& broken);
    void paint(VLEditItem& item, QPainter& painter, const QRegion& region) const;

    VLSize viewSize_;
    double scale_ = 1.0;
    vorla::SparsePicture picture_;
    std::vector<Entry> entries_;
};
