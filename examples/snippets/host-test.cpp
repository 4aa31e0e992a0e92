// A host's own test of what it does with a captured picture, without a display:
//   QT_QPA_PLATFORM=offscreen vorla-snippet-host-test
// The user of a scripted desktop clicks a window and delivers its picture.
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <cstdio>

#include <vorla/VLCapture.h>
#include <vorla/VLScriptedDesktop.h>

namespace {

constexpr uint32_t orange = 0xffff8800U;

class PictureOfHost : public VLCaptureRequestDelegate {
 public:
    QImage picture;

    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> imageData,
                        const std::optional<std::string>& /*saveToPath*/,
                        const std::optional<std::string>& /*error*/) override {
        picture = QImage::fromData(reinterpret_cast<const uchar*>(imageData.data()),
                                   static_cast<int>(imageData.size()), "PNG");
        QApplication::quit();
    }
    void captureRequestDidCancel(VLCaptureRequest& /*request*/) override { QApplication::quit(); }
};

/// Events are posted: a press waits in a loop of its own for what follows.
void click(QWidget& panel, QPoint at) {
    for (const auto type :
         {QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QApplication::postEvent(panel.childAt(at), new QMouseEvent(type, at, panel.mapToGlobal(at),
                                                                   button, held, Qt::NoModifier));
    }
}

void pressReturn(QWidget& panel) {
    QApplication::postEvent(&panel,
                            new QKeyEvent(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r"));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QRect screen = QApplication::primaryScreen()->geometry();
    VLSetScriptedDesktop({{screen.x(), screen.y(), screen.width(), screen.height(), 1.0}},
                         {{100, 120, 300, 200, 7, "Oranges", orange}});

    const auto host = std::make_shared<PictureOfHost>();
    VLCaptureRequest::sharedInstance()->setDelegate(host);
    VLSetPanelsShownHandler([&screen](int /*screens*/) {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible() || widget->size() != screen.size()) continue;
            click(*widget, {250, 200});
            pressReturn(*widget);
            return;
        }
    });
    if (!VLStartCapture(VLCaptureRequest::sharedInstance())) return 1;
    QTimer::singleShot(10000, &app, &QApplication::quit);
    QApplication::exec();

    const bool right =
        host->picture.size() == QSize(300, 200) && host->picture.pixel(150, 100) == orange;
    std::puts(right ? "the picture of the clicked window arrived" : "no picture, or a wrong one");
    return right ? 0 : 1;
}
