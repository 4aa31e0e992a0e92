#pragma once

#include <QColor>
#include <QFont>
#include <QString>

#include "platform/view/VLView.h"

/// The text in the size label.
class VLCaptureSizeInfoSubView : public VLView {
 public:
    explicit VLCaptureSizeInfoSubView(const VLRect& frame, QWidget* superview);

    [[nodiscard]] const QString& sizeInfoStr() const { return sizeInfoStr_; }
    void setSizeInfoStr(const QString& text) { sizeInfoStr_ = text; }
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    QColor fontColor_;
    QFont font_;
    QString sizeInfoStr_;
};

/// The label above the selection that shows its size in points. Main thread.
class VLCaptureSizeInfoView : public VLView {
 public:
    /// `screenFrame` is the surface's frame. A label above a selection that reaches the screen's
    /// top moves down into it.
    explicit VLCaptureSizeInfoView(const VLRect& screenFrame, QWidget* superview = nullptr);

    /// Shows the size and follows the rectangle; the zero rectangle hides the label.
    void setSelectedRect(const VLRect& rect);
    [[nodiscard]] const VLRect& selectRect() const { return selectRect_; }
    [[nodiscard]] const QString& sizeInfoStr() const { return sizeView_->sizeInfoStr(); }

    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    [[nodiscard]] VLPoint originForRect(const VLRect& rect) const;

    QColor backgroundColor_;
    QColor borderColor_;
    VLRect screenFrame_;
    VLRect selectRect_;
    VLCaptureSizeInfoSubView* sizeView_;
};
