#include "toolbar/VLToolbarView.h"

#include <vorla/VLStatistics.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <string>

#include "editor/VLEditGraphType.h"
#include "editor/VLEditNotifications.h"
#include "imaging/ImageHelpers.h"
#include "platform/base/NotificationCenter.h"
#include "platform/view/VLPanel.h"
#include "settings/StatisticDoor.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/VLToolbarFunctionButtonType.h"

using vorla::NotificationCenter;

namespace {

constexpr double cornerRadius = 3.0;

struct Numbered {
    int64_t type;
    int event;
};

/// In the order in which they are shown, which is not that of the numbers.
constexpr std::array<Numbered, 7> tools{{{VLEditGraphTypeRoundRect, VLStatEventToolRectangle},
                                         {VLEditGraphTypeOval, VLStatEventToolEllipse},
                                         {VLEditGraphTypeArrow, VLStatEventToolArrow},
                                         {VLEditGraphTypeCurve, VLStatEventToolPen},
                                         {VLEditGraphTypeMosaicPen, VLStatEventToolMosaic},
                                         {VLEditGraphTypeText, VLStatEventToolText},
                                         {VLEditGraphTypeTag, VLStatEventToolTag}}};
constexpr std::array<Numbered, 4> functions{{{VLToolbarFunctionButtonTypeUndo, VLStatEventUndo},
                                             {VLToolbarFunctionButtonTypeSave, VLStatEventSave},
                                             {VLToolbarFunctionButtonTypeCancel, VLStatEventCancel},
                                             {VLToolbarFunctionButtonTypeOK, VLStatEventFinish}}};

template <size_t size>
void reportButtonType(const std::array<Numbered, size>& buttons, int64_t type) {
    const auto* found = std::ranges::find(buttons, type, &Numbered::type);
    if (found != buttons.end()) vorla::fireStatisticEvent(found->event);
}

/// The theme's place for a button; a theme that names none gets the buttons in a row.
VLRect placeOfButton(const std::optional<std::string>& name, size_t position) {
    const VLRect place = VLCaptureThemeManager::sharedInstance().themedFrameWithKey(
        name.value_or(std::string()) + "_frame");
    if (!place.isEmpty()) return place;
    return {10.0 + 41.0 * static_cast<double>(position), 4.0, 32.0, 32.0};
}

template <typename Button>
Button* buttonOfType(const std::vector<Button*>& buttons, int64_t type) {
    const auto found = std::ranges::find(buttons, type, &Button::type);
    return found == buttons.end() ? nullptr : *found;
}

bool anyPanelIsShown() {
    return std::ranges::any_of(QApplication::topLevelWidgets(), [](QWidget* widget) {
        return widget->isVisible() && dynamic_cast<VLPanel*>(widget);
    });
}

}  // namespace

// Making ---------------------------------------------------------------------------------------

void VLToolbarView::initGaussEffect() {
    gaussEffectView_ = new GlassView(this);
}

void VLToolbarView::setupGraphButtons() {
    for (const Numbered& tool : tools) {
        auto* button = new VLToolbarGraphButton({}, this);
        button->setType(tool.type);
        button->action = [this, type = tool.type](VLButton&) { onGraphButtonClicked(type); };
        graphButtonArray_.push_back(button);
    }
}

void VLToolbarView::setupFunctionButtons() {
    for (const Numbered& function : functions) {
        auto* button = new VLToolbarFunctionButton({}, this);
        button->setType(function.type);
        button->action = [this, type = function.type](VLButton&) { onFunctionButtonClicked(type); };
        functionButtonArray_.push_back(button);
    }
}

void VLToolbarView::setupImageView() {
    seperateImageView_ = new VLImageView({300.0, 10.0, 0.0, 0.0}, this);
}

void VLToolbarView::configAppearanceAndLayout() {
    // The view may not be on its screen yet: pictures are made for the sharpest one.
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    const QColor color = theme.themedColorWithKey("VLToolbarView_BackgroundColor");
    const bool glass = theme.themedEnableWithKey("VLCaptureSizeInfoView_EnableGaussEffect");
    gaussEffectView_->setHidden(!glass);
    gaussEffectView_->setTint(color);
    if (glass)
        gaussEffectView_->setMaskImage(
            vorla::generateImageWithSize(bounds().size(), cornerRadius, qApp->devicePixelRatio()));
    setBackgroundColor(glass ? QColor() : color);
    const QImage line = theme.themedImageWithKey("VLToolbarSeperateLine");
    const QSizeF size = line.deviceIndependentSize();
    seperateImageView_->setFrameSize({size.width(), size.height()});
    seperateImageView_->setImage(line);
    configButtons();
    setNeedsDisplay();
}

