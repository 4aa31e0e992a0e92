#include "bench/png/screens.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace vorla {
namespace {

const char* const kWords[] = {"the",    "window", "captures", "light",  "of",         "a",
                              "small",  "region", "and",      "every",  "annotation", "keeps",
                              "its",    "shape",  "while",    "people", "write",      "Vorla",
                              "across", "two",    "screens",  "at",     "0x7f3a",     "(2026)"};

// Smooth random light: bilinear interpolation of a coarse random grid.
class ValueNoise {
 public:
    ValueNoise(unsigned seed, int cells) : cells_(cells), grid_((cells + 2) * (cells + 2)) {
        std::mt19937 random(seed);
        for (float& value : grid_) value = static_cast<float>(random() % 1000) / 500 - 1;
    }
    [[nodiscard]] float at(float x, float y) const {
        const float gx = x * static_cast<float>(cells_), gy = y * static_cast<float>(cells_);
        const int ix = static_cast<int>(gx), iy = static_cast<int>(gy);
        const float fx = smooth(gx - static_cast<float>(ix));
        const float fy = smooth(gy - static_cast<float>(iy));
        const float* cell = grid_.data() + iy * (cells_ + 2) + ix;
        const float top = cell[0] + (cell[1] - cell[0]) * fx;
        const float low = cell[cells_ + 2] + (cell[cells_ + 3] - cell[cells_ + 2]) * fx;
        return top + (low - top) * fy;
    }

 private:
    static float smooth(float t) { return t * t * (3 - 2 * t); }
    int cells_;
    std::vector<float> grid_;
};

// Octaves of texture, stronger below the horizon than in the sky, and a camera's noise.
QImage photograph(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    std::vector<ValueNoise> octaves;
    for (unsigned octave = 0; octave < 8; ++octave) octaves.emplace_back(octave + 1, 4 << octave);
    const ValueNoise ridge(99, 12);
    std::mt19937 random(7);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float v = static_cast<float>(y) / static_cast<float>(size.height());
        for (int x = 0; x < size.width(); ++x) {
            const float u = static_cast<float>(x) / static_cast<float>(size.width());
            const bool sky = v < 0.4F + 0.08F * ridge.at(u, 0.5F);
            float light = 0, weight = sky ? 30.0F : 60.0F;
            for (const ValueNoise& octave : octaves) {
                light += weight * octave.at(u, v);
                weight *= sky ? 0.35F : 0.62F;
            }
            const int grain = static_cast<int>(random() % 5 + random() % 5) - 4;
            const float base = sky ? 190 - 80 * v : 60 + 90 * v;
            const auto channel = [&](float value) {
                return std::clamp(static_cast<int>(value) + grain / 2, 0, 255);
            };
            line[x] = qRgb(channel(base + light * 0.9F - (sky ? 40 : 0)), channel(base + light),
                           channel(base + light * 0.7F + (sky ? 40 : -30)));
        }
    }
    return image;
}

void drawParagraphs(QPainter& painter, QRect area, int pixelSize, unsigned seed) {
    std::mt19937 random(seed);
    QFont font("DejaVu Sans");
    font.setPixelSize(pixelSize);
    painter.setFont(font);
    for (int y = area.top() + pixelSize; y < area.bottom(); y += pixelSize * 3 / 2) {
        QString line;
        while (painter.fontMetrics().horizontalAdvance(line) < area.width() * 4 / 5)
            line += QLatin1String(kWords[random() % std::size(kWords)]) + QLatin1Char(' ');
        painter.drawText(area.left(), y, line);
    }
}

void drawWindow(QPainter& painter, QRect frame, QColor body, QColor text, unsigned seed) {
    QPainterPath outline;
    outline.addRoundedRect(frame, 10, 10);
    painter.fillPath(outline, body);
    painter.setPen(QColor(0x9a9a9a));
    painter.drawPath(outline);
    painter.fillRect(frame.adjusted(1, 12, -1, -frame.height() + 44), body.darker(112));
    painter.setBrush(QColor(0xd0574e));
    painter.drawEllipse(frame.left() + 14, frame.top() + 14, 16, 16);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(text);
    drawParagraphs(painter, frame.adjusted(24, 60, -24, -16), 16, seed);
}

}  // namespace

QImage photographicScreen(QSize size) {
    QImage screen(size, QImage::Format_RGB32);
    screen.fill(QColor(0xf4f4f6));
    QPainter painter(&screen);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(0, 0, size.width(), 90, QColor(0xdee1e6));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(200, 46, size.width() - 600, 36, 18, 18);
    painter.setPen(Qt::black);
    drawParagraphs(painter, QRect(220, 50, 700, 28), 16, 1);
    const QRect picture(0, 90, size.width() * 4 / 5, size.height() - 90);
    painter.drawImage(picture.topLeft(), photograph(picture.size()));
    drawParagraphs(painter,
                   QRect(picture.right() + 24, 110, size.width() / 5 - 48, size.height() - 140), 18,
                   2);
    return screen;
}

QImage flatScreen(QSize size) {
    QImage screen(size, QImage::Format_RGB32);
    screen.fill(QColor(0x2b3a4a));
    QPainter painter(&screen);
    painter.setRenderHint(QPainter::Antialiasing);
    const int w = size.width(), h = size.height();
    drawWindow(painter, QRect(w / 40, h / 20, w / 2, h * 3 / 5), QColor(0xffffff), QColor(0x202124),
               3);
    drawWindow(painter, QRect(w / 3, h / 5, w / 2, h * 3 / 4), QColor(0x1e1e2e), QColor(0xcdd6f4),
               4);
    drawWindow(painter, QRect(w * 3 / 4, h / 10, w / 5, h / 2), QColor(0xececec), QColor(0x333333),
               5);
    QLinearGradient bar(0, 0, 0, 36);
    bar.setColorAt(0, QColor(0x3c4654));
    bar.setColorAt(1, QColor(0x232a33));
    painter.fillRect(0, 0, w, 36, bar);
    painter.setPen(Qt::white);
    drawParagraphs(painter, QRect(20, 8, w / 2, 24), 15, 6);
    return screen;
}

}  // namespace vorla
