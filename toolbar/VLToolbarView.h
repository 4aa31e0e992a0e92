#pragma once

#include <vorla/VLNotifications.h>

#include <QColor>
#include <QImage>
#include <memory>
#include <vector>

#include "platform/view/VLImageView.h"
#include "toolbar/GlassView.h"
#include "toolbar/VLToolbarFunctionButton.h"
#include "toolbar/VLToolbarGraphButton.h"

class VLToolbarViewDelegate {
 public:
    virtual ~VLToolbarViewDelegate() = default;
    virtual void graphTypeDidChange(int64_t /*graphType*/) {}
    virtual void showPopoverViewType(int64_t /*graphType*/) {}
    virtual void undo() {}
};

/// What the toolbar shows: the buttons of the tools and functions. It turns clicks into calls of
/// the delegate, broadcasts and statistic events. Main thread.
class VLToolbarView : public VLView {
 public:
    void setDelegate(std::weak_ptr<VLToolbarViewDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    [[nodiscard]] int64_t graphTypeSelected() const { return graphTypeSelected_; }
    /// Shows a tool as chosen, 0 for none; nobody hears of it.
    void setGraphTypeSelected(int64_t graphType);
    [[nodiscard]] bool enableUndo() const;
    void setEnableUndo(bool enable);
    /// An invalid colour draws no background.
    void setBackgroundColor(const QColor& color);

    /// Null for a type that has no button.
    [[nodiscard]] VLToolbarGraphButton* graphButtonByGraphType(int64_t graphType) const;
    [[nodiscard]] VLToolbarFunctionButton* functionButtonByGraphType(int64_t type) const;
    /// In the view's coordinates; zero for a type that has no button.
    [[nodiscard]] VLRect buttonFrameOfGraphType(int64_t graphType) const;
    [[nodiscard]] const std::vector<VLToolbarGraphButton*>& graphButtonArray() const {
        return graphButtonArray_;
    }
    [[nodiscard]] const std::vector<VLToolbarFunctionButton*>& functionButtonArray() const {
        return functionButtonArray_;
    }

    /// Reads the theme: background, pictures and the buttons' places.
    virtual void configAppearanceAndLayout();

    /// The keys 1 to 7 choose the tools in their order, unless the user is typing.
    bool performKeyEquivalent(QKeyEvent& event) override;

 protected:
    explicit VLToolbarView(const VLRect& frame) : VLView(frame) {}

    void initGaussEffect();
    void setupGraphButtons();
    void setupFunctionButtons();
    void setupImageView();
    void configButtons();
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    void onGraphButtonClicked(int64_t graphType);
    void onFunctionButtonClicked(int64_t type);
    void act(int64_t type);
    void postBeginEditNotification();

    std::weak_ptr<VLToolbarViewDelegate> delegate_;
    bool postedBeginEditNotification_ = false;
    int64_t graphTypeSelected_ = 0;
    std::vector<VLToolbarGraphButton*> graphButtonArray_;
    std::vector<VLToolbarFunctionButton*> functionButtonArray_;
    QColor backgroundColor_;
    VLImageView* seperateImageView_ = nullptr;
    GlassView* gaussEffectView_ = nullptr;
};
