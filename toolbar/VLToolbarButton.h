#pragma once

#include <QImage>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/view/VLButton.h"

/// Base of the toolbar's buttons: a picture for each state, from the theme under the name of what
/// the button does. Without any picture the button shows its title.
class VLToolbarButton : public VLButton {
 public:
    explicit VLToolbarButton(const VLRect& frame, QWidget* superview = nullptr);

    [[nodiscard]] int64_t type() const { return type_; }
    /// Also reads the theme and the title.
    void setType(int64_t type);
    void configAppearanceAndLayout();

 protected:
    enum ImageState { Selected, Hover, Pressed, Normal, Disabled, ImageStateCount };

    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    /// Draws the first of the pictures that there is; the title if there is none.
    void drawFirst(QPainter& painter, std::initializer_list<ImageState> states);
    void drawImageOf(QPainter& painter, ImageState state);
    /// Read from the theme when it is drawn for the first time: most states are never seen.
    [[nodiscard]] const QImage& image(ImageState state);

    // The theme's picture for a state; null for none.
    [[nodiscard]] virtual QImage selectedImageOfType(int64_t /*type*/) const { return {}; }
    [[nodiscard]] virtual QImage hoverImageOfType(int64_t /*type*/) const { return {}; }
    [[nodiscard]] virtual QImage pressedImageOfType(int64_t /*type*/) const { return {}; }
    [[nodiscard]] virtual QImage normalImageOfType(int64_t /*type*/) const { return {}; }
    [[nodiscard]] virtual QImage disabledImageOfType(int64_t /*type*/) const { return {}; }
    /// The picture under a name with a suffix, for the screen that the button is on.
    [[nodiscard]] QImage themedImage(const std::optional<std::string>& name,
                                     const char* suffix) const;
    /// The key of the tool-tip's text; null for a type that is none, which changes no tool-tip.
    [[nodiscard]] virtual const char* titleKey() const = 0;

 private:
    void updateToolTip();

    int64_t type_ = 0;
    double imageScale_ = 0.0;
    std::array<std::optional<QImage>, ImageStateCount> images_;
};
