// Time and size of PNG files against those of the toolkit's writer at its defaults, measured in
// turns in the same run on made-up screens: minimum of several runs each.
//   bench_png [RUNS]

#include <malloc.h>

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

#include "bench/png/screens.h"
#include "bench/png/writers.h"

namespace {

struct Writer {
    const char* name;
    QByteArray (*write)(const QImage&);
};
constexpr Writer kWriters[] = {{"the toolkit", vorla::writtenByToolkit},
                               {"libpng in haste", vorla::writtenByLibpngInHaste},
                               {"ours", vorla::writtenByVorla},
                               {"ours in background", vorla::writtenByVorlaInBackground}};

struct Result {
    double wall = 1e9;
    double processor = 1e9;  // of all threads together
    QByteArray file;
};

void measure(const Writer& writer, const QImage& image, Result& result) {
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t used = std::clock();
    result.file = writer.write(image);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    result.wall = std::min(result.wall, took.count());
    result.processor =
        std::min(result.processor, static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC);
}

// Memory in KiB by its name in /proc/self/status.
double memory(const char* name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name && status >> word) return std::stod(word);
    return 0;
}

// What encoding needs next to the result, as a multiple of the picture.
double extraMemory(const Writer& writer, const QImage& image) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // peak memory counts from here
    const double before = memory("VmRSS:");
    const QByteArray file = writer.write(image);
    const double extra = (memory("VmHWM:") - before) * 1024 - static_cast<double>(file.size());
    return extra / static_cast<double>(image.sizeInBytes());
}

bool report(const char* name, const QImage& image, int runs) {
    std::printf("%s, %d x %d\n", name, image.width(), image.height());
    Result results[std::size(kWriters)];
    for (int run = 0; run < runs; ++run)
        for (size_t index = 0; index < std::size(kWriters); ++index)
            measure(kWriters[index], image, results[index]);
    bool same = true;
    for (size_t index = 0; index < std::size(kWriters); ++index) {
        const Result& result = results[index];
        const bool isSame = QImage::fromData(result.file).convertToFormat(image.format()) == image;
        same &= isSame;
        std::printf(
            "  %-18s %7.1f ms, %5.2fx as fast (processor %7.1f ms, %5.2fx); %6.3f MB, "
            "%.3f of the size; extra memory %.2fx%s\n",
            kWriters[index].name, result.wall * 1e3, results[0].wall / result.wall,
            result.processor * 1e3, results[0].processor / result.processor,
            static_cast<double>(result.file.size()) / 1e6,
            static_cast<double>(result.file.size()) / static_cast<double>(results[0].file.size()),
            extraMemory(kWriters[index], image), isSame ? "" : "  PIXELS DIFFER");
    }
    return same;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    bool same = true;
    for (const QSize size : {QSize(3840, 2160), QSize(1920, 1080), QSize(1280, 800)}) {
        const QImage flat = vorla::flatScreen(size);
        same &= report("photographic", vorla::photographicScreen(size), runs);
        same &= report("flat", flat, runs);
        same &= report("flat, premultiplied ARGB",
                       flat.convertToFormat(QImage::Format_ARGB32_Premultiplied), runs);
    }
    return same ? 0 : 1;
}
