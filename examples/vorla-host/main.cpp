// A small real program that embeds the framework. It is also how tests and benchmarks drive it from
// outside: everything it hears goes to standard output, one JSON object a line.

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidgetAction>
#include <cstdio>
#include <memory>
#include <optional>

#include <vorla/CrashReporter.h>
#include <vorla/VLCapture.h>
#include <vorla/VLIntroduceManager.h>
#include "CommandReader.h"
#include "HostOptions.h"
#include "HostWindow.h"

namespace {

void report(const QJsonObject& event) {
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fflush(stdout);
}

void report(const char* event) {
    report(QJsonObject{{"event", event}});
}

/// Puts every per-user file under one directory.
void useStateDirectory(const QString& directory) {
    const QByteArray root = QFile::encodeName(QDir(directory).absolutePath());
    qputenv("XDG_CONFIG_HOME", root + "/config");
    qputenv("XDG_DATA_HOME", root + "/data");
    qputenv("XDG_STATE_HOME", root + "/state");
    qputenv("XDG_CACHE_HOME", root + "/cache");
}

class Host : public VLCaptureRequestDelegate {
 public:
    explicit Host(HostOptions options)
        : options_(std::move(options)), window_([this] { capture(); }) {}

    void start(const std::shared_ptr<Host>& self) {
        request_->setShowSwitch(options_.showSwitch);
        request_->setNeedSelectSavePath(!options_.silentSave);
        request_->setDelegate(self);
        VLSetPanelsShownHandler([options = options_](int screens) {
            report(QJsonObject{{"event", "panels"}, {"screens", screens}});
            if (options.crash && options.crashWhenPanels) options.crash->provoke();
        });
        // Counted before their upload, which begins now.
        if (const auto stored = CrashReporter::sharedInstance().storedCrashCount(); stored > 0)
            report(QJsonObject{{"event", "crashes"}, {"stored", static_cast<qint64>(stored)}});
        VLPrepareCapture();
        if (!options_.once && !options_.background) {
            fillMenu();
            window_.show();
            makeTrayEntry();
        }
        if (options_.commands) commands_.emplace([this](const QByteArray& line) { obey(line); });
        QTimer::singleShot(0, [this] {
            report("ready");
            if (options_.crash && !options_.crashWhenPanels) options_.crash->provoke();
            if (options_.once) capture();
        });
    }

    void captureRequestDidCancel(VLCaptureRequest& /*request*/) override {
        report("cancelled");
        window_.showMessage(QStringLiteral("Cancelled."));
        sessionEnded();
    }

    void captureRequestDidChange(VLCaptureRequest& /*request*/) override {
        report("changed");
        window_.showMessage(QStringLiteral("Over to the recorder."));
        sessionEnded();
    }

    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> imageData,
                        const std::optional<std::string>& saveToPath,
                        const std::optional<std::string>& /*error*/) override {
        const QByteArray png(reinterpret_cast<const char*>(imageData.data()),
                             static_cast<qsizetype>(imageData.size()));
        if (!options_.outFile.isEmpty()) writeOut(png);
        report(QJsonObject{
            {"event", "finished"},
            {"bytes", static_cast<qint64>(png.size())},
            {"path", saveToPath ? QJsonValue(QString::fromStdString(*saveToPath)) : QJsonValue()}});
        if (window_.isVisible()) {
            const QImage picture = QImage::fromData(png, "PNG");
            window_.showPicture(picture, QStringLiteral("%1 x %2 pixels, %3 KB")
                                             .arg(picture.width())
                                             .arg(picture.height())
                                             .arg(png.size() / 1024));
        }
        sessionEnded();
    }

 private:
    void capture() {
        if (VLStartCapture(request_)) return;
        report("refused");
        if (!VLIsCapturing()) sessionEnded();
    }

    void obey(const QByteArray& command) {
        if (command == "capture")
            capture();
        else if (command == "cancel")
            VLCancelCapture();
        else if (command == "state")
            report(QJsonObject{{"event", "state"}, {"capturing", VLIsCapturing()}});
        else if (command == "dialog")
            openDialog();
        else if (command == "quit")
            QCoreApplication::quit();
        else
            std::fprintf(stderr, "unknown command: %s\n", command.constData());
    }

    void openDialog() {
        auto* dialog = new QDialog(&window_);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->resize(300, 200);
        dialog->setWindowModality(Qt::ApplicationModal);
        dialog->show();
    }

    void writeOut(const QByteArray& png) const {
        QFile file(options_.outFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(png) != png.size())
            std::fprintf(stderr, "cannot write %s: %s\n", qPrintable(options_.outFile),
                         qPrintable(file.errorString()));
    }

    void fillMenu() {
        QMenu* menu = window_.menu();
        menu->addAction(QStringLiteral("Capture"), &window_, [this] { capture(); });
        menu->addAction(QStringLiteral("Quit"), qApp, &QCoreApplication::quit);
        menu->addSeparator();
        menu->addAction(VLIntroduceManager::introduceMenuItem(menu));
    }

    void makeTrayEntry() {
        if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
        tray_ = std::make_unique<QSystemTrayIcon>(
            window_.style()->standardIcon(QStyle::SP_DesktopIcon));
        tray_->setContextMenu(window_.menu());
        tray_->show();
    }

    void sessionEnded() const {
        if (options_.once) QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }

    HostOptions options_;
    HostWindow window_;
    std::shared_ptr<VLCaptureRequest> request_ = std::make_shared<VLCaptureRequest>();
    std::optional<CommandReader> commands_;
    std::unique_ptr<QSystemTrayIcon> tray_;
};

}  // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto options = HostOptions::parse(arguments);
    if (!options) return 2;
    if (!options->stateDir.isEmpty()) useStateDirectory(options->stateDir);
    if (!options->supplyID.isEmpty()) VLSetInfoValue("SupplyID", options->supplyID.toStdString());
    if (!options->statURL.isEmpty())
        VLSetInfoValue("StatisticsURL", options->statURL.toStdString());
    if (!options->crashURL.isEmpty())
        VLSetInfoValue("CrashSyncURL", options->crashURL.toStdString());

    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Vorla sample host"));
    QApplication::setQuitOnLastWindowClosed(!options->once);
    const auto host = std::make_shared<Host>(*options);
    host->start(host);
    return QApplication::exec();
}
