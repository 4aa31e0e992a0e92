#pragma once

#include <QImage>
#include <random>

namespace vorla::test {

/// What a made-up picture shows.
enum class Content { Noise, Gradient, Flat, TwoColors, Blocks, Text };

/// The same picture for the same arguments, on every machine. In formats with alpha, some pixels
/// are clear and some half so.
QImage picture(QSize size, QImage::Format format, Content content, unsigned seed = 1);

/// The pixels as straight ARGB32, whatever the format: how pictures are compared.
QImage straight(const QImage& image);

}  // namespace vorla::test
