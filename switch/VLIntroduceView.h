#pragma once

#include <QColor>
#include <QImage>
#include <string>

#include "platform/view/VLView.h"

/// The logo that introduces the tool in a host's menu. It highlights under the pointer, also when
/// the menu opens there, and opens the web page on release, without asking where the press was.
/// Main thread.
class VLIntroduceView : public VLView {
 public:
    explicit VLIntroduceView(const VLRect& frame);

    [[nodiscard]] bool isHover() const { return hover_; }
    void setIsHover(bool value);

    [[nodiscard]] QSize sizeHint() const override;

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseEntered(const VLMouseEvent& event) override;
    void mouseExited(const VLMouseEvent& event) override;
    void mouseDown(const VLMouseEvent& event) override;
    void mouseUp(const VLMouseEvent& event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    [[nodiscard]] bool mouseInView() const;
    void updateTrackingAreas();
    static void openURL(const std::string& url);

    bool hover_ = false;
    VLSize natural_;
    QColor hoverColor_;
    QColor backgroundColor_;
    QImage normalImage_;
    QImage hoverImage_;
};
