#include "toolbar/VLToolbarButton.h"

#include <QPainter>

#include "platform/base/Bundle.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"

VLToolbarButton::VLToolbarButton(const VLRect& frame, QWidget* superview)
    : VLButton(frame, superview) {}

void VLToolbarButton::setType(int64_t type) {
    type_ = type;
    configAppearanceAndLayout();
    updateToolTip();
    setNeedsDisplay();
}

void VLToolbarButton::configAppearanceAndLayout() {
    images_ = {};
    setNeedsDisplay();
}

void VLToolbarButton::updateToolTip() {
    if (const char* key = titleKey())
        setTitle(QString::fromStdString(vorla::Bundle::framework().localizedString(key)));
}

const QImage& VLToolbarButton::image(ImageState state) {
    if (imageScale_ != backingScale()) {
        imageScale_ = backingScale();
        images_ = {};
    }
    using Operation = QImage (VLToolbarButton::*)(int64_t) const;
    static constexpr std::array<Operation, ImageStateCount> operations{
        &VLToolbarButton::selectedImageOfType, &VLToolbarButton::hoverImageOfType,
        &VLToolbarButton::pressedImageOfType, &VLToolbarButton::normalImageOfType,
        &VLToolbarButton::disabledImageOfType};
    std::optional<QImage>& image = images_[state];
    if (!image) image = (this->*operations[state])(type_);
    return *image;
}

QImage VLToolbarButton::themedImage(const std::optional<std::string>& name,
                                    const char* suffix) const {
    if (!name || name->empty()) return {};
    return VLCaptureThemeManager::sharedInstance().themedImageWithKey(*name + suffix,
                                                                      backingScale());
}

void VLToolbarButton::drawImageOf(QPainter& painter, ImageState state) {
    vorla::drawImage(painter, image(state), bounds());
}

void VLToolbarButton::drawFirst(QPainter& painter, std::initializer_list<ImageState> states) {
    for (const ImageState state : states)
        if (!image(state).isNull()) return drawImageOf(painter, state);
    QFont font = VLThemedFont{{}, 9.0}.font();
    const QString title =
        QFontMetricsF(font).elidedText(accessibleName(), Qt::ElideRight, bounds().width);
    const VLSize size = vorla::textSize(title, font);
    vorla::drawText(painter, title, font, isHover() ? Qt::white : Qt::lightGray,
                    {bounds().midX() - size.width / 2.0, bounds().midY() - size.height / 2.0});
}

void VLToolbarButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (isPressed())
        drawFirst(painter, {Pressed, Selected, Normal});
    else if (isSelected())
        drawFirst(painter, {Selected, Normal});
    else if (isHover())
        drawFirst(painter, {Hover, Normal});
    else
        drawFirst(painter, {Normal});
}
