#include "selection/VLCaptureViewController.h"

#include <QTimer>
#include <chrono>

#include "imaging/ImageHelpers.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLPanel.h"
#include "platform/view/drawing.h"
#include "toolbar/toolbarPlacement.h"
#include "windows/VLCaptureWindowInfo.h"

using vorla::Notification;
using vorla::NotificationCenter;

namespace {

/// Until the toolbar has been painted.
constexpr std::chrono::milliseconds delayOfPopover(30);

}  // namespace

std::shared_ptr<VLCaptureViewController> VLCaptureViewController::create(
    const VLRect& frame, const vorla::FrozenScreen& screen) {
    if (screen.isNull()) {
        VLLogError("%s 屏幕截图不能为空", __func__);
        return nullptr;
    }
    std::shared_ptr<VLCaptureViewController> controller(new VLCaptureViewController(frame, screen));
    controller->captureView_->setDelegate(controller);
    controller->observe();
    controller->configAppearanceAndLayout();
    return controller;
}

VLCaptureViewController::VLCaptureViewController(const VLRect& frame,
                                                 const vorla::FrozenScreen& screen)
    : frozen_(screen), backgroundImageView_(new VLView(frame)) {
    setupCaptureView(frame);
    setupMagnifierViewWithScreenImage(frame);
}

VLCaptureViewController::~VLCaptureViewController() {
    // A view that no panel has taken as its content has no owner but this.
    if (backgroundImageView_ && !backgroundImageView_->parentWidget())
        backgroundImageView_->deleteLater();
}

void VLCaptureViewController::setupCaptureView(const VLRect& frame) {
    captureView_ =
        new VLCaptureView({0.0, 0.0, frame.width, frame.height}, frozen_, backgroundImageView_);
}

void VLCaptureViewController::setupMagnifierViewWithScreenImage(const VLRect& frame) {
    magifierView_ = new VLCaptureMagnifierView(frozen_, frame, backgroundImageView_);
    magifierView_->hide();
}

void VLCaptureViewController::observe() {
    observers_.observe(VLNotificationCaptureDidConfirmSelection, [this](const Notification& n) {
        handleReceivedConfirmSelectionNotification(n);
    });
    observers_.observe(NotificationCaptureDidFinish,
                       [this](const Notification& n) { captureDidFinish(n); });
    observers_.observe(NotificationEditDidBegin, [this](const Notification&) { editDidBegin(); });
    observers_.observe(VLNotificationPrepareToRecord,
                       [this](const Notification&) { prepareToRecord(); });
}

VLCaptureSizeInfoView* VLCaptureViewController::sizeInfoView() {
    if (!sizeInfoView_ && backgroundImageView_) {
        sizeInfoView_ =
            new VLCaptureSizeInfoView(backgroundImageView_->frame(), backgroundImageView_);
        sizeInfoView_->hide();
    }
    return sizeInfoView_;
}

void VLCaptureViewController::configAppearanceAndLayout() {
    if (!captureView_ || !magifierView_) return;
    captureView_->configAppearanceAndLayout();
    sizeInfoView()->configAppearanceAndLayout();
    magifierView_->configAppearanceAndLayout();
}

// The surface's calls --------------------------------------------------------------------------

void VLCaptureViewController::didConfirmSelection() {
    const auto keptAlive = shared_from_this();
    VLLog("<VLCaptureViewController> %s", __func__);
    NotificationCenter::defaultCenter().post(VLNotificationCaptureDidConfirmSelection,
                                             static_cast<const VLCaptureViewController*>(this));
    if (magifierView_) magifierView_->hide();
    if (needScreenCapture_) showToolbar();
}

void VLCaptureViewController::mouseLocationDidUpdate(VLPoint location, bool needShowMagnifier) {
    if (!magifierView_ || !backgroundImageView_) return;
    const bool inside = backgroundImageView_->bounds().containsPoint(location);
    if (inside) magifierView_->setMouseLocation(location);
    magifierView_->setHidden(!needShowMagnifier);
    if (inside) hideToolbar();
}

void VLCaptureViewController::selectionDidChange(const VLRect& selectedRect) {
    if (sizeInfoView()) sizeInfoView()->setSelectedRect(selectedRect);
}

std::shared_ptr<VLCaptureWindowInfo> VLCaptureViewController::windowInfoAtPostion(VLPoint point) {
    const auto delegate = delegate_.lock();
    return delegate ? delegate->windowInfoAtPostion(point) : nullptr;
}

void VLCaptureViewController::gotActiveWindowInfo(
    const std::shared_ptr<VLCaptureWindowInfo>& info) {
    imageCaptured_ = info ? info->windowImage() : QImage();
}

