#include "platform/view/ChangingLine.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <functional>

#include "platform/view/drawing.h"

using vorla::ChangingLine;

namespace {

QImage drawn(double scale, const std::function<void(QPainter&)>& draw) {
    QImage image(QSize(200, 40) * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(0xff20242cU);
    QPainter painter(&image);
    painter.translate(0.0, 40.0);
    painter.scale(1.0, -1.0);
    draw(painter);
    return image;
}

}  // namespace

TEST(ChangingLine, HasTheSamePixelsAsTextThatIsShapedEachTime) {
    const char* texts[] = {"Pos: (11,7)",
                           "Pos: (1171,117)",
                           "RGB:#11ffa7",
                           "Pos: (7111,711)",
                           "坐标：(1,2)",
                           "坐标：(21,12)",
                           "To. AVA fi 1/2",
                           "e\u0301 12",
                           "الموضع: (1,2)",
                           "Pos: (71,17)",
                           "",
                           "\U0001F600 1",
                           "(1,2) x"};
    for (const char* family : {"Helvetica", "DejaVu Serif", "Inter", "Noto Sans CJK SC"}) {
        QFont font(family);
        font.setPixelSize(11);
        font.setHintingPreference(QFont::PreferNoHinting);
        ChangingLine line(font);
        for (const char* utf8 : texts) {
            const QString text = QString::fromUtf8(utf8);
            line.setText(text);
            const VLSize size = vorla::textSize(text, font);
            EXPECT_EQ(line.size(), size) << family << ": " << utf8;
            const VLPoint at{(110.0 - size.width) / 2.0, 6.0};
            for (const double scale : {1.0, 1.25, 2.0})
                EXPECT_EQ(
                    drawn(scale, [&](auto& p) { line.draw(p, Qt::white, at); }),
                    drawn(scale, [&](auto& p) { vorla::drawText(p, text, font, Qt::white, at); }))
                    << family << ": " << utf8 << " at " << scale;
        }
    }
}
