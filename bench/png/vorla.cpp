#include "bench/png/writers.h"
#include "imaging/png/PngEncoder.h"

QByteArray vorla::writtenByVorla(const QImage& image) {
    return PngEncoder::encode(image);
}

QByteArray vorla::writtenByVorlaInBackground(const QImage& image) {
    return PngEncoder::encode(image, {.goal = PngEncoder::Goal::Size});
}
