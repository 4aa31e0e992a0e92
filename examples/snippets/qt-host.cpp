// The code of the guide for hosts on Qt: each function below is shown there.

#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QWidgetAction>
#include <memory>

#include <vorla/CrashReporter.h>
#include <vorla/VLCapture.h>
#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureSetting.h>
#include <vorla/VLIntroduceManager.h>
#include <vorla/VLNotifications.h>
#include <vorla/VLPrepareThreadForCrash.h>

namespace {

void report(const QString& line) {
    qInfo().noquote() << line;
}

class Receiver : public VLCaptureRequestDelegate {
 public:
    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> png,
                        const std::optional<std::string>& saveToPath,
                        const std::optional<std::string>& /*error*/) override {
        QFile file("last-capture.png");
        if (!saveToPath && file.open(QIODevice::WriteOnly))
            file.write(reinterpret_cast<const char*>(png.data()), qint64(png.size()));
    }
    void captureRequestDidCancel(VLCaptureRequest& /*request*/) override { report("cancelled"); }
    void captureRequestDidChange(VLCaptureRequest& /*request*/) override { report("recorder"); }
};

void startCapture(const std::shared_ptr<Receiver>& receiver) {
    const auto request = std::make_shared<VLCaptureRequest>();
    request->setDelegate(receiver);
    request->setNeedSelectSavePath(false);  // "save" asks nothing and saves to the last folder
    if (!VLStartCapture(request)) report(VLCaptureErrorText(VLLastCaptureError()));
}

void captureOrEnd(const std::shared_ptr<Receiver>& receiver) {
    if (VLIsCapturing())
        VLCancelCapture();
    else
        startCapture(receiver);
}

void setProductDefaults() {
    auto& defaults = VLCaptureDefaultSetting::sharedInstance();
    defaults.setDefaultValueOfFileNamePrefix("Example");
    defaults.setDefaultValueOfFileType(VLBitmapFileTypeJPEG);
    VLSetInfoValue(VLInfoKeySupplyID, "3000");  // picks a theme
}

void silence() {
    VLCaptureSetting::sharedInstance().setPlaySound(false);
}

void followSession() {
    VLSetPanelsShownHandler([](int screens) { report(QString("%1 screens frozen").arg(screens)); });
    VLAddNotificationObserver(NotificationCaptureDidFinish,
                              [](std::string_view, const VLNotificationObject& object) {
                                  const bool* toFile = std::get_if<bool>(&object);
                                  report(toFile && *toFile ? "to a file" : "to the clipboard");
                              });
}

void addMenuEntry(QMenu* menu) {
    VLSetInfoValue(VLInfoKeyIntroduceURL, "https://example.org/capture");
    menu->addAction(VLIntroduceManager::introduceMenuItem(menu));
}

void keepLog() {
    VLSetLogHandler([](std::string_view line) {
        report(QString::fromUtf8(line.data(), qsizetype(line.size())));
    });
    VLSetLogLevel(VLLogLevelInfo);  // where no handler is set
}

// Before VLPrepareCapture, and after the user has been asked.
void applyConsent(const QSettings& user) {
    if (user.value("counts", false).toBool())
        VLSetInfoValue(VLInfoKeyStatisticsURL, "https://stat.example.org");
    if (user.value("crashes", false).toBool()) {
        VLSetInfoValue(VLInfoKeyCrashSyncURL, "https://crash.example.org");
    } else {
        CrashReporter::sharedInstance().enableSignalErrorReporter(false);
        CrashReporter::sharedInstance().enableNSExceptionReporter(false);
    }
}

void describeCrashes() {
    auto& reporter = CrashReporter::sharedInstance();
    reporter.setUserData("edition", "trial");
    reporter.addSessionEvent("opened a document");
    VLPrepareThreadForCrash();  // in each thread of the host's that may run out of stack
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    setProductDefaults();
    applyConsent(QSettings("example.org", "example"));
    VLPrepareCapture();

    keepLog();
    followSession();
    describeCrashes();
    const auto receiver = std::make_shared<Receiver>();
    QPushButton button("Capture");
    QMenu menu;
    addMenuEntry(&menu);
    button.setMenu(&menu);
    menu.addAction("Capture or end", &app, [&] { captureOrEnd(receiver); });
    menu.addAction("No sound", &app, silence);
    button.show();
    return app.exec();
}
