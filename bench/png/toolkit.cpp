#include <QBuffer>
#include <QImageWriter>

#include "bench/png/writers.h"

QByteArray vorla::writtenByToolkit(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}
