#pragma once

#include <QImage>
#include <QPointer>
#include <memory>

#include "editor/VLEditViewController.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/geometry.h"
#include "selection/VLCaptureMagnifierView.h"
#include "selection/VLCaptureSizeInfoView.h"
#include "selection/VLCaptureView.h"
#include "toolbar/VLToolbarWindowController.h"

class VLCaptureWindowInfo;

class VLCaptureViewControllerDelegate {
 public:
    virtual ~VLCaptureViewControllerDelegate() = default;
    virtual void captureDidFinishWithImage(const QImage& /*image*/, bool /*needSave*/) {}
    virtual std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPostion(VLPoint /*point*/) {
        return nullptr;
    }
};

/// One screen's surface: it stacks the frozen picture, the selection, the magnifier and the size
/// label, and makes the selected picture. Of several screens the one that confirms goes on, the
/// others drop out and stay dimmed. Main thread.
class VLCaptureViewController : public VLCaptureViewDelegate,
                                public std::enable_shared_from_this<VLCaptureViewController> {
 public:
    /// Null, with a log line, without a picture.
    static std::shared_ptr<VLCaptureViewController> create(const VLRect& frame,
                                                           const vorla::FrozenScreen& screen);
    ~VLCaptureViewController() override;

    void setDelegate(std::weak_ptr<VLCaptureViewControllerDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// The bottom of the stack; whoever takes it as content owns it from then on.
    [[nodiscard]] VLView* view() const { return backgroundImageView_; }
    [[nodiscard]] VLCaptureView* captureView() const { return captureView_; }
    [[nodiscard]] VLCaptureMagnifierView* magifierView() const { return magifierView_; }
    VLCaptureSizeInfoView* sizeInfoView();
    /// Made at the first reading.
    const std::shared_ptr<VLToolbarWindowController>& toolbarWindowController();
    /// Null before the first confirmation on this screen.
    [[nodiscard]] const std::shared_ptr<VLEditViewController>& editViewController() const {
        return editViewController_;
    }

    /// Whether this screen still takes part.
    [[nodiscard]] bool needSelectRect() const { return needScreenCapture_; }

    /// The selection's picture: the clicked window's own, else what is inside the rectangle. Made
    /// once.
    QImage imageCaptured();

    void configAppearanceAndLayout();

    /// Puts the toolbar next to the selection; a shown one stays where it is.
    void showToolbar();
    void hideToolbar();
    /// Where the toolbar belongs, local to the screen.
    [[nodiscard]] VLPoint findToolbarPosition();

    void didConfirmSelection() override;
    void mouseLocationDidUpdate(VLPoint location, bool needShowMagnifier) override;
    void selectionDidChange(const VLRect& selectedRect) override;
    std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPostion(VLPoint point) override;
    void gotActiveWindowInfo(const std::shared_ptr<VLCaptureWindowInfo>& info) override;

 private:
    VLCaptureViewController(const VLRect& frame, const vorla::FrozenScreen& screen);
    void setupCaptureView(const VLRect& frame);
    void setupMagnifierViewWithScreenImage(const VLRect& frame);
    void observe();
    void handleReceivedConfirmSelectionNotification(const vorla::Notification& notification);
    void captureDidFinish(const vorla::Notification& notification);
    void editDidBegin();
    void prepareToRecord();
    void prepareForCapture();
    void finishCapture();
    [[nodiscard]] bool editing() const;
    [[nodiscard]] QImage generateCapturedImage() const;

    std::weak_ptr<VLCaptureViewControllerDelegate> delegate_;
    bool needScreenCapture_ = true;
    vorla::FrozenScreen frozen_;
    QImage imageCaptured_;
    QPointer<VLView> backgroundImageView_;
    QPointer<VLCaptureView> captureView_;
    QPointer<VLCaptureMagnifierView> magifierView_;
    QPointer<VLCaptureSizeInfoView> sizeInfoView_;
    std::shared_ptr<VLToolbarWindowController> toolbarWindowController_;
    std::shared_ptr<VLEditViewController> editViewController_;
    vorla::NotificationObservers observers_;
};
