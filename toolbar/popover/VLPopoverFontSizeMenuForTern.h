#pragma once

#include <array>
#include <cstdint>

#include "toolbar/GlassView.h"
#include "toolbar/popover/VLPopoverMenuFontSizeButton.h"
#include "toolbar/popover/VLPopoverMenuPanel.h"

class VLPopoverFontSizeMenuForTernDelegate {
 public:
    virtual ~VLPopoverFontSizeMenuForTernDelegate() = default;
    /// A `VLPopoverFontSizeType`, not a size.
    virtual void fontSizeDidChange(uint64_t /*type*/) {}
};

/// The Tern theme's menu of sizes, always of glass: Max at the top, Min at the foot.
class VLPopoverFontSizeMenuForTern : public VLPopoverMenuPanel {
 public:
    static constexpr VLSize menuSize{80.0, 92.0};

    VLPopoverFontSizeMenuForTern();

    /// Held weakly: it must take itself away before it goes.
    void setFontSizeDelegate(VLPopoverFontSizeMenuForTernDelegate* delegate) {
        fontSizeDelegate_ = delegate;
    }
    /// Min, Medium, Max.
    [[nodiscard]] const std::array<VLPopoverMenuFontSizeButton*, 3>& buttons() const {
        return buttons_;
    }
    void configAppearanceAndLayout();

 private:
    void fontSizeDidChanged(uint64_t type);

    VLPopoverFontSizeMenuForTernDelegate* fontSizeDelegate_ = nullptr;
    GlassView* gaussEffectView_;
    std::array<VLPopoverMenuFontSizeButton*, 3> buttons_{};
};
