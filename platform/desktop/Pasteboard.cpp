#include "platform/desktop/Pasteboard.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QStringList>

#include "platform/desktop/ClipboardKeeper.h"

namespace vorla {
namespace {

/// A PNG as clipboard contents: other image types are encoded when a reader wants them.
class PngMimeData : public QMimeData {
 public:
    explicit PngMimeData(QByteArray png) : png_(std::move(png)) {}

    [[nodiscard]] QStringList formats() const override {
        return {Pasteboard::typePNG(), QStringLiteral("image/bmp"), QStringLiteral("image/jpeg"),
                QStringLiteral("application/x-qt-image")};
    }
    [[nodiscard]] bool hasFormat(const QString& type) const override {
        return formats().contains(type);
    }

 protected:
    [[nodiscard]] QVariant retrieveData(const QString& type, QMetaType /*wanted*/) const override {
        if (type == Pasteboard::typePNG()) return png_;
        if (!hasFormat(type)) return {};
        QImage image = QImage::fromData(png_, "PNG");
        if (type == QLatin1String("application/x-qt-image")) return image;
        // Neither knows transparency: what shines through is white, as on paper.
        if (image.hasAlphaChannel()) {
            QImage flat(image.size(), QImage::Format_RGB32);
            flat.fill(Qt::white);
            image = blend(std::move(flat), image);
        }
        QByteArray encoded;
        QBuffer buffer(&encoded);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, type == QLatin1String("image/bmp") ? "BMP" : "JPEG", 92);
        return encoded;
    }

 private:
    static QImage blend(QImage below, const QImage& above);
    QByteArray png_;
};

QImage PngMimeData::blend(QImage below, const QImage& above) {
    for (int y = 0; y < below.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(below.scanLine(y));
        for (int x = 0; x < below.width(); ++x) {
            const QRgb pixel = qPremultiply(above.pixel(x, y));
            const int rest = 255 - qAlpha(pixel);
            row[x] = qRgb(qRed(pixel) + rest, qGreen(pixel) + rest, qBlue(pixel) + rest);
        }
    }
    return below;
}

}  // namespace

Pasteboard& Pasteboard::general() {
    static Pasteboard instance;
    return instance;
}

void Pasteboard::clearContents() {
    QGuiApplication::clipboard()->clear();
}

bool Pasteboard::setData(const QByteArray& data, const QString& type) {
    if (data.isEmpty()) return false;
    // The clipboard takes ownership.
    QMimeData* contents = nullptr;
    if (type == typePNG()) {
        contents = new PngMimeData(data);
    } else {
        contents = new QMimeData;
        contents->setData(type, data);
    }
    QGuiApplication::clipboard()->setMimeData(contents);
    if (!QGuiApplication::clipboard()->ownsClipboard()) return false;
    if (type == typePNG()) keepPictureOnClipboard(data);
    return true;
}

}  // namespace vorla
