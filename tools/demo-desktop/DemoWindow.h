#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QWidget>
#include <functional>

class QPainter;

namespace vorla::demo {

/// What a window of the demonstration desktop is: its names, its place, its drawing.
struct WindowPlan {
    const char* name;       ///< the instance part of WM_CLASS
    const char* className;  ///< its class part
    const char* title;
    QRectF frame;  ///< the client area in design units, origin at the upper left of the screen
    void (*draw)(QPainter& painter, const QSizeF& size);  ///< in design units
};

/// A top-level widget whose contents are one drawing, designed for a screen of 1920 x 1080 and
/// drawn enlarged on larger ones, so that the desktop looks the same at every resolution. Main
/// thread only.
class DemoWindow : public QWidget {
 public:
    explicit DemoWindow(const WindowPlan& plan);

    /// Called once, when the first picture has reached the X server.
    void setPaintedHandler(std::function<void()> handler) { painted_ = std::move(handler); }
    /// Lets the window lie below all others as the wallpaper. Before it is shown.
    void becomeDesktop();

    /// The screen's size in design units.
    static QSizeF screenSize();

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const WindowPlan& plan_;
    std::function<void()> painted_;
};

/// The wallpaper; its frame is the screen's.
extern const WindowPlan wallpaperPlan;
/// The windows in the order in which they open: later ones lie above.
extern const WindowPlan windowPlans[4];

/// A wave of light over a rectangle, as the wallpaper and the picture in the viewer have it.
void drawWaves(QPainter& painter, const QRectF& area);

}  // namespace vorla::demo
