#include "selection/VLCaptureMagnifierView.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/base/Bundle.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

constexpr double shadowBlur = 3.0;
constexpr double zoom = 5.0;
constexpr VLRect infoArea{4.0, 4.0, 102.0, 31.0};
constexpr VLRect imageArea{4.0, 36.0, 102.0, 82.0};
constexpr double mouseInfoY = 20.0;
constexpr double colorInfoY = 6.0;

QRectF painterRect(const VLRect& r) {
    return {r.x, r.y, r.width, r.height};
}

QString coordinatesFormat() {
    return QString::fromStdString(vorla::Bundle::framework().localizedString("坐标：(%d,%d)"));
}

QString coordinatesText(QString text, VLPoint point) {
    for (const double value : {point.x, point.y})
        if (const auto place = text.indexOf(u"%d"); place >= 0)
            text.replace(place, 2, QString::number(static_cast<int>(value)));
    return text;
}

/// One typeface for both lines: where the coordinates are written in Chinese, the Latin letters and
/// digits are those of the Chinese font. Unhinted, which keeps weight and spacing even at this
/// size.
QFont lineFont(const QString& sample) {
    QFont font = VLThemedFont{QStringLiteral("Helvetica"), 11.0}.font();
    const bool isChinese =
        std::ranges::any_of(sample, [](QChar c) { return c.script() == QChar::Script_Han; });
    if (isChinese) font.setFamilies({font.families().last()});
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

}  // namespace

VLCaptureMagnifierView::VLCaptureMagnifierView(vorla::FrozenScreen screen,
                                               const VLRect& screenFrame, QWidget* superview)
    : VLView({0.0, 0.0, MagnifierViewWidth, MagnifierViewHeight}, superview),
      screen_(std::move(screen)),
      coordinatesFormat_(coordinatesFormat()),
      mouseInfo_(lineFont(coordinatesFormat_)),
      colorInfo_(lineFont(coordinatesFormat_)) {
    // The pointer is next to the view and may pass through it when it is fast: it is the surface's.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    configAppearanceAndLayout();
    setScreenFrame(screenFrame);
}

void VLCaptureMagnifierView::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    magnifierCrossColor_ = theme.themedColorWithKey("VLMagnifierCrossLineColor");
    magnifierBackgroundColor_ = theme.themedColorWithKey("VLMagnifierBackgroundColor");
    magnifierInfoBackgroundColor_ = theme.themedColorWithKey("VLMagnifierInfoBackgroundColor");
    magnifierFontColor_ = theme.themedColorWithKey("VLMagnifier_FontColor");
    background_ = {};
    setNeedsDisplay();
}

void VLCaptureMagnifierView::setMouseLocation(VLPoint location) {
    mouseLocation_ = location;
    updateImageOrigin(location);
    // The pointer is in the middle of a pixel; the view is sharp, and fast, on whole ones.
    const VLPoint origin = adjustFrameOriginByMouseLocation(location);
    const double scale = backingScale();
    setFrameOrigin({std::floor(origin.x * scale) / scale, std::floor(origin.y * scale) / scale});
    setNeedsDisplay();
}

void VLCaptureMagnifierView::updateImageOrigin(VLPoint location) {
    if (location.x < 0.0 || location.y < 0.0 || location.x > screenFrame_.width ||
        location.y > screenFrame_.height)
        return;
    imageOrigin_ = location;
    mouseInfo_.setText(coordinatesText(coordinatesFormat_, location));
}

/// Made where it is drawn: a session places the view before its picture is all there.
QString VLCaptureMagnifierView::colorInfoStr() const {
    if (mouseInfo_.text().isEmpty()) return {};
    return QStringLiteral("RGB:") + getColorValueByPoint(imageOrigin_).name();
}

QColor VLCaptureMagnifierView::getColorValueByPoint(VLPoint point) const {
    if (screen_.isNull()) return Qt::black;
    const double scale = screen_.scale();
    const auto within = [](double value, double length) {
        return std::clamp(static_cast<int>(value), 0, static_cast<int>(std::lround(length)) - 1);
    };
    const int column = within(point.x * scale, screen_.size().width * scale);
    const int row = within((screenFrame_.height - point.y) * scale, screen_.size().height * scale);
    return QColor(screen_.imageDownTo(row + 1).pixel(column, row));
}

