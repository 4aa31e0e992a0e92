#include "switch/VLSwitchPanel.h"

#include <QPainter>
#include <utility>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/view/VLPanel.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

constexpr int levelOfSwitch = 28;
constexpr VLSize buttonSize{436.0, 72.0};
constexpr VLSize pullSize{52.0, 57.0};
constexpr double pullLeft = 446.0;
constexpr double pullDownBottom = 12.0;
constexpr double distanceFromTop = 40.0;
/// How far a bar that was pushed up is let down again, so that its lower part hangs at the edge.
constexpr double hangingPart = pullSize.height - 5.0;
constexpr int animationMilliseconds = 100;
/// Of the drawing; the pointer makes it whole.
constexpr double opacityAtRest = 0.85;

/// Pushes the bar up or pulls it down. The drawing fills the button.
class PullButton : public VLButton {
 public:
    PullButton(const VLRect& frame, const char* imageKey, const char* title, QWidget* superview)
        : VLButton(frame, superview), image_(VLImage::imageNamed(imageKey)) {
        setTitle(QString::fromStdString(vorla::Bundle::framework().localizedString(title)));
    }

 protected:
    void drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) override {
        painter.setOpacity(painter.opacity() * (isHover() || isPressed() ? 1.0 : opacityAtRest));
        vorla::drawImage(painter, image_, bounds());
    }

 private:
    QImage image_;
};

}  // namespace

VLSwitchPanel* VLSwitchPanel::create(const VLRect& frame, VLPanel* screen) {
    return screen ? new VLSwitchPanel(frame, screen) : nullptr;
}

VLSwitchPanel::VLSwitchPanel(const VLRect& frame, VLPanel* screen)
    : VLOverlayPanel(frame, levelOfSwitch), screen_(screen), showFrame_(frame) {
    hideFrame_ = frame.offsetBy(0.0, distanceFromTop + frame.height);
    setMovableByBackground(true);
    setCursor(Qt::ArrowCursor);
    setupContent();
    animation_.setDuration(animationMilliseconds);
    animation_.setStartValue(0.0);
    animation_.setEndValue(1.0);
    animation_.setEasingCurve(QEasingCurve::InOutSine);
}

void VLSwitchPanel::setupContent() {
    auto* content = new VLView(bounds());
    showContentView_ = new VLView(bounds(), content);
    switchButton_ = new VLSwitchButton(VLRect::make({}, buttonSize), showContentView_);
    switchButton_->setDelegate(this);
    const double pullBottom = (frame().height - pullSize.height) / 2.0;
    auto* pullUpButton = new PullButton(VLRect::make({pullLeft, pullBottom}, pullSize),
                                        "VLSwitchPullUp", "Hide", showContentView_);
    pullUpButton->action = [this](VLButton&) { pullUpAction(); };
    pullDownButton_ = new PullButton(VLRect::make({pullLeft, pullDownBottom}, pullSize),
                                     "VLSwitchPullDown", "Show", content);
    pullDownButton_->action = [this](VLButton&) { pullDownAction(); };
    pullDownButton_->hide();
    setContentView(content);
}

void VLSwitchPanel::showWithAnimation(bool animated) {
    if (!screen_) return;
    if (hasParent())
        orderFront();
    else
        screen_->addChild(this);
    if (animated)
        animate(hideFrame_, showFrame_, nullptr);
    else
        setFrame(showFrame_);
}

void VLSwitchPanel::animate(const VLRect& from, const VLRect& to, std::function<void()> ended) {
    animation_.stop();
    animation_.disconnect(this);
    connect(&animation_, &QVariantAnimation::valueChanged, this,
            [this, from, to](const QVariant& value) {
                const double part = value.toDouble();
                setFrameOrigin({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
            });
    connect(&animation_, &QVariantAnimation::finished, this, [ended = std::move(ended)] {
        if (ended) ended();
    });
    setFrame(from);
    animation_.start();
}

void VLSwitchPanel::pullUpAction() {
    VLLog("<VLSwitchPanel> %s", __func__);
    animate(showFrame_, hideFrame_, [this] { animationDidEnd(); });
}

void VLSwitchPanel::animationDidEnd() {
    showContentView_->hide();
    pullDownButton_->show();
    setFrameOrigin({hideFrame_.x, hideFrame_.y - hangingPart});
}

void VLSwitchPanel::pullDownAction() {
    VLLog("<VLSwitchPanel> %s", __func__);
    showContentView_->show();
    pullDownButton_->hide();
    animate(hideFrame_, showFrame_, nullptr);
}

void VLSwitchPanel::hideAndClose() {
    orderOut();
    if (switchButton_->isPlaying())
        closing_ = true;
    else
        closePanel();
}

void VLSwitchPanel::prepareToRecord() {
    VLLog("<VLSwitchPanel> %s", __func__);
    if (const auto delegate = panelDelegate_.lock()) delegate->prepareToRecord();
}

void VLSwitchPanel::changeToRecord() {
    VLLog("<VLSwitchPanel> %s", __func__);
    const QPointer<VLSwitchPanel> self = this;
    if (const auto delegate = panelDelegate_.lock()) delegate->changeToRecord();
    if (self && closing_) closePanel();
}
