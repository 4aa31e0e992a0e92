// The painting of VLEditView. What is not being changed is kept in pictures, so that a pointer
// move costs what moves, however much is on the canvas.

#include <QPainter>
#include <utility>

#include "editor/VLEditView.h"
#include "editor/devicePainting.h"

std::vector<VLRect> VLEditView::rectsShown(const VLEditItem& item) const {
    std::vector<VLRect> rects;
    item.appendGraphRects(rects);
    if (focusItem().get() == &item) item.appendDecorationRects(rects);
    return rects;
}

/// What is at rest among the pictures has to be mended.
void VLEditView::itemDidChange(const VLEditItem& item) {
    const auto shown = shown_.find(&item);
    if (shown == shown_.end()) return;
    std::vector<VLRect> now = rectsShown(item);
    std::vector<VLRect> damage = std::exchange(shown->second, now);
    damage.insert(damage.end(), now.begin(), now.end());
    setNeedsDisplayInRects(damage);
    markStale(item);
}

void VLEditView::itemDidGrow(const VLEditItem& item, const VLRect& rect) {
    const auto shown = shown_.find(&item);
    if (shown == shown_.end()) return;
    shown->second = rectsShown(item);
    setNeedsDisplayInRect(rect);
    markStale(item);
}

void VLEditView::markStale(const VLEditItem& item) {
    if (restingItems_.itemDidChange(item) || restingMosaics_.itemDidChange(item))
        picturesCurrent_ = false;
}

void VLEditView::itemDidLeave(const VLEditItem& item) {
    const auto shown = shown_.find(&item);
    if (shown == shown_.end()) return;
    setNeedsDisplayInRects(shown->second);
    shown_.erase(shown);
    picturesCurrent_ = false;
}

/// Mosaics lie below everything else. A later one goes below the earlier ones, but all show parts
/// of one picture: painted in the order in which they were made, each one is only added.
void VLEditView::updatePictures(double scale) {
    const bool sameGeometry = restingItems_.setGeometry(bounds().size(), scale);
    restingMosaics_.setGeometry(bounds().size(), scale);
    if (picturesCurrent_ && sameGeometry) return;
    picturesCurrent_ = true;
    std::vector<Item> mosaics;
    std::vector<Item> items;
    liveMosaics_.clear();
    liveItems_.clear();
    const Item focus = focusItem();
    bool live = false;
    for (const Item& item : itemArray_) {
        if (itemIsBottomLevel(*item)) {
            auto& place = item == focus ? liveMosaics_ : mosaics;
            place.insert(place.begin(), item);
            continue;
        }
        live = live || item == focus;
        (live ? liveItems_ : items).push_back(item);
    }
    restingMosaics_.update(mosaics);
    restingItems_.update(items);
}

void VLEditView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const vorla::DevicePixelScope pixels(painter, bounds().size());
    drawItems(painter, pixels.regionOf(rectsBeingDrawn()), pixels.scale());
}

void VLEditView::drawItems(QPainter& painter, const QRegion& region, double scale) {
    updatePictures(scale);
    restingMosaics_.drawTo(painter, region);
    drawLive(painter, liveMosaics_, region, scale);
    restingItems_.drawTo(painter, region);
    drawLive(painter, liveItems_, region, scale);
}

void VLEditView::drawLive(QPainter& painter, const std::vector<Item>& items, const QRegion& region,
                          double scale) {
    if (items.empty()) return;
    const VLSize size = bounds().size();
    const QRect part = region.boundingRect();
    const VLRect dirty{part.x() / scale, size.height - (part.y() + part.height()) / scale,
                       part.width() / scale, part.height() / scale};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, -scale);
    painter.translate(0.0, -size.height);
    const Item focus = focusItem();
    for (const Item& item : items) {
        if (item->boundingRect().intersection(dirty).isEmpty()) continue;
        item->drawGraph(painter, dirty);
        if (item != focus) continue;
        item->drawActiveBorder(painter);
        item->drawControlPoints(painter);
    }
    painter.restore();
}
