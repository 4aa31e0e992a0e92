#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QImage>
#include <QPointer>
#include <memory>

#include "platform/view/VLButton.h"

class VLSwitchButtonDelegate {
 public:
    virtual ~VLSwitchButtonDelegate() = default;
    /// The user has turned to the recorder: a short animation follows.
    virtual void prepareToRecord() {}
    /// The animation is over.
    virtual void changeToRecord() {}
};

/// Plays a strip of frames that lie side by side, each 436 points wide, once: 40 frames a second by
/// the clock, whatever the screen can keep up with. Its last frame stays. Main thread.
class ThrobberImageView : public VLView {
 public:
    using VLView::VLView;

    /// Calls `finished` when the last frame's time is over, never inside this call; a strip that is
    /// narrower than one frame, or missing, has no frames and no length.
    void play(const QImage& strip, std::function<void()> finished);
    [[nodiscard]] bool isPlaying() const { return timer_.isActive(); }

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void timerEvent(QTimerEvent* event) override;

 private:
    QImage strip_;
    int frames_ = 0;
    int current_ = 0;
    QElapsedTimer clock_;
    QBasicTimer timer_;
    std::function<void()> finished_;
};

/// The big button of the mode switch. A press, not a release, is what counts; the first one plays
/// the sprite and then hands the session over, every one is counted. Main thread.
class VLSwitchButton : public VLButton {
 public:
    explicit VLSwitchButton(const VLRect& frame, QWidget* superview = nullptr);

    /// The delegate must outlive the button or take itself away.
    void setDelegate(VLSwitchButtonDelegate* delegate) { delegate_ = delegate; }
    [[nodiscard]] bool isPlaying() const { return throbberImageView_->isPlaying(); }

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseDown(const VLMouseEvent& event) override;
    void mouseUp(const VLMouseEvent& event) override;

 private:
    void setupThrobberImageAnimation();
    const QImage& firstImage();

    bool postedAction_ = false;
    VLSwitchButtonDelegate* delegate_ = nullptr;
    QImage firstImage_;
    ThrobberImageView* throbberImageView_;
};
