#include "toolbar/popover/VLPopoverWindowController.h"

#include <algorithm>

#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverFontSizeViewForIbis.h"
#include "toolbar/popover/VLPopoverFontSizeViewForTern.h"
#include "toolbar/popover/VLPopoverLineColorViewForIbis.h"
#include "toolbar/popover/VLPopoverLineColorViewForTern.h"
#include "toolbar/popover/overlayOf.h"
#include "toolbar/toolbarPlacement.h"

namespace {

constexpr int popoverLevel = 101;

bool isTernTheme() {
    return VLCaptureThemeManager::sharedInstance().themeName() == "Tern-theme";
}

}  // namespace

std::shared_ptr<VLPopoverWindowController> VLPopoverWindowController::create() {
    std::shared_ptr<VLPopoverWindowController> controller(new VLPopoverWindowController);
    controller->setupPickers();
    controller->configAppearanceAndLayout();
    controller->observers_.observe(VLCaptureNotificationForChangeTheme,
                                   [self = controller.get()](const vorla::Notification&) {
                                       self->handleChangeThemeNotification();
                                   });
    return controller;
}

VLPopoverWindowController::VLPopoverWindowController() {
    setupWindow();
    QObject::connect(&animation_, &QVariantAnimation::valueChanged, &animation_,
                     [this](const QVariant& value) { showAnimationStep(value.toDouble()); });
    QObject::connect(&animation_, &QVariantAnimation::finished, &animation_,
                     [this] { endAnimation(); });
}

VLPopoverWindowController::~VLPopoverWindowController() {
    forceClose();
}

void VLPopoverWindowController::setupWindow() {
    window_ = new VLOverlayPanel({}, popoverLevel);
    window_->setCursor(Qt::ArrowCursor);
    shadow_ = new PanelShadow(*window_);
    popoverView_ = new VLPopoverView;
    popoverView_->setShowLogo(false);
    window_->setContentView(popoverView_);
}

void VLPopoverWindowController::setupPickers() {
    if (!popoverView_) return;
    pickersForTern_ = isTernTheme();
    if (!lineWidthView_) {
        lineWidthView_ = new VLPopoverLineWidthView(popoverView_);
        lineWidthView_->setDelegate(weak_from_this());
    }
    if (!fontSizeView_) {
        if (pickersForTern_)
            fontSizeView_ = new VLPopoverFontSizeViewForTern(popoverView_);
        else
            fontSizeView_ = new VLPopoverFontSizeViewForIbis(popoverView_);
        fontSizeView_->setDelegate(weak_from_this());
    }
    if (!lineColorView_) {
        if (pickersForTern_)
            lineColorView_ = new VLPopoverLineColorViewForTern(popoverView_);
        else
            lineColorView_ = new VLPopoverLineColorViewForIbis(popoverView_);
        lineColorView_->setDelegate(weak_from_this());
    }
}

void VLPopoverWindowController::dropPickers() {
    for (VLView* view :
         {static_cast<VLView*>(lineColorView_), static_cast<VLView*>(fontSizeView_)}) {
        if (!view) continue;
        view->hide();
        view->deleteLater();
    }
    lineColorView_ = nullptr;
    fontSizeView_ = nullptr;
}

void VLPopoverWindowController::forceClose() {
    openingPress_.reset();
    animation_.stop();
    if (lineColorView_) lineColorView_->hideMenu();
    if (fontSizeView_) fontSizeView_->hideMenu();
    if (window_) window_->closePanel();
    window_ = nullptr;
}

// Opening --------------------------------------------------------------------------------------

void VLPopoverWindowController::showPopoverAtArrowPoint(VLPoint point, int64_t graphType,
                                                        uint64_t arrowDirection, VLView* inView) {
    open(point, graphType, arrowDirection, inView, Configurations::Restore,
         graphType == graphType_ ? Opening::AtOnce : Opening::Animated);
}

void VLPopoverWindowController::showPopoverAtArrowPoint(VLPoint point, int64_t graphType,
                                                        uint64_t width, const QColor& color,
                                                        uint64_t arrowDirection, VLView* inView) {
    open(point, graphType, arrowDirection, inView, Configurations::Keep,
         graphType == graphType_ ? Opening::AtOnce : Opening::Animated);
    if (!window_) return;
    if (popoverTypeByGraphType(graphType) & VLPopoverTypeLineWidth) lineWidthView_->setWidth(width);
    if (popoverType_ & VLPopoverTypeLineColor) lineColorView_->setSelectedColor(color);
    if (popoverType_ & VLPopoverTypeFontSize) fontSizeView_->setFontSize(width);
}

