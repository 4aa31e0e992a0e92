#pragma once

#include <QColor>
#include <memory>

#include "platform/view/VLView.h"

class VLPopoverLineColorViewDelegate {
 public:
    virtual ~VLPopoverLineColorViewDelegate() = default;
    virtual void colorDidChange(const QColor& /*color*/) {}
};

/// Base of the colour picker's two forms.
class VLPopoverLineColorView : public VLView {
 public:
    explicit VLPopoverLineColorView(QWidget* superview = nullptr) : VLView({}, superview) {}

    void setDelegate(std::weak_ptr<VLPopoverLineColorViewDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    [[nodiscard]] virtual QColor defaultColor() const { return {}; }
    [[nodiscard]] virtual QColor selectedColor() const { return {}; }
    /// The delegate does not hear of it.
    virtual void setSelectedColor(const QColor& /*color*/) {}
    virtual void hideMenu() {}
    [[nodiscard]] virtual VLSize viewSize() const;
    virtual void configAppearanceAndLayout();

 protected:
    [[nodiscard]] std::shared_ptr<VLPopoverLineColorViewDelegate> delegate() const {
        return delegate_.lock();
    }

 private:
    std::weak_ptr<VLPopoverLineColorViewDelegate> delegate_;
};
