// vorla-demo-desktop: a wallpaper and four client windows, each in a process of its own, as the
// windows of a real desktop are. Prints "ready" when all of them are painted and runs until it is
// ended; the windows end with it.
//
//   vorla-demo-desktop                 the whole desktop
//   vorla-demo-desktop --window NAME   one of its windows
//   vorla-demo-desktop --look FILE     writes what the screen shows now to a PNG file, and ends

#include <signal.h>
#include <sys/prctl.h>

#include <QApplication>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "tools/demo-desktop/DemoWindow.h"

namespace {

using namespace vorla::demo;

void announce(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

/// Starts the windows one after the other, so that their stacking is always the same.
class Launcher {
 public:
    void startNext() {
        if (processes_.size() == std::size(windowPlans)) return announce("ready");
        auto process = std::make_unique<QProcess>();
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        QObject::connect(process.get(), &QProcess::readyReadStandardOutput,
                         [this, child = process.get()] {
                             if (child->readAllStandardOutput().contains("painted")) startNext();
                         });
        QObject::connect(process.get(), &QProcess::errorOccurred,
                         [](QProcess::ProcessError) { QCoreApplication::exit(1); });
        const QString name = QString::fromUtf8(windowPlans[processes_.size()].name);
        process->start(QCoreApplication::applicationFilePath(), {"--window", name});
        processes_.push_back(std::move(process));
    }

    ~Launcher() {
        for (const auto& process : processes_) {
            process->disconnect();
            process->terminate();
        }
        for (const auto& process : processes_) process->waitForFinished(2000);
    }

 private:
    std::vector<std::unique_ptr<QProcess>> processes_;
};

int runDesktop(int argc, char** argv) {
    QApplication application(argc, argv);
    Launcher launcher;
    DemoWindow wallpaper(wallpaperPlan);
    wallpaper.becomeDesktop();
    wallpaper.setPaintedHandler([&launcher] { launcher.startNext(); });
    wallpaper.show();
    return QApplication::exec();
}

int runWindow(const WindowPlan& plan, int argc, char** argv) {
    // The instance and the class that the window manager and other programs know the window by.
    qputenv("RESOURCE_NAME", plan.name);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QString::fromUtf8(plan.className));
    DemoWindow window(plan);
    window.setPaintedHandler([] { announce("painted"); });
    window.show();
    return QApplication::exec();
}

int look(const char* file, int argc, char** argv) {
    QApplication application(argc, argv);
    const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0);
    if (screen.save(QString::fromLocal8Bit(file), "PNG")) return 0;
    std::fprintf(stderr, "vorla-demo-desktop: cannot write %s\n", file);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 1) return runDesktop(argc, argv);
    if (argc == 3 && std::string(argv[1]) == "--window") {
        for (const WindowPlan& plan : windowPlans)
            if (std::string(plan.name) == argv[2]) return runWindow(plan, argc, argv);
        std::fprintf(stderr, "vorla-demo-desktop: no window is called \"%s\"\n", argv[2]);
        return 2;
    }
    if (argc == 3 && std::string(argv[1]) == "--look") return look(argv[2], argc, argv);
    std::fprintf(stderr, "usage: vorla-demo-desktop [--window NAME | --look FILE]\n");
    return 2;
}
