#include "toolbar/VLToolbarWindowController.h"

#include "editor/VLEditNotifications.h"
#include "editor/VLUndoManager.h"
#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/PanelShadow.h"
#include "toolbar/VLToolbarViewForDefault.h"
#include "toolbar/VLToolbarViewForVorla.h"
#include "toolbar/toolbarPlacement.h"

using vorla::Notification;

namespace {

constexpr int toolbarLevel = 3;

/// What a broadcast of the editor carries.
const VLNotificationDictionary& valuesOf(const Notification& notification) {
    static const VLNotificationDictionary none;
    const auto* values = std::any_cast<VLNotificationDictionary>(&notification.object);
    return values ? *values : none;
}

VLSize panelSize() {
    const VLSize size =
        VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLToolbarPanelSize");
    // A theme without it still gets a toolbar that can be used.
    return size.isEmpty() ? VLSize{478.0, 40.0} : size;
}

}  // namespace

std::shared_ptr<VLToolbarWindowController> VLToolbarWindowController::create(VLPoint origin) {
    std::shared_ptr<VLToolbarWindowController> controller(new VLToolbarWindowController);
    controller->setupWindow(origin);
    controller->setupToolbarView();
    controller->observe();
    return controller;
}

VLToolbarWindowController::~VLToolbarWindowController() {
    observers_.clear();
    if (popoverWindowController_) popoverWindowController_->forceClose();
    if (window_) window_->closePanel();
}

void VLToolbarWindowController::setupWindow(VLPoint origin) {
    window_ = new VLOverlayPanel(VLRect::make(origin, panelSize()), toolbarLevel);
    window_->setMovableByBackground(true);
    window_->setCursor(Qt::ArrowCursor);
    new PanelShadow(*window_);
}

void VLToolbarWindowController::setupToolbarView() {
    viewForVorla_ = VLCaptureThemeManager::sharedInstance().isVorlaTheme();
    if (viewForVorla_)
        toolbarView_ = new VLToolbarViewForVorla(window_->bounds());
    else
        toolbarView_ = new VLToolbarViewForDefault(window_->bounds());
    toolbarView_->setDelegate(weak_from_this());
    window_->setContentView(toolbarView_);
}

void VLToolbarWindowController::observe() {
    observers_.observe(VLNotificationFocusItemDidChange,
                       [this](const Notification& n) { focusItemDidChange(n); });
    observers_.observe(VLNotificationBeginCreateItem,
                       [this](const Notification& n) { beginCreateItem(n); });
    observers_.observe(NSUndoManagerCheckpointNotification,
                       [this](const Notification& n) { onUndoRedoCheckNotification(n); });
    observers_.observe(VLCaptureNotificationForChangeTheme,
                       [this](const Notification&) { handleChangeThemeNotification(); });
}

const std::shared_ptr<VLPopoverWindowController>&
VLToolbarWindowController::popoverWindowController() {
    if (!popoverWindowController_) {
        popoverWindowController_ = VLPopoverWindowController::create();
        popoverWindowController_->setDelegate(weak_from_this());
    }
    return popoverWindowController_;
}

void VLToolbarWindowController::setPosition(VLPoint position) {
    if (!toolbarView_) VLLog("%s view不能为空", __func__);
    if (window_) window_->setFrameOrigin(position);
}

void VLToolbarWindowController::setEnableUndo(bool enable) {
    if (toolbarView_) toolbarView_->setEnableUndo(enable);
}

void VLToolbarWindowController::setBackgroundColor(const QColor& color) {
    backgroundColor_ = color;
    if (toolbarView_) toolbarView_->setBackgroundColor(color);
}

// From toolbar and popover to the editor -------------------------------------------------------

void VLToolbarWindowController::graphTypeDidChange(int64_t graphType) {
    if (const auto delegate = delegate_.lock()) delegate->graphTypeDidChange(graphType);
}

void VLToolbarWindowController::undo() {
    if (const auto delegate = delegate_.lock()) delegate->undo();
}

void VLToolbarWindowController::colorDidChange(const QColor& color) {
    if (const auto delegate = delegate_.lock()) delegate->colorDidChange(color);
}

void VLToolbarWindowController::widthDidChange(uint64_t width) {
    if (const auto delegate = delegate_.lock()) delegate->widthDidChange(width);
}

void VLToolbarWindowController::fontSizeDidChange(uint64_t fontSize) {
    if (const auto delegate = delegate_.lock()) delegate->widthDidChange(fontSize);
}

// The popover ----------------------------------------------------------------------------------

void VLToolbarWindowController::showPopoverViewType(int64_t graphType) {
    if (!window_ || !toolbarView_) return;
    const auto [point, direction] = popoverArrow(
        toolbarView_->convertRectToWindow(toolbarView_->buttonFrameOfGraphType(graphType)),
        window_->frame());
    popoverWindowController()->showPopoverAtArrowPoint(point, graphType, direction, toolbarView_);
}

void VLToolbarWindowController::showPopoverViewType(int64_t graphType, uint64_t width,
                                                    const QColor& color) {
    if (!window_ || !toolbarView_) return;
    const auto [point, direction] = popoverArrow(
        toolbarView_->convertRectToWindow(toolbarView_->buttonFrameOfGraphType(graphType)),
        window_->frame());
    popoverWindowController()->showPopoverAtArrowPoint(point, graphType, width, color, direction,
                                                       toolbarView_);
}

// Broadcasts -----------------------------------------------------------------------------------

void VLToolbarWindowController::focusItemDidChange(const Notification& notification) {
    const auto& values = valuesOf(notification);
    const int64_t graphType = notificationValue<int64_t>(values, VLFocusItemGraphType).value_or(0);
    const double width = notificationValue<double>(values, VLFocusItemLineWidth).value_or(0.0);
    const QColor color = notificationValue<QColor>(values, VLFocusItemLineColor).value_or(QColor());
    const auto keptAlive = shared_from_this();
    if (toolbarView_) toolbarView_->setGraphTypeSelected(graphType);
    showPopoverViewType(graphType, static_cast<uint64_t>(std::max(0.0, width)), color);
}

void VLToolbarWindowController::beginCreateItem(const Notification& notification) {
    const int64_t graphType =
        notificationValue<int64_t>(valuesOf(notification), VLFocusItemGraphType).value_or(0);
    const auto keptAlive = shared_from_this();
    if (toolbarView_) toolbarView_->setGraphTypeSelected(graphType);
    showPopoverViewType(graphType);
}

void VLToolbarWindowController::onUndoRedoCheckNotification(const Notification& notification) {
    if (const auto* manager = notification.objectOr<const VLUndoManager*>(nullptr))
        setEnableUndo(manager->canUndo());
}

void VLToolbarWindowController::handleChangeThemeNotification() {
    if (!window_ || !toolbarView_) return;
    window_->setFrameSize(panelSize());
    if (viewForVorla_ == VLCaptureThemeManager::sharedInstance().isVorlaTheme()) {
        toolbarView_->configAppearanceAndLayout();
        return;
    }
    // The two kinds of toolbar have other buttons.
    const bool enableUndo = toolbarView_->enableUndo();
    const int64_t graphType = toolbarView_->graphTypeSelected();
    setupToolbarView();
    toolbarView_->setEnableUndo(enableUndo);
    toolbarView_->setGraphTypeSelected(graphType);
}
