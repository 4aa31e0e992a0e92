#include "examples/demo-desktop/EditorWindow.h"

#include <QPainter>
#include <array>

namespace vorla::demo {
namespace {

constexpr QRectF kFrame(96, 84, 960, 620);
constexpr double kSidebar = 212;
constexpr double kTabs = 42;
constexpr double kStatus = 28;

enum class Style { Heading, Body, Quote, Item, Code, Blank };

struct Line {
    Style style;
    const char* text;
};

constexpr std::array<Line, 18> kLines = {{
    {Style::Heading, "# Four days around the lake"},
    {Style::Blank, ""},
    {Style::Body, "We set out before sunrise, while the mist was still lying on the"},
    {Style::Body, "water and the far shore was nothing but a line of darker blue."},
    {Style::Blank, ""},
    {Style::Heading, "## What to bring"},
    {Style::Blank, ""},
    {Style::Item, "- a map on paper, and a pencil that writes when it is wet"},
    {Style::Item, "- warm layers: the wind comes down from the ridge at noon"},
    {Style::Item, "- two cameras, one of them always within reach"},
    {Style::Blank, ""},
    {Style::Quote, "> The best light lasts for about eleven minutes. Be there"},
    {Style::Quote, "> half an hour before, and put the kettle on."},
    {Style::Blank, ""},
    {Style::Heading, "## Exposure notes"},
    {Style::Blank, ""},
    {Style::Code, "    06:12   f/8    1/60    ISO 100    tripod"},
    {Style::Code, "    06:23   f/8    1/125   ISO 100    first sun on the ridge"},
}};

struct Look {
    QColor colour;
    QFont::Weight weight;
};

Look lookOf(Style style) {
    switch (style) {
        case Style::Heading:
            return {QColor(28, 78, 168), QFont::Bold};
        case Style::Quote:
            return {QColor(116, 124, 140), QFont::Normal};
        case Style::Item:
            return {QColor(44, 50, 62), QFont::Normal};
        case Style::Code:
            return {QColor(158, 74, 38), QFont::Normal};
        default:
            return {QColor(34, 38, 48), QFont::Normal};
    }
}

void drawSidebar(QPainter& painter, const QRectF& area) {
    painter.fillRect(area, QColor(240, 242, 246));
    painter.setFont(DemoWindow::sans(11, QFont::DemiBold));
    painter.setPen(QColor(126, 134, 150));
    painter.drawText(QRectF(20, area.top() + 16, 180, 18), Qt::AlignVCenter, "NOTEBOOK");
    const std::array<const char*, 7> files = {"Four days around the lake",
                                              "Reading list",
                                              "Recipes",
                                              "周末计划",
                                              "Garden, spring",
                                              "Letters",
                                              "Ideas"};
    double y = area.top() + 44;
    for (const char* file : files) {
        const bool open = file == files.front();
        if (open) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(216, 227, 248));
            painter.drawRoundedRect(QRectF(10, y, area.width() - 20, 30), 6, 6);
        }
        painter.setFont(DemoWindow::sans(13, open ? QFont::DemiBold : QFont::Normal));
        painter.setPen(open ? QColor(28, 68, 150) : QColor(70, 78, 94));
        painter.drawText(QRectF(20, y, area.width() - 36, 30), Qt::AlignVCenter, file);
        y += 34;
    }
}

void drawText(QPainter& painter, const QRectF& area) {
    constexpr double kLine = 28;
    constexpr double kGutter = 52;
    double y = area.top() + 14;
    int number = 1;
    for (const Line& line : kLines) {
        const QRectF row(area.left(), y, area.width(), kLine);
        if (number == 12) painter.fillRect(row, QColor(244, 247, 253));
        painter.setFont(DemoWindow::mono(12));
        painter.setPen(QColor(178, 184, 196));
        painter.drawText(QRectF(row.left(), y, kGutter - 16, kLine),
                         Qt::AlignVCenter | Qt::AlignRight, QString::number(number++));
        const Look look = lookOf(line.style);
        painter.setFont(DemoWindow::mono(14, look.weight));
        painter.setPen(look.colour);
        painter.drawText(row.adjusted(kGutter, 0, 0, 0), Qt::AlignVCenter, line.text);
        y += kLine;
    }
}

}  // namespace

EditorWindow::EditorWindow() : DemoWindow("Four days around the lake - Editor", kFrame) {}

void EditorWindow::drawContents(QPainter& painter, const QSizeF& size) {
    painter.fillRect(QRectF(QPointF(), size), QColor(255, 255, 255));
    drawSidebar(painter, QRectF(0, 0, kSidebar, size.height()));

    painter.fillRect(QRectF(kSidebar, 0, size.width() - kSidebar, kTabs), QColor(248, 249, 251));
    painter.fillRect(QRectF(kSidebar, 0, 236, kTabs), QColor(255, 255, 255));
    painter.fillRect(QRectF(kSidebar, 0, 236, 2), QColor(52, 116, 226));
    painter.setFont(sans(13));
    painter.setPen(QColor(40, 46, 58));
    painter.drawText(QRectF(kSidebar + 18, 0, 220, kTabs), Qt::AlignVCenter, "lake.md");
    painter.setPen(QColor(134, 142, 158));
    painter.drawText(QRectF(kSidebar + 254, 0, 220, kTabs), Qt::AlignVCenter, "周末计划.md");
    painter.fillRect(QRectF(kSidebar, kTabs, size.width() - kSidebar, 1), QColor(230, 233, 239));

    drawText(painter, QRectF(kSidebar, kTabs, size.width() - kSidebar, size.height() - kTabs));

    const QRectF status(0, size.height() - kStatus, size.width(), kStatus);
    painter.fillRect(status, QColor(52, 116, 226));
    painter.setFont(sans(12));
    painter.setPen(QColor(255, 255, 255));
    painter.drawText(status.adjusted(20, 0, 0, 0), Qt::AlignVCenter, "Saved");
    painter.drawText(status.adjusted(0, 0, -20, 0), Qt::AlignVCenter | Qt::AlignRight,
                     "Line 12, column 58      UTF-8      Markdown");
}

}  // namespace vorla::demo
