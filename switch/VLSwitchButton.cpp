#include "switch/VLSwitchButton.h"

#include <vorla/VLStatistics.h>

#include <QTimerEvent>
#include <utility>

#include "platform/base/Bundle.h"
#include "platform/view/drawing.h"
#include "settings/StatisticDoor.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

constexpr VLSize spriteFrame{436.0, 72.0};
constexpr int frameMilliseconds = 25;

/// The picture under a key that a language may point elsewhere.
QImage localizedImage(const char* key) {
    return VLImage::imageNamed(vorla::Bundle::framework().localizedString(key));
}

}  // namespace

void ThrobberImageView::play(const QImage& strip, std::function<void()> finished) {
    strip_ = strip;
    finished_ = std::move(finished);
    const double width = strip.isNull() ? 0.0 : strip.width() / strip.devicePixelRatio();
    frames_ = static_cast<int>(width / spriteFrame.width);
    current_ = 0;
    clock_.start();
    timer_.start(frames_ > 0 ? frameMilliseconds : 0, Qt::PreciseTimer, this);
    setNeedsDisplay();
}

void ThrobberImageView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) {
        VLView::timerEvent(event);
        return;
    }
    const auto frame = static_cast<int>(clock_.elapsed() / frameMilliseconds);
    if (frame >= frames_) {
        timer_.stop();
        // The end of the session, and with it of this view, may lie in the call.
        if (const auto finished = std::exchange(finished_, nullptr)) finished();
        return;
    }
    if (frame == current_) return;
    current_ = frame;
    setNeedsDisplay();
}

void ThrobberImageView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (frames_ == 0) return;
    const double scale = strip_.devicePixelRatio();
    const double width = strip_.width() / scale / frames_;
    vorla::drawImage(painter, strip_, bounds(),
                     {current_ * width, 0.0, width, strip_.height() / scale},
                     vorla::Interpolation::Smooth);
}

VLSwitchButton::VLSwitchButton(const VLRect& frame, QWidget* superview)
    : VLButton(frame, superview), throbberImageView_(new ThrobberImageView(bounds(), this)) {
    throbberImageView_->hide();
    throbberImageView_->setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(QString::fromStdString(vorla::Bundle::framework().localizedString("Record")));
}

const QImage& VLSwitchButton::firstImage() {
    if (firstImage_.isNull()) firstImage_ = localizedImage("vlswitchFirstFrame");
    return firstImage_;
}

void VLSwitchButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (!throbberImageView_->isVisible()) vorla::drawImage(painter, firstImage(), bounds());
}

void VLSwitchButton::mouseDown(const VLMouseEvent& /*event*/) {
    vorla::fireStatisticEvent(VLStatEventSwitch);
    if (postedAction_) return;
    postedAction_ = true;
    const QPointer<VLSwitchButton> self = this;
    if (delegate_) delegate_->prepareToRecord();
    if (self) setupThrobberImageAnimation();
}

void VLSwitchButton::mouseUp(const VLMouseEvent& /*event*/) {}

void VLSwitchButton::setupThrobberImageAnimation() {
    const QImage throbberImage = localizedImage("vlswitch");
    throbberImageView_->setFrameSize(spriteFrame);
    throbberImageView_->setVisible(!throbberImage.isNull());
    throbberImageView_->play(throbberImage, [this] {
        if (delegate_) delegate_->changeToRecord();
    });
    setNeedsDisplay();
}
