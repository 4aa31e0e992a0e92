#pragma once

#include <QPointer>
#include <vector>

#include "toolbar/popover/VLPopoverButton.h"
#include "toolbar/popover/VLPopoverFontSizeButton.h"
#include "toolbar/popover/VLPopoverFontSizeView.h"
#include "toolbar/popover/VLPopoverMenu.h"

/// The font sizes of all themes but Tern's: the present one in a box, with a menu of thirteen.
class VLPopoverFontSizeViewForIbis : public VLPopoverFontSizeView {
 public:
    explicit VLPopoverFontSizeViewForIbis(QWidget* superview = nullptr);
    ~VLPopoverFontSizeViewForIbis() override;

    [[nodiscard]] VLPopoverButton* fontSizeButton() const { return fontSizeButton_; }
    [[nodiscard]] VLPopoverMenu* fontSizeMenu() const { return fontSizeMenu_; }

    [[nodiscard]] uint64_t defaultFontSize() const override { return 14; }
    [[nodiscard]] uint64_t fontSize() const override { return fontSizeButton_->fontSize(); }
    /// Any size will do.
    void setFontSize(uint64_t fontSize) override { fontSizeButton_->setFontSize(fontSize); }
    void hideMenu() override;
    /// The size of the line width picker, whose place it takes.
    [[nodiscard]] VLSize viewSize() const override;
    void configAppearanceAndLayout() override;

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    void showPopoverFontSizeMenu();
    void fontSizeButtonDidClick(const VLPopoverFontSizeButton* button);

    VLPopoverButton* fontSizeButton_;
    VLPopoverButton* pullDownArrowButton_;
    QPointer<VLPopoverMenu> fontSizeMenu_;
    std::vector<VLPopoverFontSizeButton*> items_;
    QColor fontColor_;
};
