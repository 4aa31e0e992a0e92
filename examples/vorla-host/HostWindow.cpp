#include "HostWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QUrl>
#include <QVBoxLayout>
#include <QWidgetAction>

#include <vorla/VLCaptureSetting.h>
#include <vorla/VLIntroduceManager.h>
#include "HostIcon.h"
#include "PictureFile.h"
#include "PicturePreview.h"
#include "Translation.h"

namespace {

/// Shortens its text to the room that it has.
class ElidedLabel : public QLabel {
 public:
    explicit ElidedLabel(QWidget* parent) : QLabel(parent) {
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }

 protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        style()->drawItemText(
            &painter, rect(), Qt::AlignLeading | Qt::AlignVCenter, palette(), isEnabled(),
            fontMetrics().elidedText(text(), Qt::ElideMiddle, width()), foregroundRole());
    }
};

QPushButton* makeButton(QAction* action, QWidget* parent) {
    auto* button = new QPushButton(action->icon(), action->text(), parent);
    button->setAutoDefault(false);
    button->setEnabled(action->isEnabled());
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    QObject::connect(action, &QAction::enabledChanged, button, &QPushButton::setEnabled);
    return button;
}

}  // namespace

HostWindow::HostWindow(HostActions& actions, std::function<void()> closed)
    : closed_(std::move(closed)),
      copy_(new QAction(this)),
      save_(new QAction(this)),
      folder_(new QAction(this)),
      preview_(new PicturePreview(this)),
      titleLabel_(new QLabel(this)),
      detailLabel_(new ElidedLabel(this)) {
    setWindowTitle(text("Vorla sample host"));
    makeOwnActions();
    auto* layout = new QVBoxLayout(this);
    makeMenuBar(actions);
    layout->setSpacing(12);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->addLayout(makeHeader(actions));
    layout->addWidget(preview_, 1);
    layout->addLayout(makeFooter());
    preview_->setHint(
        text("Click a window or drag a region of the screen.\n"
             "Return delivers the picture, Esc cancels."));
    setMessage(text("No picture yet"), {});
    // Explicitly, or the toolkit would choose a size anew each time that the window is shown.
    resize(sizeHint());
}

void HostWindow::makeOwnActions() {
    copy_->setText(text("C&opy Again"));
    copy_->setIcon(QIcon::fromTheme("edit-copy"));
    copy_->setShortcut(QKeySequence::Copy);
    QObject::connect(copy_, &QAction::triggered, this, [this] { copyAgain(); });
    save_->setText(text("&Save As…"));
    save_->setIcon(QIcon::fromTheme("document-save-as"));
    save_->setShortcut(QKeySequence::Save);
    QObject::connect(save_, &QAction::triggered, this, [this] { saveAs(); });
    folder_->setText(text("Open Fol&der"));
    folder_->setIcon(QIcon::fromTheme("folder-open"));
    QObject::connect(folder_, &QAction::triggered, this, [this] { openFolder(); });
    for (QAction* action : {copy_, save_, folder_}) action->setEnabled(false);
}

void HostWindow::makeMenuBar(HostActions& actions) {
    auto* bar = new QMenuBar(this);
    QMenu* file = bar->addMenu(text("&File"));
    file->addActions({&actions.capture, &actions.captureLater});
    file->addSeparator();
    file->addActions({save_, folder_});
    file->addSeparator();
    QAction* close = file->addAction(text("C&lose"), this, &QWidget::close);
    close->setShortcut(QKeySequence("Ctrl+W"));
    file->addAction(&actions.quit);
    QMenu* edit = bar->addMenu(text("&Edit"));
    edit->addActions({copy_, &actions.preferences});
    edit->insertSeparator(&actions.preferences);
    QMenu* help = bar->addMenu(text("&Help"));
    help->addAction(&actions.about);
    help->addSeparator();
    help->addAction(VLIntroduceManager::introduceMenuItem(help));
    layout()->setMenuBar(bar);
}

QLayout* HostWindow::makeHeader(HostActions& actions) {
    auto* icon = new QLabel(this);
    icon->setPixmap(hostIcon().pixmap(QSize(48, 48), devicePixelRatioF()));
    auto* name = new QLabel(text("Vorla"), this);
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    font.setBold(true);
    name->setFont(font);
    auto* what = new QLabel(text("Captures windows and regions of the screen"), this);
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(name);
    words->addWidget(what);
    words->addStretch();

    QPushButton* capture = makeButton(&actions.capture, this);
    capture->setDefault(true);
    capture->setIcon(captureGlyph(QPalette::ButtonText, QPalette::ButtonText));
    capture->setIconSize({24, 24});
    capture->setMinimumSize(120, 40);
    QPushButton* later = makeButton(&actions.captureLater, this);
    later->setText(text("In 3 s"));
    later->setMinimumHeight(40);

    auto* header = new QHBoxLayout;
    header->setSpacing(10);
    header->addWidget(icon);
    header->addLayout(words, 1);
    header->addWidget(capture);
    header->addWidget(later);
    return header;
}

