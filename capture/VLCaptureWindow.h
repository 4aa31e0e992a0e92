#pragma once

#include <QPointer>
#include <memory>
#include <vector>

#include "platform/base/NotificationCenter.h"
#include "platform/view/VLPanel.h"

namespace vorla {
struct Display;
}

class VLCaptureWindowDelegate {
 public:
    virtual ~VLCaptureWindowDelegate() = default;
    virtual void captureDidCancel() {}
};

/// The panel over one screen. Turns Esc, Return, the right mouse button and a third click into the
/// session's events. Main thread.
class VLCaptureWindow : public VLPanel {
 public:
    /// Keeps a panel ready for each screen from now on: showing one that was shown before, or was
    /// prepared, takes a fraction of the time. Costs the memory of the screens' pixels.
    static void keepReady(const std::vector<vorla::Display>& screens);

    /// A panel that exactly covers the screen, not shown yet.
    static QPointer<VLCaptureWindow> captureWindowWithFrame(const VLRect& frame,
                                                            const vorla::Display& screen);

    void setWindowDelegate(std::weak_ptr<VLCaptureWindowDelegate> delegate) {
        windowDelegate_ = std::move(delegate);
    }
    /// Set once a selection was confirmed on any screen: from then on Return delivers.
    [[nodiscard]] bool responseToReturn() const { return responseToReturn_; }

 protected:
    void dispose() override;
    bool performKeyEquivalent(QKeyEvent& event) override;
    void mouseDown(const VLMouseEvent& event) override;
    void rightMouseDown(const VLMouseEvent& event) override;
    void closeRequested() override;

 private:
    VLCaptureWindow();
    void observe();
    void cancel();
    static std::vector<VLCaptureWindow*>& spares();
    static VLCaptureWindow* takeSpare(QSize nativeSize);

    std::weak_ptr<VLCaptureWindowDelegate> windowDelegate_;
    bool responseToReturn_ = false;
    vorla::NotificationObservers observers_;
};
