#pragma once

#include <QFont>
#include <QString>
#include <QWidget>
#include <functional>

class QPainter;

namespace vorla::demo {

/// A window of the demonstration desktop: a top-level widget whose contents are one drawing.
///
/// Everything is designed for a screen of 1920 x 1080 and drawn enlarged on larger ones, so that
/// the desktop looks the same at every resolution. Main thread only.
class DemoWindow : public QWidget {
 public:
    /// `frame` is the client area in design units, with the origin at the upper left of the screen.
    DemoWindow(const QString& title, const QRectF& frame);

    /// Called once, when the first picture has reached the X server.
    void setPaintedHandler(std::function<void()> handler) { painted_ = std::move(handler); }

    /// Pixels for each design unit on the primary screen.
    static double unit();

    /// The fonts of the desktop, with sizes in design units.
    static QFont sans(double size, QFont::Weight weight = QFont::Normal);
    static QFont mono(double size, QFont::Weight weight = QFont::Normal);

 protected:
    /// Draws the contents in design units; `size` is the client area's.
    virtual void drawContents(QPainter& painter, const QSizeF& size) = 0;

    void paintEvent(QPaintEvent* event) override;

 private:
    std::function<void()> painted_;
};

}  // namespace vorla::demo
