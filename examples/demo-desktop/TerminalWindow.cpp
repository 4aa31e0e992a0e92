#include "examples/demo-desktop/TerminalWindow.h"

#include <QFontMetricsF>
#include <QPainter>
#include <vector>

namespace vorla::demo {
namespace {

const QColor kText(208, 214, 224);
const QColor kDim(126, 136, 152);
const QColor kGreen(126, 211, 146);
const QColor kBlue(112, 178, 255);
const QColor kYellow(240, 200, 116);
const QColor kPink(240, 142, 178);

struct Run {
    QColor colour;
    const char* text;
};
using Line = std::vector<Run>;

std::vector<Line> screenText() {
    const Run user{kGreen, "mira@atlas"};
    const Run place{kBlue, " ~/photos/lake"};
    const Run sign{kDim, " $ "};
    return {
        {user, place, sign, {kText, "ls -l --human"}},
        {{kDim, "-rw-r--r--  mira   9.4M  Jun 12 06:23  "}, {kText, "lake-at-first-light.jpg"}},
        {{kDim, "-rw-r--r--  mira   8.1M  Jun 12 21:40  "}, {kText, "dusk.jpg"}},
        {{kDim, "-rw-r--r--  mira   7.7M  Jun 13 10:05  "}, {kText, "meadow.jpg"}},
        {{kDim, "-rw-r--r--  mira   6.9M  Jun 14 08:58  "}, {kText, "snow.jpg"}},
        {},
        {user, place, sign, {kText, "photo-sync --to archive --verify"}},
        {{kYellow, "  comparing "}, {kText, "4 files, 32.1 MB"}},
        {{kGreen, "  ✓ "}, {kText, "lake-at-first-light.jpg  "}, {kDim, "unchanged"}},
        {{kGreen, "  ✓ "}, {kText, "dusk.jpg                 "}, {kDim, "copied   8.1 MB"}},
        {{kGreen, "  ✓ "}, {kText, "meadow.jpg               "}, {kDim, "copied   7.7 MB"}},
        {{kPink, "  ! "}, {kText, "snow.jpg                 "}, {kPink, "newer in archive, kept"}},
        {},
        {user, place, sign},
    };
}

}  // namespace

TerminalWindow::TerminalWindow()
    : DemoWindow("mira@atlas: ~/photos/lake", QRectF(312, 640, 740, 344)) {}

void TerminalWindow::drawContents(QPainter& painter, const QSizeF& size) {
    constexpr double kLine = 22;
    painter.fillRect(QRectF(QPointF(), size), QColor(22, 25, 32));
    const QFont font = mono(14);
    painter.setFont(font);
    const double advance = QFontMetricsF(font).horizontalAdvance("0");
    double y = 16;
    double x = 0;
    for (const Line& line : screenText()) {
        x = 20;
        for (const Run& run : line) {
            const QString text = QString::fromUtf8(run.text);
            painter.setPen(run.colour);
            painter.drawText(QRectF(x, y, size.width(), kLine), Qt::AlignVCenter, text);
            x += advance * static_cast<double>(text.size());
        }
        y += kLine;
    }
    painter.fillRect(QRectF(x, y - kLine + 2, advance, kLine - 4), kText);
}

}  // namespace vorla::demo
