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
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "examples/demo-desktop/EditorWindow.h"
#include "examples/demo-desktop/NotesWindow.h"
#include "examples/demo-desktop/TerminalWindow.h"
#include "examples/demo-desktop/ViewerWindow.h"
#include "examples/demo-desktop/Wallpaper.h"

namespace {

using namespace vorla::demo;

template <typename Window>
std::unique_ptr<DemoWindow> make() {
    return std::make_unique<Window>();
}

struct Entry {
    std::string name;       // also the instance part of WM_CLASS
    std::string className;  // its class part
    std::unique_ptr<DemoWindow> (*make)();
};

/// The windows in the order in which they open: later ones lie above.
const std::vector<Entry>& windows() {
    static const std::vector<Entry> list = {{"editor", "DemoEditor", &make<EditorWindow>},
                                            {"viewer", "DemoViewer", &make<ViewerWindow>},
                                            {"terminal", "DemoTerminal", &make<TerminalWindow>},
                                            {"notes", "DemoMessages", &make<NotesWindow>}};
    return list;
}

void announce(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

/// Starts the windows one after the other, so that their stacking is always the same.
class Launcher {
 public:
    void startNext() {
        if (processes_.size() == windows().size()) return announce("ready");
        auto process = std::make_unique<QProcess>();
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        QObject::connect(process.get(), &QProcess::readyReadStandardOutput,
                         [this, child = process.get()] {
                             if (child->readAllStandardOutput().contains("painted")) startNext();
                         });
        QObject::connect(process.get(), &QProcess::errorOccurred,
                         [](QProcess::ProcessError) { QCoreApplication::exit(1); });
        const QString name = QString::fromStdString(windows()[processes_.size()].name);
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
    Wallpaper wallpaper;
    wallpaper.setPaintedHandler([&launcher] { launcher.startNext(); });
    wallpaper.show();
    return QApplication::exec();
}

int runWindow(const Entry& entry, int argc, char** argv) {
    // The instance and the class that the window manager and other programs know the window by.
    qputenv("RESOURCE_NAME", QByteArray::fromStdString(entry.name));
    QApplication application(argc, argv);
    QApplication::setApplicationName(QString::fromStdString(entry.className));
    const auto window = entry.make();
    window->setPaintedHandler([] { announce("painted"); });
    window->show();
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
        for (const Entry& entry : windows()) {
            if (entry.name == argv[2]) return runWindow(entry, argc, argv);
        }
        std::fprintf(stderr, "vorla-demo-desktop: no window is called \"%s\"\n", argv[2]);
        return 2;
    }
    if (argc == 3 && std::string(argv[1]) == "--look") return look(argv[2], argc, argv);
    std::fprintf(stderr, "usage: vorla-demo-desktop [--window NAME | --look FILE]\n");
    return 2;
}