void VLToolbarView::configButtons() {
    size_t position = 0;
    for (auto* button : graphButtonArray_) {
        button->setFrame(placeOfButton(VLEditGraphTypeString(button->type()), position++));
        button->configAppearanceAndLayout();
    }
    for (auto* button : functionButtonArray_) {
        button->setFrame(
            placeOfButton(VLToolbarFunctionButtonTypeString(button->type()), position++));
        button->configAppearanceAndLayout();
    }
}

// State ----------------------------------------------------------------------------------------

void VLToolbarView::setGraphTypeSelected(int64_t graphType) {
    if (graphType == graphTypeSelected_) return;
    if (auto* button = graphButtonByGraphType(graphTypeSelected_)) button->setIsSelected(false);
    if (auto* button = graphButtonByGraphType(graphType)) button->setIsSelected(true);
    graphTypeSelected_ = graphType;
}

bool VLToolbarView::enableUndo() const {
    const auto* button = functionButtonByGraphType(VLToolbarFunctionButtonTypeUndo);
    return button && button->isEnabled();
}

void VLToolbarView::setEnableUndo(bool enable) {
    if (auto* button = functionButtonByGraphType(VLToolbarFunctionButtonTypeUndo))
        button->setEnabled(enable);
}

void VLToolbarView::setBackgroundColor(const QColor& color) {
    backgroundColor_ = color;
    setNeedsDisplay();
}

VLToolbarGraphButton* VLToolbarView::graphButtonByGraphType(int64_t graphType) const {
    return buttonOfType(graphButtonArray_, graphType);
}

VLToolbarFunctionButton* VLToolbarView::functionButtonByGraphType(int64_t type) const {
    return buttonOfType(functionButtonArray_, type);
}

VLRect VLToolbarView::buttonFrameOfGraphType(int64_t graphType) const {
    const auto* button = graphButtonByGraphType(graphType);
    return button ? button->frame() : VLRect{};
}

// Clicks ---------------------------------------------------------------------------------------

void VLToolbarView::onGraphButtonClicked(int64_t graphType) {
    const QPointer<VLToolbarView> self(this);
    setGraphTypeSelected(graphType);
    reportButtonType(tools, graphType);
    if (const auto delegate = delegate_.lock()) delegate->graphTypeDidChange(graphType);
    if (!self) return;
    if (const auto delegate = delegate_.lock()) delegate->showPopoverViewType(graphType);
    if (self) postBeginEditNotification();
}

void VLToolbarView::onFunctionButtonClicked(int64_t type) {
    const QPointer<VLToolbarView> self(this);
    const QPointer<VLPanel> session(panel());
    const bool posted = postedBeginEditNotification_;
    reportButtonType(functions, type);
    act(type);
    // The session may be over by now, and the host may have begun another one in its callback:
    // that one must not hear that editing begins.
    const bool isOver = !session || !session->isVisible();
    if (posted || (isOver && anyPanelIsShown())) return;
    if (self)
        postBeginEditNotification();
    else
        NotificationCenter::defaultCenter().post(NotificationEditDidBegin);
}

void VLToolbarView::act(int64_t type) {
    auto& center = NotificationCenter::defaultCenter();
    switch (type) {
        case VLToolbarFunctionButtonTypeSave:
            center.post(NotificationCaptureDidFinish, true);
            break;
        case VLToolbarFunctionButtonTypeCancel:
            center.post(NotificationCaptureDidCancel, false);
            break;
        case VLToolbarFunctionButtonTypeOK:
            center.post(NotificationCaptureDidFinish);
            break;
        case VLToolbarFunctionButtonTypeUndo:
            if (const auto delegate = delegate_.lock()) delegate->undo();
            break;
        default:
            break;
    }
}

void VLToolbarView::postBeginEditNotification() {
    if (postedBeginEditNotification_) return;
    postedBeginEditNotification_ = true;
    NotificationCenter::defaultCenter().post(NotificationEditDidBegin);
}

bool VLToolbarView::performKeyEquivalent(QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const int position = event.key() - Qt::Key_1;
    if (modifiers != Qt::NoModifier || position < 0 || position >= std::ssize(graphButtonArray_) ||
        !isVisible() || !panel() || panel()->editsText())
        return VLView::performKeyEquivalent(event);
    if (!event.isAutoRepeat()) graphButtonArray_[static_cast<size_t>(position)]->performClick();
    return true;
}

void VLToolbarView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (!backgroundColor_.isValid()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(backgroundColor_);
    painter.drawRoundedRect(QRectF(0.0, 0.0, bounds().width, bounds().height), cornerRadius,
                            cornerRadius);
}
