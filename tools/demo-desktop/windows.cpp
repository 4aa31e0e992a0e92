#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include "tools/demo-desktop/DemoWindow.h"

namespace vorla::demo {
namespace {

QFont fontOf(const QStringList& families, int size, QFont::Weight weight) {
    QFont font;
    font.setFamilies(families);
    font.setPixelSize(size);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QFont sans(int size, QFont::Weight weight = QFont::Normal) {
    return fontOf({"Inter", "Noto Sans CJK SC", "DejaVu Sans"}, size, weight);
}

QFont mono(int size, QFont::Weight weight = QFont::Normal) {
    return fontOf({"DejaVu Sans Mono", "Noto Sans Mono CJK SC"}, size, weight);
}

void write(QPainter& painter, const QRectF& area, int align, const QFont& font, QColor color,
           const char* text) {
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(area, align | Qt::AlignVCenter, QString::fromUtf8(text));
}

void fillRounded(QPainter& painter, const QRectF& area, double radius, QColor color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(area, radius, radius);
}

void drawWallpaper(QPainter& painter, const QSizeF& size) {
    drawWaves(painter, QRectF(QPointF(), size));
}

void drawEditor(QPainter& painter, const QSizeF& size) {
    constexpr double sidebar = 212, tabs = 42, status = 28, line = 28, gutter = 52;
    painter.fillRect(QRectF(QPointF(), size), QColor(255, 255, 255));
    painter.fillRect(QRectF(0, 0, sidebar, size.height()), QColor(240, 242, 246));
    write(painter, {20, 16, 180, 18}, Qt::AlignLeft, sans(11, QFont::DemiBold),
          QColor(126, 134, 150), "NOTEBOOK");
    fillRounded(painter, {10, 44, sidebar - 20, 30}, 6, QColor(216, 227, 248));
    double y = 44;
    for (const char* file : {"Four days around the lake", "Reading list", "Recipes", "周末计划",
                             "Garden, spring", "Letters", "Ideas"}) {
        write(painter, {20, y, sidebar - 36, 30}, Qt::AlignLeft, sans(13), QColor(58, 72, 104),
              file);
        y += 34;
    }
    painter.fillRect(QRectF(sidebar, 0, size.width() - sidebar, tabs), QColor(248, 249, 251));
    painter.fillRect(QRectF(sidebar, 0, 236, tabs), QColor(255, 255, 255));
    painter.fillRect(QRectF(sidebar, 0, 236, 2), QColor(52, 116, 226));
    write(painter, {sidebar + 18, 0, 220, tabs}, Qt::AlignLeft, sans(13), QColor(40, 46, 58),
          "lake.md");
    const struct {
        QColor color;
        QFont::Weight weight;
        const char* text;
    } lines[] = {
        {QColor(28, 78, 168), QFont::Bold, "# Four days around the lake"},
        {{}, QFont::Normal, ""},
        {QColor(34, 38, 48), QFont::Normal,
         "We set out before sunrise, while the mist was still lying on the"},
        {QColor(34, 38, 48), QFont::Normal,
         "water and the far shore was nothing but a line of darker blue."},
        {{}, QFont::Normal, ""},
        {QColor(28, 78, 168), QFont::Bold, "## What to bring"},
        {{}, QFont::Normal, ""},
        {QColor(44, 50, 62), QFont::Normal,
         "- a map on paper, and a pencil that writes when it is wet"},
        {QColor(44, 50, 62), QFont::Normal,
         "- warm layers: the wind comes down from the ridge at noon"},
        {QColor(44, 50, 62), QFont::Normal, "- two cameras, one of them always within reach"},
        {{}, QFont::Normal, ""},
        {QColor(116, 124, 140), QFont::Normal,
         "> The best light lasts for about eleven minutes. Be there"},
        {QColor(116, 124, 140), QFont::Normal, "> half an hour before, and put the kettle on."},
        {{}, QFont::Normal, ""},
        {QColor(158, 74, 38), QFont::Normal, "    06:12   f/8    1/60    ISO 100    tripod"},
        {QColor(158, 74, 38), QFont::Normal,
         "    06:23   f/8    1/125   ISO 100    first sun on the ridge"},
    };
    y = tabs + 14;
    int number = 1;
    for (const auto& row : lines) {
        write(painter, {sidebar, y, gutter - 16, line}, Qt::AlignRight, mono(12),
              QColor(178, 184, 196), QByteArray::number(number++).constData());
        write(painter, {sidebar + gutter, y, size.width(), line}, Qt::AlignLeft,
              mono(14, row.weight), row.color, row.text);
        y += line;
    }
    const QRectF foot(0, size.height() - status, size.width(), status);
    painter.fillRect(foot, QColor(52, 116, 226));
    write(painter, foot.adjusted(20, 0, 0, 0), Qt::AlignLeft, sans(12), Qt::white, "Saved");
    write(painter, foot.adjusted(0, 0, -20, 0), Qt::AlignRight, sans(12), Qt::white,
          "Line 12, column 58      UTF-8      Markdown");
}

void drawViewer(QPainter& painter, const QSizeF& size) {
    constexpr double bar = 44;
    painter.fillRect(QRectF(QPointF(), size), QColor(30, 31, 36));
    write(painter, {20, 0, 400, bar}, Qt::AlignLeft, sans(13, QFont::DemiBold),
          QColor(232, 234, 240), "Lake at first light");
    write(painter, {0, 0, size.width() - 20, bar}, Qt::AlignRight, sans(12), QColor(148, 152, 164),
          "1 of 4    ·    6000 × 3510    ·    100 %");
    drawWaves(painter, {0, bar, size.width(), size.height() - bar});
}

void drawTerminal(QPainter& painter, const QSizeF& size) {
    painter.fillRect(QRectF(QPointF(), size), QColor(22, 25, 32));
    const QColor text(208, 214, 224), green(126, 211, 146), pink(240, 142, 178);
    const struct {
        QColor color;
        const char* text;
    } lines[] = {
        {green, "mira@atlas ~/photos/lake $ ls -l --human"},
        {text, "-rw-r--r--  mira   9.4M  Jun 12 06:23  lake-at-first-light.jpg"},
        {text, "-rw-r--r--  mira   8.1M  Jun 12 21:40  dusk.jpg"},
        {text, "-rw-r--r--  mira   7.7M  Jun 13 10:05  meadow.jpg"},
        {text, ""},
        {green, "mira@atlas ~/photos/lake $ photo-sync --to archive --verify"},
        {text, "  ✓ lake-at-first-light.jpg  unchanged"},
        {text, "  ✓ dusk.jpg                 copied   8.1 MB"},
        {pink, "  ! snow.jpg                 newer in archive, kept"},
        {text, ""},
        {green, "mira@atlas ~/photos/lake $ ▮"},
    };
    double y = 16;
    for (const auto& line : lines) {
        write(painter, {20, y, size.width(), 24}, Qt::AlignLeft, mono(14), line.color, line.text);
        y += 26;
    }
}

/// Draws one bubble with its upper edge at y and returns the y below it.
double drawMessage(QPainter& painter, bool mine, const char* text, double y, double width) {
    const QFont font = sans(14);
    const QRectF needed = QFontMetricsF(font).boundingRect(
        QRectF(0, 0, width * 0.70, 1000), Qt::TextWordWrap, QString::fromUtf8(text));
    QRectF bubble(0, y, needed.width() + 26, needed.height() + 20);
    bubble.moveLeft(mine ? width - 18 - bubble.width() : 18);
    fillRounded(painter, bubble, 12, mine ? QColor(44, 132, 108) : QColor(255, 255, 255));
    write(painter, bubble.adjusted(12, 0, -10, 0), Qt::TextWordWrap, font,
          mine ? QColor(255, 255, 255) : QColor(34, 40, 46), text);
    return bubble.bottom() + 10;
}

void drawMessages(QPainter& painter, const QSizeF& size) {
    painter.fillRect(QRectF(QPointF(), size), QColor(236, 239, 240));
    painter.fillRect(QRectF(0, 0, size.width(), 60), QColor(250, 251, 251));
    fillRounded(painter, {18, 12, 36, 36}, 18, QColor(236, 148, 92));
    write(painter, {18, 12, 36, 36}, Qt::AlignHCenter, sans(15, QFont::Bold), Qt::white, "林");
    write(painter, {66, 10, 300, 22}, Qt::AlignLeft, sans(15, QFont::Bold), QColor(34, 40, 46),
          "林一");
    write(painter, {66, 30, 300, 18}, Qt::AlignLeft, sans(12), QColor(44, 132, 108),
          "online · 在线");
    double y = drawMessage(painter, false, "早上好！湖边的照片出来了吗？", 76, size.width());
    y = drawMessage(painter, true, "Just now. Look at the light on the ridge.", y, size.width());
    y = drawMessage(painter, false, "Where did we stand? 帮我圈一下。", y, size.width());
    drawMessage(painter, true, "好，马上截图发给你。", y, size.width());
    const QRectF entry(16, size.height() - 46, size.width() - 32, 36);
    fillRounded(painter, entry, 17, QColor(255, 255, 255));
    write(painter, entry.adjusted(18, 0, 0, 0), Qt::AlignLeft, sans(13), QColor(150, 158, 164),
          "Message  输入消息…");
}

}  // namespace

void drawWaves(QPainter& painter, const QRectF& area) {
    const double w = area.width(), h = area.height();
    painter.save();
    painter.setClipRect(area);
    painter.translate(area.topLeft());
    QLinearGradient sky({0, 0}, {w * 0.35, h});
    sky.setColorAt(0, QColor(17, 24, 52));
    sky.setColorAt(0.45, QColor(38, 52, 104));
    sky.setColorAt(1, QColor(88, 62, 122));
    painter.fillRect(QRectF(0, 0, w, h), sky);
    QRadialGradient glow({w * 0.80, h * 0.12}, w * 0.55);
    glow.setColorAt(0, QColor(255, 158, 128, 150));
    glow.setColorAt(0.5, QColor(214, 96, 150, 60));
    glow.setColorAt(1, QColor(214, 96, 150, 0));
    painter.fillRect(QRectF(0, 0, w, h), glow);
    // Sheets of light, each brightest at its upper edge: heights at left, middle and right.
    const struct {
        double left, middle, right;
        QColor edge;
    } sheets[] = {{0.34, 0.40, 0.14, QColor(255, 146, 138, 70)},
                  {0.50, 0.46, 0.30, QColor(196, 92, 168, 110)},
                  {0.58, 0.62, 0.44, QColor(104, 92, 214, 130)},
                  {0.78, 0.70, 0.66, QColor(48, 142, 214, 130)},
                  {0.86, 0.88, 0.78, QColor(38, 190, 190, 110)}};
    for (const auto& sheet : sheets) {
        QPainterPath wave(QPointF(0, sheet.left * h));
        wave.cubicTo(w * 0.26, (sheet.left + 0.12) * h, w * 0.34, (sheet.middle - 0.16) * h,
                     w * 0.56, sheet.middle * h);
        wave.cubicTo(w * 0.74, (sheet.middle + 0.13) * h, w * 0.86, (sheet.right - 0.06) * h, w,
                     sheet.right * h);
        wave.lineTo(w, h);
        wave.lineTo(0, h);
        const double top = std::min({sheet.left, sheet.middle, sheet.right}) * h;
        QLinearGradient light({w * 0.3, top - 0.05 * h}, {w * 0.45, top + 0.55 * h});
        light.setColorAt(0, sheet.edge);
        light.setColorAt(1, QColor(sheet.edge.red(), sheet.edge.green(), sheet.edge.blue(), 0));
        painter.fillPath(wave, light);
    }
    painter.restore();
}

const WindowPlan wallpaperPlan = {"desktop", "DemoDesktop", "Desktop", {}, &drawWallpaper};

const WindowPlan windowPlans[4] = {
    {"editor", "DemoEditor", "Four days around the lake - Editor", {96, 84, 960, 620}, &drawEditor},
    {"viewer", "DemoViewer", "Lake at first light.jpg", {1006, 118, 800, 604}, &drawViewer},
    {"terminal", "DemoTerminal", "mira@atlas: ~/photos/lake", {312, 640, 740, 344}, &drawTerminal},
    {"notes", "DemoMessages", "林一 - Messages", {1392, 560, 420, 444}, &drawMessages},
};

}  // namespace vorla::demo
