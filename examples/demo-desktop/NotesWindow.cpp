#include "examples/demo-desktop/NotesWindow.h"

#include <QFontMetricsF>
#include <QPainter>
#include <array>

namespace vorla::demo {
namespace {

constexpr double kHeader = 60;
constexpr double kEntry = 56;

struct Message {
    bool mine;
    const char* text;
};

constexpr std::array<Message, 5> kMessages = {{
    {false, "早上好！湖边的照片出来了吗？"},
    {true, "Just now. The first one is the best, look at the light on the ridge."},
    {false, "太美了，雾气刚好散开。"},
    {false, "Where did we stand? 帮我圈一下。"},
    {true, "好，马上截图发给你。"},
}};

/// Draws one bubble with its upper edge at y and gives the y below it.
double drawMessage(QPainter& painter, const Message& message, double y, double width) {
    constexpr double kSide = 18;
    constexpr double kPadding = 12;
    const QFont font = DemoWindow::sans(14);
    const QString text = QString::fromUtf8(message.text);
    const QRectF limits(0, 0, width * 0.70, 1000);
    const QRectF needed =
        QFontMetricsF(font).boundingRect(limits, Qt::TextWordWrap, text).adjusted(0, 0, 2, 0);
    QRectF bubble(0, y, needed.width() + 2 * kPadding, needed.height() + 2 * kPadding - 4);
    bubble.moveLeft(message.mine ? width - kSide - bubble.width() : kSide);
    painter.setPen(Qt::NoPen);
    painter.setBrush(message.mine ? QColor(44, 132, 108) : QColor(255, 255, 255));
    painter.drawRoundedRect(bubble, 12, 12);
    painter.setFont(font);
    painter.setPen(message.mine ? QColor(255, 255, 255) : QColor(34, 40, 46));
    painter.drawText(bubble.adjusted(kPadding, kPadding - 2, -kPadding + 2, 0), Qt::TextWordWrap,
                     text);
    return bubble.bottom() + 10;
}

}  // namespace

NotesWindow::NotesWindow() : DemoWindow("林一 - Messages", QRectF(1392, 560, 420, 444)) {}

void NotesWindow::drawContents(QPainter& painter, const QSizeF& size) {
    painter.fillRect(QRectF(QPointF(), size), QColor(236, 239, 240));
    painter.fillRect(QRectF(0, 0, size.width(), kHeader), QColor(250, 251, 251));
    painter.fillRect(QRectF(0, kHeader, size.width(), 1), QColor(222, 227, 229));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(236, 148, 92));
    painter.drawEllipse(QRectF(18, 12, 36, 36));
    painter.setPen(QColor(255, 255, 255));
    painter.setFont(sans(15, QFont::Bold));
    painter.drawText(QRectF(18, 12, 36, 36), Qt::AlignCenter, "林");
    painter.setPen(QColor(34, 40, 46));
    painter.drawText(QRectF(66, 10, 300, 22), Qt::AlignVCenter, "林一");
    painter.setFont(sans(12));
    painter.setPen(QColor(44, 132, 108));
    painter.drawText(QRectF(66, 30, 300, 18), Qt::AlignVCenter, "online · 在线");

    double y = kHeader + 16;
    for (const Message& message : kMessages) y = drawMessage(painter, message, y, size.width());

    const QRectF entry(0, size.height() - kEntry, size.width(), kEntry);
    painter.fillRect(entry, QColor(250, 251, 251));
    painter.setPen(QPen(QColor(216, 222, 224), 1));
    painter.setBrush(QColor(255, 255, 255));
    painter.drawRoundedRect(entry.adjusted(16.5, 10.5, -16.5, -10.5), 17, 17);
    painter.setFont(sans(13));
    painter.setPen(QColor(150, 158, 164));
    painter.drawText(entry.adjusted(34, 0, 0, 0), Qt::AlignVCenter, "Message  输入消息…");
}

}  // namespace vorla::demo
