// What a pen or mosaic stroke costs at each further point, on a 4K canvas: the point is added and
// the new part painted. Ratios to the 20th point of the same stroke, and to the toolkit's stroking
// of the whole path, which is what a redraw without a kept stroke would cost.

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "bench/png/screens.h"
#include "editor/items/MosaicPicture.h"
#include "editor/items/VLMosaicCurveItem.h"

namespace {

constexpr double scale = 2.0;
constexpr double height = 1080.0;

/// Milliseconds of this thread's processor time.
double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <typename Work>
double costOf(const Work& work) {
    const double begin = processorTime();
    work();
    return processorTime() - begin;
}

/// Milliseconds by the clock, what somebody waits: the best of several.
template <typename Work>
double elapsed(const Work& work) {
    double best = 1e9;
    for (int i = 0; i < 9; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const auto end = std::chrono::steady_clock::now();
        best = std::min(best, std::chrono::duration<double, std::milli>(end - begin).count());
    }
    return best;
}

struct NewPart : VLEditItemSuperView {
    void itemDidChange(const VLEditItem&) override {}
    void itemDidGrow(const VLEditItem&, const VLRect& rect) override { part = rect; }
    VLView* view() override { return nullptr; }
    VLRect part;
};

VLPoint handwriting(int i) {
    return {300 + (i % 400) * 3.0 + 18 * std::cos(i * 0.8),
            900 - i / 400 * 120.0 + 25 * std::sin(i * 0.55)};
}

void setUp(QPainter& painter) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, height);
    painter.scale(1, -1);
}

/// The median cost of a few points around the `index`th.
double costAround(const std::vector<double>& costs, size_t index) {
    std::vector<double> some(costs.begin() + static_cast<ptrdiff_t>(index) - 9,
                             costs.begin() + static_cast<ptrdiff_t>(index) + 10);
    std::nth_element(some.begin(), some.begin() + 9, some.end());
    return some[9];
}

template <typename Item>
void measure(const char* name, double width, QImage& canvas) {
    const auto view = std::make_shared<NewPart>();
    Item item(view, {}, {});
    item.setNormalStrokeWidth(width);
    item.setNormalStrokeColor(QColor(220, 30, 40));
    std::vector<double> costs;
    for (int i = 0; i < 2010; ++i)
        costs.push_back(costOf([&] {
            item.addPoint(handwriting(i));
            QPainter painter(&canvas);
            setUp(painter);
            const VLRect part = view->part;
            painter.setClipRect(QRectF(part.x, part.y, part.width, part.height));
            item.drawGraph(painter, part);
        }));
    QPainterPath path(QPointF(318, 900));
    for (const auto& s : item.path().segments())
        path.cubicTo(s.control1.x, s.control1.y, s.control2.x, s.control2.y, s.end.x, s.end.y);
    const double whole = costOf([&] {
        QPainter painter(&canvas);
        setUp(painter);
        painter.strokePath(path, QPen(Qt::red, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    });
    const double early = costAround(costs, 20);
    const double late = costAround(costs, 2000);
    std::printf(
        "%-7s width %2.0f: point 20 %6.3f ms, point 2000 %6.3f ms (%4.2f of the 20th); "
        "whole path by the toolkit %7.1f ms\n",
        name, width, early, late, late / early, whole);
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QImage canvas = vorla::photographicScreen({3840, 2160});
    canvas.setDevicePixelRatio(scale);

    std::vector<uchar> bytes(static_cast<size_t>(canvas.sizeInBytes()));
    const double copied =
        elapsed([&] { std::memcpy(bytes.data(), canvas.constBits(), bytes.size()); });
    const double handedOver = elapsed([&] { VLMosaicCurveItem::setOriginalImage(canvas); });
    const double ready = elapsed([&] {
        const double x = 0;
        QRgb color = 0;
        vorla::MosaicPicture::create(canvas)->colorsOfRow(0, &x, 1, &color);
    });
    std::printf(
        "mosaic of a 4K picture: handed over in %.3f ms, made in %.2f ms (%.2f of a copy)\n",
        handedOver, ready, ready / copied);

    measure<VLCurveItem>("pen", 4, canvas);
    measure<VLCurveItem>("pen", 20, canvas);
    measure<VLMosaicCurveItem>("mosaic", 4, canvas);
    measure<VLMosaicCurveItem>("mosaic", 20, canvas);
    VLMosaicCurveItem::setOriginalImage({});
}
