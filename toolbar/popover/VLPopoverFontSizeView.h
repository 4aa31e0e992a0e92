#pragma once

#include <cstdint>
#include <memory>

#include "platform/view/VLView.h"

class VLPopoverFontSizeViewDelegate {
 public:
    virtual ~VLPopoverFontSizeViewDelegate() = default;
    /// In points.
    virtual void fontSizeDidChange(uint64_t /*fontSize*/) {}
};

/// Base of the font size picker's two forms.
class VLPopoverFontSizeView : public VLView {
 public:
    explicit VLPopoverFontSizeView(QWidget* superview = nullptr) : VLView({}, superview) {}

    void setDelegate(std::weak_ptr<VLPopoverFontSizeViewDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    [[nodiscard]] virtual uint64_t defaultFontSize() const { return 0; }
    [[nodiscard]] virtual uint64_t fontSize() const { return 0; }
    /// The delegate does not hear of it.
    virtual void setFontSize(uint64_t /*fontSize*/) {}
    virtual void hideMenu() {}
    [[nodiscard]] virtual VLSize viewSize() const { return {}; }
    virtual void configAppearanceAndLayout();

 protected:
    [[nodiscard]] std::shared_ptr<VLPopoverFontSizeViewDelegate> delegate() const {
        return delegate_.lock();
    }

 private:
    std::weak_ptr<VLPopoverFontSizeViewDelegate> delegate_;
};
