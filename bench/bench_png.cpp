// Time and size of our PNG files against those of Qt's writer at its default settings, measured in
// the same run on made-up screens: minimum of several runs each.

#include <malloc.h>

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>

#include "bench/screens.h"
#include "imaging/png/PngEncoder.h"

namespace {

QByteArray qtEncoded(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}

struct Times {
    double wall = 1e9;
    double processor = 1e9;  // of all threads together
};

Times measured(int runs, const std::function<void()>& work) {
    Times best;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t used = std::clock();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best.wall = std::min(best.wall, took.count());
        best.processor =
            std::min(best.processor, static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC);
    }
    return best;
}

// Memory in KiB by its name in /proc/self/status.
double memory(const char* name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name && status >> word) return std::stod(word);
    return 0;
}

// What encoding needs beside the result, as a multiple of the picture.
double extraMemory(const QImage& image, vorla::PngEncoder::Options options) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // peak memory counts from here
    const double before = memory("VmRSS:");
    const QByteArray file = vorla::PngEncoder::encode(image, options);
    const double extra = (memory("VmHWM:") - before) * 1024 - static_cast<double>(file.size());
    return extra / static_cast<double>(image.sizeInBytes());
}

bool report(const char* name, const QImage& image, vorla::PngEncoder::Options options) {
    QByteArray ours, theirs;
    const Times our = measured(9, [&] { ours = vorla::PngEncoder::encode(image, options); });
    const Times their = measured(3, [&] { theirs = qtEncoded(image); });
    const bool same = QImage::fromData(ours).convertToFormat(image.format()) == image;
    std::printf(
        "%-26s %4dx%-4d %7.1f ms against %7.1f: %5.2fx as fast (processor time %6.1f ms, %5.2fx);"
        " size %6.3f MB, %.3fx; extra memory %.2fx%s\n",
        name, image.width(), image.height(), our.wall * 1e3, their.wall * 1e3,
        their.wall / our.wall, our.processor * 1e3, their.processor / our.processor,
        static_cast<double>(ours.size()) / 1e6,
        static_cast<double>(ours.size()) / static_cast<double>(theirs.size()),
        extraMemory(image, options), same ? "" : "  PIXELS DIFFER");
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
