#pragma once

#include <QPointer>
#include <vector>

#include "toolbar/popover/VLPopoverFontButton.h"
#include "toolbar/popover/VLPopoverFontSizeMenuForTern.h"
#include "toolbar/popover/VLPopoverFontSizeView.h"

/// The Tern theme's font sizes: three with names.
class VLPopoverFontSizeViewForTern : public VLPopoverFontSizeView,
                                     public VLPopoverFontSizeMenuForTernDelegate {
 public:
    explicit VLPopoverFontSizeViewForTern(QWidget* superview = nullptr);
    ~VLPopoverFontSizeViewForTern() override;

    [[nodiscard]] static const std::vector<uint64_t>& availabeFontSizeArray();
    [[nodiscard]] VLPopoverFontButton* chooseButton() const { return chooseButton_; }
    [[nodiscard]] VLPopoverFontSizeMenuForTern* fontSizeMenu() const { return fontSizeMenu_; }

    [[nodiscard]] uint64_t defaultFontSize() const override { return 24; }
    [[nodiscard]] uint64_t fontSize() const override;
    /// A size that is none of the three counts as the medium one.
    void setFontSize(uint64_t fontSize) override;
    void hideMenu() override;
    [[nodiscard]] VLSize viewSize() const override;
    void configAppearanceAndLayout() override;

    void fontSizeDidChange(uint64_t type) override;

 private:
    void showPopoverFontSizeMenu();

    VLPopoverFontButton* chooseButton_;
    QPointer<VLPopoverFontSizeMenuForTern> fontSizeMenu_;
};