QLayout* HostWindow::makeFooter() {
    QFont font = titleLabel_->font();
    font.setBold(true);
    titleLabel_->setFont(font);
    titleLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    words->addStretch();
    words->addWidget(titleLabel_);
    words->addWidget(detailLabel_);
    words->addStretch();
    auto* footer = new QHBoxLayout;
    footer->addLayout(words, 1);
    for (QAction* action : {copy_, save_, folder_}) footer->addWidget(makeButton(action, this));
    return footer;
}

void HostWindow::showOutcome(const Outcome& outcome) {
    switch (outcome.status) {
        case ExitStatus::Delivered:
        case ExitStatus::NotWritten:
            if (outcome.png.isEmpty())
                setMessage(text("There is no picture"), outcome.reason);
            else
                showPicture(outcome);
            break;
        case ExitStatus::Cancelled:
            if (png_.isEmpty()) setMessage(text("Cancelled"), text("Nothing was captured."));
            break;
        case ExitStatus::Switched:
            setMessage(text("Over to the recorder"), text("This program has none of its own."));
            break;
        default:
            setMessage(text("The capture could not start"), outcome.reason);
            break;
    }
}

void HostWindow::showPicture(const Outcome& outcome) {
    png_ = outcome.png;
    const bool written = outcome.status == ExitStatus::Delivered;
    savedTo_ = written ? outcome.path : QString();
    const QImage picture = QImage::fromData(png_, "PNG");
    preview_->setPicture(picture);
    copy_->setEnabled(!picture.isNull());
    save_->setEnabled(!picture.isNull());
    folder_->setEnabled(!savedTo_.isEmpty());
    const QString title = text("%1 × %2 pixels, %3")
                              .arg(picture.width())
                              .arg(picture.height())
                              .arg(locale().formattedDataSize(png_.size(), 0));
    if (!written && outcome.path.isEmpty())
        setMessage(title, text("Not copied: %1").arg(outcome.reason));
    else if (!written)
        setMessage(title, text("Not saved: %1").arg(outcome.reason));
    else if (savedTo_.isEmpty())
        setMessage(title, text("Copied to the clipboard"));
    else
        setMessage(title, text("Saved as %1").arg(QDir::toNativeSeparators(savedTo_)));
}

void HostWindow::setMessage(const QString& title, const QString& detail) {
    titleLabel_->setText(title);
    detailLabel_->setText(detail);
    detailLabel_->setToolTip(detail);
    detailLabel_->setVisible(!detail.isEmpty());
}

void HostWindow::closeEvent(QCloseEvent* event) {
    if (qGuiApp->isSavingSession()) return;
    event->ignore();
    closed_();
}

void HostWindow::copyAgain() {
    auto* data = new QMimeData;
    data->setData("image/png", png_);
    data->setImageData(QImage::fromData(png_, "PNG"));
    QGuiApplication::clipboard()->setMimeData(data);
    setMessage(titleLabel_->text(), text("Copied to the clipboard"));
}

void HostWindow::saveAs() {
    auto& setting = VLCaptureSetting::sharedInstance();
    const QString name = QString::fromStdString(setting.fileNamePrefix()) +
                         QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss") + ".png";
    QString folder = QString::fromStdString(setting.lastSavePath());
    if (!QFileInfo(folder).isDir()) folder = QDir::homePath();
    QFileDialog dialog(this, text("Save Picture"), folder,
                       text("Pictures") + " (*.png *.jpg *.bmp)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("png");
    dialog.selectFile(name);
    if (dialog.exec() != QDialog::Accepted) return;
    const QString path = dialog.selectedFiles().value(0);
    const QString reason = writePicture(png_, path);
    if (!reason.isEmpty()) {
        QMessageBox::warning(this, text("Save Picture"),
                             text("%1 could not be written: %2").arg(path, reason));
        return;
    }
    savedTo_ = path;
    folder_->setEnabled(true);
    setMessage(titleLabel_->text(), text("Saved as %1").arg(QDir::toNativeSeparators(path)));
}

void HostWindow::openFolder() {
    const QString folder = QFileInfo(savedTo_).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        setMessage(titleLabel_->text(), text("No program here opens %1").arg(folder));
}
