#include "editor/RestingItems.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "editor/items/VLEditItem.h"

bool RestingItems::setGeometry(VLSize size, double scale) {
    if (size == viewSize_ && scale == scale_) return true;
    viewSize_ = size;
    scale_ = scale;
    entries_.clear();
    picture_.setSize(QSize(static_cast<int>(std::lround(size.width * scale)),
                           static_cast<int>(std::lround(size.height * scale))));
    return false;
}

QRect RestingItems::devicePixels(const VLRect& rect) const {
    const VLRect seen = rect.intersection({0.0, 0.0, viewSize_.width, viewSize_.height});
    if (seen.isEmpty()) return {};
    return QRectF(seen.x * scale_, (viewSize_.height - seen.maxY()) * scale_, seen.width * scale_,
                  seen.height * scale_)
        .toAlignedRect();
}

QRegion RestingItems::regionOf(const VLEditItem& item) const {
    std::vector<VLRect> rects;
    item.appendGraphRects(rects);
    QRegion region;
    for (const VLRect& rect : rects) region += devicePixels(rect);
    return region;
}

bool RestingItems::itemDidChange(const VLEditItem& item) {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [&item](const Entry& e) { return e.item.get() == &item; });
    if (entry == entries_.end()) return false;
    entry->stale = true;
    return true;
}

bool RestingItems::keepBeginning(const Items& items, QRegion& broken) {
    std::unordered_set<const VLEditItem*> wanted;
    for (const auto& item : items) wanted.insert(item.get());
    std::erase_if(entries_, [&](const Entry& entry) {
        if (wanted.contains(entry.item.get())) return false;
        broken += entry.region;
        return true;
    });
    for (size_t i = 0; i < entries_.size(); ++i)
        if (entries_[i].item != items[i]) return false;
    return true;
}

void RestingItems::update(const Items& items) {
    QRegion broken;
    if (!keepBeginning(items, broken)) {
        entries_.clear();
        broken = QRect(QPoint(), picture_.size());
    }
    for (Entry& entry : entries_) {
        if (!entry.stale) continue;
        broken += entry.region;
        entry.region = regionOf(*entry.item);
        entry.stale = false;
        broken += entry.region;
    }
    mend(broken);
    for (size_t i = entries_.size(); i < items.size(); ++i) {
        entries_.push_back({items[i], regionOf(*items[i])});
        const Entry& added = entries_.back();
        picture_.paint(added.region,
                       [&](QPainter& painter) { paint(*added.item, painter, added.region); });
    }
}

void RestingItems::mend(const QRegion& broken) {
    if (broken.isEmpty()) return;
    picture_.erase(broken);
    for (const Entry& entry : entries_) {
        const QRegion part = entry.region & broken;
        if (part.isEmpty()) continue;
        picture_.paint(part, [&](QPainter& painter) { paint(*entry.item, painter, part); });
    }
}

void RestingItems::paint(VLEditItem& item, QPainter& painter, const QRegion& region) const {
    const QRect part = region.boundingRect();
    const VLRect dirty{part.x() / scale_, viewSize_.height - (part.y() + part.height()) / scale_,
                       part.width() / scale_, part.height() / scale_};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale_, -scale_);
    painter.translate(0.0, -viewSize_.height);
    item.drawGraph(painter, dirty);
}
