// What annotating costs on the screen of $DISPLAY, compared with a bare overlay of the same run:
//   VORLA_TEST_SCREEN=3840x2160x24 tests/support/with-display build/release/bin/bench_editor

#include <vorla/VLCapture.h>

#include <QApplication>
#include <cstdio>
#include <random>
#include <span>

#include "bench/measuring.h"
#include "editor/VLEditView.h"
#include "editor/VLEditViewController.h"
#include "editor/items/VLCurveItem.h"
#include "editor/items/VLOvalItem.h"
#include "editor/items/VLRoundRectItem.h"
#include "platform/view/VLPanel.h"
#include "tests/support/TestProgram.h"

namespace {

using namespace vorla::bench;
using Item = std::shared_ptr<VLEditItem>;

/// A canvas as large as the screen, over the screen's picture, on a panel.
class CanvasBench {
 public:
    explicit CanvasBench(XTestDriver& driver) : driver_(driver), size_(driver.rootSize()) {
        picture_ = QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
            QImage::Format_RGB32);
        panel_ = new VLPanel(27);
        panel_->coverScreen(QGuiApplication::primaryScreen());
        auto* content = new VLView(panel_->bounds());
        panel_->setContentView(content);
        controller_ = std::make_unique<VLEditViewController>(panel_->bounds());
        content->addSubview(controller_->view());
        controller_->setBackgroundImage(picture_);
        panel_->makeKeyAndOrderFront();
        view().setNormalStrokeColor(Qt::red);
        view().setNormalStrokeWidth(4);
        rest(300);
    }
    ~CanvasBench() {
        controller_.reset();
        panel_->closePanel();
        rest(50);
    }
    CanvasBench(const CanvasBench&) = delete;
    CanvasBench& operator=(const CanvasBench&) = delete;

    [[nodiscard]] VLEditView& view() { return *controller_->editView(); }
    [[nodiscard]] VLEditViewController& controller() { return *controller_; }

    Item spanned(VLPoint from, VLPoint to, bool oval) {
        const std::weak_ptr<VLEditItemSuperView> none;
        Item item;
        if (oval)
            item = std::make_shared<VLOvalItem>(none, VLPoint{}, VLSize{});
        else
            item = std::make_shared<VLRoundRectItem>(none, VLPoint{}, VLSize{});
        item->setNormalStrokeColor(QColor::fromHsv(static_cast<int>(from.x) % 360, 255, 255));
        item->setNormalStrokeWidth(4);
        item->setResizeFixedPoint(from);
        item->setResizeChangePoint(to);
        return item;
    }
    void addItems(int count, bool piled) {
        std::mt19937 random(3);
        const auto number = [&](int below) {
            return static_cast<double>(random() % unsigned(below));
        };
        for (int i = 0; i < count; ++i) {
            const VLPoint from = piled ? VLPoint{size_.width() / 4.0 + i % 7, size_.height() / 4.0}
                                       : VLPoint{number(size_.width()), number(size_.height())};
            const VLPoint to = piled ? VLPoint{size_.width() * 0.75, size_.height() * 0.75 + i % 9}
                                     : from + VLPoint{30 + number(400), 30 + number(300)};
            view().addItem(spanned(from, to, i % 3 == 0));
        }
        rest(500);
    }
    /// Costs of the moves that make a rectangle, which is then taken back.
    MoveCost costOfCreating(const std::function<QPoint(int)>& path) {
        panel_->makeKeyAndOrderFront();
        rest(150);
        view().setGraphType(VLEditGraphTypeRoundRect);
        const QPoint start = path(0) / 2;
        driver_.moveTo(start.x(), start.y());
        driver_.press();
        const MoveCost cost = costOfMoves(driver_, path);
        driver_.release();
        rest(50);
        view().undo();
        return cost;
    }
    /// The cost of a point at a stroke's beginning and after 2000 of them.
    std::pair<MoveCost, MoveCost> costOfStroke(VLEditGraphType type) {
        const auto scribble = [this](int i) {
            return QPoint(size_.width() / 2 + i % 40 * 12, size_.height() / 2 + i % 7 * 20);
        };
        view().setGraphType(type);
        driver_.moveTo(size_.width() / 2, size_.height() / 2);
        driver_.press();
        const MoveCost early = costOfMoves(driver_, scribble);
        const Item item = view().focusItem();
        for (int i = 0; item && i < 2000; ++i)
            item->addPoint({size_.width() / 2.0 + i % 40 * 12, size_.height() / 2.0 - i % 11 * 20});
        rest(300);
        const MoveCost late = costOfMoves(driver_, scribble);
        driver_.release();
        rest(100);
        return {early, late};
    }
    /// Processor time of giving an item from the middle the focus, and of taking back the last one.
    std::pair<double, double> costOfFocusingAndUndo() {
        std::vector<double> focusing;
        std::vector<double> undoing;
        for (int i = 0; i < 15; ++i) {
            view().setFocusItem(nullptr);
            rest(60);
            const Item item = view().itemArray()[view().itemArray().size() / 2];
            focusing.push_back(costOf([&] { view().setFocusItem(item); }));
            view().setFocusItem(nullptr);
            rest(60);
            undoing.push_back(costOf([&] { view().undo(); }));
            view().redo();
        }
        return {median(focusing), median(undoing)};
    }
    /// Processor time of letting go of a new item, its painting included.
    double costOfFinishing() {
        std::vector<double> costs;
        for (int i = 0; i < 15; ++i) {
            const Item item = spanned({100.0 + i * 10, 100},
                                      {size_.width() * 0.8, size_.height() * 0.8 + i}, false);
            view().setFocusItem(item);
            rest(60);
            costs.push_back(costOf([&] { view().setFocusItem(nullptr); }));
        }
        return median(costs);
    }