void VLPopoverWindowController::open(VLPoint point, int64_t graphType, uint64_t arrowDirection,
                                     VLView* inView, Configurations configurations,
                                     Opening opening) {
    if (graphType == 0 || !inView || !window_) return;
    const auto keptAlive = shared_from_this();
    endAnimation();
    arrowPoint_ = point;
    graphType_ = graphType;
    popoverType_ = popoverTypeByGraphType(graphType);
    superView_ = inView;
    arrowDirection_ = arrowDirection;
    window_->setFrame(VLRect::make(popoverPosition(), windowSizeOfType(popoverType_)));
    popoverView_->setArrowPoint(arrowPoint_ - window_->frame().origin());
    popoverView_->setArrowDirection(arrowDirection);
    setupPickers();
    if (configurations == Configurations::Restore) updateConfigurations();
    if (!window_) return;  // whoever heard of the attributes may have ended it all
    attachToView();
    configAppearanceAndLayout();
    if (opening == Opening::Animated) animateOpening();
}

void VLPopoverWindowController::attachToView() {
    VLOverlayPanel* parent = overlayOf(superView_);
    if (parent && superView_->panel() && window_->parentPanel() != parent)
        parent->addChild(window_);
}

/// The tool's attributes become the editor's at once.
void VLPopoverWindowController::updateConfigurations() {
    const ToolAttributes chosen = getConfigurationsOfType(graphType_);
    const uint64_t pickers = popoverType_;
    const auto delegate = delegate_.lock();
    if (pickers & VLPopoverTypeLineWidth) {
        lineWidthView_->setWidth(*chosen.width);
        if (delegate) delegate->widthDidChange(*chosen.width);
    }
    if (pickers & VLPopoverTypeLineColor && lineColorView_) {
        lineColorView_->setSelectedColor(chosen.color);
        if (delegate) delegate->colorDidChange(chosen.color);
    }
    if (pickers & VLPopoverTypeFontSize && fontSizeView_) {
        fontSizeView_->setFontSize(*chosen.fontSize);
        if (delegate) delegate->fontSizeDidChange(*chosen.fontSize);
    }
}

// Place and size -------------------------------------------------------------------------------

VLSize VLPopoverWindowController::windowSizeOfType(uint64_t popoverType) const {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    const bool color = popoverType & VLPopoverTypeLineColor;
    VLSize size;
    if (popoverType & VLPopoverTypeLineWidth)
        size = theme.themedSizeWithKey(color ? "VLPopoverViewSize_WidthColor"
                                             : "VLPopoverViewSize_Width");
    else if (popoverType & VLPopoverTypeFontSize && color)
        size = theme.themedSizeWithKey("VLPopoverViewSize_FontColor");
    if (showLogo_) size.width += theme.themedSizeWithKey("VLPopoverViewSize_Logo").width;
    return size;
}

VLPoint VLPopoverWindowController::popoverPosition() const {
    const VLRect toolbar =
        superView_ ? superView_->convertRectToWindow(superView_->bounds()) : VLRect{};
    const auto direction = arrowDirection_ == VLPopoverArrowDirectionDown
                               ? VLPopoverArrowDirectionDown
                               : VLPopoverArrowDirectionUp;
    return popoverOrigin(arrowPoint_, direction, windowSizeOfType(popoverType_), toolbar);
}

void VLPopoverWindowController::layoutSubViews() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    const VLRect body = popoverView_->roundRectFrame();
    const auto place = [&](VLView* view, bool shown, const char* marginKey, double from) {
        view->setHidden(!shown);
        const VLSize margin = theme.themedMarginWithKey(marginKey);
        if (shown) view->setFrameOrigin({from + margin.width, body.y + margin.height});
    };
    const bool width = popoverType_ & VLPopoverTypeLineWidth;
    const bool font = popoverType_ & VLPopoverTypeFontSize;
    place(lineWidthView_, width, "VLPopoverLineWidthViewMargin", body.x);
    place(fontSizeView_, font, "VLPopoverFontSizeViewMargin", body.x);
    double left = body.x;
    if (width)
        left +=
            lineWidthView_->frame().x + theme.themedSizeWithKey("VLPopoverLineWidthViewSize").width;
    if (font)
        left = body.x + fontSizeView_->frame().x +
               theme.themedSizeWithKey("VLPopoverFontSizeViewSize").width;
    place(lineColorView_, popoverType_ & VLPopoverTypeLineColor, "VLPopoverLineColorViewMargin",
          left);
}

void VLPopoverWindowController::configAppearanceAndLayout() {
    if (!window_) return;
    // Colours and pictures change with the theme and the screen only.
    if (const double scale = popoverView_->backingScale(); dressedScale_ != scale) {
        dressedScale_ = scale;
        popoverView_->configAppearanceAndLayout();
        fontSizeView_->configAppearanceAndLayout();
        lineColorView_->configAppearanceAndLayout();
        lineWidthView_->configAppearanceAndLayout();
    }
    layoutSubViews();
    if (shadow_) shadow_->setMaskImage(popoverView_->maskImage());
}