// The toolbar ----------------------------------------------------------------------------------

const std::shared_ptr<VLToolbarWindowController>&
VLCaptureViewController::toolbarWindowController() {
    if (!toolbarWindowController_) toolbarWindowController_ = VLToolbarWindowController::create({});
    return toolbarWindowController_;
}

void VLCaptureViewController::showToolbar() {
    VLOverlayPanel* toolbar = toolbarWindowController()->window();
    VLPanel* panel = captureView_ ? captureView_->panel() : nullptr;
    if (!toolbar || !panel) return;
    if (toolbar->hasParent()) {
        VLLog("%s - toolbarViewController 已经显示", __func__);
        return;
    }
    toolbarWindowController_->setPosition(findToolbarPosition());
    panel->addChild(toolbar);
    // While the user looks for a tool, what its click will show is made.
    QTimer::singleShot(delayOfPopover, toolbar, [bar = std::weak_ptr(toolbarWindowController_)] {
        if (const auto controller = bar.lock())
            static_cast<void>(controller->popoverWindowController());
    });
}

void VLCaptureViewController::hideToolbar() {
    VLOverlayPanel* toolbar =
        toolbarWindowController_ ? toolbarWindowController_->window() : nullptr;
    if (!toolbar || !toolbar->hasParent()) return;
    toolbar->orderOut();
    toolbar->removeFromParent();
}

VLPoint VLCaptureViewController::findToolbarPosition() {
    const VLOverlayPanel* toolbar = toolbarWindowController()->window();
    const VLSize size = toolbar ? toolbar->frame().size() : VLSize{};
    return toolbarOrigin(captureView_->selectedRect(), size, captureView_->bounds());
}

// Broadcasts -----------------------------------------------------------------------------------

void VLCaptureViewController::handleReceivedConfirmSelectionNotification(
    const Notification& notification) {
    if (notification.objectOr<const VLCaptureViewController*>(nullptr) == this) {
        if (editViewController_) return;
        editViewController_ = std::make_shared<VLEditViewController>(VLRect{});
        editViewController_->view()->hide();
        toolbarWindowController()->setDelegate(editViewController_);
        return;
    }
    needScreenCapture_ = false;
    if (captureView_) captureView_->setNeedScreenCapture(false);
}

bool VLCaptureViewController::editing() const {
    return editViewController_ && editViewController_->view() &&
           editViewController_->view()->superview();
}

void VLCaptureViewController::editDidBegin() {
    if (!needScreenCapture_ || !captureView_) return;
    captureView_->setSelectComfirmed(true);
    if (editing() || !editViewController_ || !editViewController_->view()) return;
    VLView* editView = editViewController_->view();
    backgroundImageView_->addSubview(editView);
    editViewController_->setBackgroundImage(imageCaptured());
    editView->setFrame(captureView_->pixelSelectedRectInWindow());
    editView->show();
}

void VLCaptureViewController::captureDidFinish(const Notification& notification) {
    if (!needScreenCapture_) return;
    const auto keptAlive = shared_from_this();
    const bool needSave = notification.objectOr(false);
    VLLog("%s 是否需要保存图片文件 %d", __func__, needSave ? 1 : 0);
    const QImage image = editing() ? editViewController_->imageEdited() : imageCaptured();
    VLLog("%s 生成图片 %dx%d", __func__, image.width(), image.height());
    const auto delegate = delegate_.lock();
    if (!image.isNull() && delegate)
        delegate->captureDidFinishWithImage(image, needSave);
    else
        VLLogError("%s 截图出现错误 需要手动清除蒙板", __func__);
}

void VLCaptureViewController::prepareToRecord() {
    if (captureView_) captureView_->setNeedScreenCapture(false);
}

// The picture ----------------------------------------------------------------------------------

QImage VLCaptureViewController::imageCaptured() {
    VLLog("<VLCaptureViewController> %s", __func__);
    if (imageCaptured_.isNull() && captureView_) {
        prepareForCapture();
        imageCaptured_ = generateCapturedImage();
        finishCapture();
    }
    return imageCaptured_;
}

void VLCaptureViewController::prepareForCapture() {
    sizeInfoView()->hide();
    captureView_->prepareForCapture();
}

void VLCaptureViewController::finishCapture() {
    sizeInfoView()->show();
    captureView_->finishCapture();
}

/// Inside the selection the surface shows the frozen picture and nothing else, so its pixels are
/// taken from there as they are, without being drawn or copied.
QImage VLCaptureViewController::generateCapturedImage() const {
    return vorla::imagePart(frozen_.image(), captureView_->pixelSelectedRectInWindow());
}
