#pragma once

#include <QPointer>
#include <optional>
#include <vector>

#include "platform/view/VLView.h"

/// A child panel: a layer inside the window of one screen, above the screen's content.
///
/// Its frame is in points local to the screen, from the screen's lower left. It is translucent
/// wherever its views draw nothing, never takes the keyboard, and swallows every press and turn of
/// the wheel that its views leave. A child is above its parent whatever their levels say; levels
/// order siblings, and among equals the one ordered front last is on top. Children move with their
/// parent, and are seen only while it is.
///
/// Whoever makes one closes it. The screen's panel deletes those that are in it when it goes, so
/// hold them in a QPointer. Closing is safe inside any of its callbacks. Main thread only.
class VLOverlayPanel : public VLView {
 public:
    explicit VLOverlayPanel(VLRect frame = {}, int level = 0);
    ~VLOverlayPanel() override;

    [[nodiscard]] int level() const { return level_; }
    void setLevel(int level);

    /// The view that fills the panel and grows with it; the panel owns it, and deletes the one that
    /// was there. Null takes it away.
    void setContentView(VLView* view);
    [[nodiscard]] VLView* contentView() const { return contentView_; }

    /// Puts `child` into the same window, above this panel, and shows it. It leaves its former
    /// parent.
    void addChild(VLOverlayPanel* child);
    /// Takes the panel, with its children, out of its window. Its frame stays for the next time.
    void removeFromParent();
    [[nodiscard]] VLOverlayPanel* parentPanel() const { return parentPanel_; }
    [[nodiscard]] bool hasParent() const { return hasParent_; }
    [[nodiscard]] std::vector<VLOverlayPanel*> childPanels() const;

    /// Shows the panel above its siblings of the same level.
    void orderFront();
    /// Hides the panel and its children, which come back with it.
    void orderOut();

    /// Whether a press on what its views leave drags the panel; it then stays on the screen.
    void setMovableByBackground(bool movable) { movableByBackground_ = movable; }

    /// Takes the panel and its children off the screen at once, and deletes it later, when no drag
    /// is being tracked.
    void closePanel();

 protected:
    void frameDidChange(const VLRect& before) override;
    void mouseDown(const VLMouseEvent& event) override;
    void mouseDragged(const VLMouseEvent& event) override;
    void mouseUp(const VLMouseEvent& event) override;
    void rightMouseDown(const VLMouseEvent& event) override;
    void mouseMoved(const VLMouseEvent& event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

 private:
    friend class VLPanel;
    void enterPanel(VLPanel* panel, VLOverlayPanel* parent);
    void updateVisibility();
    /// Appends the panel and what is above it, lowest first.
    void appendStack(std::vector<VLOverlayPanel*>& stack);
    static std::vector<VLOverlayPanel*> inOrder(
        const std::vector<QPointer<VLOverlayPanel>>& siblings);
    static void restack(VLPanel* panel);

    int level_;
    bool orderedIn_ = false;
    uint64_t order_ = 0;
    bool hasParent_ = false;
    bool movableByBackground_ = false;
    std::optional<VLPoint> grip_;
    QPointer<VLView> contentView_;
    QPointer<VLOverlayPanel> parentPanel_;
    std::vector<QPointer<VLOverlayPanel>> childPanels_;
};
