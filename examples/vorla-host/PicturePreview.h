#pragma once

#include <QPixmap>
#include <QWidget>

/// Shows a picture as large as there is room for it, never enlarged; a hint while there is none.
class PicturePreview : public QWidget {
 public:
    explicit PicturePreview(QWidget* parent);

    void setPicture(const QImage& picture);
    /// The text while there is no picture.
    void setHint(const QString& hint);

    [[nodiscard]] QSize sizeHint() const override { return {560, 320}; }

 protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    void fit();
    void paintHint(QPainter& painter) const;

    QPixmap picture_;
    QPixmap fitted_;
    QString hint_;
};