VLPoint VLCaptureMagnifierView::adjustFrameOriginByMouseLocation(VLPoint location) const {
    const VLSize size = frame().size();
    const VLRect limits{0.0, 0.0, screenFrame_.width, screenFrame_.height};
    const double left = location.x - XOffsetWithMouseLocation - size.width;
    const double right = location.x + XOffsetWithMouseLocation;
    const double below = location.y - YOffsetWithMouseLocation - size.height;
    const double above = location.y + YOffsetWithMouseLocation;
    for (const VLPoint origin :
         {VLPoint{left, below}, VLPoint{right, below}, VLPoint{right, above}, VLPoint{left, above}})
        if (limits.containsRect(VLRect::make(origin, size))) return origin;
    return location;
}

VLRect VLCaptureMagnifierView::sourceRect() const {
    const double width = imageArea.width / zoom;
    const double height = imageArea.height / zoom;
    return {std::floor(imageOrigin_.x - width / 2.0), std::floor(imageOrigin_.y - height / 2.0),
            width, height};
}

/// Everything that does not follow the pointer, drawn once: the shadow, the frame, the info area.
QImage VLCaptureMagnifierView::makeBackground(double scale) const {
    QImage image(static_cast<int>(std::lround(MagnifierViewWidth * scale)),
                 static_cast<int>(std::lround(MagnifierViewHeight * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.0, MagnifierViewHeight);
    painter.scale(1.0, -1.0);
    const VLRect inside = bounds().insetBy(shadowBlur, shadowBlur);
    if (magnifierBackgroundColor_.isValid()) {
        // A blur of 3 falls off over three points: three frames, each fainter than the one inside.
        painter.setPen(Qt::NoPen);
        constexpr std::array<int, 3> falloff = {18, 30, 48};
        for (size_t ring = 0; ring < falloff.size(); ++ring) {
            const double reach = shadowBlur - static_cast<double>(ring);
            painter.setBrush(QColor(0, 0, 0, falloff[ring]));
            painter.drawRoundedRect(painterRect(inside.insetBy(-reach, -reach)), reach, reach);
        }
        painter.fillRect(painterRect(inside), magnifierBackgroundColor_);
    }
    if (magnifierInfoBackgroundColor_.isValid())
        painter.fillRect(painterRect(infoArea), magnifierInfoBackgroundColor_);
    return image;
}

void VLCaptureMagnifierView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const double scale = backingScale();
    if (background_.isNull() || background_.devicePixelRatio() != scale)
        background_ = makeBackground(scale);
    vorla::drawImage(painter, background_, bounds());
    const int lastRow = static_cast<int>((screenFrame_.height - sourceRect().y) * screen_.scale());
    vorla::drawImage(painter, screen_.imageDownTo(lastRow + 1), imageArea, sourceRect(),
                     vorla::Interpolation::None);
    painter.setRenderHint(QPainter::Antialiasing, false);
    if (magnifierCrossColor_.isValid()) {
        const VLRect across{imageArea.x, imageArea.midY() - 1.0, imageArea.width, 1.0};
        const VLRect upright{imageArea.midX() - 0.5, imageArea.y, 1.0, imageArea.height};
        // A dark seam sets the cross off from a picture of its own tone.
        for (const VLRect& line : {across.insetBy(0.0, -1.0), upright.insetBy(-1.0, 0.0)})
            painter.fillRect(painterRect(line), QColor(0, 0, 0, 90));
        for (const VLRect& line : {across, upright})
            painter.fillRect(painterRect(line), magnifierCrossColor_);
    }
    const auto drawLine = [&](const vorla::ChangingLine& line, double y) {
        line.draw(painter, magnifierFontColor_,
                  {(MagnifierViewWidth - line.size().width) / 2.0, y});
    };
    colorInfo_.setText(colorInfoStr());
    drawLine(mouseInfo_, mouseInfoY);
    drawLine(colorInfo_, colorInfoY);
}