void VLPopoverWindowController::handleChangeThemeNotification() {
    if (!window_) return;
    if (pickersForTern_ != isTernTheme()) {
        const QColor color = lineColorView_->selectedColor();
        const uint64_t fontSize = fontSizeView_->fontSize();
        dropPickers();
        setupPickers();
        lineColorView_->setSelectedColor(color);
        fontSizeView_->setFontSize(fontSize);
    }
    if (popoverType_ != VLPopoverTypeNone && superView_) {
        window_->setFrame(VLRect::make(popoverPosition(), windowSizeOfType(popoverType_)));
        popoverView_->setArrowPoint(arrowPoint_ - window_->frame().origin());
    }
    dressedScale_ = 0.0;
    configAppearanceAndLayout();
}

// What was chosen ------------------------------------------------------------------------------

uint64_t VLPopoverWindowController::defaultWidth() const {
    return VLPopoverLineWidthView::defaultWidth();
}

QColor VLPopoverWindowController::defaultColor() const {
    return lineColorView_ ? lineColorView_->defaultColor() : QColor();
}

uint64_t VLPopoverWindowController::defaultFontSize() const {
    return fontSizeView_ ? fontSizeView_->defaultFontSize() : 0;
}

ToolAttributes VLPopoverWindowController::getConfigurationsOfType(int64_t graphType) const {
    ToolAttributes chosen = configuration_.attributesOfType(graphType);
    if (!chosen.width) chosen.width = defaultWidth();
    if (!chosen.color.isValid()) chosen.color = defaultColor();
    if (!chosen.fontSize) chosen.fontSize = defaultFontSize();
    return chosen;
}

void VLPopoverWindowController::saveConfigurationsOfType(int64_t graphType, const QColor& color) {
    configuration_.saveAttributes({lineWidthView_->width(), color, fontSizeView_->fontSize()},
                                  graphType);
}

void VLPopoverWindowController::widthDidChange(uint64_t width) {
    saveConfigurationsOfType(graphType_, lineColorView_->selectedColor());
    if (const auto delegate = delegate_.lock()) delegate->widthDidChange(width);
}

void VLPopoverWindowController::colorDidChange(const QColor& color) {
    saveConfigurationsOfType(graphType_, lineColorView_->selectedColor());
    if (const auto delegate = delegate_.lock()) delegate->colorDidChange(color);
}

void VLPopoverWindowController::fontSizeDidChange(uint64_t fontSize) {
    saveConfigurationsOfType(graphType_, lineColorView_->selectedColor());
    if (const auto delegate = delegate_.lock()) delegate->fontSizeDidChange(fontSize);
}

// The opening animation ------------------------------------------------------------------------

/// A picture of the popover grows and fades in where the popover will be; the pickers themselves
/// are drawn once.
void VLPopoverWindowController::animateOpening() {
    const QImage snapshot =
        renderViewTree(*popoverView_, popoverView_->bounds(), popoverView_->backingScale());
    if (snapshot.isNull()) return;
    snapshotView_ = new VLImageView({}, window_);
    snapshotView_->setImage(snapshot);
    snapshotView_->show();
    popoverView_->hide();
    if (shadow_) shadow_->setCast(false);
    animation_.setStartValue(0.0);
    animation_.setEndValue(1.0);
    animation_.setDuration(static_cast<int>(alphaTransformAnimationStyleDuration * 1000.0));
    animation_.setEasingCurve(QEasingCurve::InQuad);
    animation_.start();
    // A press is for the pickers, not for their picture.
    openingPress_ = std::make_unique<vorla::PressMonitor>(
        [this](const vorla::PressMonitor::Press&) { endAnimation(); });
}

void VLPopoverWindowController::showAnimationStep(double fraction) {
    if (!snapshotView_ || !window_) return;
    const VLRect whole = window_->bounds();
    snapshotView_->setFrame({whole.midX() - whole.width * fraction / 2.0,
                             whole.maxY() - whole.height * fraction, whole.width * fraction,
                             whole.height * fraction});
    snapshotView_->setAlphaValue(fraction);
}

void VLPopoverWindowController::endAnimation() {
    openingPress_.reset();
    animation_.stop();
    if (snapshotView_) {
        snapshotView_->hide();
        snapshotView_->deleteLater();
    }
    snapshotView_ = nullptr;
    if (popoverView_) popoverView_->show();
    if (shadow_) shadow_->setCast(true);
}