 private:
    static double costOf(const std::function<void()>& change) {
        const double before = ownProcessorTime();
        change();
        rest(40);
        return ownProcessorTime() - before;
    }

    XTestDriver& driver_;
    QSize size_;
    QImage picture_;
    VLPanel* panel_ = nullptr;
    std::unique_ptr<VLEditViewController> controller_;
};

void report(const char* what, MoveCost cost, MoveCost yardstick, const char* name) {
    std::printf("%-44s ours %6.3f ms  server %6.3f ms   %s %6.3f, %6.3f   ratio %.2f, %.2f\n", what,
                cost.own, cost.server, name, yardstick.own, yardstick.server,
                cost.own / yardstick.own, cost.server / yardstick.server);
    std::fflush(stdout);
}

/// The canvases lie one above the other, and each comes to the front in every round, so that what
/// else the machine does meets all of them alike.
void measureMoves(XTestDriver& driver) {
    constexpr int rounds = 7;
    const QSize size = driver.rootSize();
    const int reach = std::min(size.width(), size.height()) / 2;
    const auto stretch = [middle = QPoint(size.width() / 2, size.height() / 2), reach](int i) {
        const int length = reach / 2 + (i % 50) * reach / 100;
        return middle / 2 + QPoint(length, length * 3 / 4);
    };
    struct Case {
        const char* name;
        int items;
        bool piled;
        std::unique_ptr<CanvasBench> canvas = {};
        std::vector<double> own = {};
        std::vector<double> server = {};
        [[nodiscard]] MoveCost cost() const { return {median(own), median(server)}; }
    };
    Case cases[] = {{"the bare overlay", 0, false},
                    {"(a) a move that makes a rectangle, no items", 0, false},
                    {"(a) 50 items, spread", 50, false},
                    {"(a) 1000, spread", 1000, false},
                    {"(a) 1000, piled up", 1000, true}};
    BareOverlay overlay;
    for (Case& c : std::span(cases).subspan(1)) {
        c.canvas = std::make_unique<CanvasBench>(driver);
        c.canvas->addItems(c.items, c.piled);
    }
    for (int round = 0; round < rounds; ++round)
        for (Case& c : cases) {
            if (!c.canvas) overlay.raise();
            rest(150);
            const MoveCost cost =
                c.canvas ? c.canvas->costOfCreating(stretch) : costOfMoves(driver, stretch);
            c.own.push_back(cost.own);
            c.server.push_back(cost.server);
        }
    report(cases[1].name, cases[1].cost(), cases[0].cost(), "bare overlay");
    for (const Case& c : std::span(cases).subspan(2))
        report(c.name, c.cost(), cases[1].cost(), "no items");
    for (const Case& c : std::span(cases).subspan(2)) {
        const auto [focusing, undoing] = c.canvas->costOfFocusingAndUndo();
        std::printf("(c) beside these, focusing an item %.2f ms, taking one back %.2f ms\n",
                    focusing, undoing);
    }
}

void measureStrokes(XTestDriver& driver) {
    CanvasBench canvas(driver);
    for (const auto& [name, type] :
         {std::pair{"(b) a pen's points after 2000", VLEditGraphTypeCurve},
          std::pair{"(b) a mosaic's points after 2000", VLEditGraphTypeMosaicPen}}) {
        const auto [early, late] = canvas.costOfStroke(type);
        report(name, late, early, "first 200");
    }
}

void measureEnds(XTestDriver& driver) {
    CanvasBench canvas(driver);
    canvas.addItems(50, false);
    std::printf("(c) finishing an item: %.2f ms\n", canvas.costOfFinishing());
    QImage copied(driver.rootSize(), QImage::Format_RGB32);
    copied.fill(Qt::gray);
    auto start = std::chrono::steady_clock::now();
    const QImage twin = copied.copy();
    const double yardstick = since(start);
    start = std::chrono::steady_clock::now();
    const QImage result = canvas.controller().imageEdited();
    const double flattening = since(start);
    if (result.size() != copied.size()) std::exit(1);
    std::printf("(d) flattening with 65 items: %.1f ms; copying the picture %.1f ms; ratio %.2f\n",
                flattening, yardstick, flattening / yardstick);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto driver = XTestDriver::create();
    if (!driver) return 1;
    measureMoves(*driver);
    measureStrokes(*driver);
    measureEnds(*driver);
    return 0;
}
