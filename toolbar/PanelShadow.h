#pragma once

#include <QImage>
#include <QPointer>
#include <QWidget>

class VLOverlayPanel;

/// The soft shadow that lifts a panel off a screen of its own colour. It follows the panel in the
/// panel's window, right below it, lives as long as the panel, and lets the pointer pass.
class PanelShadow : public QWidget {
 public:
    explicit PanelShadow(VLOverlayPanel& panel);

    /// Casts the shadow of that shape, by its alpha; null stands for the panel's rectangle.
    void setMaskImage(const QImage& mask);
    /// Without it there is no shadow for the time being.
    void setCast(bool cast);

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void follow();
    void makeShadow();

    QPointer<VLOverlayPanel> panel_;
    bool cast_ = true;
    QImage mask_;
    QImage shadow_;
};
