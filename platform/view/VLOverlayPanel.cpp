#include "platform/view/VLOverlayPanel.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>

#include "platform/view/VLEventTracker.h"
#include "platform/view/VLPanel.h"

namespace {

uint64_t lastOrder = 0;

/// Where a panel of that size comes to lie when it is to stay inside its screen.
VLPoint keptInside(VLPoint origin, VLSize size, VLSize screen) {
    return {std::clamp(origin.x, 0.0, std::max(0.0, screen.width - size.width)),
            std::clamp(origin.y, 0.0, std::max(0.0, screen.height - size.height))};
}

}  // namespace

VLOverlayPanel::VLOverlayPanel(VLRect frame, int level) : VLView(frame), level_(level) {
    hide();
}

VLOverlayPanel::~VLOverlayPanel() {
    for (const auto& child : std::vector(childPanels_))
        if (child) child->removeFromParent();
}

void VLOverlayPanel::setLevel(int level) {
    if (level == level_) return;
    level_ = level;
    if (hasParent_) restack(panel());
}

void VLOverlayPanel::setContentView(VLView* view) {
    if (view == contentView_) return;
    if (contentView_) {
        contentView_->removeFromSuperview();
        contentView_->deleteLater();
    }
    contentView_ = view;
    if (!view) return;
    view->setFrame(bounds());
    view->setAutoresizing(WidthSizable | HeightSizable);
    addSubview(view);
}

std::vector<VLOverlayPanel*> VLOverlayPanel::childPanels() const {
    return inOrder(childPanels_);
}

// In and out ----------------------------------------------------------------------------------

void VLOverlayPanel::addChild(VLOverlayPanel* child) {
    if (!child || child == this) return;
    for (const VLOverlayPanel* above = this; above; above = above->parentPanel_)
        if (above == child) return;
    child->removeFromParent();
    childPanels_.emplace_back(child);
    child->enterPanel(hasParent_ ? panel() : nullptr, this);
    child->orderFront();
}

void VLOverlayPanel::enterPanel(VLPanel* panel, VLOverlayPanel* parent) {
    parentPanel_ = parent;
    hasParent_ = true;
    if (panel && parentWidget() != panel) {
        setParent(panel);
        deriveGeometry();
    }
    for (const auto& child : childPanels_)
        if (child) child->enterPanel(panel, this);
}

void VLOverlayPanel::removeFromParent() {
    if (!hasParent_) return;
    hasParent_ = false;
    auto& siblings = parentPanel_ ? parentPanel_->childPanels_
                                  : static_cast<VLPanel*>(parentWidget())->overlays_;
    std::erase_if(siblings, [this](const auto& panel) { return !panel || panel == this; });
    parentPanel_ = nullptr;
    updateVisibility();
}

void VLOverlayPanel::orderFront() {
    orderedIn_ = true;
    order_ = ++lastOrder;
    if (VLPanel* window = panel()) restack(window);
    updateVisibility();
}

void VLOverlayPanel::orderOut() {
    orderedIn_ = false;
    updateVisibility();
}

void VLOverlayPanel::updateVisibility() {
    const bool parentIsSeen = !parentPanel_ || !parentPanel_->isHidden();
    setVisible(orderedIn_ && hasParent_ && parentIsSeen && panel());
    for (const auto& child : std::vector(childPanels_))
        if (child) child->updateVisibility();
}

void VLOverlayPanel::closePanel() {
    orderOut();
    for (const auto& child : std::vector(childPanels_))
        if (child) child->removeFromParent();
    removeFromParent();
    VLEventTracker::whenIdle(this, [this] { deleteLater(); });
}

// Order ---------------------------------------------------------------------------------------

std::vector<VLOverlayPanel*> VLOverlayPanel::inOrder(
    const std::vector<QPointer<VLOverlayPanel>>& siblings) {
    std::vector<VLOverlayPanel*> ordered;
    for (const auto& panel : siblings)
        if (panel) ordered.push_back(panel);
    std::ranges::stable_sort(ordered, [](const VLOverlayPanel* a, const VLOverlayPanel* b) {
        return std::pair(a->level_, a->order_) < std::pair(b->level_, b->order_);
    });
    return ordered;
}

void VLOverlayPanel::appendStack(std::vector<VLOverlayPanel*>& stack) {
    stack.push_back(this);
    for (VLOverlayPanel* child : inOrder(childPanels_)) child->appendStack(stack);
}

/// Raises only what is out of order: each raise draws all of a panel again.
void VLOverlayPanel::restack(VLPanel* panel) {
    if (!panel) return;
    std::vector<VLOverlayPanel*> wanted;
    for (VLOverlayPanel* overlay : inOrder(panel->overlays_)) overlay->appendStack(wanted);
    std::vector<VLOverlayPanel*> present;
    for (QObject* child : panel->children())
        if (auto* overlay = dynamic_cast<VLOverlayPanel*>(child); overlay && overlay->hasParent_)
            present.push_back(overlay);
    const auto [firstWrong, unused] = std::ranges::mismatch(wanted, present);
    for (auto overlay = firstWrong; overlay != wanted.end(); ++overlay) (*overlay)->raise();
}

void VLOverlayPanel::frameDidChange(const VLRect& before) {
    const VLPoint moved = frame().origin() - before.origin();
    if (moved == VLPoint{}) return;
    for (const auto& child : std::vector(childPanels_))
        if (child) child->setFrameOrigin(child->frame().origin() + moved);
}

// Input ---------------------------------------------------------------------------------------

void VLOverlayPanel::mouseDown(const VLMouseEvent& event) {
    grip_.reset();
    if (movableByBackground_) grip_ = event.locationInWindow - frame().origin();
}

void VLOverlayPanel::mouseDragged(const VLMouseEvent& event) {
    if (!grip_ || !panel()) return;
    setFrameOrigin(keptInside(event.locationInWindow - *grip_, frame().size(), panel()->extent()));
}

void VLOverlayPanel::mouseUp(const VLMouseEvent& /*event*/) {
    grip_.reset();
}

void VLOverlayPanel::rightMouseDown(const VLMouseEvent& /*event*/) {}
void VLOverlayPanel::mouseMoved(const VLMouseEvent& /*event*/) {}

void VLOverlayPanel::mousePressEvent(QMouseEvent* event) {
    VLView::mousePressEvent(event);
    event->accept();
}

void VLOverlayPanel::mouseReleaseEvent(QMouseEvent* event) {
    VLView::mouseReleaseEvent(event);
    event->accept();
}

void VLOverlayPanel::wheelEvent(QWheelEvent* event) {
    event->accept();
}

void VLOverlayPanel::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
}
