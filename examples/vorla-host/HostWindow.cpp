#include "HostWindow.h"

#include <QMenuBar>
#include <QVBoxLayout>

HostWindow::HostWindow(std::function<void()> capture)
    : menu_(new QMenu(QStringLiteral("&Vorla"), this)),
      view_(new QLabel(this)),
      message_(new QLabel(this)) {
    setWindowTitle(QStringLiteral("Vorla sample host"));
    resize(520, 400);
    auto* button = new QPushButton(QStringLiteral("Capture"), this);
    button->setDefault(true);
    button->setMinimumHeight(36);
    view_->setAlignment(Qt::AlignCenter);
    view_->setMinimumSize(200, 120);
    view_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    message_->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    auto* menuBar = new QMenuBar(this);
    menuBar->addMenu(menu_);
    layout->setMenuBar(menuBar);
    layout->addWidget(view_, 1);
    layout->addWidget(message_);
    layout->addWidget(button);
    showMessage(QStringLiteral("Press Capture, then click a window or drag a region."));
    QObject::connect(button, &QPushButton::clicked, this, std::move(capture));
}

void HostWindow::showMessage(const QString& message) {
    message_->setText(message);
}

void HostWindow::showPicture(const QImage& picture, const QString& message) {
    picture_ = QPixmap::fromImage(picture);
    fitPicture();
    showMessage(message);
}

void HostWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitPicture();
}

void HostWindow::fitPicture() {
    if (picture_.isNull()) return;
    const bool fits = picture_.width() <= view_->width() && picture_.height() <= view_->height();
    view_->setPixmap(
        fits ? picture_
             : picture_.scaled(view_->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}
