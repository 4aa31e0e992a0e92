#pragma once

#include <QImage>
#include <QPointer>

#include "editor/VLEditView.h"
#include "editor/VLToolbarWindowControllerDelegate.h"

/// Lays the canvas over the selection's picture, passes on what the toolbar asks for, and makes one
/// picture of both at the end. Main thread.
class VLEditViewController : public VLToolbarWindowControllerDelegate {
 public:
    explicit VLEditViewController(const VLRect& frame);
    ~VLEditViewController() override;
    VLEditViewController(const VLEditViewController&) = delete;
    VLEditViewController& operator=(const VLEditViewController&) = delete;

    /// The picture with the canvas in it. A superview that takes it owns it from then on.
    [[nodiscard]] VLView* view() const;
    [[nodiscard]] VLEditView* editView() const { return editView_; }

    /// Sets what is annotated; only the first picture counts.
    void setBackgroundImage(const QImage& image);

    void graphTypeDidChange(int64_t graphType) override;
    void colorDidChange(const QColor& color) override;
    void widthDidChange(uint64_t width) override;
    void undo() override;

    /// Picture and items in one, in the picture's own pixels; ends text edits and takes the focus
    /// away. What no item covers keeps its pixels exactly. Null without a picture.
    QImage imageEdited();

 private:
    class BackgroundImageView;

    void prepareTool() const;

    QPointer<BackgroundImageView> backgroundImageView_;
    QPointer<VLEditView> editView_;
};
