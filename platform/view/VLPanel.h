#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

#include "platform/base/geometry.h"
#include "platform/view/VLMouseEvent.h"

class VLOverlayPanel;
class VLView;

/// A frameless top-level window that no window manager touches, at a level of its own.
///
/// Panels with higher levels stay above lower ones, and all of them above every other window, also
/// one that is opened later. The key panel has the keyboard: it takes it without a window manager's
/// help, takes it back when another program steals it, and when the last panel goes the keyboard
/// returns to where it was before the first.
///
/// Inside the panel the keyboard belongs to the first responder, which is set explicitly: a press
/// moves it nowhere. Esc goes to the panel first, unless an input method is composing. Every other
/// key goes to the first responder and up its superviews; what none of them takes goes as a key
/// equivalent down the view tree, front to back, and in the end to the panel. While a text has the
/// first responder, what types or moves in it ends there, and Undo goes there while it has
/// something to undo.
///
/// A panel deletes itself some time after `closePanel`. Main thread only; hold panels in a
/// QPointer.
class VLPanel : public QWidget {
 public:
    /// `level` orders the panels among each other; see `PanelStack`.
    explicit VLPanel(int level);
    ~VLPanel() override;

    [[nodiscard]] int level() const { return level_; }

    /// Puts the panel over a whole screen: exactly its native rectangle, whatever its scale. The
    /// toolkit's idea of a screen is rounded to whole points, so the rectangle is to be given in
    /// native pixels; an empty one stands for what the toolkit thinks.
    void coverScreen(QScreen* screen, const QRect& nativeFrame = {});
    [[nodiscard]] const QRect& nativeFrame() const { return nativeFrame_; }
    /// The exact size in points, which at scales such as 1.25 need not be whole: y begins there.
    [[nodiscard]] VLSize extent() const;
    [[nodiscard]] VLRect bounds() const { return VLRect::make({}, extent()); }

    /// The view that fills the panel; the panel owns it. Null takes the present one away. Without
    /// one the panel is black.
    void setContentView(VLView* view);
    [[nodiscard]] VLView* contentView() const;

    /// Puts a child panel above the content and shows it; it leaves its former parent.
    void addChild(VLOverlayPanel* overlay);
    /// The child panels, lowest first.
    [[nodiscard]] std::vector<VLOverlayPanel*> overlays() const;

    /// Gives the keys to a view or another widget in the panel; null gives them to the panel
    /// itself, as does the end or hiding of the responder.
    void makeFirstResponder(QWidget* responder);
    /// Null when it is the panel itself.
    [[nodiscard]] QWidget* firstResponder() const { return firstResponder_; }
    /// Whether the first responder is a text that the user types in.
    [[nodiscard]] bool editsText() const;

    /// Shows the panel at its level and gives it the keyboard.
    void makeKeyAndOrderFront();
    /// Shows the panel at its level, above all panels of the same one.
    void orderFrontRegardless();

    /// Takes the panel off the screen at once. It is disposed of later, when no drag is being
    /// tracked: the view that tracks may well be one of its own.
    void closePanel();

    /// Paints the panel, and shows and hides it once where no screen is. The memory that it is
    /// painted in is then allocated, and touched by us and by the server: most of the time that a
    /// first showing takes goes into that.
    void rehearse();

    /// Paints the next rows of the picture that the panel is to be shown with, while the server is
    /// busy with something else; false when there are none left. Showing paints the rest, while the
    /// server puts on the screen what is there.
    bool paintAhead();

    /// Called once, when the panel's first picture has been handed to the screen.
    std::function<void()> onFirstPaint;

 protected:
    /// What becomes of a closed panel; the default deletes it.
    virtual void dispose();
    /// For panels that are kept for later instead: `shelve` takes everything off a closed panel and
    /// leaves it closed, `reopen` makes it as good as new.
    void shelve();
    void reopen();

    /// Esc, and the keys that no view took. True if it was dealt with.
    virtual bool performKeyEquivalent(QKeyEvent& event);
    /// Presses that no view of the panel took.
    virtual void mouseDown(const VLMouseEvent& event);
    virtual void rightMouseDown(const VLMouseEvent& event);
    /// The application is asked to end, or the window to close. The default closes the panel.
    virtual void closeRequested();

    bool event(QEvent* event) override;
    bool eventFilter(QObject* receiver, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    friend class VLOverlayPanel;
    bool paintBand();
    void showPainted();
    void putOnScreen();
    void awaitServer();
    [[nodiscard]] bool routeKeyEquivalent(QKeyEvent& event);
    /// A key on its way to the first responder; true if it went elsewhere.
    bool interceptKey(QKeyEvent& event);
    void watchResponder(const QEvent& event);
    void refuseClickFocus(QPoint at) const;
    void fitContent();
    [[nodiscard]] bool fitsNatively() const;
    /// Modal dialogs of the host block every window but those that belong to them.
    void joinModalWindow();

    int level_;
    QRect nativeFrame_;
    VLSize exactSize_;
    QPointer<VLView> contentView_;
    std::vector<QPointer<VLOverlayPanel>> overlays_;
    QPointer<QWidget> firstResponder_;
    bool composing_ = false;
    bool closed_ = false;
    int paintedRows_ = 0;  ///< of the picture to be shown, in points from the top
    bool awaitsExposure_ = false;
};
