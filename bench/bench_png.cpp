// Time and size of our PNG files against those of Qt's writer at its default settings, measured in
// the same run on made-up screens: minimum of several runs each.

#include <sys/resource.h>

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "bench/screens.h"
#include "capture/support/PngEncoder.h"

namespace {

QByteArray qtEncoded(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}

double seconds(int runs, const std::function<void()>& work) {
    double best = 1e9;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

bool report(const char* name, const QImage& image, vorla::PngEncoder::Options options) {
    QByteArray ours, theirs;
    const double our = seconds(7, [&] { ours = vorla::PngEncoder::encode(image, options); });
    const double their = seconds(3, [&] { theirs = qtEncoded(image); });
    const bool same = QImage::fromData(ours).convertToFormat(image.format()) == image;
    std::printf(
        "%-28s %4dx%-4d  %7.1f ms against %7.1f ms: %5.2fx as fast; size %8.3f MB, %.3fx%s\n", name,
        image.width(), image.height(), our * 1e3, their * 1e3, their / our,
        static_cast<double>(ours.size()) / 1e6,
        static_cast<double>(ours.size()) / static_cast<double>(theirs.size()),
        same ? "" : "  PIXELS DIFFER");
    return same;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    bool same = true;
    for (const QSize size : {QSize(3840, 2160), QSize(1920, 1080)}) {
        const QImage photo = vorla::photographicScreen(size);
        const QImage flat = vorla::flatScreen(size);
        if (argc > 1) {
            photo.save(QString::fromLocal8Bit(argv[1]) +
                       QString::asprintf("/photo%d.png", size.width()));
            flat.save(QString::fromLocal8Bit(argv[1]) +
                      QString::asprintf("/flat%d.png", size.width()));
        }
        same &= report("photographic", photo, {});
        same &= report("flat", flat, {});
        same &= report("flat, true colour", flat, {.mayIndexColors = false});
        same &= report("flat, premultiplied ARGB",
                       flat.convertToFormat(QImage::Format_ARGB32_Premultiplied), {});
    }
    return same ? 0 : 1;
}
