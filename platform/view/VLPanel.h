#pragma once

#include <QWidget>
#include <functional>

#include "platform/base/geometry.h"
#include "platform/view/VLMouseEvent.h"

class VLView;

/// A frameless top-level window that no window manager touches, at a level of its own.
///
/// Panels with higher levels stay above lower ones, and all of them above every other window, also
/// one that is opened later. The key panel has the keyboard: it takes it without a window manager's
/// help, takes it back when another program steals it, and when the last panel goes the keyboard
/// returns to where it was before the first.
///
/// A panel deletes itself some time after `closePanel`. Main thread only; hold panels in a
/// QPointer.
class VLPanel : public QWidget {
 public:
    /// `level` orders the panels among each other; see `PanelStack`.
    explicit VLPanel(int level);
    ~VLPanel() override;

    [[nodiscard]] int level() const { return level_; }

    /// Puts the panel over a whole screen: exactly its native rectangle, whatever its scale.
    void coverScreen(QScreen* screen);

    /// The view that fills the panel; the panel owns it. Null takes the present one away.
    void setContentView(VLView* view);
    [[nodiscard]] VLView* contentView() const;

    /// Shows the panel at its level and gives it the keyboard.
    void makeKeyAndOrderFront();
    /// Shows the panel at its level, above all panels of the same one.
    void orderFrontRegardless();

    /// Takes the panel off the screen at once. It is disposed of later, when no drag is being
    /// tracked: the view that tracks may well be one of its own.
    void closePanel();

    /// Allocates the memory that the panel is painted in, and touches it: most of the time that a
    /// first showing takes goes into that.
    void prepareBackingStore();

    /// Called once, when the panel's first picture has been handed to the screen.
    std::function<void()> onFirstPaint;

 protected:
    /// What becomes of a closed panel; the default deletes it.
    virtual void dispose();
    /// For panels that are kept for later instead: `shelve` takes everything off a closed panel and
    /// leaves it closed, `reopen` makes it as good as new.
    void shelve();
    void reopen();

    /// A key that no view took. True if it was dealt with.
    virtual bool performKeyEquivalent(QKeyEvent* event);
    /// Presses that no view of the panel took.
    virtual void mouseDown(const VLMouseEvent& event);
    virtual void rightMouseDown(const VLMouseEvent& event);
    /// The application is told to end, or the window to go. The default closes the panel.
    virtual void closeRequested();

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    /// Modal dialogs of the host block every window but those that belong to them.
    void joinModalWindow();

    int level_;
    bool closed_ = false;
    bool painted_ = false;
};
